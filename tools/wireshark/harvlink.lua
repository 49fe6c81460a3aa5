-- Shows the exchanges between a PC and a robot controller in Wireshark and tshark. See README.md beside this file.

-- BEGIN tables: the build of the library writes them, do not edit
local COMMANDS = {
    [112] = "AlarmDataRead",
    [113] = "AlarmHistoryRead",
    [114] = "StatusRead",
    [115] = "ExecutingJobRead",
    [116] = "AxisConfigurationRead",
    [117] = "RobotPositionRead",
    [118] = "PositionErrorRead",
    [119] = "TorqueRead",
    [120] = "IOData",
    [121] = "RegisterData",
    [122] = "ByteVariable",
    [123] = "IntegerVariable",
    [124] = "DoubleIntVariable",
    [125] = "RealVariable",
    [127] = "RobotPositionVariable",
    [128] = "BasePositionVariable",
    [129] = "StationPositionVariable",
    [130] = "AlarmReset",
    [131] = "HoldOrServo",
    [132] = "CycleModeSwitch",
    [133] = "PendantMessage",
    [134] = "JobStart",
    [135] = "JobSelect",
    [136] = "OperatingTimeRead",
    [137] = "SystemInformationRead",
    [140] = "StringVariable",
    [829] = "UAPIPositionRead",
    [839] = "MotionStart",
    [840] = "MotionStop",
    [841] = "MotionClearTargets",
    [842] = "MotionSendTarget",
    [844] = "MotionTargetProgress",
    [845] = "MotionSetCoord",
    [846] = "MotionSetTool",
    [847] = "MotionSetSpeed",
    [848] = "MotionSetAccelRatio",
    [849] = "MotionSetDecelRatio",
    [850] = "MotionSetConfig",
    [866] = "ConvertJointAngleToCartesian",
    [867] = "ConvertCartesianToJointAngle",
    [868] = "ConvertPulseToJointAngle",
    [869] = "ConvertJointAngleToPulse",
    [909] = "UAPIWriteIO",
    [916] = "SetAlarm",
    [924] = "SystemParameterRead",
    [981] = "JobStackRead",
}
local ATTRIBUTES = {
    [0] = "WholeRecord",
    [1] = "FirstAttribute",
}
local SERVICES = {
    [1] = "ReadAll",
    [2] = "WriteAll",
    [14] = "ReadOne",
    [16] = "WriteOne",
}
local FILE_SERVICES = {
    [0x09] = "DeleteFile",
    [0x15] = "LoadFile",
    [0x16] = "SaveFile",
    [0x32] = "ListFile",
}
local STATUS_TEXTS = {
    main = {
        [8] = "Requested command is undefined.",
        [9] = "The element number of the invalid data is detected.",
        [40] = "An instance of the requested data does not exist in the specified command.",
        [834] = "This file is set to read only",
        [1010] = "Command error",
        [1011] = "Error in number of command operands",
        [1012] = "Command operand value range over",
        [1013] = "Command operand length error",
        [1020] = "Disk on controller is full",
        [2010] = "Robot is operating. This command cannot be executed while a job is running.",
        [2020] = "Hold is active on the programming pendant",
        [2030] = "Hold is active on playback panel",
        [2040] = "External hold from PLC, HMI, or safety circuitry",
        [2050] = "Command hold",
        [2060] = "There is an active Error or Alarm.",
        [2070] = "Servo power must be enabled for this command",
        [2080] = "Incorrect mode (TEACH/PLAY/REMOTE)",
        [2090] = "File is being accessed by other function",
        [2100] = "The controller must be in REMOTE mode and have COMMAND REMOTE SEL (Pseudo Input) enabled",
        [2110] = "This data cannot be accessed",
        [2120] = "This data cannot be loaded",
        [2130] = "Editing",
        [2140] = "Servo power must be disabled for this file load.",
        [2150] = "Running the coordinate conversion function",
        [3010] = "Turn ON servo power",
        [3040] = "Home position has not been set",
        [3050] = "Confirm home position on the teach pendant",
        [3070] = "Current value not made",
        [3220] = "Panel lock; mode/cycle prohibit signal is ON",
        [3230] = "Panel lock; start prohibit signal is ON",
        [3350] = "User coordinate is not taught",
        [3360] = "User coordinate is destroyed",
        [3370] = "Incorrect control group",
        [3380] = "Incorrect base axis data",
        [3390] = "Relative job conversion prohibited (at CVTRJ)",
        [3400] = "Master job call prohibited due to parameter setting",
        [3410] = "Master job call prohibited during robot operation",
        [3420] = "Master job call prohibited when teach lock is enabled",
        [3430] = "Robot calibration data not defined",
        [3450] = "Servo power cannot be turned ON",
        [3460] = "Coordinate system cannot be set",
        [4010] = "Insufficient memory capacity (job registered memory)",
        [4012] = "Insufficient memory capacity(position data registered memory)",
        [4020] = "Job editing disabled",
        [4030] = "The requested job name already exists",
        [4040] = "No specified job",
        [4060] = "Set an execution job",
        [4112] = "Command error",
        [4113] = "Error in number of command operands",
        [4114] = "Command operand value range over",
        [4115] = "Command operand length error",
        [4120] = "Position data is destroyed",
        [4128] = "Disk on controller is full",
        [4130] = "Position data does not exist",
        [4140] = "Incorrect position variable type",
        [4150] = "END instruction for job which is not master job",
        [4170] = "Instruction data is destroyed",
        [4190] = "Invalid character in job name",
        [4200] = "Invalid character in the label name",
        [4230] = "Invalid instruction in this system. This instruction cannot be used in this system.",
        [4420] = "No step in job to be converted",
        [4430] = "This job has Already been converted",
        [4480] = "Teach user coordinate",
        [4490] = "Relative job/ independent control function not permitted",
        [5110] = "Syntax error (syntax of instruction)",
        [5120] = "Position data error",
        [5130] = "No NOP or END. (If NOP and END are present in the job), verify the line endings and the end of the file are in Windows format. CR-LF",
        [5170] = "Format error (incorrect format)",
        [5180] = "Incorrect number of data",
        [5200] = "Data over range",
        [5310] = "Syntax error (other than instruction)",
        [5340] = "Error in pseudo instruction specification",
        [5370] = "Error in condition file data record",
        [5390] = "Error in JOB formatting. Check formatting of the Job.",
        [5430] = "System data does not match.",
        [5480] = "Incorrect welding function type",
        [6010] = "The robot or station is under operation",
        [6020] = "Not enough memory of the specified device",
        [6030] = "The specified device cannot be accessed",
        [6040] = "Unexpected auto backup request",
        [6050] = "CMOS size exceeds RAM space",
        [6060] = "Unable to allocate memory when power is turned on",
        [6070] = "Accessing error to backup file information",
        [6080] = "Failed to remove backup file.",
        [6090] = "Failed to rename backup file",
        [6100] = "Drive name exceeds the specified values",
        [6110] = "Incorrect device",
        [6120] = "System error",
        [6130] = "Auto backup is not available",
        [6140] = "Cannot be backed up under the auto backup",
        [8208] = "Robot is operating. This command cannot be executed while a job is running.",
        [8224] = "Hold is active on the programming pendant",
        [8240] = "Hold is active on playback panel",
        [8256] = "External hold from PLC), HMI), or safety circuitry",
        [8272] = "Command hold",
        [8288] = "There is an active Error or Alarm.",
        [8304] = "Servo power must be enabled for this command",
        [8320] = "Incorrect mode (TEACH/PLAY/REMOTE)",
        [8336] = "File is being accessed by other function",
        [8448] = "The controller must be in REMOTE mode and have COMMAND REMOTE SEL (Pseudo Input) enabled",
        [8464] = "This data cannot be accessed",
        [8480] = "This data cannot be loaded",
        [8496] = "Editing",
        [8528] = "Running the coordinate conversion function",
        [12304] = "Turn ON servo power",
        [12352] = "Home position has not been set",
        [12368] = "Confirm home position on the teach pendant",
        [12400] = "Current value not made",
        [12832] = "Panel lock; mode/cycle prohibit signal is ON",
        [12848] = "Panel lock; start prohibit signal is ON",
        [13136] = "User coordinate is not taught",
        [13152] = "User coordinate is destroyed",
        [13168] = "Incorrect control group",
        [13184] = "Incorrect base axis data",
        [13200] = "Relative job conversion prohibited (at CVTRJ)",
        [13312] = "Master job call prohibited due to parameter setting",
        [13328] = "Master job call prohibited during robot operation",
        [13344] = "Master job call prohibited when teach lock is enabled",
        [13360] = "Robot calibration data not defined",
        [13392] = "Servo power cannot be turned ON",
        [13408] = "Coordinate system cannot be set",
        [16400] = "Insufficient memory capacity (job registered memory)",
        [16402] = "Insufficient memory capacity(position data registered memory)",
        [16416] = "Job editing disabled",
        [16432] = "The requested job name already exists",
        [16448] = "No specified job",
        [16480] = "Set an execution job",
        [16672] = "Position data is destroyed",
        [16688] = "Position data does not exist",
        [16704] = "Incorrect position variable type",
        [16720] = "END instruction for job which is not master job",
        [16752] = "Instruction data is destroyed",
        [16784] = "Invalid character in job name",
        [16896] = "Invalid character in the label name",
        [16944] = "Invalid instruction in this system. This instruction cannot be used in this system.",
        [17440] = "No step in job to be converted",
        [17456] = "This job has Already been converted",
        [17536] = "Teach user coordinate",
        [17552] = "Relative job/ independent control function not permitted",
        [20752] = "Syntax error (syntax of instruction)",
        [20768] = "Position data error",
        [20784] = "No NOP or END. (If NOP and END are present in the job), verify the line endings and the end of the file are in Windows format. CR-LF",
        [20848] = "Format error (incorrect format)",
        [20864] = "Incorrect number of data",
        [20992] = "Data over range",
        [21264] = "Syntax error (other than instruction)",
        [21312] = "Error in pseudo instruction specification",
        [21360] = "Error in condition file data record",
        [21392] = "Error in JOB formatting. Check formatting of the Job. Ensure proper spacing in tags. (ex. VJ=0.78 is correct while VJ = 0.78 is not.)",
        [21552] = "System data does not match.",
        [21632] = "Incorrect welding function type",
        [24592] = "The robot or station is under operation",
        [24608] = "Not enough memory of the specified device",
        [24624] = "The specified device cannot be accessed",
        [24640] = "Unexpected auto backup request",
        [24656] = "CMOS size exceeds RAM space",
        [24672] = "Unable to allocate memory when power is turned on",
        [24688] = "Accessing error to backup file information",
        [24704] = "Failed to remove backup file.",
        [24720] = "Failed to rename backup file",
        [24832] = "Drive name exceeds the specified values",
        [24848] = "Incorrect device",
        [24864] = "System error",
        [24880] = "Auto backup is not available",
        [24896] = "Cannot be backed up under the auto backup",
        [40960] = "Undefined command number",
        [40961] = "Instance value is invalid",
        [40962] = "Attribute value is invalid",
        [41216] = "Replying data part size error (hardware limit)",
        [41217] = "Replying data part size error (software limit)",
        [44544] = "Language not found.",
        [45057] = "Undefined position variable",
        [45058] = "Data use prohibited",
        [45059] = "Requiring data size error",
        [45060] = "Data is out of range",
        [45061] = "Data undefined",
        [45062] = "Specified application unregistered",
        [45063] = "Specified type unregistered",
        [45064] = "Control group setting error",
        [45065] = "Speed setting error",
        [45066] = "Operating speed is not set",
        [45067] = "Operation coordinate system setting error",
        [45068] = "Type setting error",
        [45069] = "Tool No. setting error",
        [45070] = "User No. setting error",
        [49153] = "System error (data area setting processing error)",
        [49154] = "System error (over the replying data area)",
        [49155] = "System error (size of the data element not same)",
        [51200] = "Request failed. (Example: This may occur when sending a write-command during play if S2C541 = 1.",
        [53247] = "Unknown error",
        [55537] = "Processing the another command (BUSY condition)",
        [55546] = "Transmission exclusive error (BUSY or Semaphore error)",
        [57935] = "Wrong parameter setting for the system backup",
        [57936] = "System backup file creating error(confirm if the mode is the remote mode)",
        [57993] = "System error",
        [57994] = "System error",
        [57995] = "Disconnected due to timeout",
        [57996] = "Cannot overwrite the target file. System parameter RS214 must be set to 2 to allow file overwrite.",
        [58012] = "The requested file does not exist or the file size is '0'.",
        [58013] = "System error",
        [58014] = "System error",
        [58015] = "System error",
        [58016] = "The wrong required password",
        [58023] = "The relevant file is not in the requested file list.",
        [58026] = "System error",
        [58031] = "Receive the deletion request of the file that cannot to delete",
        [58032] = "System error",
        [58033] = "The directory cannot to be deleted",
        [58034] = "Receive the request of the sending/receiving file at the remote OFF state.",
        [58035] = "File not found",
        [58036] = "The requested pass is too long",
        [58436] = "Processing the another command (BUSY condition)",
        [58525] = "Format error (data size 0)",
        [58526] = "Format error (frame size over)",
        [58527] = "Format error (frame size 0)",
        [58529] = "Format error (block number error)",
        [58530] = "Format error (ACK error)",
        [58531] = "Format error (processing category error)",
        [58532] = "Format error (access level error)",
        [58533] = "Format error (header size error)",
        [58534] = "Format error (identifier error)",
        [58535] = "Format error (the size of the requested command and received frame are different)",
        [58536] = "System error",
        [58537] = "System error",
        [65519] = "Operation was interupted",
        [65520] = "System error",
        [65522] = "System error",
        [65523] = "System error",
        [65524] = "System error",
        [65525] = "System error",
        [65526] = "Too many request and unable to process(BUSY condition)",
        [65527] = "System error",
        [65528] = "System error",
        [65534] = "The remote mode is detected), and disconnect the communication",
        [65535] = "General error. Verify input parameters.",
    },
    job = {
        [16448] = "Invalid job name.",
        [20992] = "Invalid line number.",
        [65535] = "Invalid task number.",
    },
    file = {
        [58014] = "File is not writable.",
    },
    io = {
        [40961] = "The address is invalid.",
        [65535] = "Writing to this address requires REMOTE mode.",
    },
    motion = {
        [65445] = "Tool is unspecified when requested coordinate system is tool",
        [65446] = "User frame is unspecified when requested coordinate system is user",
        [65488] = "Deceleration Value Out Of Range",
        [65489] = "Acceleration Value Out Of Range",
        [65490] = "Tool Set Inhibited",
        [65491] = "Tool Number Out Of Range",
        [65492] = "Coordinated Motion Multiple Master Or Slave",
        [65493] = "Coordinated Motion Task And Group Unmatched",
        [65494] = "Coordinated Motion Master Lacking",
        [65495] = "Coordinated Motion Slave Interpolation Out Of Range",
        [65496] = "Coordinated Motion Master Interpolation Out Of Range",
        [65497] = "Coordinated Motion Slave Group Is Illegal",
        [65498] = "Coordinated Motion Master Group Is Illegal",
        [65499] = "Task And Base Number Unmatched",
        [65500] = "Task Number Out Of Range",
        [65501] = "User Coordinate System Out Of Range",
        [65502] = "Interpolation Out Of Range",
        [65503] = "This robot is attached to a base group but no base group movement was provided.",
        [65504] = "Group Does Not Exist",
        [65519] = "Playback Interrupted",
        [65520] = "Timeout",
        [65527] = "Duplicate Playback Group",
        [65528] = "Job Currently Running. End job before starting motion remotely.",
        [65529] = "Not In Play Mode",
        [65530] = "Home Position Not Checked",
        [65531] = "Home Position Not Set",
        [65532] = "Alarm Is Active",
        [65533] = "Hold Is On",
        [65534] = "Servo Off",
        [65535] = "MotionManager failure. Ensure remote control mode is selected.",
    },
    conversion = {
        [65530] = "Invalid cartesian position.",
        [65531] = "Inverse kinematics wrong.",
        [65533] = "Group is out of range.",
        [65534] = "Conversion impossible.",
        [65535] = "Failed in conversion.",
    },
    control_group = {
        [40961] = "Invalid Control Group Id",
    },
}
-- END tables

