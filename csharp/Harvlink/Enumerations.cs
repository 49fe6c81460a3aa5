// Made from the headers in include/harvlink by tools/generate_bindings: change those, and run it again.
using System;

namespace Harvlink
{
    /// <summary>
    /// What a connection may send. Anything beyond it gives AccessDenied before a datagram leaves, and the text
    /// names the access that it takes.
    /// </summary>
    public enum Access
    {
        /// <summary>Reads only, opening included: nothing on the controller changes.</summary>
        Observe = 0,
        /// <summary>Everything but motion by targets, which it may stop and clear; opening reads only.</summary>
        Operate = 1,
        /// <summary>
        /// Everything. Opening clears the motion targets of a controller from VersionYA up, whoever sent them, unless
        /// clearTargets is off.
        /// </summary>
        Full = 2,
    }

    /// <summary>A block of the alarm history. The numbers are the controller's, the names are not.</summary>
    public enum AlarmCategory
    {
        /// <summary>Major.</summary>
        Major = 0,
        /// <summary>Minor.</summary>
        Minor = 1000,
        /// <summary>System user.</summary>
        SystemUser = 2000,
        /// <summary>User.</summary>
        User = 3000,
        /// <summary>Offline.</summary>
        Offline = 4000,
    }

    /// <summary>Used with TimeType::Application. The numbers are the controller's; cast any other number it may know.</summary>
    public enum ApplicationNumber
    {
        /// <summary>None.</summary>
        None = 0,
        /// <summary>Application 1.</summary>
        Application1 = 1,
        /// <summary>Application 2.</summary>
        Application2 = 2,
        /// <summary>Application 3.</summary>
        Application3 = 3,
        /// <summary>Application 4.</summary>
        Application4 = 4,
        /// <summary>Application 5.</summary>
        Application5 = 5,
        /// <summary>Application 6.</summary>
        Application6 = 6,
        /// <summary>Application 7.</summary>
        Application7 = 7,
        /// <summary>Application 8.</summary>
        Application8 = 8,
    }

    /// <summary>Whether an axis has turned by more than 180 degrees.</summary>
    public enum AxisAngle
    {
        /// <summary>Less than 180.</summary>
        LessThan180 = 0,
        /// <summary>Greater than 180.</summary>
        GreaterThan180 = 1,
    }

    /// <summary>
    /// A control group: a robot (R1 to R8), a base axis that carries a robot (B1 to B8) or a station (S1 to S24).
    /// The number is n for a robot, n + 10 for a base and n + 20 for a station.
    /// </summary>
    public enum ControlGroupId
    {
        /// <summary>R1.</summary>
        R1 = 1,
        /// <summary>R2.</summary>
        R2 = 2,
        /// <summary>R3.</summary>
        R3 = 3,
        /// <summary>R4.</summary>
        R4 = 4,
        /// <summary>R5.</summary>
        R5 = 5,
        /// <summary>R6.</summary>
        R6 = 6,
        /// <summary>R7.</summary>
        R7 = 7,
        /// <summary>R8.</summary>
        R8 = 8,
        /// <summary>B1.</summary>
        B1 = 11,
        /// <summary>B2.</summary>
        B2 = 12,
        /// <summary>B3.</summary>
        B3 = 13,
        /// <summary>B4.</summary>
        B4 = 14,
        /// <summary>B5.</summary>
        B5 = 15,
        /// <summary>B6.</summary>
        B6 = 16,
        /// <summary>B7.</summary>
        B7 = 17,
        /// <summary>B8.</summary>
        B8 = 18,
        /// <summary>S1.</summary>
        S1 = 21,
        /// <summary>S2.</summary>
        S2 = 22,
        /// <summary>S3.</summary>
        S3 = 23,
        /// <summary>S4.</summary>
        S4 = 24,
        /// <summary>S5.</summary>
        S5 = 25,
        /// <summary>S6.</summary>
        S6 = 26,
        /// <summary>S7.</summary>
        S7 = 27,
        /// <summary>S8.</summary>
        S8 = 28,
        /// <summary>S9.</summary>
        S9 = 29,
        /// <summary>S10.</summary>
        S10 = 30,
        /// <summary>S11.</summary>
        S11 = 31,
        /// <summary>S12.</summary>
        S12 = 32,
        /// <summary>S13.</summary>
        S13 = 33,
        /// <summary>S14.</summary>
        S14 = 34,
        /// <summary>S15.</summary>
        S15 = 35,
        /// <summary>S16.</summary>
        S16 = 36,
        /// <summary>S17.</summary>
        S17 = 37,
        /// <summary>S18.</summary>
        S18 = 38,
        /// <summary>S19.</summary>
        S19 = 39,
        /// <summary>S20.</summary>
        S20 = 40,
        /// <summary>S21.</summary>
        S21 = 41,
        /// <summary>S22.</summary>
        S22 = 42,
        /// <summary>S23.</summary>
        S23 = 43,
        /// <summary>S24.</summary>
        S24 = 44,
    }

