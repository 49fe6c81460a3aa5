#include <chrono>
#include <memory>

#include "connection/QuorvanControllerImplementation.h"
#include "harvlink/ConnectOptions.h"
#include "status/ExceptionStatus.h"
#include "wire/HostName.h"
#include "wire/UdpTransport.h"

namespace harvlink {
namespace {

constexpr unsigned longestTimeout = 3'600'000; // milliseconds
constexpr unsigned mostRetries = 1000;

StatusInfo Invalid(std::string_view what) {
    return StatusInformation(ErrorStatusCodes::InvalidConnectOptions,
                             "The connection options are not valid: " + std::string(what) + ".");
}

StatusInfo Check(ConnectOptions const& options) {
    if (!UdpTransport::IsHostAddress(options.address) && !IsHostName(options.address)) {
        return Invalid("the address is not the IPv4 address of a host, such as 192.168.1.31, nor a host's name");
    }
    if (options.timeout == 0 || options.timeout > longestTimeout) {
        return Invalid("the timeout is not 1 to 3600000 milliseconds");
    }
    if (options.retries > mostRetries) {
        return Invalid("there are more than 1000 retries");
    }
    if (options.access < Access::Observe || options.access > Access::Full) {
        return Invalid("the access is not Observe, Operate or Full");
    }
    if ((options.rules.bits & ~StrictRules.bits) != 0) {
        return Invalid("there is a rule that this library does not know");
    }
    if (options.largestFile == 0) {
        return Invalid("largestFile is 0");
    }
    return StatusInformation(ErrorStatusCodes::Ok);
}

ConnectionPolicy PolicyOf(ConnectOptions const& options) {
    return {.access = options.access,
            .enforced = options.audit ? NoRules : options.rules,
            .audited = options.audit ? options.rules : NoRules,
            .largestFile = options.largestFile,
            .clearTargets = options.clearTargets};
}

Connection Open(ConnectOptions const& options, StatusInfo& status) {
    status = Check(options);
    if (status.StatusCode != 0) {
        return {};
    }
    std::string address = options.address;
    status = ResolveHost(address, (1 + options.retries) * std::chrono::milliseconds(options.timeout));
    if (status.StatusCode != 0) {
        return {};
    }
    auto controller = std::make_unique<QuorvanControllerImplementation>(address, options.timeout, options.retries,
                                                                        options.logging, status, PolicyOf(options));
    return Connection(status.StatusCode == 0 ? controller.release() : nullptr);
}

} // namespace

Connection Connect(ConnectOptions const& options, StatusInfo& status) {
    try {
        return Open(options, status);
    } catch (...) {
        status = StatusOfException();
        return {};
    }
}

} // namespace harvlink