local ROBOT_PORT, FILE_PORT = 10040, 10041
local HEADER_SIZE = 32
local LAST_BLOCK = 0x80000000

local DIVISIONS = { [1] = "commands", [2] = "files" }
local GROUP_KINDS = { [0] = "robot", "base", "station" }
local WIRE_COORDINATES = { [0] = "pulse", [16] = "base", [17] = "robot", [18] = "tool", [19] = "user", [20] = "master tool" }
local SHORT_COORDINATES = { [0] = "pulse", "joint angle", "base", "robot", "user", [6] = "tool", [7] = "master tool" }

-- The payload of a command. A layout is a list of NAME:TYPE, followed by *COUNT for an array. Types: u unsigned, x unsigned
-- in hexadecimal, i signed, f floating point, each with its number of bits; s text with its number of bytes. The layout
-- ends where the datagram ends: a command of one attribute has only the first field.
local ROBOT_POSITION = "coordinate_type:u32 figure:x32 tool:u32 user_coordinate:u32 extended_figure:x32 axis:i32*8"
local AXES_POSITION = "coordinate_type:u32 axis:i32*8"
local EXTENDED_POSITION = "extended_coordinate_type:i32 user_coordinate:i16 tool:i16 figure:x32 reserved:u32 axis:i32*8"
local GROUP = "group_kind:u32 group_index:u32 "
local ALARM = "alarm_code:u32 alarm_subcode:u32 alarm_subcode_type:u32 alarm_time:s16 alarm_name:s32"
local ALL_AXES = "axis:i32*8"
local SLOT = "slot:i32 "
local TARGET = " target_reserved:u32 move_type:u32 axis:i32*8 auxiliary_axis:i32*8"