    /// <summary>From where the controller takes commands: the pendant, the panel, or a program like this one.</summary>
    public enum ControlMode
    {
        /// <summary>Teach.</summary>
        Teach = 0,
        /// <summary>Play.</summary>
        Play = 1,
        /// <summary>Remote.</summary>
        Remote = 2,
    }

    /// <summary>
    /// Generation of a controller, found at connection time from the first two letters of its system software
    /// version. VersionYA and up, the VRK9000 and newer, understand the extended commands: motion, conversion,
    /// job stack, extended positions, parameters.
    /// </summary>
    public enum ControllerVersion
    {
        /// <summary>The version probe failed, or named a generation that is not in this list.</summary>
        VersionUnknown = -1,
        /// <summary>Version DS.</summary>
        VersionDS = 0,
        /// <summary>Version DN.</summary>
        VersionDN = 1,
        /// <summary>Version FS.</summary>
        VersionFS = 2,
        /// <summary>Version YA.</summary>
        VersionYA = 3,
        /// <summary>Version YB.</summary>
        VersionYB = 4,
        /// <summary>Version YN.</summary>
        VersionYN = 5,
    }

    /// <summary>How the eight axes of a PositionData are to be read.</summary>
    public enum CoordinateType
    {
        /// <summary>Pulse.</summary>
        Pulse = 0,
        /// <summary>Base coordinate.</summary>
        BaseCoordinate = 16,
        /// <summary>Robot coordinate.</summary>
        RobotCoordinate = 17,
        /// <summary>Tool coordinate.</summary>
        ToolCoordinate = 18,
        /// <summary>User coordinate.</summary>
        UserCoordinate = 19,
        /// <summary>Master tool.</summary>
        MasterTool = 20,
        /// <summary>What the controller named has no counterpart here.</summary>
        Undefined = 55,
        /// <summary>
        /// Eight joint angles in degrees. Only position conversion gives it, and takes it as a source. Motion
        /// targets, reads of a position and writes of a robot position refuse it; a write of a base axis sends the
        /// number on, one of a station ignores it.
        /// </summary>
        JointAngle = 56,
    }

    /// <summary>How a started job runs: one instruction, once to its end, or again and again.</summary>
    public enum CycleMode
    {
        /// <summary>Step.</summary>
        Step = 0,
        /// <summary>Cycle.</summary>
        Cycle = 1,
        /// <summary>Automatic.</summary>
        Automatic = 2,
    }

