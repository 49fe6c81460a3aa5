using System;
using System.Collections.Generic;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>One alarm of a controller.</summary>
    public sealed class Alarm
    {
        internal Alarm(uint code, uint subcode, string time, string name)
        {
            Code = (int)code;
            Subcode = (int)subcode;
            Time = time;
            Name = name;
        }

        /// <summary>The number of the alarm.</summary>
        public int Code { get; }

        /// <summary>What the controller says more precisely.</summary>
        public int Subcode { get; }

        /// <summary>When it came, in the controller's words.</summary>
        public string Time { get; }

        /// <summary>Its text.</summary>
        public string Name { get; }
    }

    /// <summary>Alarms and their clearing. Each alarm is one exchange, so a list is not of one moment.</summary>
    public sealed unsafe class Alarms
    {
        private const int Places = 4;
        private const int LongestHistory = 100;
        private readonly Link link;

        internal Alarms(Link link)
        {
            this.link = link;
        }

        /// <summary>Reads the active alarms, four at most.</summary>
        public IReadOnlyList<Alarm> ReadActive()
        {
            IActiveAlarms record;
            using (var handle = link.Hold())
            {
                var status = Functions.fault_interface_get_active_alarms(handle, &record);
                var alarms = Take(&record.alarms0, Places);
                link.Settle(status);
                return alarms.GetRange(0, Math.Min((int)record.numberOfAlarms, Places));
            }
        }

        /// <summary>Reads up to <paramref name="quantity"/> alarms of a category (100 at most), the newest first.</summary>
        public IReadOnlyList<Alarm> ReadHistory(AlarmCategory category, int quantity = LongestHistory)
        {
            IAlarmHistory record;
            uint wanted = Checked.NotNegative(quantity, nameof(quantity));
            using (var handle = link.Hold())
            {
                var status = Functions.fault_interface_get_alarm_history(handle, (int)category, wanted, &record);
                var alarms = Take(&record.alarms0, LongestHistory);
                link.Settle(status);
                return alarms.GetRange(0, Math.Min((int)record.numberOfAlarms, LongestHistory));
            }
        }

        /// <summary>Cancels the error and resets the alarms, always both.</summary>
        public void Clear()
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.fault_interface_clear_all_faults(handle));
            }
        }

        /// <summary>All places have texts to release, the free ones too.</summary>
        private List<Alarm> Take(IAlarmData* places, int count)
        {
            var alarms = new List<Alarm>();
            for (int place = 0; place < count; ++place)
            {
                string time = link.Text.Take(places[place].time);
                string name = link.Text.Take(places[place].name);
                alarms.Add(new Alarm(places[place].code, places[place].subcode, time, name));
            }
            return alarms;
        }
    }
}
