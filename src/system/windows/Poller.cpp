#include "system/Poller.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include <winsock2.h>

#include "system/windows/ShortWait.h"

namespace harvlink {

struct PollPoller::Watched {
    std::vector<WSAPOLLFD> descriptors;
    std::vector<Token> tokens;
    std::vector<Token> ready;
};

PollPoller::PollPoller() : watched(std::make_unique<Watched>()) {}

PollPoller::~PollPoller() = default;

bool PollPoller::Watch(NativeSocket descriptor, Token token) {
    watched->descriptors.push_back({descriptor, POLLRDNORM, 0});
    watched->tokens.push_back(token);
    return true;
}

void PollPoller::Forget(NativeSocket descriptor) {
    auto& descriptors = watched->descriptors;
    auto const place = std::ranges::find(descriptors, descriptor, &WSAPOLLFD::fd) - descriptors.begin();
    if (place < static_cast<std::ptrdiff_t>(descriptors.size())) {
        descriptors.erase(descriptors.begin() + place);
        watched->tokens.erase(watched->tokens.begin() + place);
    }
}

std::span<PollPoller::Token const> PollPoller::Wait(std::int64_t nanoseconds) {
    auto& [descriptors, tokens, ready] = *watched;
    ready.clear();
    ready.reserve(tokens.size()); // not in Watch, which is called while somebody goes through the last ones
    ShortWait const wait{std::chrono::nanoseconds(nanoseconds)};
    int const count = ::WSAPoll(descriptors.data(), static_cast<ULONG>(descriptors.size()), wait.Milliseconds());
    if (count < 0) {
        ::Sleep(1); // this computer is short of something: the caller must not spin meanwhile
    }
    for (std::size_t i = 0; i < descriptors.size() && count > 0; ++i) { // else they are those of the wait before
        if (descriptors[i].revents != 0) {
            ready.push_back(tokens[i]);
        }
    }
    return ready;
}

} // namespace harvlink