    /// <summary>
    /// Codes that the library itself raises or names. Codes up to 0xFFFF that are not listed are the controller's
    /// and are compared by number. Five of them, 3370, 3460, 40961, 45069 (0xB00D) and 45070 (0xB00E), the
    /// library also raises itself, before a datagram is sent, and likewise 65504 and -79979008. The 0x2.... and
    /// 0x3.... families count in a decimal-looking hexadecimal (0x30009 is followed by 0x30010).
    /// </summary>
    public enum ErrorCode
    {
        /// <summary>Ok.</summary>
        Ok = 0,
        /// <summary>Operation interrupted.</summary>
        OperationInterrupted = 0xffef,
        /// <summary>General error.</summary>
        GeneralError = 0xffff,
        /// <summary>Undefined exception.</summary>
        UndefinedException = 0x10000,
        /// <summary>Communication error.</summary>
        CommunicationError = 0x10001,
        /// <summary>File upload error.</summary>
        FileUploadError = 0x10002,
        /// <summary>Socket open error.</summary>
        SocketOpenError = 0x10003,
        /// <summary>Invalid bit value.</summary>
        InvalidBitValue = 0x10004,
        /// <summary>Controller object creation failed.</summary>
        ControllerObjectCreationFailed = 0x10007,
        /// <summary>File open or save error.</summary>
        FileOpenOrSaveError = 0x20000,
        /// <summary>Invalid file extension.</summary>
        InvalidFileExtension = 0x20001,
        /// <summary>File exists no overwrite.</summary>
        FileExistsNoOverwrite = 0x20002,
        /// <summary>File not found on pc.</summary>
        FileNotFoundOnPc = 0x20003,
        /// <summary>File write open error.</summary>
        FileWriteOpenError = 0x20004,
        /// <summary>File read open error.</summary>
        FileReadOpenError = 0x20005,
        /// <summary>No files with extension.</summary>
        NoFilesWithExtension = 0x20006,
        /// <summary>Invalid job name length.</summary>
        InvalidJobNameLength = 0x20007,
        /// <summary>File type not writable.</summary>
        FileTypeNotWritable = 0x20008,
        /// <summary>Invalid IO group.</summary>
        InvalidIOGroup = 0x20009,
        /// <summary>Kinematic type missing.</summary>
        KinematicTypeMissing = 0x20010,
        /// <summary>Delta previous angle missing.</summary>
        DeltaPreviousAngleMissing = 0x20011,
        /// <summary>Invalid system kinematic type.</summary>
        InvalidSystemKinematicType = 0x20012,
        /// <summary>Invalid conversion from cartesian.</summary>
        InvalidConversionFromCartesian = 0x20013,
        /// <summary>Invalid conversion to cartesian.</summary>
        InvalidConversionToCartesian = 0x20014,
        /// <summary>Invalid coordinate type.</summary>
        InvalidCoordinateType = 0x20015,
        /// <summary>Active tool only.</summary>
        ActiveToolOnly = 0x20016,
        /// <summary>Joint speed out of range.</summary>
        JointSpeedOutOfRange = 0x30001,
        /// <summary>Speed out of range.</summary>
        SpeedOutOfRange = 0x30002,
        /// <summary>Unsupported on this controller.</summary>
        UnsupportedOnThisController = 0x30005,
        /// <summary>Response timeout.</summary>
        ResponseTimeout = 0x30006,
        /// <summary>IO address not writable.</summary>
        IOAddressNotWritable = 0x30007,
        /// <summary>Invalid variable index.</summary>
        InvalidVariableIndex = 0x30008,
        /// <summary>Acceleration out of range.</summary>
        AccelerationOutOfRange = 0x30009,
        /// <summary>Deceleration out of range.</summary>
        DecelerationOutOfRange = 0x30010,
        /// <summary>Invalid system parameter.</summary>
        InvalidSystemParameter = 0x30011,
        /// <summary>System parameter needs group.</summary>
        SystemParameterNeedsGroup = 0x30012,
        /// <summary>Version mismatch.</summary>
        VersionMismatch = 0x30013,
        /// <summary>Job name mismatch.</summary>
        JobNameMismatch = 0x30014,
        /// <summary>Control group not attached.</summary>
        ControlGroupNotAttached = 0x30015,
        /// <summary>Invalid system parameter group.</summary>
        InvalidSystemParameterGroup = 0x30016,
        /// <summary>Invalid alarm category.</summary>
        InvalidAlarmCategory = 0x30017,
        /// <summary>Invalid connect options.</summary>
        InvalidConnectOptions = 0x50000,
        /// <summary>The connection's access does not allow it; nothing was sent.</summary>
        AccessDenied = 0x50001,
        /// <summary>The host is there, and nobody listens on the port that was asked.</summary>
        ControllerNotListening = 0x50002,
        /// <summary>Shorter than the record that was asked for.</summary>
        AnswerTooShort = 0x50003,
        /// <summary>A block of a file was left out.</summary>
        FileBlockMissing = 0x50004,
        /// <summary>More than largestFile.</summary>
        FileTooLarge = 0x50005,
        /// <summary>Out of memory.</summary>
        OutOfMemory = 0x50006,
        /// <summary>This computer gave no thread, lock or socket, or has no route.</summary>
        SystemFailure = 0x50007,
        /// <summary>The controller's operating time is not one.</summary>
        UnreadableTime = 0x50008,
        /// <summary>A queued step was dropped by a stop, a clear, a failure or the end of the connection.</summary>
        StepWithdrawn = 0x50009,
        /// <summary>What was waited for did not happen in the given time.</summary>
        WaitTimedOut = 0x50010,
        /// <summary>No step of this number was queued, or it is more than 1,024 steps back.</summary>
        UnknownStep = 0x50011,
        /// <summary>The system has no IPv4 address for the name of the controller.</summary>
        NameNotResolved = 0x50012,
        /// <summary>A name, an address, an option, a group or an item of a fleet is not valid.</summary>
        InvalidFleet = 0x50013,
        /// <summary>The fleet has no controller of this name.</summary>
        UnknownFleetController = 0x50014,
    }

