#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "harvlink/harvlink.h"

namespace demo {

/// Thrown when a step fails. It ends the demo.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Ends the demo unless the status is a success.
void Require(harvlink::StatusInfo const& status, std::string_view step);

/// Ends the demo unless `condition` holds.
void Require(bool condition, std::string_view step);

/// Whether the controller's generation has the operation that returned `status`. Prints a line if it does not.
bool IsSupported(harvlink::StatusInfo const& status, std::string_view step);

void Title(std::string_view text);

/// A text field from the wire, without the zero bytes and blanks at its end.
std::string Trimmed(std::string text);

/// Checks `condition` every 20 ms until it holds, for at most 10 seconds.
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