local REQUESTS = {
    AlarmReset = "value:u32", HoldOrServo = "value:u32", CycleModeSwitch = "value:u32", JobStart = "value:u32",
    PendantMessage = "text:s30", JobSelect = "job:s32 line:u32",
    UAPIPositionRead = GROUP .. "coordinate_selector:u16 tool:u16 reserved:u32",
    MotionStart = "value:i32", MotionStop = "value:i32", MotionClearTargets = SLOT .. "reserved:u32",
    MotionSendTarget = "group_bits:x32" .. TARGET:rep(4) .. " final:u32",
    MotionTargetProgress = SLOT, MotionSetCoord = SLOT .. "extended_coordinate_type:i32 user_coordinate:i32",
    MotionSetTool = SLOT .. "tool:i32", MotionSetSpeed = SLOT .. "joint_speed:i32 linear_speed:i32 angular_speed:i32",
    MotionSetAccelRatio = SLOT .. "ratio:i32", MotionSetDecelRatio = SLOT .. "ratio:i32",
    MotionSetConfig = SLOT .. "figure:x32",
    ConvertJointAngleToCartesian = GROUP .. EXTENDED_POSITION, ConvertPulseToJointAngle = GROUP .. EXTENDED_POSITION,
    ConvertJointAngleToPulse = GROUP .. EXTENDED_POSITION,
    ConvertCartesianToJointAngle = GROUP .. EXTENDED_POSITION .. " previous_angle:i32*8 kinematic_type:i32",
    UAPIWriteIO = "address:u32 value:u32", SetAlarm = "alarm_number:u16 alarm_name:s32 alarm_subcode:u8 padding:u8",
    SystemParameterRead = "parameter_type:u32 parameter_group:u32 parameter_number:u32", JobStackRead = "task:u32",
}
local REPLIES = {
    AlarmDataRead = ALARM, AlarmHistoryRead = ALARM, StatusRead = "state:x32*2",
    ExecutingJobRead = "job:s32 line:u32 step:u32 speed_override:u32", AxisConfigurationRead = "axis_name:u32*8",
    RobotPositionRead = ROBOT_POSITION, PositionErrorRead = ALL_AXES, TorqueRead = ALL_AXES,
    OperatingTimeRead = "start:s16 elapsed:s12", SystemInformationRead = "software:s24 model:s16 parameters:s8",
    UAPIPositionRead = EXTENDED_POSITION, MotionTargetProgress = "progress:f64", SystemParameterRead = "value:i32",
    ConvertJointAngleToCartesian = EXTENDED_POSITION, ConvertPulseToJointAngle = EXTENDED_POSITION,
    ConvertJointAngleToPulse = EXTENDED_POSITION, ConvertCartesianToJointAngle = EXTENDED_POSITION,
    JobStackRead = "job_count:i8 padding:s3 job:s33*12",
}
-- The reply has these fields when the command reads, the request when it writes.
for name, layout in pairs({
    IOData = "value:x8 filler:s7", RegisterData = "value:u16", ByteVariable = "value:u8", IntegerVariable = "value:i16",
    DoubleIntVariable = "value:i32", RealVariable = "real:f32", StringVariable = "text:s32",
    RobotPositionVariable = ROBOT_POSITION, BasePositionVariable = AXES_POSITION, StationPositionVariable = AXES_POSITION,
}) do
    REQUESTS[name], REPLIES[name] = layout, layout
