using System;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>The numbered variables of a controller, by its letters. Indexes go from 0 to 2048.</summary>
    public sealed unsafe class Variables
    {
        internal Variables(Link link)
        {
            B = new Places<byte>(link, ReadB, WriteB);
            I = new Places<short>(link, ReadI, WriteI);
            D = new Places<int>(link, ReadD, WriteD);
            R = new Places<float>(link, ReadR, WriteR);
            S = new Places<string>(
                link,
                (IntPtr handle, int index, out string text) => ReadS(link.Text, handle, index, out text),
                (handle, index, text) => WriteS(link.Text, handle, index, text));
            P = new Places<Position>(link, ReadP, WriteP);
            BP = new Places<Position>(link, ReadBP, WriteBP);
            EX = new Places<Position>(link, ReadEX, WriteEX);
        }

        /// <summary>Bytes, 0 to 255.</summary>
        public Indexed<byte> B { get; }

        /// <summary>Whole numbers of 16 bits.</summary>
        public Indexed<short> I { get; }

        /// <summary>Whole numbers of 32 bits.</summary>
        public Indexed<int> D { get; }

        /// <summary>Numbers in single precision.</summary>
        public Indexed<float> R { get; }

        /// <summary>Texts of at most 32 bytes; a longer one is cut, which <see cref="Controller.Noted"/> says.</summary>
        public Indexed<string> S { get; }

        /// <summary>Positions of a robot.</summary>
        public Indexed<Position> P { get; }

        /// <summary>Positions of a base axis, always written in millimetres.</summary>
        public Indexed<Position> BP { get; }

        /// <summary>Positions of a station, always written in pulses.</summary>
        public Indexed<Position> EX { get; }

        private static IStatusInfo ReadB(IntPtr handle, int index, out byte value)
        {
            ByteVariableData record;
            var status = Functions.byte_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            value = record.value;
            return status;
        }

        private static IStatusInfo WriteB(IntPtr handle, int index, byte value)
        {
            var record = new ByteVariableData { value = value, variableIndex = Checked.Index(index, nameof(index)) };
            return Functions.byte_variable_interface_write(handle, record);
        }

        private static IStatusInfo ReadI(IntPtr handle, int index, out short value)
        {
            IntegerVariableData record;
            var status = Functions.integer_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            value = record.value;
            return status;
        }

        private static IStatusInfo WriteI(IntPtr handle, int index, short value)
        {
            var record = new IntegerVariableData { value = value, variableIndex = Checked.Index(index, nameof(index)) };
            return Functions.integer_variable_interface_write(handle, record);
        }

        private static IStatusInfo ReadD(IntPtr handle, int index, out int value)
        {
            DoubleIntVariableData record;
            var status = Functions.double_int_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            value = record.value;
            return status;
        }

        private static IStatusInfo WriteD(IntPtr handle, int index, int value)
        {
            var record = new DoubleIntVariableData { value = value, variableIndex = Checked.Index(index, nameof(index)) };
            return Functions.double_int_variable_interface_write(handle, record);
        }

        private static IStatusInfo ReadR(IntPtr handle, int index, out float value)
        {
            RealVariableData record;
            var status = Functions.real_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            value = record.value;
            return status;
        }

        private static IStatusInfo WriteR(IntPtr handle, int index, float value)
        {
            var record = new RealVariableData { value = value, variableIndex = Checked.Index(index, nameof(index)) };
            return Functions.real_variable_interface_write(handle, record);
        }

        private static IStatusInfo ReadS(Text encoding, IntPtr handle, int index, out string text)
        {
            IStringVariableData record;
            var status = Functions.string_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            text = encoding.Take(record.value);
            return status;
        }

        private static IStatusInfo WriteS(Text encoding, IntPtr handle, int index, string text)
        {
            fixed (byte* bytes = encoding.Encode(text))
            {
                var record = new IStringVariableData { value = bytes, variableIndex = Checked.Index(index, nameof(index)) };
                return Functions.string_variable_interface_write(handle, &record);
            }
        }

        private static IStatusInfo ReadP(IntPtr handle, int index, out Position position)
        {
            RobotPositionVariableData record;
            var status = Functions.robot_position_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            position = new Position(&record.positionData);
            return status;
        }

        private static IStatusInfo WriteP(IntPtr handle, int index, Position position)
        {
            var record = new RobotPositionVariableData
            {
                positionData = position.Record(),
                variableIndex = Checked.Index(index, nameof(index)),
            };
            return Functions.robot_position_variable_interface_write(handle, &record);
        }

        private static IStatusInfo ReadBP(IntPtr handle, int index, out Position position)
        {
            BaseAxisPositionVariableData record;
            var status = Functions.base_position_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            position = new Position(&record.positionData);
            return status;
        }

        private static IStatusInfo WriteBP(IntPtr handle, int index, Position position)
        {
            var record = new BaseAxisPositionVariableData
            {
                positionData = position.Record(),
                variableIndex = Checked.Index(index, nameof(index)),
            };
            return Functions.base_position_variable_interface_write(handle, &record);
        }

        private static IStatusInfo ReadEX(IntPtr handle, int index, out Position position)
        {
            StationPositionVariableData record;
            var status = Functions.station_position_variable_interface_read(handle, Checked.Index(index, nameof(index)), &record);
            position = new Position(&record.positionData);
            return status;
        }

        private static IStatusInfo WriteEX(IntPtr handle, int index, Position position)
        {
            var record = new StationPositionVariableData
            {
                positionData = position.Record(),
                variableIndex = Checked.Index(index, nameof(index)),
            };
            return Functions.station_position_variable_interface_write(handle, &record);
        }
    }
}
