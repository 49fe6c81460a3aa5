#include "support/LoopbackAddress.h"

#include <array>
#include <atomic>
#include <cstdint>

#include <arpa/inet.h>
#include <unistd.h>

std::string harvlink::test::NextLoopbackAddress() {
    static std::atomic<std::uint32_t> counter = 0;
    std::uint32_t const scattered = (static_cast<std::uint32_t>(::getpid()) * 64 + counter++) * 2654435761U;
    in_addr const networkOrder{htonl(0x7f100000U + scattered % 0xefff00U)};
    std::array<char, INET_ADDRSTRLEN> text{};
    return ::inet_ntop(AF_INET, &networkOrder, text.data(), text.size());
}
