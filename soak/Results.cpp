#include "soak/Results.h"

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

constexpr std::array<std::string_view, Families> FamilyNames{
    "Connection",      "ControlGroup", "Status", "Variables",     "IO",        "Faults",
    "ControlCommands", "Job",          "Files",  "MotionManager", "Kinematics"};
constexpr std::array<std::string_view, FaultEffects> FaultEffectNames{
    "no-answer",        "lost-target",    "broken-transfer", "broken-trajectory",
    "incomplete-start", "damaged-answer", "interrupted-step"};
constexpr std::size_t MaxFailuresKept = 20;

} // namespace

std::string_view NameOf(Family family) {
    return FamilyNames.at(static_cast<std::size_t>(family));
}

std::string_view NameOf(FaultEffect kind) {
    return FaultEffectNames.at(static_cast<std::size_t>(kind));
}

void Results::Note(Family family, StatusInfo const& status) {
    ++operations_.at(static_cast<std::size_t>(family));
    if (IsTimeout(status)) {
        Note(FaultEffect::NoAnswer);
    }
}

void Results::Fail(std::string const& what) {
    ++failureCount_;
    std::scoped_lock const lock(mutex_);
    if (failures_.size() < MaxFailuresKept) {
        failures_.push_back(what);
        fmt::print(stderr, "FAILED: {}\n", what);
    }
}

std::uint64_t Results::Operations() const {
    std::uint64_t total = 0;
    for (auto const& count : operations_) {
        total += count;
    }
    return total;
}

std::vector<std::string> Results::Failures() const {
    std::scoped_lock const lock(mutex_);
    return failures_;
}

} // namespace harvlink::soak
