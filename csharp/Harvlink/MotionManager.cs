using System;
using System.Linq;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>
    /// Moves control groups through a queue of points. It moves a real machine. After <see cref="Start"/>, a thread of the library
    /// sends the queue in order. If the controller refuses a point, the queue is dropped. Newer controllers only.
    /// </summary>
    public sealed unsafe class MotionManager
    {
        private const int MostMotions = 4;

        /// <summary>So long the library waits at a time, so that others can close the connection meanwhile.</summary>
        private static readonly TimeSpan WaitPeriod = TimeSpan.FromSeconds(0.1);
        private readonly Link link;

        internal MotionManager(Link link)
        {
            this.link = link;
        }

        private delegate IStatusInfo Wait(IntPtr handle, uint milliseconds);

        /// <summary>Queues a step of one to four groups that start together; only the first can be a circle. Sends nothing.</summary>
        /// <returns>The number of the step: 1 for the first of the connection, then 2, and so on.</returns>
        public long Add(params Motion[] motions)
        {
            if (motions.Length < 1 || motions.Length > MostMotions)
            {
                throw new ArgumentException("a step has one to four motions", nameof(motions));
            }
            if (motions.Skip(1).Any(motion => motion.Type == MoveType.Circle))
            {
                throw new ArgumentException("only the first motion of a step can be a circle", nameof(motions));
            }
            CircularMotion[] records = motions.Select(motion => motion.Record()).ToArray();
            ulong number;
            using (var handle = link.Hold())
            {
                fixed (CircularMotion* first = records)
                {
                    Native.Motion*[] places = new Native.Motion*[MostMotions];
                    for (int place = 0; place < records.Length; ++place)
                    {
                        places[place] = &first[place].motion;
                    }
                    link.Settle(Functions.harvlink_motion_add(
                        handle, &number, places[0], places[1], places[2], places[3]));
                }
            }
            return (long)number;
        }

        /// <summary>Starts to send the queue, and lets the controller move to its targets.</summary>
        public void Start()
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.motion_manager_MotionStart(handle));
            }
        }

        /// <summary>Stops the motion. <paramref name="clear"/> also drops the queue and the controller's targets.</summary>
        public void Stop(bool clear = true)
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.motion_manager_MotionStop(handle, clear ? (byte)1 : (byte)0));
            }
        }

        /// <summary>Drops the queue and the controller's targets.</summary>
        public void Clear()
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.motion_manager_ClearAllTrajectory(handle));
            }
        }

        /// <summary>Reads the number of targets that a group has reached, as the controller counts them, plus the part of the
        /// next.</summary>
        public double ReadProgress(ControlGroupId group = ControlGroupId.R1)
        {
            IStatusInfo status;
            using (var handle = link.Hold())
            {
                double progress = Functions.motion_manager_GetMotionTargetProgress(handle, (int)group, &status);
                link.Settle(status);
                return progress;
            }
        }

        /// <summary>What has become of the steps. Sends nothing.</summary>
        public TrajectoryState GetState()
        {
            var record = new HarvlinkTrajectoryState { size = (uint)sizeof(HarvlinkTrajectoryState) };
            using (var handle = link.Hold())
            {
                var status = Functions.harvlink_motion_get_state(handle, &record);
                string text = link.Text.Take(record.failureMessage);
                link.Settle(status);
                var group = (ControlGroupId)record.failedGroup;
                var failure = new TrajectoryFailure((long)record.failedStep, group, record.failureCode, text);
                return new TrajectoryState(record, record.failureCode == 0 ? null : failure);
            }
        }

        /// <summary>
        /// Waits until all groups of a step are within <paramref name="tolerance"/> (pulses or millimetres) of their targets, or have
        /// gone on.
        /// </summary>
        /// <exception cref="HarvlinkException">An alarm came, or the step was dropped.</exception>
        /// <exception cref="TimeoutException">It took longer, for example during a hold or without a start.</exception>
        public void WaitForTarget(long step, TimeSpan timeout, double tolerance = 1.0)
        {
            WaitFor(step, timeout, (handle, milliseconds) =>
                Functions.harvlink_motion_wait_for_target(handle, (ulong)step, milliseconds, tolerance));
        }

        /// <summary>Waits until the controller has taken a step; throws as <see cref="WaitForTarget"/> does.</summary>
        public void WaitUntilSent(long step, TimeSpan timeout)
        {
            WaitFor(step, timeout, (handle, milliseconds) =>
                Functions.harvlink_motion_wait_until_sent(handle, (ulong)step, milliseconds));
        }

        private void WaitFor(long step, TimeSpan timeout, Wait wait)
        {
            Checked.Milliseconds(timeout, nameof(timeout));
            var clock = System.Diagnostics.Stopwatch.StartNew();
            for (;;)
            {
                TimeSpan left = timeout - clock.Elapsed;
                left = left < TimeSpan.Zero ? TimeSpan.Zero : left > WaitPeriod ? WaitPeriod : left;
                try
                {
                    using (var handle = link.Hold())
                    {
                        link.Settle(wait(handle, Checked.Milliseconds(left, nameof(timeout))));
                    }
                    return;
                }
                catch (HarvlinkException failure)
                {
                    if (failure.Code != ErrorCode.WaitTimedOut)
                    {
                        throw;
                    }
                    if (clock.Elapsed >= timeout)
                    {
                        throw new TimeoutException("step " + step + ": not within " + timeout + "; " + GetState().Monitor);
                    }
                }
            }
        }
    }
}
