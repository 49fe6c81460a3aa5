using System;
using System.Linq;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>One place of the active alarms, as a fleet reads it.</summary>
    public sealed unsafe class FleetAlarm
    {
        internal FleetAlarm(HarvlinkFleetAlarm* record)
        {
            Code = (int)record->code;
            Subcode = (int)record->subcode;
            Time = Text.Utf8.Decode(record->time, 20);
            Name = Text.Utf8.Decode(record->name, 36);
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

    /// <summary>One value of one item.</summary>
    public sealed unsafe class FleetSample
    {
        internal FleetSample(HarvlinkFleetSample* record)
        {
            Controller = Text.Utf8.Decode(record->controller, 64);
            Item = new FleetItem(record->item);
            Quality = (FleetQuality)record->quality;
            Code = record->code;
            RequestTime = Time.FromNanoseconds(record->requestTime);
            AnswerTime = Time.FromNanoseconds(record->answerTime);
            Value = Quality == FleetQuality.Good || Quality == FleetQuality.Stale ? ValueOf(record) : null;
        }

        /// <summary>The name of the controller.</summary>
        public string Controller { get; }

        /// <summary>What was read.</summary>
        public FleetItem Item { get; }

        /// <summary>What a connection that reads the same returns; whole numbers are long. Null if there is none: then
        /// <see cref="Code"/> says why.</summary>
        public object Value { get; }

        /// <summary>What the value is worth.</summary>
        public FleetQuality Quality { get; }

        /// <summary>0, or why there is no new value.</summary>
        public int Code { get; }

        /// <summary>When the request left, in UTC by the clock of this computer.</summary>
        public DateTime RequestTime { get; }

        /// <summary>When the answer was read.</summary>
        public DateTime AnswerTime { get; }

        private static object ValueOf(HarvlinkFleetSample* record)
        {
            string text = Text.Utf8.Decode(record->text, (int)Math.Min(record->textLength, 36));
            var kind = (FleetItemKind)record->item.kind;
            if (record->item.axis >= 0)
            {
                return kind == FleetItemKind.Position ? (object)record->real : record->integer;
            }
            switch (kind)
            {
                case FleetItemKind.State:
                    return new State(record->state);
                case FleetItemKind.Job:
                    return new Job(Text.Utf8.Decode(record->text, 36), record->line, record->step, record->real);
                case FleetItemKind.Alarms:
                    return new[] { 0, 1, 2, 3 }.Where(place => (&record->alarms0)[place].code != 0)
                        .Select(place => new FleetAlarm(&record->alarms0 + place)).ToArray();
                case FleetItemKind.Position:
                case FleetItemKind.RobotPositionVariable:
                case FleetItemKind.BasePositionVariable:
                case FleetItemKind.StationPositionVariable:
                    return new Position(&record->position);
                case FleetItemKind.Torque:
                case FleetItemKind.PositionError:
                    return ControlGroups.Eight(record->axes);
                case FleetItemKind.RealVariable:
                case FleetItemKind.TargetProgress:
                    return record->real;
                case FleetItemKind.StringVariable:
                    return text;
                case FleetItemKind.Signal:
                    return record->integer != 0;
                case FleetItemKind.OperatingTime:
                    return new OperatingTime(Time.LocalFromSeconds(record->integer), Time.Elapsed(record->elapsedTime));
                case FleetItemKind.Software:
                    return new SystemInformation(
                        Text.Utf8.Decode(record->software, 28), Text.Utf8.Decode(record->text, 36));
                default:
                    return record->integer;
            }
        }
    }

    /// <summary>What happened to a controller.</summary>
    public sealed unsafe class FleetEvent
    {
        internal FleetEvent(HarvlinkFleetEvent* record)
        {
            Controller = Native.Text.Utf8.Decode(record->controller, 64);
            Kind = (FleetEventKind)record->kind;
            Time = Native.Time.FromNanoseconds(record->time);
            Before = record->before;
            After = record->after;
            Code = record->code;
            Text = Native.Text.Utf8.Decode(record->text, 48);
        }

        /// <summary>The name of the controller.</summary>
        public string Controller { get; }

        /// <summary>What happened.</summary>
        public FleetEventKind Kind { get; }

        /// <summary>When, in UTC by the clock of this computer.</summary>
        public DateTime Time { get; }

        /// <summary>The number of the state or mode before.</summary>
        public long Before { get; }

        /// <summary>The number of the state or mode after; of an alarm its code.</summary>
        public long After { get; }

        /// <summary>0, or why.</summary>
        public int Code { get; }

        /// <summary>What changed, in words.</summary>
        public string Text { get; }
    }

    /// <summary>What watching a controller costs.</summary>
    public sealed unsafe class FleetPlan
    {
        internal FleetPlan(HarvlinkFleetPlan* record)
        {
            Controller = Text.Utf8.Decode(record->controller, 64);
            ExchangesPerSecond = record->exchangesPerSecond;
            LongestRoundTrip = TimeSpan.FromTicks(record->longestRoundTrip / 100);
        }

        /// <summary>The name of the controller.</summary>
        public string Controller { get; }

        /// <summary>Exchanges a second.</summary>
        public double ExchangesPerSecond { get; }

        /// <summary>Its periods can be kept up to this mean round trip; zero if they can't be kept at all.</summary>
        public TimeSpan LongestRoundTrip { get; }
    }

    /// <summary>How a controller of a fleet does.</summary>
    public sealed unsafe class FleetStatistics
    {
        internal FleetStatistics(HarvlinkFleetStatistics* record)
        {
            Controller = Text.Utf8.Decode(record->controller, 64);
            State = (FleetState)record->state;
            StateSince = Time.FromNanoseconds(record->stateSince);
            Exchanges = (long)record->exchanges;
            Timeouts = (long)record->timeouts;
            RepeatedRequests = (long)record->repeatedRequests;
            LateAnswers = (long)record->lateAnswers;
            MalformedAnswers = (long)record->malformedAnswers;
            Refusals = (long)record->refusals;
            StartUps = (long)record->startUps;
            int groups = (int)Math.Min(record->groups, 16);
            Rounds = new long[groups];
            Overruns = new long[groups];
            EffectiveRates = new double[groups];
            for (int group = 0; group < groups; ++group)
            {
                Rounds[group] = (long)record->rounds[group];
                Overruns[group] = (long)record->overruns[group];
                EffectiveRates[group] = record->effectiveRates[group];
            }
        }

        /// <summary>The name of the controller.</summary>
        public string Controller { get; }

        /// <summary>What the link is like.</summary>
        public FleetState State { get; }

        /// <summary>When it came into this state, in UTC.</summary>
        public DateTime StateSince { get; }

        /// <summary>Requests that wait for an answer, each counted once.</summary>
        public long Exchanges { get; }

        /// <summary>Exchanges that ended without an answer.</summary>
        public long Timeouts { get; }

        /// <summary>Requests that were sent again.</summary>
        public long RepeatedRequests { get; }

        /// <summary>Answers to an earlier exchange.</summary>
        public long LateAnswers { get; }

        /// <summary>Answers that do not fit their request.</summary>
        public long MalformedAnswers { get; }

        /// <summary>Reads that the controller refused.</summary>
        public long Refusals { get; }

        /// <summary>How often its generation and axes were read.</summary>
        public long StartUps { get; }

        /// <summary>Rounds by group.</summary>
        public long[] Rounds { get; }

        /// <summary>Rounds that took longer than their period, by group.</summary>
        public long[] Overruns { get; }

        /// <summary>Rounds a second, by group.</summary>
        public double[] EffectiveRates { get; }
    }
}
