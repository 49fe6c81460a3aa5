#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "system/Poller.h"

namespace harvlink {

/// What a PollPoller watches. A `Descriptor` is the structure that this system's poll takes, with fd, events and revents.
template <typename Descriptor>
class PollSet {
public:
    using Token = PollPoller::Token;

    void Add(Descriptor const& descriptor, Token token) {
        descriptors.push_back(descriptor);
        tokens.push_back(token);
    }

    void Remove(NativeSocket descriptor) {
        auto const place = std::ranges::find(descriptors, descriptor, &Descriptor::fd) - descriptors.begin();
        if (place < static_cast<std::ptrdiff_t>(descriptors.size())) {
            descriptors.erase(descriptors.begin() + place);
            tokens.erase(tokens.begin() + place);
        }
    }

    std::vector<Descriptor>& Descriptors() { return descriptors; }

    /// @param count what poll returned: the tokens of none unless it is above 0
    std::span<Token const> Ready(int count) {
        ready.clear();
        ready.reserve(tokens.size()); // not in Add, which is called while somebody goes through the last ones
        for (std::size_t i = 0; i < descriptors.size() && count > 0; ++i) { // else they are those of the wait before
            if (descriptors[i].revents != 0) {
                ready.push_back(tokens[i]);
            }
        }
        return ready;
    }

private:
    std::vector<Descriptor> descriptors;
    std::vector<Token> tokens;
    std::vector<Token> ready;
};

} // namespace harvlink
