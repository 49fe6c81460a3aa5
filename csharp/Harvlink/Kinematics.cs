using Harvlink.Native;

namespace Harvlink
{
    /// <summary>The controller converts positions. Nothing moves. Newer controllers only.</summary>
    public sealed unsafe class Kinematics
    {
        private readonly Link link;

        internal Kinematics(Link link)
        {
            this.link = link;
        }

        /// <summary>The same position in another form; joint angles are in degrees.</summary>
        /// <param name="position">The position.</param>
        /// <param name="conversion">From what into what.</param>
        /// <param name="group">Of which group.</param>
        /// <param name="kinematics">For a Cartesian position: how to choose between the arm configurations that reach it.</param>
        /// <param name="previousAngles">For <see cref="KinematicType.Delta"/>: up to eight, in the controller's unit.</param>
        public Position Convert(
            Position position,
            Conversion conversion,
            ControlGroupId group = ControlGroupId.R1,
            KinematicType kinematics = KinematicType.KinematicFromSystem,
            params double[] previousAngles)
        {
            Native.PositionData source = position.Record();
            Native.PositionData result;
            Native.PositionData previous = new Position(CoordinateType.Pulse, previousAngles).Record();
            bool isCartesian = conversion == Conversion.CartesianPosToJointAngle || conversion == Conversion.CartesianPosToPulse;
            using (var handle = link.Hold())
            {
                link.Settle(isCartesian
                    ? Functions.kinematics_interface_ConvertPositionFromCartesian(
                        handle, (int)group, &source, (int)conversion, (int)kinematics, previous.axes, &result)
                    : Functions.kinematics_interface_ConvertPosition(handle, (int)group, &source, (int)conversion, &result));
            }
            return new Position(&result);
        }
    }
}
