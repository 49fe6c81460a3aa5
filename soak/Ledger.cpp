#include "soak/Ledger.h"

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

constexpr std::array<std::string_view, Families> FamilyNames{
    "Connection",      "ControlGroup", "Status", "Variables",     "IO",        "Faults",
    "ControlCommands", "Job",          "Files",  "MotionManager", "Kinematics"};
constexpr std::array<std::string_view, SurvivedKinds> SurvivedNames{
    "no-answer",       "cut-answer",        "lost-write",      "repeated-block",
    "broken-transfer", "broken-trajectory", "incomplete-start"};
constexpr std::size_t MostFailuresKept = 20;

} // namespace

std::string_view NameOf(Family family) {
    return FamilyNames.at(static_cast<std::size_t>(family));
}

std::string_view NameOf(Survived kind) {
    return SurvivedNames.at(static_cast<std::size_t>(kind));
}

void Ledger::Note(Family family, StatusInfo const& status) {
    ++operations_.at(static_cast<std::size_t>(family));
    if (IsTimeout(status)) {
        Note(Survived::NoAnswer);
    }
}

void Ledger::Fail(std::string const& what) {
    ++failureCount_;
    std::scoped_lock const lock(mutex_);
    if (failures_.size() < MostFailuresKept) {
        failures_.push_back(what);
        fmt::print(stderr, "FAILED: {}\n", what);
    }
}

std::uint64_t Ledger::Operations() const {
    std::uint64_t total = 0;
    for (auto const& count : operations_) {
        total += count;
    }
    return total;
}

std::vector<std::string> Ledger::Failures() const {
    std::scoped_lock const lock(mutex_);
    return failures_;
}

} // namespace harvlink::soak
