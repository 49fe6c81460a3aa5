using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Threading;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>How a fleet talks to one controller.</summary>
    public sealed class FleetOptions
    {
        /// <summary>How long one try waits for an answer, in whole milliseconds.</summary>
        public TimeSpan Timeout { get; set; } = TimeSpan.FromSeconds(0.5);

        /// <summary>Further tries.</summary>
        public int Retries { get; set; } = 3;

        /// <summary>Requests that may wait for their answers at once, 1 to 4.</summary>
        public int Lanes { get; set; } = 1;

        /// <summary>From one request to the next; zero for none.</summary>
        public TimeSpan Gap { get; set; }

        /// <summary>Limit of the requests; 0 for none.</summary>
        public double MostRequestsPerSecond { get; set; }
    }

    /// <summary>
    /// Watches any number of controllers from one thread of the library, which only reads. It starts with the first sample, event or
    /// value that is asked for, or with <see cref="Start"/>. Its members may be used from several threads.
    /// </summary>
    public sealed unsafe partial class Fleet : IDisposable
    {
        private const int Batch = 64;

        /// <summary>Milliseconds after which an iteration looks whether it was stopped.</summary>
        private const uint Period = 200;
        private readonly FleetHandle fleet;

        /// <summary>Held where it starts for an iteration and where it stops: an iteration that is ending starts nothing.</summary>
        private readonly object gate = new object();
        private int stops;

        /// <summary>Makes a fleet that keeps up to so many samples until they are taken.</summary>
        public Fleet(int queueCapacity = 16384)
        {
            fleet = new FleetHandle(Checked.NotNegative(queueCapacity, nameof(queueCapacity)));
        }

        private delegate uint Filler(IntPtr handle, byte* records, uint capacity);

        private delegate T Maker<T>(byte* record);

        private delegate IStatusInfo Teller(
            IntPtr handle, byte* name, HarvlinkFleetOptions* options, HarvlinkFleetGroup* groups, uint groupCount);

        /// <summary>Adds a controller with what is to be read of it.</summary>
        /// <exception cref="HarvlinkException">Something can't be read, and the text names the item; nothing was added.</exception>
        public void Add(string name, string address, params FleetGroup[] groups)
        {
            Add(name, address, new FleetOptions(), groups);
        }

        /// <summary>Adds a controller with what is to be read of it, and with options.</summary>
        /// <exception cref="HarvlinkException">Something can't be read, and the text names the item; nothing was added.</exception>
        public void Add(string name, string address, FleetOptions options, params FleetGroup[] groups)
        {
            Tell(Functions.harvlink_fleet_add, name, address, options, groups);
        }

        /// <summary>
        /// Replaces all that <see cref="Add(string, string, FleetGroup[])"/> said of a controller, with the usual options, also while
        /// the fleet runs. Its values are read again.
        /// </summary>
        /// <exception cref="HarvlinkException">As of Add, or there is none of this name; the controller goes on as before.</exception>
        public void Change(string name, string address, params FleetGroup[] groups)
        {
            Change(name, address, new FleetOptions(), groups);
        }

        /// <summary>The same with options.</summary>
        /// <exception cref="HarvlinkException">As of Add, or there is none of this name; the controller goes on as before.</exception>
        public void Change(string name, string address, FleetOptions options, params FleetGroup[] groups)
        {
            Tell(Functions.harvlink_fleet_change, name, address, options, groups);
        }

        /// <summary>Ends watching a controller.</summary>
        public void Remove(string name)
        {
            using (var handle = fleet.Hold())
            {
                fixed (byte* text = Text.Utf8.Encode(name))
                {
                    FleetHandle.Settle(Functions.harvlink_fleet_remove(handle, text));
                }
            }
        }

        /// <summary>What each controller costs. Sends nothing.</summary>
        public IReadOnlyList<FleetPlan> Plan()
        {
            return All(
                sizeof(HarvlinkFleetPlan),
                (handle, records, room) => Functions.harvlink_fleet_plan(handle, (HarvlinkFleetPlan*)records, room),
                record => new FleetPlan((HarvlinkFleetPlan*)record));
        }

        /// <summary>Begins to read.</summary>
        public void Start()
        {
            using (var handle = fleet.Hold())
            {
                FleetHandle.Settle(Functions.harvlink_fleet_start(handle));
            }
        }

        /// <summary>Ends reading, and the iterations over samples.</summary>
        public void Stop()
        {
            lock (gate)
            {
                Interlocked.Increment(ref stops);
                using (var handle = fleet.Hold())
                {
                    Functions.harvlink_fleet_stop(handle);
                }
            }
        }

        /// <summary>The samples that are there, after waiting for the first; empty if none came in time.</summary>
        public IReadOnlyList<FleetSample> Take(TimeSpan wait)
        {
            uint milliseconds = Checked.Milliseconds(wait, nameof(wait));
            Start();
            return TakeStarted(milliseconds);
        }

        /// <summary>The same for events.</summary>
        public IReadOnlyList<FleetEvent> TakeEvents(TimeSpan wait)
        {
            uint milliseconds = Checked.Milliseconds(wait, nameof(wait));
            Start();
            return Filled(
                sizeof(HarvlinkFleetEvent),
                Batch,
                (handle, records, room) =>
                    Functions.harvlink_fleet_take_events(handle, (HarvlinkFleetEvent*)records, room, milliseconds),
                record => new FleetEvent((HarvlinkFleetEvent*)record),
                out _);
        }

        /// <summary>The samples as they come, until the fleet is stopped or disposed of.</summary>
        public IEnumerable<FleetSample> Samples()
        {
            int before = Volatile.Read(ref stops);
            while (before == Volatile.Read(ref stops))
            {
                foreach (FleetSample sample in TakeUnlessStopped(before))
                {
                    yield return sample;
                }
            }
        }

        /// <summary>The last value of each item of each controller.</summary>
        public IReadOnlyList<FleetSample> Latest()
        {
            Start();
            return All(
                sizeof(HarvlinkFleetSample),
                (handle, records, room) =>
                    Functions.harvlink_fleet_latest(handle, null, (HarvlinkFleetSample*)records, room),
                record => new FleetSample((HarvlinkFleetSample*)record));
        }

        /// <summary>How each controller does.</summary>
        public IReadOnlyList<FleetStatistics> Statistics()
        {
            return All(
                sizeof(HarvlinkFleetStatistics),
                (handle, records, room) =>
                    Functions.harvlink_fleet_statistics(handle, (HarvlinkFleetStatistics*)records, room, null),
                record => new FleetStatistics((HarvlinkFleetStatistics*)record));
        }

        /// <summary>Stops, and frees the fleet when the operations of other threads have ended.</summary>
        public void Dispose()
        {
            Interlocked.Increment(ref stops);
            fleet.Dispose();
        }

        private static HarvlinkFleetOptions Record(FleetOptions options)
        {
            return new HarvlinkFleetOptions
            {
                size = (uint)sizeof(HarvlinkFleetOptions),
                timeout = Checked.Milliseconds(options.Timeout, nameof(options)),
                retries = Checked.NotNegative(options.Retries, nameof(options)),
                lanes = Checked.NotNegative(options.Lanes, nameof(options)),
                gap = Checked.Microseconds(options.Gap, nameof(options)),
                generation = -1,
                mostRequestsPerSecond = options.MostRequestsPerSecond,
            };
        }

        private static HarvlinkFleetGroup Record(FleetGroup group, GCHandle items)
        {
            return new HarvlinkFleetGroup
            {
                period = Checked.Nanoseconds(group.Period, nameof(group.Period)),
                items = (HarvlinkFleetItem*)items.AddrOfPinnedObject(),
                itemCount = (uint)((HarvlinkFleetItem[])items.Target).Length,
                onChange = group.OnChange ? 1 : 0,
                longestSilence = group.LongestSilence.Ticks / TimeSpan.TicksPerMillisecond,
            };
        }

        private void Tell(Teller function, string name, string address, FleetOptions options, FleetGroup[] groups)
        {
            HarvlinkFleetOptions record = Record(options);
            var records = new HarvlinkFleetGroup[groups.Length];
            var pinned = new List<GCHandle>();
            try
            {
                for (int place = 0; place < groups.Length; ++place)
                {
                    pinned.Add(GCHandle.Alloc(groups[place].Records(), GCHandleType.Pinned));
                    records[place] = Record(groups[place], pinned[place]);
                }
                fixed (byte* nameText = Text.Utf8.Encode(name), addressText = Text.Utf8.Encode(address))
                fixed (HarvlinkFleetGroup* first = records)
                {
                    record.address = addressText;
                    using (var handle = fleet.Hold())
                    {
                        FleetHandle.Settle(function(handle, nameText, &record, first, (uint)records.Length));
                    }
                }
            }
            finally
            {
                pinned.ForEach(each => each.Free());
            }
        }

        private IReadOnlyList<FleetSample> TakeStarted(uint milliseconds)
        {
            return Filled(
                sizeof(HarvlinkFleetSample),
                Batch,
                (handle, records, room) =>
                    Functions.harvlink_fleet_take(handle, (HarvlinkFleetSample*)records, room, milliseconds),
                record => new FleetSample((HarvlinkFleetSample*)record),
                out _);
        }

        /// <summary>For an iteration that began after so many stops. If another thread closes the fleet, it ends and does not fail.</summary>
        private IReadOnlyList<FleetSample> TakeUnlessStopped(int before)
        {
            try
            {
                lock (gate)
                {
                    if (before != stops)
                    {
                        return new FleetSample[0];
                    }
                    Start();
                }
                return TakeStarted(Period);
            }
            catch (ObjectDisposedException)
            {
                Interlocked.Increment(ref stops);
                return new FleetSample[0];
            }
        }

        /// <summary>Asks again with more room if there are more than thought.</summary>
        private List<T> All<T>(int size, Filler fill, Maker<T> make)
        {
            uint room = 0;
            for (;;)
            {
                uint count;
                List<T> found = Filled(size, room, fill, make, out count);
                if (count <= room)
                {
                    return found;
                }
                room = count;
            }
        }

        private List<T> Filled<T>(int size, uint room, Filler fill, Maker<T> make, out uint count)
        {
            var found = new List<T>();
            var memory = new byte[Math.Max(1, size * (int)room)];
            fixed (byte* records = memory)
            {
                using (var handle = fleet.Hold())
                {
                    count = fill(handle, records, room);
                }
                for (uint place = 0; place < Math.Min(count, room); ++place)
                {
                    found.Add(make(records + (place * size)));
                }
            }
            return found;
        }

        private sealed class FleetHandle : Handle
        {
            public FleetHandle(uint queueCapacity)
            {
                IStatusInfo status;
                SetHandle(Functions.harvlink_fleet_create(queueCapacity, &status));
                Settle(status);
            }

            public static void Settle(IStatusInfo status)
            {
                string text = Text.Utf8.Take(status.Message);
                if (status.StatusCode != 0)
                {
                    throw new HarvlinkException(status.StatusCode, text);
                }
            }

            protected override bool ReleaseHandle()
            {
                Functions.harvlink_fleet_destroy(handle);
                return true;
            }
        }
    }
}
