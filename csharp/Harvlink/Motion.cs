using System;
using System.Linq;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>One point of a trajectory for one group.</summary>
    public sealed unsafe class Motion
    {
        /// <summary>Makes a point.</summary>
        /// <param name="group">The group that moves.</param>
        /// <param name="target">Where it moves to.</param>
        /// <param name="speed">Per cent (0.01 to 100) for joint moves, otherwise mm/s (0.1 to 1500).</param>
        /// <param name="type">How it moves there.</param>
        public Motion(ControlGroupId group, Position target, double speed, MoveType type = MoveType.Joint)
        {
            Group = group;
            Target = target ?? throw new ArgumentNullException(nameof(target));
            Speed = speed;
            Type = type;
        }

        /// <summary>The group that moves.</summary>
        public ControlGroupId Group { get; }

        /// <summary>Where it moves to.</summary>
        public Position Target { get; }

        /// <summary>Per cent for joint moves, otherwise mm/s.</summary>
        public double Speed { get; }

        /// <summary>How it moves there.</summary>
        public MoveType Type { get; }

        /// <summary>Per cent (20 to 100); null keeps the controller's value.</summary>
        public double? Acceleration { get; set; }

        /// <summary>Per cent (20 to 100); null keeps the controller's value.</summary>
        public double? Deceleration { get; set; }

        /// <summary>The point that a circle passes through, in the units of <see cref="Target"/>.</summary>
        public Position Via { get; set; }

        /// <summary>Always has room for a mid-point: the library reads it behind the motion of a circle, without a check.</summary>
        internal CircularMotion Record()
        {
            if ((Type == MoveType.Circle) != (Via != null))
            {
                throw new ArgumentException("a circle needs Via, and no other kind of move takes it");
            }
            var numbers = Target.Axes.Concat(Via == null ? new double[0] : Via.Axes).Concat(new[] { Speed });
            if (numbers.Any(each => double.IsNaN(each) || double.IsInfinity(each)))
            {
                throw new ArgumentException("speed and axes of a motion must be finite numbers");
            }
            var record = new CircularMotion();
            record.motion.controlGroup = (int)Group;
            record.motion.speed = Speed;
            record.motion.accelerationRatio = Acceleration ?? double.MaxValue;
            record.motion.decelerationRatio = Deceleration ?? double.MaxValue;
            record.motion.moveType = (int)Type;
            record.motion.position = Target.Record();
            for (int axis = 0; axis < Position.AxisCount; ++axis)
            {
                record.auxiliaryAxes[axis] = Via == null ? 0 : Via[axis];
            }
            return record;
        }
    }

    /// <summary>The last step that failed.</summary>
    public sealed class TrajectoryFailure
    {
        internal TrajectoryFailure(long step, ControlGroupId group, int code, string text)
        {
            Step = step;
            Group = group;
            Code = (ErrorCode)code;
            Text = text;
        }

        /// <summary>Its number.</summary>
        public long Step { get; }

        /// <summary>The group whose setting was refused, or the first of the step.</summary>
        public ControlGroupId Group { get; }

        /// <summary>Why it failed.</summary>
        public ErrorCode Code { get; }

        /// <summary>Why it failed, in words.</summary>
        public string Text { get; }
    }

    /// <summary>What has become of the steps of a connection; what is neither sent, refused nor withdrawn still waits.</summary>
    public sealed class TrajectoryState
    {
        internal TrajectoryState(HarvlinkTrajectoryState record, TrajectoryFailure failure)
        {
            Monitor = (TrajectoryMonitorState)record.monitor;
            Queued = (long)record.queued;
            Sent = (long)record.sent;
            Refused = (long)record.refused;
            Withdrawn = (long)record.withdrawn;
            HeldBackSince = record.heldBackSince == 0
                ? (DateTime?)null : Time.FromMicroseconds(record.heldBackSince * 1000);
            LastFailure = failure;
        }

        /// <summary>What the thread that sends steps is doing.</summary>
        public TrajectoryMonitorState Monitor { get; }

        /// <summary>Steps queued in all; the number of the last one too.</summary>
        public long Queued { get; }

        /// <summary>Steps that the controller has taken.</summary>
        public long Sent { get; }

        /// <summary>Steps that the controller refused or did not answer.</summary>
        public long Refused { get; }

        /// <summary>Steps that were dropped before the controller took them.</summary>
        public long Withdrawn { get; }

        /// <summary>Since when the controller's buffer is full, in UTC; null while it is not.</summary>
        public DateTime? HeldBackSince { get; }

        /// <summary>The last step that failed; null if none did.</summary>
        public TrajectoryFailure LastFailure { get; }
    }
}
