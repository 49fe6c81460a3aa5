#include "support/LoopbackAddress.h"

#include <atomic>
#include <cstdint>

#include "system/Endpoint.h"

#if defined(_WIN32)

// A server under wine binds all addresses and answers from this one.
std::string harvlink::test::NextLoopbackAddress() {
    return "127.0.0.1";
}

#else

#include <unistd.h>

std::string harvlink::test::NextLoopbackAddress() {
    static std::atomic<std::uint32_t> counter = 0;
    std::uint32_t const scattered = (static_cast<std::uint32_t>(::getpid()) * 64 + counter++) * 2654435761U;
    return AddressText(0x7f100000U + scattered % 0xefff00U);
}

#endif