end

-- The subsystem whose texts for codes come first.
local CONTEXTS = {
    IOData = "io", UAPIWriteIO = "io", JobSelect = "job", ExecutingJobRead = "job", JobStackRead = "job",
    UAPIPositionRead = "control_group",
}
for _, name in pairs(COMMANDS) do
    CONTEXTS[name] = CONTEXTS[name] or name:match("^Motion") and "motion" or name:match("^Convert") and "conversion"
end
local VALUE_NAMES = {
    group_kind = GROUP_KINDS, coordinate_type = WIRE_COORDINATES, extended_coordinate_type = SHORT_COORDINATES,
}

local harvlink = Proto("harvlink", "Harvlink robot controller protocol")
local fields = {
    magic = ProtoField.string("harvlink.magic", "Magic"),
    header_size = ProtoField.uint16("harvlink.header_size", "Header size"),
    payload_size = ProtoField.uint16("harvlink.payload_size", "Payload size"),
    reserved = ProtoField.uint8("harvlink.reserved", "Reserved"),
    division = ProtoField.uint8("harvlink.division", "Division", base.DEC, DIVISIONS),
    ack = ProtoField.uint8("harvlink.ack", "Ack"),
    request_id = ProtoField.uint8("harvlink.request_id", "Request id"),
    block = ProtoField.uint32("harvlink.block", "Block", base.DEC, nil, 0x7FFFFFFF),
    last_block = ProtoField.bool("harvlink.last_block", "Last block", 32, nil, LAST_BLOCK),
    filler = ProtoField.string("harvlink.filler", "Filler"),
    command = ProtoField.uint16("harvlink.command", "Command", base.DEC, COMMANDS),
    instance = ProtoField.uint16("harvlink.instance", "Instance"),
    attribute = ProtoField.uint8("harvlink.attribute", "Attribute", base.DEC, ATTRIBUTES),
    service = ProtoField.uint8("harvlink.service", "Service", base.DEC, SERVICES),
    file_service = ProtoField.uint8("harvlink.file_service", "File service", base.DEC, FILE_SERVICES),
    reply_service = ProtoField.uint8("harvlink.reply_service", "Service", base.HEX),
    status = ProtoField.uint8("harvlink.status", "Status"),
    added_status_size = ProtoField.uint8("harvlink.added_status_size", "Added status size"),
    added_status = ProtoField.uint16("harvlink.added_status", "Added status", base.HEX_DEC),
    code = ProtoField.uint16("harvlink.code", "Code"),
    text = ProtoField.string("harvlink.status_text", "Meaning"),
    file_name = ProtoField.string("harvlink.file_name", "File name"),
    file_data = ProtoField.string("harvlink.file_data", "File data"),
    payload = ProtoField.bytes("harvlink.payload", "Payload"),
    request_in = ProtoField.framenum("harvlink.request_in", "Request in", base.NONE, frametype.REQUEST),
    reply_in = ProtoField.framenum("harvlink.reply_in", "Reply in", base.NONE, frametype.RESPONSE),
    time = ProtoField.double("harvlink.time", "Time since the request (s)"),
}
local all_fields = {}
for _, field in pairs(fields) do
    all_fields[#all_fields + 1] = field
end

local MAKERS = {
    u = function(name, title) return ProtoField.uint32(name, title, base.DEC, VALUE_NAMES[title]) end,
    x = function(name, title) return ProtoField.uint32(name, title, base.HEX) end,
    i = function(name, title) return ProtoField.int32(name, title, base.DEC, VALUE_NAMES[title]) end,
    f = function(name, title) return ProtoField.double(name, title) end,
    s = function(name, title) return ProtoField.string(name, title) end,
}
-- A text ends at its first zero byte, or fills its whole field.
local function text_of(range)
    return (range:string(ENC_ISO_8859_1):gsub("%z.*", ""))
end

local READERS = {
    u = function(range) return range:le_uint() end,
    x = function(range) return range:le_uint() end,
    i = function(range) return range:le_int() end,
    f = function(range) return range:le_float() end,
    s = text_of,
}

-- Each name of a layout is a field harvlink.data.NAME. One name may come with several types, which Wireshark allows.
local data_fields = {}
local function data_field(name, kind)
    local key = name .. ":" .. kind
    if data_fields[key] == nil then
        data_fields[key] = MAKERS[kind]("harvlink.data." .. name, name)
        all_fields[#all_fields + 1] = data_fields[key]
    end
    return data_fields[key]
end

local function parse_layouts(layouts)
    for command, layout in pairs(layouts) do
        local items = {}
        for name, kind, size, count in layout:gmatch("([%w_]+):(%a)(%d+)%*?(%d*)") do
            for _ = 1, tonumber(count) or 1 do
                local bytes = kind == "s" and tonumber(size) or tonumber(size) / 8
                items[#items + 1] = { field = data_field(name, kind), read = READERS[kind], size = bytes }
            end
        end
        layouts[command] = items
    end
end
parse_layouts(REQUESTS)
parse_layouts(REPLIES)
harvlink.fields = all_fields

local wrong_size = ProtoExpert.new("harvlink.wrong_size", "The datagram is not as long as its header says",
    expert.group.MALFORMED, expert.severity.ERROR)
local refused = ProtoExpert.new("harvlink.refused", "The controller refused", expert.group.RESPONSE_CODE,
    expert.severity.WARN)
local extra_data = ProtoExpert.new("harvlink.extra_data", "More than the command carries", expert.group.PROTOCOL,
    expert.severity.NOTE)
harvlink.experts = { wrong_size, refused, extra_data }

-- A reply does not contain its command. It belongs to the last request with the same number between the same ports. Numbers
-- repeat after 127, so the dissector decides this when it sees a frame for the first time.
local last_requests, exchanges = {}, {}
function harvlink.init()
    last_requests, exchanges = {}, {}
end

local function exchange_key(client, client_port, server, server_port, id)
    return table.concat({ tostring(client), client_port, tostring(server), server_port, id }, " ")
end

local function note_request(buffer, pinfo)
    local key = exchange_key(pinfo.src, pinfo.src_port, pinfo.dst, pinfo.dst_port, buffer(11, 1):uint())
    local exchange = { request_in = pinfo.number, at = pinfo.rel_ts }
    exchange.command = buffer(24, 2):le_uint()
    -- The blocks of a transfer have the number of its opening request, and its service.
    local before = last_requests[key]
    local goes_on = buffer(10, 1):uint() == 1 and before
    exchange.service = goes_on and before.service or buffer(29, 1):uint()
    last_requests[key], exchanges[pinfo.number] = exchange, exchange
end

local function note_reply(buffer, pinfo)
    local key = exchange_key(pinfo.dst, pinfo.dst_port, pinfo.src, pinfo.src_port, buffer(11, 1):uint())
    local exchange = last_requests[key]
    if exchange then
        exchange.reply_in = exchange.reply_in or pinfo.number
        exchanges[pinfo.number] = exchange
    end
end

local function add_common_header(buffer, tree, pinfo)
    tree:add(fields.magic, buffer(0, 4))
    tree:add_le(fields.header_size, buffer(4, 2))
    local size = tree:add_le(fields.payload_size, buffer(6, 2))
    if buffer(6, 2):le_uint() ~= buffer:len() - HEADER_SIZE then
        size:add_proto_expert_info(wrong_size)
    end
    tree:add(fields.reserved, buffer(8, 1))
    tree:add(fields.division, buffer(9, 1))
    tree:add(fields.ack, buffer(10, 1))
    tree:add(fields.request_id, buffer(11, 1))
    tree:add_le(fields.block, buffer(12, 4))
    tree:add_le(fields.last_block, buffer(12, 4))
    tree:add(fields.filler, buffer(16, 8))
end

local function add_layout(layout, buffer, tree)
    local at = HEADER_SIZE
    for _, item in ipairs(layout) do
        local size = math.min(item.size, buffer:len() - at)
        if size <= 0 or (size < item.size and item.read ~= READERS.s) then
            break
        end
        tree:add(item.field, buffer(at, size), item.read(buffer(at, size)))
        at = at + size
    end
    return at
end

local function add_payload(buffer, tree, layout)
    if buffer:len() <= HEADER_SIZE then
        return
    end
    local data = buffer(HEADER_SIZE)
    local payload = tree:add(fields.payload, data)
    if not layout then
        return
    end
    local known = add_layout(layout, buffer, payload)
    if known < buffer:len() then
        payload:add_proto_expert_info(extra_data)
    end
end

local function name_of(names, number)
    return names[number] or string.format("unknown %d", number)
end

local function block_text(buffer)
    local number = buffer(12, 4):le_uint()
    local last = number >= LAST_BLOCK
    return string.format("block %d%s", last and number - LAST_BLOCK or number, last and ", the last" or "")
end

local function add_file_request(buffer, tree, exchange)
    tree:add(fields.file_service, buffer(29, 1))
    local is_block = buffer(10, 1):uint() == 1
    if buffer:len() > HEADER_SIZE then
        tree:add(is_block and fields.file_data or fields.file_name, buffer(HEADER_SIZE),
            text_of(buffer(HEADER_SIZE)))
    end
    local service = name_of(FILE_SERVICES, exchange.service)
    if is_block then
        return service .. " " .. block_text(buffer)
    end
    return service .. " " .. (buffer:len() > HEADER_SIZE and text_of(buffer(HEADER_SIZE)) or "")
end

local function add_command_request(buffer, tree)
    local command = name_of(COMMANDS, buffer(24, 2):le_uint())
    tree:add_le(fields.command, buffer(24, 2))
    tree:add_le(fields.instance, buffer(26, 2))
    tree:add(fields.attribute, buffer(28, 1))
    tree:add(fields.service, buffer(29, 1))
    add_payload(buffer, tree, REQUESTS[command])
    return string.format("%s, instance %d, %s", command, buffer(26, 2):le_uint(),
        name_of(SERVICES, buffer(29, 1):uint()))
end

local function request(buffer, pinfo, tree, is_file)
    local exchange = exchanges[pinfo.number]
    local told = is_file and add_file_request(buffer, tree, exchange) or add_command_request(buffer, tree)
    if exchange.reply_in then
        tree:add(fields.reply_in, exchange.reply_in):set_generated()
    end
    return "Request " .. buffer(11, 1):uint() .. ": " .. told
end

local function status_text(code, command, is_file)
    local context = STATUS_TEXTS[is_file and "file" or CONTEXTS[command] or "main"]
    return context[code] or STATUS_TEXTS.main[code] or "no text for this code"
end

-- The added status, if present, is more specific than the status.
local function add_status(buffer, tree, command, is_file)
    local status = tree:add(fields.status, buffer(25, 1))
    tree:add(fields.added_status_size, buffer(26, 1))
    tree:add_le(fields.added_status, buffer(28, 2))
    if buffer(25, 1):uint() == 0 and buffer(26, 1):uint() == 0 then
        return "done"
    end
    local code = buffer(28, 2):le_uint()
    code = code ~= 0 and code or buffer(25, 1):uint()
    local text = status_text(code, command, is_file)
    tree:add(fields.code, buffer(25, 5), code):set_generated()
    tree:add(fields.text, buffer(25, 5), text):set_generated()
    status:add_proto_expert_info(refused)
    return string.format("refused with %d, %s", code, text)
end

-- The payload of the reply to a write has no meaning.
local function add_reply_payload(buffer, tree, exchange, command, is_file)
    if not is_file then
        local is_read = exchange and name_of(SERVICES, exchange.service):match("^Read")
        add_payload(buffer, tree, is_read and REPLIES[command])
    elseif buffer:len() > HEADER_SIZE then
        tree:add(fields.file_data, buffer(HEADER_SIZE), text_of(buffer(HEADER_SIZE)))
    end
end

local function reply(buffer, pinfo, tree, is_file)
    local exchange = exchanges[pinfo.number]
    local command = exchange and not is_file and name_of(COMMANDS, exchange.command)
    tree:add(fields.reply_service, buffer(24, 1))
    local told = add_status(buffer, tree, command, is_file)
    add_reply_payload(buffer, tree, exchange, command, is_file)
    if exchange then
        if is_file then
            tree:add(fields.file_service, exchange.service):set_generated()
            command = name_of(FILE_SERVICES, exchange.service) .. " " .. block_text(buffer)
        else
            tree:add(fields.command, exchange.command):set_generated()
        end
        tree:add(fields.request_in, exchange.request_in):set_generated()
        tree:add(fields.time, pinfo.rel_ts - exchange.at):set_generated()
    end
    return string.format("Reply %d: %s, %s", buffer(11, 1):uint(), command or "to no request seen", told)
end

function harvlink.dissector(tvb, pinfo, tree)
    if tvb:len() < HEADER_SIZE or tvb(0, 4):string() ~= "TROZ" then
        return 0
    end
    local buffer = tvb()
    local to_controller = pinfo.dst_port == ROBOT_PORT or pinfo.dst_port == FILE_PORT
    local is_file = (to_controller and pinfo.dst_port or pinfo.src_port) == FILE_PORT
    if not pinfo.visited then
        (to_controller and note_request or note_reply)(buffer, pinfo)
    end
    local top = tree:add(harvlink, buffer)
    add_common_header(buffer, top, pinfo)
    pinfo.cols.protocol = "HARVLINK"
    local told = (to_controller and request or reply)(buffer, pinfo, top, is_file)
    pinfo.cols.info = told
    top:append_text(", " .. told)
    return tvb:len()
end

local ports = DissectorTable.get("udp.port")
ports:add(ROBOT_PORT, harvlink)
ports:add(FILE_PORT, harvlink)
