using System;
using System.Linq;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>One thing that a fleet reads.</summary>
    public struct FleetItem
    {
        private HarvlinkFleetItem record;

        internal FleetItem(HarvlinkFleetItem record)
        {
            this.record = record;
        }

        private FleetItem(FleetItemKind kind, int index, int count, ControlGroupId group)
        {
            record = new HarvlinkFleetItem
            {
                kind = (int)kind,
                index = Checked.NotNegative(index, nameof(index)),
                count = Checked.NotNegative(count, nameof(count)),
                group = (int)group,
                axis = -1,
            };
        }

        /// <summary>Mode, running, hold, alarm and servo power: a <see cref="Harvlink.State"/>.</summary>
        public static FleetItem State => new FleetItem(FleetItemKind.State, 0, 1, ControlGroupId.R1);

        /// <summary>The active alarms: an array of <see cref="FleetAlarm"/>.</summary>
        public static FleetItem Alarms => new FleetItem(FleetItemKind.Alarms, 0, 1, ControlGroupId.R1);

        /// <summary>What is read.</summary>
        public FleetItemKind Kind => (FleetItemKind)record.kind;

        /// <summary>The number of the variable, register, signal, task or time.</summary>
        public int Index => (int)record.index;

        /// <summary>How many in a row.</summary>
        public int Count => (int)record.count;

        /// <summary>The control group.</summary>
        public ControlGroupId Group => (ControlGroupId)record.group;

        /// <summary>The kind of a position.</summary>
        public CoordinateType Coordinate => (CoordinateType)record.coordinate;

        /// <summary>The axis, from 0, or -1 for all.</summary>
        public int Axis => record.axis;

        internal HarvlinkFleetItem Record => record;

        /// <summary>What a task executes: a <see cref="Harvlink.Job"/>.</summary>
        public static FleetItem Job(TesselTaskNumber task = TesselTaskNumber.Master)
        {
            return new FleetItem(FleetItemKind.Job, (int)task, 1, ControlGroupId.R1);
        }

        /// <summary>Where a group is: a <see cref="Harvlink.Position"/>, or one axis, from 0, as a number.</summary>
        public static FleetItem Position(
            ControlGroupId group, CoordinateType type = CoordinateType.Pulse, int axis = -1, double deadBand = 0)
        {
            var item = new FleetItem(FleetItemKind.Position, 0, 1, group);
            item.record.coordinate = (int)type;
            item.record.axis = axis;
            item.record.deadBand = deadBand;
            return item;
        }

        /// <summary>Torques or position errors of a group: eight numbers, or one axis, from 0.</summary>
        public static FleetItem Axes(FleetItemKind kind, ControlGroupId group, int axis = -1)
        {
            var item = new FleetItem(kind, 0, 1, group);
            item.record.axis = axis;
            return item;
        }

        /// <summary>A variable, register, signal or signal group, or <paramref name="count"/> in a row.</summary>
        public static FleetItem Numbered(FleetItemKind kind, int index, int count = 1, double deadBand = 0)
        {
            var item = new FleetItem(kind, index, count, ControlGroupId.R1);
            item.record.deadBand = deadBand;
            return item;
        }

        /// <summary>An operating time: a <see cref="Harvlink.OperatingTime"/>.</summary>
        public static FleetItem Time(TimeType counter, ControlGroupId group = ControlGroupId.R1)
        {
            return new FleetItem(FleetItemKind.OperatingTime, (int)counter, 1, group);
        }

        /// <summary>Model and software version: a <see cref="SystemInformation"/>.</summary>
        public static FleetItem Software(SystemInfoId about = SystemInfoId.Robot1)
        {
            return new FleetItem(FleetItemKind.Software, (int)about, 1, ControlGroupId.R1);
        }

        /// <summary>A short name, such as "State" or "ByteVariable 5".</summary>
        public override string ToString()
        {
            switch (Kind)
            {
                case FleetItemKind.State:
                case FleetItemKind.Alarms:
                    return Kind.ToString();
                case FleetItemKind.Position:
                case FleetItemKind.Torque:
                case FleetItemKind.PositionError:
                    return Kind + " " + Group + (Axis < 0 ? "" : " axis " + Axis);
                default:
                    return Kind + " " + Index;
            }
        }
    }

    /// <summary>Items that are read together.</summary>
    public sealed class FleetGroup
    {
        /// <summary>Makes a group.</summary>
        /// <param name="period">From 1 ms up.</param>
        /// <param name="items">What is read in each period.</param>
        public FleetGroup(TimeSpan period, params FleetItem[] items)
        {
            Period = period;
            Items = items;
        }

        /// <summary>From one read to the next.</summary>
        public TimeSpan Period { get; }

        /// <summary>Whether only what has changed gives a sample.</summary>
        public bool OnChange { get; set; }

        /// <summary>With <see cref="OnChange"/>: so long at most without a sample; zero for no limit.</summary>
        public TimeSpan LongestSilence { get; set; }

        internal FleetItem[] Items { get; }

        internal HarvlinkFleetItem[] Records()
        {
            return Items.Select(item => item.Record).ToArray();
        }
    }
}
