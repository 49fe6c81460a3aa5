#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "gateway/config/ConfigFile.h"
#include "gateway/program/Bill.h"

/// A configuration is read, or refused with what is wrong; what is read has a bill.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace harvlink::gateway; // NOLINT(google-build-using-namespace): the entry of a fuzzer is in no namespace
    try {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes as text
        Config const config = ParseConfig({reinterpret_cast<char const*>(data), size}, "plant.toml");
        constexpr std::size_t Many = 100;
        if (config.controllers.size() < Many && BillOf(config).empty()) {
            std::abort();
        }
    } catch (ConfigError const& error) {
        if (error.Problems().empty()) {
            std::abort();
        }
    }
    return 0;
}
