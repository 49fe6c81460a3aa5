#include "system/Poller.h"

#include <chrono>

#include <winsock2.h>

#include "system/PollSet.h"
#include "system/windows/ShortWait.h"

namespace harvlink {

struct PollPoller::Watched : PollSet<WSAPOLLFD> {};

PollPoller::PollPoller() : watched(std::make_unique<Watched>()) {}

PollPoller::~PollPoller() = default;

bool PollPoller::Watch(NativeSocket descriptor, Token token) {
    watched->Add({descriptor, POLLRDNORM, 0}, token);
    return true;
}

void PollPoller::Forget(NativeSocket descriptor) {
    watched->Remove(descriptor);
}

std::span<PollPoller::Token const> PollPoller::Wait(std::int64_t nanoseconds) {
    auto& descriptors = watched->Descriptors();
    ShortWait const wait{std::chrono::nanoseconds(nanoseconds)};
    int const count = ::WSAPoll(descriptors.data(), static_cast<ULONG>(descriptors.size()), wait.Milliseconds());
    if (count < 0) {
        ::Sleep(1); // this computer is short of something: the caller must not spin meanwhile
    }
    return watched->Ready(count);
}

} // namespace harvlink