    /// <summary>Kinds of controller files, by extension.</summary>
    public enum FileType
    {
        /// <summary>.JBI.</summary>
        JobFile = 0,
        /// <summary>.DAT.</summary>
        DataFile = 1,
        /// <summary>.CND.</summary>
        ConditionFile = 2,
        /// <summary>.PRM, can't be written.</summary>
        ParameterFile = 3,
        /// <summary>.SYS, can't be written.</summary>
        SystemFile = 4,
        /// <summary>.LST.</summary>
        ListingFile = 5,
        /// <summary>.LOG, can't be written.</summary>
        LogFile = 6,
    }

    /// <summary>What happened to a controller, for those who do not want to compare samples.</summary>
    public enum FleetEventKind
    {
        /// <summary>before and after are FleetStates; the status says why.</summary>
        StateChanged = 0,
        /// <summary>Seen in State or in Alarms; in Alarms after is the code and the text its name.</summary>
        AlarmRaised = 1,
        /// <summary>Alarm cleared.</summary>
        AlarmCleared = 2,
        /// <summary>Seen in State, as the next four.</summary>
        ServoOn = 3,
        /// <summary>Servo off.</summary>
        ServoOff = 4,
        /// <summary>Teach, play, remote: ControllerStateData::ControlMode.</summary>
        ControlModeChanged = 5,
        /// <summary>CycleMode.</summary>
        CycleModeChanged = 6,
        /// <summary>Seen in Job; the text is the new name.</summary>
        JobChanged = 7,
        /// <summary>Another controller answers at the address since it was silent; the text says which.</summary>
        ModelChanged = 8,
        /// <summary>The same, for its software version.</summary>
        SoftwareChanged = 9,
        /// <summary>The controller can't read an item because of its generation; the text names it.</summary>
        ItemRefused = 10,
        /// <summary>The first round of a group that took longer than its period; after is the group.</summary>
        RanOver = 11,
    }

    /// <summary>
    /// The kinds of value that a fleet reads, with what FleetItem::index means and the alternative of FleetValue
    /// that comes.
    /// </summary>
    public enum FleetItemKind
    {
        /// <summary>ControllerStateData.</summary>
        State = 0,
        /// <summary>What the task index executes, from 0; JobData.</summary>
        Job = 1,
        /// <summary>The four places, four exchanges; ActiveAlarms.</summary>
        Alarms = 2,
        /// <summary>Of group in coordinate; PositionData, or with axis a double.</summary>
        Position = 3,
        /// <summary>Of group; TorqueData, or with axis an integer.</summary>
        Torque = 4,
        /// <summary>Of group, pulses; PositionErrorData, or with axis an integer.</summary>
        PositionError = 5,
        /// <summary>Number index, 0 to 2048, and count - 1 more; an integer.</summary>
        ByteVariable = 6,
        /// <summary>The same.</summary>
        IntegerVariable = 7,
        /// <summary>The same.</summary>
        DoubleIntVariable = 8,
        /// <summary>The same; a double.</summary>
        RealVariable = 9,
        /// <summary>The same; std::string.</summary>
        StringVariable = 10,
        /// <summary>The same; PositionData.</summary>
        RobotPositionVariable = 11,
        /// <summary>The same; PositionData.</summary>
        BasePositionVariable = 12,
        /// <summary>The same; PositionData.</summary>
        StationPositionVariable = 13,
        /// <summary>At address index, and count - 1 more behind it; bool.</summary>
        Signal = 14,
        /// <summary>Eight signals from address index, a multiple of 10, and count - 1 more groups; an integer.</summary>
        SignalGroup = 15,
        /// <summary>Number index, and count - 1 more; an integer.</summary>
        Register = 16,
        /// <summary>The TimeType index of group, or of the ApplicationNumber detail; TimeData.</summary>
        OperatingTime = 17,
        /// <summary>The SystemInfoId index; SystemInfoData.</summary>
        Software = 18,
        /// <summary>Of the motion slot index, 0 to 3, from VersionYA up; a double.</summary>
        TargetProgress = 19,
    }

