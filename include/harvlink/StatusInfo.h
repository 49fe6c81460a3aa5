#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "harvlink/Export.h"

namespace harvlink {

/// Codes that the library itself raises or names. Codes up to 0xFFFF that are not listed are the controller's and are
/// compared by number. Five of them, 3370, 3460, 40961, 45069 (0xB00D) and 45070 (0xB00E), the library also raises
/// itself, before a datagram is sent, and likewise 65504 and -79979008. The 0x2.... and 0x3.... families count in a
/// decimal-looking hexadecimal (0x30009 is followed by 0x30010).
enum class ErrorStatusCodes : std::int32_t {
    Ok = 0,
    OperationInterrupted = 0xffef,
    GeneralError = 0xffff,
    UndefinedException = 0x10000,
    CommunicationError = 0x10001,
    FileUploadError = 0x10002,
    SocketOpenError = 0x10003,
    InvalidBitValue = 0x10004,
    ControllerObjectCreationFailed = 0x10007,
    FileOpenOrSaveError = 0x20000,
    InvalidFileExtension = 0x20001,
    FileExistsNoOverwrite = 0x20002,
    FileNotFoundOnPc = 0x20003,
    FileWriteOpenError = 0x20004,
    FileReadOpenError = 0x20005,
    NoFilesWithExtension = 0x20006,
    InvalidJobNameLength = 0x20007,
    FileTypeNotWritable = 0x20008,
    InvalidIOGroup = 0x20009,
    KinematicTypeMissing = 0x20010,
    DeltaPreviousAngleMissing = 0x20011,
    InvalidSystemKinematicType = 0x20012,
    InvalidConversionFromCartesian = 0x20013,
    InvalidConversionToCartesian = 0x20014,
    InvalidCoordinateType = 0x20015,
    ActiveToolOnly = 0x20016,
    JointSpeedOutOfRange = 0x30001,
    SpeedOutOfRange = 0x30002,
    UnsupportedOnThisController = 0x30005,
    ResponseTimeout = 0x30006,
    IOAddressNotWritable = 0x30007,
    InvalidVariableIndex = 0x30008,
    AccelerationOutOfRange = 0x30009,
    DecelerationOutOfRange = 0x30010,
    InvalidSystemParameter = 0x30011,
    SystemParameterNeedsGroup = 0x30012,
    VersionMismatch = 0x30013,
    JobNameMismatch = 0x30014,
    ControlGroupNotAttached = 0x30015,
    InvalidSystemParameterGroup = 0x30016,
    InvalidAlarmCategory = 0x30017,

    // Of connections that were opened with options, see ConnectOptions.h.
    InvalidConnectOptions = 0x50000,
    AccessDenied = 0x50001, ///< the connection's access does not allow it; nothing was sent
    ControllerNotListening = 0x50002, ///< the host is there, and nobody listens on the port that was asked
    AnswerTooShort = 0x50003, ///< shorter than the record that was asked for
    FileBlockMissing = 0x50004, ///< a block of a file was left out
    FileTooLarge = 0x50005, ///< more than `largestFile`
    OutOfMemory = 0x50006,
    SystemFailure = 0x50007, ///< this computer gave no thread, lock or socket, or has no route
    UnreadableTime = 0x50008, ///< the controller's operating time is not one
    StepWithdrawn = 0x50009, ///< a queued step was dropped by a stop, a clear, a failure or the end of the connection
    WaitTimedOut = 0x50010, ///< what was waited for did not happen in the given time
    UnknownStep = 0x50011, ///< no step of this number was queued, or it is more than 1,024 steps back
    NameNotResolved = 0x50012, ///< the system has no IPv4 address for the name of the controller

    // Of fleets, see Fleet.h.
    InvalidFleet = 0x50013, ///< a name, an address, an option, a group or an item of a fleet is not valid
    UnknownFleetController = 0x50014, ///< the fleet has no controller of this name
};

/// The result of every operation. Compare `StatusCode`, show `Message`.
///
/// | code | origin |
/// |---|---|
/// | 0 | success; the message is "OK" or a note such as a truncation |
/// | 1 to 0xFFFF | the controller refused, with this number, or the library did in its place, see ErrorStatusCodes |
/// | 0x10000 and up | the library's own code, see ErrorStatusCodes |
/// | 0x40000000 and up | a file on this computer failed |
/// | large negative | the controller's number has a meaning of its own in a subsystem: add 50000000 (motion), 60000000
///   (control group), 80000000 (job) or 0x70000000 (conversion) to get it back |
struct StatusInfo {
    std::int32_t StatusCode = 0;
    std::string Message;
};

/// A StatusInfo that knows the texts: the constructors with a code alone look it up in the main table.
/// An unknown code gets "Could not find an error description with that code.", code 0 gets "OK".
class HARVLINK_EXPORT StatusInformation : public StatusInfo {
public:
    // NOLINTBEGIN(google-explicit-constructor): a code is a status, and is returned as one everywhere
    StatusInformation(int code); ///< the code with its text
    StatusInformation(ErrorStatusCodes code); ///< the code with its text
    // NOLINTEND(google-explicit-constructor)

    /// Sets both as given, without a look-up; the code may be one that the table does not know.
    /// @{
    StatusInformation(ErrorStatusCodes code, std::string_view message);
    StatusInformation(int code, std::string_view message);
    /// @}

    /// As the constructor: the code is stored and its text looked up.
    StatusInformation& operator=(int code);

    /// Compares the code; the message does not count.
    /// @{
    bool operator==(int code) const { return StatusCode == code; }
    bool operator!=(int code) const { return StatusCode != code; }
    bool operator==(ErrorStatusCodes code) const { return StatusCode == static_cast<std::int32_t>(code); }
    bool operator!=(ErrorStatusCodes code) const { return StatusCode != static_cast<std::int32_t>(code); }
    /// @}

    /// The look-up itself: `message` becomes the text of `code`. This object is neither read nor changed.
    void GetError(std::string& message, int code) const;
};

/// Writes "Code (<decimal code>): <message>" without a line end.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, StatusInfo const& status);

} // namespace harvlink
