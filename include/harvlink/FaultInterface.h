#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "harvlink/Export.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// One alarm. The texts keep the whole length of their field on the wire, zero bytes included.
struct AlarmData {
    std::uint32_t code = 0; ///< 0 means an empty place
    std::uint32_t subcode = 0;
    std::string time; ///< 16 characters, as the controller writes it
    std::string name; ///< 32 characters
};

/// The four alarm places. `numberOfAlarms` counts the filled ones, wherever they are.
struct ActiveAlarms {
    std::array<AlarmData, 4> alarms;
    std::uint32_t numberOfAlarms = 0;
};

/// The newest alarms of one category, newest first.
struct AlarmHistory {
    std::array<AlarmData, 100> alarms;
    std::uint32_t numberOfAlarms = 0;
};

/// A block of the alarm history. The numbers are the controller's, the names are not.
enum class AlarmCategory : std::int32_t {
    Major = 0,
    Minor = 1000,
    SystemUser = 2000,
    User = 3000,
    Offline = 4000,
};

/// Alarms and their clearing. Each alarm is one exchange, so a list is not an atomic view of the controller. May be
/// called from several threads at once. No answer gives ResponseTimeout; the controller's refusals come with its own
/// code.
class FaultInterface {
public:
    FaultInterface() = default;
    FaultInterface(FaultInterface const&) = delete;
    FaultInterface& operator=(FaultInterface const&) = delete;
    virtual ~FaultInterface() = default;

    /// Reads all four places, four exchanges. A failure ends the read and keeps the places read so far.
    virtual StatusInfo GetActiveAlarms(ActiveAlarms& alarms) = 0;

    /// Reads up to `quantity` entries (at most 100), one exchange each, and ends at the first empty one. A `quantity`
    /// of 0 sends nothing. A failure ends the read and keeps what was read. An unknown category gives
    /// InvalidAlarmCategory and leaves `history` untouched.
    virtual StatusInfo GetAlarmHistory(AlarmCategory category, std::uint32_t quantity, AlarmHistory& history) = 0;

    /// Cancels the error, then resets the alarms, always both. The status is that of the reset alone.
    virtual StatusInfo ClearAllFaults() = 0;
};

/// Text forms, several lines each, without a line end at the close. The lists print their first `numberOfAlarms` places.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, AlarmData const& alarm);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, ActiveAlarms const& alarms);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, AlarmHistory const& history);

} // namespace harvlink
