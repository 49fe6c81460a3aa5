using System;
using System.Collections.Generic;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>What a connection has seen of its link since it was opened.</summary>
    public sealed unsafe class Statistics
    {
        internal Statistics(HarvlinkConnectionStatistics* record)
        {
            Link = (LinkState)record->linkState;
            LinkSince = Time.FromMicroseconds(record->linkStateSince);
            Exchanges = (long)record->exchanges;
            Timeouts = (long)record->timeouts;
            LateAnswers = (long)record->lateAnswers;
            DoubledAnswers = (long)record->doubledAnswers;
            ForeignAnswers = (long)record->foreignAnswers;
            MalformedAnswers = (long)record->malformedAnswers;
            RepeatedRequests = (long)record->repeatedRequests;
            StartUpRetries = (long)record->startUpRetries;
            BlocksReceived = (long)record->blocksReceived;
            BlocksSent = (long)record->blocksSent;
            BytesReceived = (long)record->bytesReceived;
            BytesSent = (long)record->bytesSent;
            RoundTrips = (int)record->roundTripCount;
            LeastRoundTrip = Microseconds(record->leastMicroseconds);
            MedianRoundTrip = Microseconds(record->medianMicroseconds);
            Percentile95RoundTrip = Microseconds(record->percentile95Microseconds);
            MostRoundTrip = Microseconds(record->mostMicroseconds);
            var counts = new Dictionary<Rules, long>();
            for (int bit = 0; (1u << bit) <= (uint)Rules.NoExceptions; ++bit)
            {
                counts[(Rules)(1u << bit)] = (long)record->ruleCounts[bit];
            }
            RuleCounts = counts;
        }

        /// <summary>Whether the controller answers: silent after three exchanges in a row without an answer.</summary>
        public LinkState Link { get; }

        /// <summary>When the link came into this state, in UTC.</summary>
        public DateTime LinkSince { get; }

        /// <summary>Requests that wait for an answer, each counted once.</summary>
        public long Exchanges { get; }

        /// <summary>Exchanges that ended without an answer.</summary>
        public long Timeouts { get; }

        /// <summary>Answers to an earlier exchange.</summary>
        public long LateAnswers { get; }

        /// <summary>Further answers to the exchange before, and repeated blocks of a file.</summary>
        public long DoubledAnswers { get; }

        /// <summary>Answers of others; told apart where <see cref="Rules.KnownSender"/> is audited.</summary>
        public long ForeignAnswers { get; }

        /// <summary>Answers that do not fit their request.</summary>
        public long MalformedAnswers { get; }

        /// <summary>Requests that were sent again.</summary>
        public long RepeatedRequests { get; }

        /// <summary>Further tries while the connection was opened.</summary>
        public long StartUpRetries { get; }

        /// <summary>Blocks of files received.</summary>
        public long BlocksReceived { get; }

        /// <summary>Blocks of files sent.</summary>
        public long BlocksSent { get; }

        /// <summary>Bytes received.</summary>
        public long BytesReceived { get; }

        /// <summary>Bytes sent.</summary>
        public long BytesSent { get; }

        /// <summary>The answered exchanges that the round trips are of, 1024 at most.</summary>
        public int RoundTrips { get; }

        /// <summary>The shortest round trip.</summary>
        public TimeSpan LeastRoundTrip { get; }

        /// <summary>The median round trip.</summary>
        public TimeSpan MedianRoundTrip { get; }

        /// <summary>The round trip that 95 of 100 do not exceed.</summary>
        public TimeSpan Percentile95RoundTrip { get; }

        /// <summary>The longest round trip.</summary>
        public TimeSpan MostRoundTrip { get; }

        /// <summary>How often each rule refused something, or would have in an audit.</summary>
        public IReadOnlyDictionary<Rules, long> RuleCounts { get; }

        private static TimeSpan Microseconds(uint microseconds)
        {
            return TimeSpan.FromTicks(10L * microseconds);
        }
    }
}