    /// <summary>What a value is worth.</summary>
    public enum FleetQuality
    {
        /// <summary>Good.</summary>
        Good = 0,
        /// <summary>code says why; there is no value.</summary>
        Refused = 1,
        /// <summary>The controller does not answer: the value is the last one that it gave.</summary>
        Stale = 2,
        /// <summary>Never read.</summary>
        NeverRead = 3,
    }

    /// <summary>What the link to a controller is like.</summary>
    public enum FleetState
    {
        /// <summary>It has not answered yet, or its generation and axes are still being read.</summary>
        Connecting = 0,
        /// <summary>Online.</summary>
        Online = 1,
        /// <summary>The last read is not answered in time, and is asked again.</summary>
        Late = 2,
        /// <summary>Three time-outs in a row, and a read failed; asked again after pauses of 0.5 s to 30 s.</summary>
        Silent = 3,
        /// <summary>Nobody listens at its port, it refuses to say what it is, or this computer has no socket for it.</summary>
        Refused = 4,
    }

    /// <summary>Whether the wrist is flipped.</summary>
    public enum FlipOrNoFlip
    {
        /// <summary>Flip.</summary>
        Flip = 0,
        /// <summary>No flip.</summary>
        NoFlip = 1,
    }

    /// <summary>Whether the wrist is in front of or behind the first axis.</summary>
    public enum FrontOrBack
    {
        /// <summary>Front.</summary>
        Front = 0,
        /// <summary>Back.</summary>
        Back = 1,
    }

    /// <summary>
    /// A class of signals. Each class owns a band of the address space; its size depends on the controller's
    /// generation.
    /// </summary>
    public enum IOType
    {
        /// <summary>General input.</summary>
        GeneralInput = 0,
        /// <summary>General output.</summary>
        GeneralOutput = 1,
        /// <summary>External input.</summary>
        ExternalInput = 2,
        /// <summary>Network input.</summary>
        NetworkInput = 3,
        /// <summary>External output.</summary>
        ExternalOutput = 4,
        /// <summary>Network output.</summary>
        NetworkOutput = 5,
        /// <summary>Specific input.</summary>
        SpecificInput = 6,
        /// <summary>Specific output.</summary>
        SpecificOutput = 7,
        /// <summary>Interface panel input.</summary>
        InterfacePanelInput = 8,
        /// <summary>Auxiliary relay.</summary>
        AuxiliaryRelay = 9,
        /// <summary>Robot control status.</summary>
        RobotControlStatus = 10,
        /// <summary>Pseudo input.</summary>
        PseudoInput = 11,
    }

    /// <summary>The forms between which a position is converted.</summary>
    public enum Conversion
    {
        /// <summary>Joint angle to cartesian pos.</summary>
        JointAngleToCartesianPos = 0,
        /// <summary>Pulse to joint angle.</summary>
        PulseToJointAngle = 1,
        /// <summary>Joint angle to pulse.</summary>
        JointAngleToPulse = 2,
        /// <summary>Pulse to cartesian pos.</summary>
        PulseToCartesianPos = 3,
        /// <summary>Cartesian pos to joint angle.</summary>
        CartesianPosToJointAngle = 4,
        /// <summary>Cartesian pos to pulse.</summary>
        CartesianPosToPulse = 5,
    }

    /// <summary>How the arm configuration is found when a Cartesian position is converted.</summary>
    public enum KinematicType
    {
        /// <summary>System parameter S2C430 decides.</summary>
        KinematicFromSystem = 0,
        /// <summary>A Delta robot, which needs the previous angles.</summary>
        Delta = 1,
        /// <summary>The figure of the position.</summary>
        KinematicFigure = 2,
    }

    /// <summary>
    /// One lost answer is not a lost link: a connection is silent after three exchanges in a row without an
    /// answer, and online again with the first answer.
    /// </summary>
    public enum LinkState
    {
        /// <summary>Online.</summary>
        Online = 0,
        /// <summary>Silent.</summary>
        Silent = 1,
    }

