#include "fleet/EventQueue.h"

#include <algorithm>

namespace harvlink::fleet {

void RawEvent::SetText(std::string_view words) {
    words = words.substr(0, std::min(words.find('\0'), text.size() - 1));
    text = {};
    std::ranges::copy(words, text.begin());
}

void EventQueue::Put(RawEvent const& event) {
    {
        std::scoped_lock const lock(mutex);
        if (count == events.size()) {
            first = (first + 1) % events.size();
            --count;
            dropped.fetch_add(1, std::memory_order_relaxed);
        }
        events[(first + count) % events.size()] = event;
        ++count;
    }
    inbox.Announce();
}

bool EventQueue::TakeNext(RawEvent& event) {
    std::scoped_lock const lock(mutex);
    if (count == 0) {
        return false;
    }
    event = events[first];
    first = (first + 1) % events.size();
    --count;
    return true;
}

} // namespace harvlink::fleet
