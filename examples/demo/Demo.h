#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "harvlink/harvlink.h"

namespace demo {

/// Ends the demo: a step did not do what it should.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Ends the demo unless the status is a success.
void Require(harvlink::StatusInfo const& status, std::string_view step);

/// Ends the demo unless `condition` holds.
void Require(bool condition, std::string_view step);

/// Whether the controller's generation has the operation that returned `status`. Says so if it does not.
bool IsSupported(harvlink::StatusInfo const& status, std::string_view step);

void Title(std::string_view text);

/// A text field of the wire, without the zero bytes and blanks that fill it up.
std::string Trimmed(std::string text);

/// Asks again, every 20 ms and for at most 10 seconds, until `condition` holds.
bool Await(std::function<bool()> const& condition);

// The sections, in the order in which they run.
void ShowController(harvlink::QuorvanController& robot);
void ShowControlGroups(harvlink::QuorvanController& robot);
void ExchangeFiles(harvlink::QuorvanController& robot);
void ExchangeVariables(harvlink::QuorvanController& robot);
void ExchangeSignals(harvlink::QuorvanController& robot);
void RunJob(harvlink::QuorvanController& robot);
void ShowAlarms(harvlink::QuorvanController& robot);
void ConvertPositions(harvlink::QuorvanController& robot);
void DriveArm(harvlink::QuorvanController& robot);

} // namespace demo