    /// <summary>How a group moves to its target.</summary>
    public enum MoveType
    {
        /// <summary>No move.</summary>
        NoMove = 0,
        /// <summary>Joint.</summary>
        Joint = 1,
        /// <summary>Line.</summary>
        Line = 2,
        /// <summary>Circle.</summary>
        Circle = 3,
    }

    /// <summary>
    /// The rules of a strict connection. Each removes one sharp edge of the designed behaviour, can be left out
    /// alone, names itself in the text of what it refuses, and has a counter in ConnectionStatistics.
    /// docs/strict.md has them side by side.
    /// </summary>
    [Flags]
    public enum Rules : uint
    {
        /// <summary>None of them: the behaviour as designed.</summary>
        None = 0,
        /// <summary>Silence is never a successful answer of zeros, whatever the request's number.</summary>
        SilenceIsTimeout = 1,
        /// <summary>Only the controller's address and the port that was asked; a closed port is reported at once.</summary>
        KnownSender = 2,
        /// <summary>A read is asked again in each period; what writes or moves is never sent twice.</summary>
        RepeatReads = 4,
        /// <summary>Magic, division, header size, service and payload size have to fit the request.</summary>
        FittingAnswer = 8,
        /// <summary>(1 + retries) x time-out in all, whatever arrives meanwhile.</summary>
        Deadline = 16,
        /// <summary>A new source port after a time-out, and where an unread answer's number could come round again.</summary>
        NewPort = 32,
        /// <summary>An answer shorter than its record fails.</summary>
        WholeAnswer = 64,
        /// <summary>Blocks of a file rise by one; a repeated one is dropped; no more than largestFile bytes.</summary>
        BlockOrder = 128,
        /// <summary>
        /// A connection opens only if its groups and tools could be read. A controller that refuses the axes of a
        /// group or a motion slot has answered all the same: the group counts as one without an eighth axis, and the
        /// slots end there.
        /// </summary>
        WholeStartUp = 256,
        /// <summary>The thread that feeds motion sleeps while it has nothing to send.</summary>
        IdleMonitor = 512,
        /// <summary>After a clear, only the step that was sent leaves the queue.</summary>
        SentStep = 1024,
        /// <summary>Closing, stopping and clearing end the wait for room in the controller's buffer.</summary>
        BoundedClose = 2048,
        /// <summary>No exception leaves any operation: UnreadableTime, OutOfMemory, SystemFailure.</summary>
        NoExceptions = 0x1000,
        /// <summary>All of them.</summary>
        Strict = 0x1fff,
    }

    /// <summary>
    /// The item that ReadSystemInformation reads. The numbers are the controller's; cast any other number it may
    /// know.
    /// </summary>
    public enum SystemInfoId
    {
        /// <summary>Robot 1.</summary>
        Robot1 = 11,
        /// <summary>Robot 2.</summary>
        Robot2 = 12,
        /// <summary>Robot 3.</summary>
        Robot3 = 13,
        /// <summary>Robot 4.</summary>
        Robot4 = 14,
        /// <summary>Robot 5.</summary>
        Robot5 = 15,
        /// <summary>Robot 6.</summary>
        Robot6 = 16,
        /// <summary>Robot 7.</summary>
        Robot7 = 17,
        /// <summary>Robot 8.</summary>
        Robot8 = 18,
        /// <summary>Station 1.</summary>
        Station1 = 21,
        /// <summary>Station 2.</summary>
        Station2 = 22,
        /// <summary>Station 3.</summary>
        Station3 = 23,
        /// <summary>Application 1.</summary>
        Application1 = 101,
        /// <summary>Application 2.</summary>
        Application2 = 102,
        /// <summary>Application 3.</summary>
        Application3 = 103,
        /// <summary>Application 4.</summary>
        Application4 = 104,
        /// <summary>Application 5.</summary>
        Application5 = 105,
        /// <summary>Application 6.</summary>
        Application6 = 106,
        /// <summary>Application 7.</summary>
        Application7 = 107,
        /// <summary>Application 8.</summary>
        Application8 = 108,
    }

