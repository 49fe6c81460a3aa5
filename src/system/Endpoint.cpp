#include "system/Endpoint.h"

namespace harvlink {

std::string AddressText(std::uint32_t address) {
    constexpr std::uint32_t byte = 0xFF;
    return std::to_string(address >> 24U) + '.' + std::to_string(address >> 16U & byte) + '.' +
           std::to_string(address >> 8U & byte) + '.' + std::to_string(address & byte);
}

} // namespace harvlink
