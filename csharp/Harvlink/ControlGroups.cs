using Harvlink.Native;

namespace Harvlink
{
    /// <summary>Live values of the control groups. Each read is one exchange.</summary>
    public sealed unsafe class ControlGroups
    {
        private readonly Link link;

        internal ControlGroups(Link link)
        {
            this.link = link;
        }

        /// <summary>
        /// Reads where a group is: pulses, base and, on newer controllers, robot and user coordinates.
        /// <paramref name="tool"/> and <paramref name="userCoordinate"/> (1 to 63) are ignored for pulses.
        /// </summary>
        public Position ReadPosition(
            ControlGroupId group = ControlGroupId.R1,
            CoordinateType type = CoordinateType.Pulse,
            int userCoordinate = 0,
            int tool = 0)
        {
            Native.PositionData record;
            byte user = Checked.Byte(userCoordinate, nameof(userCoordinate));
            byte toolNumber = Checked.Byte(tool, nameof(tool));
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_group_interface_read_position_data(
                    handle, (int)group, (int)type, user, toolNumber, &record));
            }
            return new Position(&record);
        }

        /// <summary>Reads the letters of a group's axes, such as "SLURBT".</summary>
        public string ReadAxisLetters(ControlGroupId group = ControlGroupId.R1)
        {
            byte* letters = stackalloc byte[Position.AxisCount];
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_group_interface_read_axis_configuration(handle, (int)group, letters));
            }
            string text = "";
            for (int axis = 0; axis < Position.AxisCount; ++axis)
            {
                text += letters[axis] == 0 ? "" : ((char)letters[axis]).ToString();
            }
            return text;
        }

        /// <summary>Reads the commanded minus the reached position of the eight axes, in pulses.</summary>
        public int[] ReadPositionError(ControlGroupId group = ControlGroupId.R1)
        {
            PositionErrorData record;
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_group_interface_read_position_error(handle, (int)group, &record));
            }
            return Eight(record.axes);
        }

        /// <summary>Reads the torque of the eight axes, in the controller's unit.</summary>
        public int[] ReadTorque(ControlGroupId group = ControlGroupId.R1)
        {
            TorqueData record;
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_group_interface_read_torque_data(handle, (int)group, &record));
            }
            return Eight(record.axes);
        }

        internal static int[] Eight(int* axes)
        {
            var copy = new int[Position.AxisCount];
            for (int axis = 0; axis < copy.Length; ++axis)
            {
                copy[axis] = axes[axis];
            }
            return copy;
        }
    }
}