    /// <summary>
    /// Family of a system parameter. The numbers are the controller's; cast any other number it may know. Types
    /// 0, 5 and 6 belong to a control group and are read with the overload that takes one.
    /// </summary>
    public enum SystemParameterType
    {
        /// <summary>Per group.</summary>
        S1C = 0,
        /// <summary>S2C.</summary>
        S2C = 1,
        /// <summary>S3C.</summary>
        S3C = 2,
        /// <summary>S4C.</summary>
        S4C = 3,
        /// <summary>RS.</summary>
        RS = 4,
        /// <summary>Per group.</summary>
        S1E = 5,
        /// <summary>Per group.</summary>
        S2E = 6,
        /// <summary>Numbers 33 to 36 name the groups of the four motion slots.</summary>
        MotionSlot = 11,
    }

    /// <summary>A task of the controller's job language, from 0. The controller refuses a number that it does not have.</summary>
    public enum TesselTaskNumber
    {
        /// <summary>Master.</summary>
        Master = 0,
        /// <summary>Sub 1.</summary>
        Sub1 = 1,
        /// <summary>Sub 2.</summary>
        Sub2 = 2,
        /// <summary>Sub 3.</summary>
        Sub3 = 3,
        /// <summary>Sub 4.</summary>
        Sub4 = 4,
        /// <summary>Sub 5.</summary>
        Sub5 = 5,
        /// <summary>Sub 6.</summary>
        Sub6 = 6,
        /// <summary>Sub 7.</summary>
        Sub7 = 7,
    }

    /// <summary>
    /// An operating time counter. ...Robot needs a robot group and ...Station a station group; the others ignore
    /// the group. The station counter of the moving time is 221: there is no 220.
    /// </summary>
    public enum TimeType
    {
        /// <summary>Control power.</summary>
        ControlPower = 1,
        /// <summary>Servo power total.</summary>
        ServoPowerTotal = 10,
        /// <summary>Servo power robot.</summary>
        ServoPowerRobot = 11,
        /// <summary>Servo power station.</summary>
        ServoPowerStation = 20,
        /// <summary>Playback total.</summary>
        PlaybackTotal = 110,
        /// <summary>Playback robot.</summary>
        PlaybackRobot = 111,
        /// <summary>Playback station.</summary>
        PlaybackStation = 120,
        /// <summary>Moving total.</summary>
        MovingTotal = 210,
        /// <summary>Moving robot.</summary>
        MovingRobot = 211,
        /// <summary>Not 220, as one would expect.</summary>
        MovingStation = 221,
        /// <summary>Of the application given by number.</summary>
        Application = 300,
    }

    /// <summary>What the thread that sends queued steps is doing.</summary>
    public enum TrajectoryMonitorState
    {
        /// <summary>No MotionStart has succeeded yet: steps wait in the queue.</summary>
        NotStarted = 0,
        /// <summary>It has nothing to send.</summary>
        Idle = 1,
        /// <summary>Sending.</summary>
        Sending = 2,
        /// <summary>The controller has no room for the step; it is sent again every millisecond.</summary>
        HeldBack = 3,
        /// <summary>The last step that was sent failed, and the queue was emptied; the next step is sent all the same.</summary>
        Failed = 4,
        /// <summary>
        /// Under Rule::BoundedClose: MotionStop(false), or a stop without an answer, holds the queue until
        /// MotionStart.
        /// </summary>
        Stopped = 5,
    }

    /// <summary>Coordinate types as the extended commands of newer controllers number them.</summary>
    public enum UAPICoordType
    {
        /// <summary>UAPI pulse.</summary>
        UAPIPulse = 0,
        /// <summary>UAPI joint angle.</summary>
        UAPIJointAngle = 1,
        /// <summary>UAPI base.</summary>
        UAPIBase = 2,
        /// <summary>UAPI robot.</summary>
        UAPIRobot = 3,
        /// <summary>UAPI user.</summary>
        UAPIUser = 4,
        /// <summary>UAPI tool.</summary>
        UAPITool = 6,
        /// <summary>UAPI master tool.</summary>
        UAPIMasterTool = 7,
        /// <summary>For a CoordinateType without an extended number.</summary>
        UAPIInvalid = 255,
    }

    /// <summary>Whether the elbow is up or down.</summary>
    public enum UpperOrLower
    {
        /// <summary>Upper.</summary>
        Upper = 0,
        /// <summary>Lower.</summary>
        Lower = 1,
    }
}
