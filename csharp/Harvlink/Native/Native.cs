// Made from the headers in include/harvlink by tools/generate_bindings: change those, and run it again.
using System;
using System.Runtime.InteropServices;

namespace Harvlink.Native
{
    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkConnectOptions
    {
        public uint size;
        public uint timeout;
        public byte* address;
        public uint retries;
        public int logging;
        public int access;
        public uint rules;
        public int audit;
        public uint reserved;
        public ulong largestFile;
        public int clearTargets;
        public uint reserved2;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkConnectionStatistics
    {
        public uint size;
        public int linkState;
        public long linkStateSince;
        public ulong exchanges;
        public ulong timeouts;
        public ulong lateAnswers;
        public ulong doubledAnswers;
        public ulong foreignAnswers;
        public ulong malformedAnswers;
        public ulong repeatedRequests;
        public ulong startUpRetries;
        public ulong blocksReceived;
        public ulong blocksSent;
        public ulong bytesReceived;
        public ulong bytesSent;
        public uint roundTripCount;
        public uint leastMicroseconds;
        public uint medianMicroseconds;
        public uint percentile95Microseconds;
        public uint mostMicroseconds;
        public uint reserved;
        public fixed ulong ruleCounts[13];
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IStatusInfo
    {
        public int StatusCode;
        public byte* Message;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct ControllerStateData
    {
        public int cycleMode;
        public byte isRunning;
        public int controlMode;
        public byte isProgramPendantHold;
        public byte isAlarming;
        public byte isErroring;
        public byte isServoOn;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct ISystemInfoData
    {
        public byte* softwareVersion;
        public byte* modelName;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct ElapsedTime
    {
        public uint seconds;
        public uint minutes;
        public uint hours;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct TimeData
    {
        public long startTimeEpoch;
        public ElapsedTime elapsedTime;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct Figure
    {
        public int frontOrBack;
        public int upperOrLower;
        public int flipOrNoFlip;
        public int sAngle;
        public int lAngle;
        public int uAngle;
        public int rAngle;
        public int bAngle;
        public int tAngle;
        public int eAngle;
        public int wAngle;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct PositionData
    {
        public int coordinateType;
        public Figure figure;
        public int toolNumber;
        public int userCoordinateNumber;
        public fixed double axes[8];
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct PositionErrorData
    {
        public fixed int axes[8];
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct TorqueData
    {
        public int controlGroup;
        public fixed int axes[8];
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct ByteVariableData
    {
        public byte value;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IntegerVariableData
    {
        public short value;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct DoubleIntVariableData
    {
        public int value;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct RealVariableData
    {
        public float value;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IStringVariableData
    {
        public byte* value;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct RobotPositionVariableData
    {
        public PositionData positionData;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct BaseAxisPositionVariableData
    {
        public PositionData positionData;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct StationPositionVariableData
    {
        public PositionData positionData;
        public ushort variableIndex;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IAlarmData
    {
        public uint code;
        public uint subcode;
        public byte* time;
        public byte* name;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IActiveAlarms
    {
        public uint numberOfAlarms;
        public IAlarmData alarms0;
        public IAlarmData alarms1;
        public IAlarmData alarms2;
        public IAlarmData alarms3;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IAlarmHistory
    {
        public uint numberOfAlarms;
        public IAlarmData alarms0;
        public IAlarmData alarms1;
        public IAlarmData alarms2;
        public IAlarmData alarms3;
        public IAlarmData alarms4;
        public IAlarmData alarms5;
        public IAlarmData alarms6;
        public IAlarmData alarms7;
        public IAlarmData alarms8;
        public IAlarmData alarms9;
        public IAlarmData alarms10;
        public IAlarmData alarms11;
        public IAlarmData alarms12;
        public IAlarmData alarms13;
        public IAlarmData alarms14;
        public IAlarmData alarms15;
        public IAlarmData alarms16;
        public IAlarmData alarms17;
        public IAlarmData alarms18;
        public IAlarmData alarms19;
        public IAlarmData alarms20;
        public IAlarmData alarms21;
        public IAlarmData alarms22;
        public IAlarmData alarms23;
        public IAlarmData alarms24;
        public IAlarmData alarms25;
        public IAlarmData alarms26;
        public IAlarmData alarms27;
        public IAlarmData alarms28;
        public IAlarmData alarms29;
        public IAlarmData alarms30;
        public IAlarmData alarms31;
        public IAlarmData alarms32;
        public IAlarmData alarms33;
        public IAlarmData alarms34;
        public IAlarmData alarms35;
        public IAlarmData alarms36;
        public IAlarmData alarms37;
        public IAlarmData alarms38;
        public IAlarmData alarms39;
        public IAlarmData alarms40;
        public IAlarmData alarms41;
        public IAlarmData alarms42;
        public IAlarmData alarms43;
        public IAlarmData alarms44;
        public IAlarmData alarms45;
        public IAlarmData alarms46;
        public IAlarmData alarms47;
        public IAlarmData alarms48;
        public IAlarmData alarms49;
        public IAlarmData alarms50;
        public IAlarmData alarms51;
        public IAlarmData alarms52;
        public IAlarmData alarms53;
        public IAlarmData alarms54;
        public IAlarmData alarms55;
        public IAlarmData alarms56;
        public IAlarmData alarms57;
        public IAlarmData alarms58;
        public IAlarmData alarms59;
        public IAlarmData alarms60;
        public IAlarmData alarms61;
        public IAlarmData alarms62;
        public IAlarmData alarms63;
        public IAlarmData alarms64;
        public IAlarmData alarms65;
        public IAlarmData alarms66;
        public IAlarmData alarms67;
        public IAlarmData alarms68;
        public IAlarmData alarms69;
        public IAlarmData alarms70;
        public IAlarmData alarms71;
        public IAlarmData alarms72;
        public IAlarmData alarms73;
        public IAlarmData alarms74;
        public IAlarmData alarms75;
        public IAlarmData alarms76;
        public IAlarmData alarms77;
        public IAlarmData alarms78;
        public IAlarmData alarms79;
        public IAlarmData alarms80;
        public IAlarmData alarms81;
        public IAlarmData alarms82;
        public IAlarmData alarms83;
        public IAlarmData alarms84;
        public IAlarmData alarms85;
        public IAlarmData alarms86;
        public IAlarmData alarms87;
        public IAlarmData alarms88;
        public IAlarmData alarms89;
        public IAlarmData alarms90;
        public IAlarmData alarms91;
        public IAlarmData alarms92;
        public IAlarmData alarms93;
        public IAlarmData alarms94;
        public IAlarmData alarms95;
        public IAlarmData alarms96;
        public IAlarmData alarms97;
        public IAlarmData alarms98;
        public IAlarmData alarms99;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IJobData
    {
        public byte* name;
        public uint line;
        public uint stepNumber;
        public double speedOverride;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct IJobStack
    {
        public byte* job0;
        public byte* job1;
        public byte* job2;
        public byte* job3;
        public byte* job4;
        public byte* job5;
        public byte* job6;
        public byte* job7;
        public byte* job8;
        public byte* job9;
        public byte* job10;
        public byte* job11;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct Motion
    {
        public int controlGroup;
        public double speed;
        public double accelerationRatio;
        public double decelerationRatio;
        public int moveType;
        public PositionData position;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct CircularMotion
    {
        public Motion motion;
        public fixed double auxiliaryAxes[8];
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkTrajectoryState
    {
        public uint size;
        public int monitor;
        public ulong queued;
        public ulong sent;
        public ulong refused;
        public ulong withdrawn;
        public long heldBackSince;
        public ulong failedStep;
        public int failedGroup;
        public int failureCode;
        public byte* failureMessage;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct XyzVector
    {
        public double x;
        public double y;
        public double z;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct EulerMatrix
    {
        public double nx;
        public double ny;
        public double nz;
        public double ox;
        public double oy;
        public double oz;
        public double ax;
        public double ay;
        public double az;
        public double px;
        public double py;
        public double pz;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct ZyxEulerPose
    {
        public double x;
        public double y;
        public double z;
        public double rx;
        public double ry;
        public double rz;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetItem
    {
        public int kind;
        public uint index;
        public uint count;
        public int group;
        public int coordinate;
        public int toolNumber;
        public int userCoordinateNumber;
        public int axis;
        public int detail;
        public uint reserved;
        public double deadBand;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetGroup
    {
        public long period;
        public HarvlinkFleetItem* items;
        public uint itemCount;
        public int onChange;
        public long longestSilence;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetOptions
    {
        public uint size;
        public uint timeout;
        public byte* address;
        public uint retries;
        public uint lanes;
        public uint gap;
        public int generation;
        public double mostRequestsPerSecond;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetAlarm
    {
        public uint code;
        public uint subcode;
        public fixed byte time[20];
        public fixed byte name[36];
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetSample
    {
        public fixed byte controller[64];
        public HarvlinkFleetItem item;
        public uint group;
        public int quality;
        public int code;
        public uint textLength;
        public long requestTime;
        public long answerTime;
        public long integer;
        public double real;
        public ControllerStateData state;
        public fixed int axes[8];
        public PositionData position;
        public ElapsedTime elapsedTime;
        public uint line;
        public uint step;
        public fixed byte text[36];
        public fixed byte software[28];
        public HarvlinkFleetAlarm alarms0;
        public HarvlinkFleetAlarm alarms1;
        public HarvlinkFleetAlarm alarms2;
        public HarvlinkFleetAlarm alarms3;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetEvent
    {
        public fixed byte controller[64];
        public int kind;
        public int code;
        public long time;
        public long before;
        public long after;
        public fixed byte text[48];
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetPlan
    {
        public fixed byte controller[64];
        public double exchangesPerSecond;
        public long longestRoundTrip;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct HarvlinkFleetStatistics
    {
        public fixed byte controller[64];
        public int state;
        public uint groups;
        public long stateSince;
        public ulong exchanges;
        public ulong timeouts;
        public ulong repeatedRequests;
        public ulong lateAnswers;
        public ulong malformedAnswers;
        public ulong refusals;
        public ulong startUps;
        public fixed ulong rounds[16];
        public fixed ulong overruns[16];
        public fixed double effectiveRates[16];
    }

    internal static unsafe class Functions
    {
        private const string Library = "harvlink";

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IntPtr open_connection(byte* ipAddress, IStatusInfo* status, uint timeoutMilliseconds, uint retries);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void harvlink_connect_options_init(HarvlinkConnectOptions* options);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IntPtr harvlink_connect(HarvlinkConnectOptions* options, IStatusInfo* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_get_connection_statistics(IntPtr handle, HarvlinkConnectionStatistics* statistics);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void close_connection(IntPtr handle);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void harvlink_free(void* text);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo fault_interface_get_active_alarms(IntPtr handle, IActiveAlarms* alarms);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo fault_interface_get_alarm_history(IntPtr handle, int category, uint quantity, IAlarmHistory* history);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo fault_interface_clear_all_faults(IntPtr handle);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_group_interface_read_position_data(IntPtr handle, int group, int type, byte userCoordinateNumber, byte toolNumber, PositionData* position);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_group_interface_read_axis_configuration(IntPtr handle, int group, byte* configuration);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_group_interface_read_position_error(IntPtr handle, int group, PositionErrorData* data);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_group_interface_read_torque_data(IntPtr handle, int group, TorqueData* data);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo byte_variable_interface_read(IntPtr handle, ushort index, ByteVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo byte_variable_interface_write(IntPtr handle, ByteVariableData variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo integer_variable_interface_read(IntPtr handle, ushort index, IntegerVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo integer_variable_interface_write(IntPtr handle, IntegerVariableData variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo double_int_variable_interface_read(IntPtr handle, ushort index, DoubleIntVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo double_int_variable_interface_write(IntPtr handle, DoubleIntVariableData variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo real_variable_interface_read(IntPtr handle, ushort index, RealVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo real_variable_interface_write(IntPtr handle, RealVariableData variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo string_variable_interface_read(IntPtr handle, ushort index, IStringVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo string_variable_interface_write(IntPtr handle, IStringVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo robot_position_variable_interface_read(IntPtr handle, ushort index, RobotPositionVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo robot_position_variable_interface_write(IntPtr handle, RobotPositionVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo base_position_variable_interface_read(IntPtr handle, ushort index, BaseAxisPositionVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo base_position_variable_interface_write(IntPtr handle, BaseAxisPositionVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo station_position_variable_interface_read(IntPtr handle, ushort index, StationPositionVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo station_position_variable_interface_write(IntPtr handle, StationPositionVariableData* variable);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo controller_state_interface_read_state(IntPtr handle, ControllerStateData* state);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo controller_state_interface_read_system_information(IntPtr handle, int id, ISystemInfoData* data);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo controller_state_interface_read_operating_times(IntPtr handle, int group, int type, TimeData* data, int application);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo controller_state_read_system_param(IntPtr handle, int type, int number, int* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo controller_state_group_read_system_param(IntPtr handle, int type, int number, int group, int* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo job_interface_set_active_job(IntPtr handle, byte* name, uint line);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo job_interface_get_executing_job_information(IntPtr handle, int task, IJobData* data);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo job_interface_get_job_stack(IntPtr handle, int task, IJobStack* jobs);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo file_interface_LoadToControllerFromString(IntPtr handle, byte* fileName, byte* content);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo file_interface_LoadToControllerFromPath(IntPtr handle, byte* path);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo file_interface_SaveFromControllerToFile(IntPtr handle, byte* fileName, byte* path, int overwrite);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern byte* file_interface_SaveFromControllerToString(IntPtr handle, byte* fileName, IStatusInfo* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo file_interface_DeleteJobFile(IntPtr handle, byte* fileName);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo file_interface_GetFileCount(IntPtr handle, int type, int* count);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern byte* file_interface_ListFiles(IntPtr handle, int type, IStatusInfo* status, byte sorted);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_type_ReadBit(IntPtr handle, int type, ushort group, byte bit, int* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_address_ReadBit(IntPtr handle, uint address, int* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_type_ReadByte(IntPtr handle, int type, ushort group, uint* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_address_ReadByte(IntPtr handle, uint address, uint* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint8_type_ReadByte(IntPtr handle, int type, ushort group, byte* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint8_address_ReadByte(IntPtr handle, uint address, byte* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_type_ReadWord(IntPtr handle, int type, ushort group, uint* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_address_ReadWord(IntPtr handle, uint address, uint* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint16_type_ReadWord(IntPtr handle, int type, ushort group, ushort* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint16_address_ReadWord(IntPtr handle, uint address, ushort* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_address_WriteBit(IntPtr handle, uint address, int value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_type_WriteBit(IntPtr handle, int type, ushort group, byte bit, int value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_type_WriteByte(IntPtr handle, int type, ushort group, uint value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_address_WriteByte(IntPtr handle, uint address, uint value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint8_type_WriteByte(IntPtr handle, int type, ushort group, byte value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint8_address_WriteByte(IntPtr handle, uint address, byte value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_type_WriteWord(IntPtr handle, int type, ushort group, uint value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_address_WriteWord(IntPtr handle, uint address, uint value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint16_type_WriteWord(IntPtr handle, int type, ushort group, ushort value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint16_address_WriteWord(IntPtr handle, uint address, ushort value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_ReadRegister(IntPtr handle, ushort index, ushort* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_WriteRegister(IntPtr handle, ushort index, ushort value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint32_ReadRegister(IntPtr handle, ushort index, uint* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo io_interface_uint32_WriteRegister(IntPtr handle, ushort index, uint* value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern uint io_interface_ConvertIOGroupToBitAddress(IntPtr handle, int type, ushort group, byte bit, IStatusInfo* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_commands_interface_SetServos(IntPtr handle, int state);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_commands_interface_SetHold(IntPtr handle, int state);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_commands_interface_SetCycleMode(IntPtr handle, int mode);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_commands_interface_DisplayStringToPendant(IntPtr handle, byte* text);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo control_commands_interface_StartJob(IntPtr handle);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo motion_manager_AddPointToTrajectory(IntPtr handle, Motion* first);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo motion_manager_Add2PointsToTrajectory(IntPtr handle, Motion* first, Motion* second);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo motion_manager_Add3PointsToTrajectory(IntPtr handle, Motion* first, Motion* second, Motion* third);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo motion_manager_Add4PointsToTrajectory(IntPtr handle, Motion* first, Motion* second, Motion* third, Motion* fourth);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern double motion_manager_GetMotionTargetProgress(IntPtr handle, int group, IStatusInfo* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo motion_manager_MotionStart(IntPtr handle);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo motion_manager_MotionStop(IntPtr handle, byte clearTrajectory);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo motion_manager_ClearAllTrajectory(IntPtr handle);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_motion_add(IntPtr handle, ulong* stepNumber, Motion* first, Motion* second, Motion* third, Motion* fourth);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_motion_get_state(IntPtr handle, HarvlinkTrajectoryState* state);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_motion_wait_for_target(IntPtr handle, ulong stepNumber, uint timeoutMilliseconds, double tolerance);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_motion_wait_until_sent(IntPtr handle, ulong stepNumber, uint timeoutMilliseconds);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo kinematics_interface_ConvertPosition(IntPtr handle, int group, PositionData* source, int conversion, PositionData* result);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo kinematics_interface_ConvertPositionFromCartesian(IntPtr handle, int group, PositionData* source, int conversion, int type, double* previousAngles, PositionData* result);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IntPtr harvlink_fleet_create(uint queueCapacity, IStatusInfo* status);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_fleet_add(IntPtr fleet, byte* name, HarvlinkFleetOptions* options, HarvlinkFleetGroup* groups, uint groupCount);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_fleet_change(IntPtr fleet, byte* name, HarvlinkFleetOptions* options, HarvlinkFleetGroup* groups, uint groupCount);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_fleet_remove(IntPtr fleet, byte* name);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern uint harvlink_fleet_plan(IntPtr fleet, HarvlinkFleetPlan* plans, uint capacity);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern IStatusInfo harvlink_fleet_start(IntPtr fleet);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void harvlink_fleet_stop(IntPtr fleet);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern uint harvlink_fleet_take(IntPtr fleet, HarvlinkFleetSample* samples, uint capacity, uint waitMilliseconds);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern uint harvlink_fleet_take_events(IntPtr fleet, HarvlinkFleetEvent* events, uint capacity, uint waitMilliseconds);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern uint harvlink_fleet_latest(IntPtr fleet, byte* name, HarvlinkFleetSample* samples, uint capacity);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern uint harvlink_fleet_statistics(IntPtr fleet, HarvlinkFleetStatistics* statistics, uint capacity, ulong* droppedSamples);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void harvlink_fleet_destroy(IntPtr fleet);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void vector_math_inner_product(XyzVector* first, XyzVector* second, double* @out);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void vector_math_cross_product(XyzVector* first, XyzVector* second, XyzVector* @out);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void frame_math_invert_frame(EulerMatrix* @in, EulerMatrix* @out);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void frame_math_rotate_frame(EulerMatrix* frame, XyzVector* axis, EulerMatrix* @out, double angle);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void frame_math_frame_to_zyx_euler(EulerMatrix* @in, ZyxEulerPose* @out);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void frame_math_multiply_frames(EulerMatrix* first, EulerMatrix* second, EulerMatrix* @out);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void frame_math_zyx_euler_to_frame(ZyxEulerPose* @in, EulerMatrix* @out);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        internal static extern void frame_math_set_identity_matrix_in_frame(EulerMatrix* @out);
    }
}
