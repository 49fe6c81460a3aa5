#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <new>

#include "binding/Binding.h"

using namespace harvlink::InteropHelper;

// Both records begin with their size, as the program knew them when it was compiled: a shorter one is of an older program.

namespace harvlink::Binding {
namespace {

constexpr std::size_t leastOptions = offsetof(HarvlinkConnectOptions, address) + sizeof(char const*);
constexpr std::size_t leastStatistics = offsetof(HarvlinkConnectionStatistics, linkStateSince);

/// Shared by all handles without a connection, so that failing neither needs memory nor loses any.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): handles are not const
ControllerCell noConnection{nullptr};

StatusInfo InvalidSize() {
    return StatusInformation(ErrorStatusCodes::InvalidConnectOptions,
                             "The size of the record is not set, or not one that this library knows.");
}

HarvlinkConnectOptions Defaults() {
    ConnectOptions const defaults;
    HarvlinkConnectOptions options{};
    options.size = sizeof(options);
    options.timeout = defaults.timeout;
    options.retries = defaults.retries;
    options.logging = ToInt32(defaults.logging);
    options.access = static_cast<HarvlinkAccess>(defaults.access);
    options.rules = defaults.rules.bits;
    options.audit = ToInt32(defaults.audit);
    options.largestFile = defaults.largestFile;
    options.clearTargets = ToInt32(defaults.clearTargets);
    return options;
}

/// Of a newer program the part that is not known here must be zero: what it asks for could not be done.
bool IsKnownSize(HarvlinkConnectOptions const& options) {
    auto const* const bytes = reinterpret_cast<std::byte const*>(&options);
    return options.size >= leastOptions &&
           (options.size <= sizeof(options) || std::all_of(bytes + sizeof(options), bytes + options.size,
                                                           [](std::byte byte) { return byte == std::byte{}; }));
}

ConnectOptions FromPlain(HarvlinkConnectOptions const& given) {
    HarvlinkConnectOptions options = Defaults();
    std::memcpy(&options, &given, std::min<std::size_t>(given.size, sizeof(options)));
    return {.address = options.address != nullptr ? options.address : "",
            .timeout = options.timeout,
            .retries = options.retries,
            .logging = ToBool(options.logging),
            .access = static_cast<Access>(options.access),
            .rules = {options.rules},
            .audit = ToBool(options.audit),
            .largestFile = options.largestFile,
            .clearTargets = ToBool(options.clearTargets)};
}

ControllerHandle Open(HarvlinkConnectOptions const& options, StatusInfo& status) {
    ConnectOptions const given = FromPlain(options);
    Connection connection = Connect(given, status);
    if (!connection) {
        return &noConnection;
    }
    auto* const handle = NewHandle(connection.get(), !given.audit && given.rules.Has(Rule::NoExceptions));
    (void)connection.release();
    return handle;
}

HarvlinkConnectionStatistics ToPlain(ConnectionStatistics const& seen) {
    using std::chrono::duration_cast;
    HarvlinkConnectionStatistics plain{};
    plain.linkState = static_cast<HarvlinkLinkState>(seen.linkState);
    plain.linkStateSince = duration_cast<std::chrono::microseconds>(seen.linkStateSince.time_since_epoch()).count();
    plain.exchanges = seen.exchanges;
    plain.timeouts = seen.timeouts;
    plain.lateAnswers = seen.lateAnswers;
    plain.doubledAnswers = seen.doubledAnswers;
    plain.foreignAnswers = seen.foreignAnswers;
    plain.malformedAnswers = seen.malformedAnswers;
    plain.repeatedRequests = seen.repeatedRequests;
    plain.startUpRetries = seen.startUpRetries;
    plain.blocksReceived = seen.blocksReceived;
    plain.blocksSent = seen.blocksSent;
    plain.bytesReceived = seen.bytesReceived;
    plain.bytesSent = seen.bytesSent;
    plain.roundTripCount = seen.roundTrip.count;
    plain.leastMicroseconds = seen.roundTrip.leastMicroseconds;
    plain.medianMicroseconds = seen.roundTrip.medianMicroseconds;
    plain.percentile95Microseconds = seen.roundTrip.percentile95Microseconds;
    plain.mostMicroseconds = seen.roundTrip.mostMicroseconds;
    std::ranges::copy(seen.ruleCounts, plain.ruleCounts);
    return plain;
}

/// Runs an operation whose status crosses. No exception does.
template <typename Operation>
IStatusInfo StatusOf(Operation const& operation) {
    try {
        return InteropHelper::ToPlain(operation());
    } catch (std::bad_alloc const&) {
        return InteropHelper::ToPlain(StatusInformation(ErrorStatusCodes::OutOfMemory));
    }
}

} // namespace
} // namespace harvlink::Binding

namespace binding = harvlink::Binding;

inline namespace harvlink_c {

void harvlink_connect_options_init(HarvlinkConnectOptions* options) {
    *options = binding::Defaults();
}

ControllerHandle harvlink_connect(HarvlinkConnectOptions const* options, IStatusInfo* status) {
    ControllerHandle handle = &binding::noConnection;
    *status = binding::StatusOf([&] {
        harvlink::StatusInfo result = binding::InvalidSize();
        if (binding::IsKnownSize(*options)) {
            handle = binding::Open(*options, result);
        }
        return result;
    });
    return handle;
}

IStatusInfo harvlink_get_connection_statistics(ControllerHandle handle, HarvlinkConnectionStatistics* statistics) {
    return binding::StatusOf([&]() -> harvlink::StatusInfo {
        if (statistics->size < binding::leastStatistics) {
            return binding::InvalidSize();
        }
        HarvlinkConnectionStatistics filled{};
        if (handle->controller != nullptr) {
            filled = binding::ToPlain(handle->controller->GetConnectionStatistics());
        }
        filled.size = std::min<std::uint32_t>(statistics->size, sizeof(filled));
        std::memcpy(statistics, &filled, filled.size);
        return harvlink::StatusInformation(harvlink::ErrorStatusCodes::Ok);
    });
}

} // namespace harvlink_c
