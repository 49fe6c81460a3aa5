using System;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>The state of a controller at the moment of a read.</summary>
    public struct State
    {
        internal State(ControllerStateData record)
        {
            CycleMode = (CycleMode)record.cycleMode;
            ControlMode = (ControlMode)record.controlMode;
            IsRunning = record.isRunning != 0;
            IsHold = record.isProgramPendantHold != 0;
            IsAlarming = record.isAlarming != 0;
            IsErroring = record.isErroring != 0;
            IsServoOn = record.isServoOn != 0;
        }

        /// <summary>How a started job runs.</summary>
        public CycleMode CycleMode { get; }

        /// <summary>Who commands the controller.</summary>
        public ControlMode ControlMode { get; }

        /// <summary>Whether a job runs.</summary>
        public bool IsRunning { get; }

        /// <summary>Whether a hold by the pendant, an external signal or a command is there.</summary>
        public bool IsHold { get; }

        /// <summary>Whether there is an alarm.</summary>
        public bool IsAlarming { get; }

        /// <summary>Whether there is an error.</summary>
        public bool IsErroring { get; }

        /// <summary>Whether servo power is on.</summary>
        public bool IsServoOn { get; }
    }

    /// <summary>What a robot, station or application of a controller is.</summary>
    public sealed class SystemInformation
    {
        internal SystemInformation(string softwareVersion, string modelName)
        {
            SoftwareVersion = softwareVersion;
            ModelName = modelName;
        }

        /// <summary>The software version; its first letters name the generation.</summary>
        public string SoftwareVersion { get; }

        /// <summary>The model.</summary>
        public string ModelName { get; }
    }

    /// <summary>One counter of operating time.</summary>
    public struct OperatingTime
    {
        internal OperatingTime(DateTime start, TimeSpan elapsed)
        {
            Start = start;
            Elapsed = elapsed;
        }

        /// <summary>When the counter began, by the controller's clock.</summary>
        public DateTime Start { get; }

        /// <summary>The time counted, in whole seconds.</summary>
        public TimeSpan Elapsed { get; }
    }

    /// <summary>The controller as a whole. Each read is one exchange.</summary>
    public sealed unsafe class ControllerState
    {
        private readonly Link link;

        internal ControllerState(Link link)
        {
            this.link = link;
        }

        /// <summary>Reads mode, cycle, running, hold, alarm, error and servo power.</summary>
        public State Read()
        {
            ControllerStateData record;
            using (var handle = link.Hold())
            {
                link.Settle(Functions.controller_state_interface_read_state(handle, &record));
            }
            return new State(record);
        }

        /// <summary>Reads software version and model name.</summary>
        public SystemInformation ReadSystemInformation(SystemInfoId about = SystemInfoId.Robot1)
        {
            ISystemInfoData record;
            using (var handle = link.Hold())
            {
                var status = Functions.controller_state_interface_read_system_information(handle, (int)about, &record);
                string software = link.Text.Take(record.softwareVersion);
                string model = link.Text.Take(record.modelName);
                link.Settle(status);
                return new SystemInformation(software, model);
            }
        }

        /// <summary>
        /// Reads one counter. Those of a robot or station use <paramref name="group"/>, <see cref="TimeType.Application"/> uses
        /// <paramref name="application"/>.
        /// </summary>
        public OperatingTime ReadOperatingTime(
            TimeType counter,
            ControlGroupId group = ControlGroupId.R1,
            ApplicationNumber application = ApplicationNumber.None)
        {
            TimeData record;
            using (var handle = link.Hold())
            {
                link.Settle(Functions.controller_state_interface_read_operating_times(
                    handle, (int)group, (int)counter, &record, (int)application));
            }
            return new OperatingTime(Time.LocalFromSeconds(record.startTimeEpoch), Time.Elapsed(record.elapsedTime));
        }

        /// <summary>Reads a parameter of the whole controller. Newer controllers only.</summary>
        public int ReadSystemParameter(SystemParameterType family, int number)
        {
            int value;
            using (var handle = link.Hold())
            {
                link.Settle(Functions.controller_state_read_system_param(handle, (int)family, number, &value));
            }
            return value;
        }

        /// <summary>
        /// Reads a parameter of a group: S1C, S1E and S2E. Groups are counted by the controller: robots from 1, bases from 9,
        /// stations from 17. Newer controllers only.
        /// </summary>
        public int ReadSystemParameter(SystemParameterType family, int number, int group)
        {
            int value;
            using (var handle = link.Hold())
            {
                link.Settle(Functions.controller_state_group_read_system_param(handle, (int)family, number, group, &value));
            }
            return value;
        }
    }
}
