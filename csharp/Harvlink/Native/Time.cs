using System;

namespace Harvlink.Native
{
    /// <summary>Times of the library are counted from 1970-01-01 00:00 UTC.</summary>
    internal static class Time
    {
        private static readonly DateTime Epoch = new DateTime(1970, 1, 1, 0, 0, 0, DateTimeKind.Utc);

        public static DateTime FromMicroseconds(long microseconds)
        {
            return Epoch.AddTicks(microseconds * 10);
        }

        public static DateTime FromNanoseconds(long nanoseconds)
        {
            return Epoch.AddTicks(nanoseconds / 100);
        }

        public static DateTime LocalFromSeconds(long seconds)
        {
            return Epoch.AddSeconds(seconds).ToLocalTime();
        }

        public static TimeSpan Elapsed(ElapsedTime time)
        {
            return TimeSpan.FromSeconds((3600.0 * time.hours) + (60.0 * time.minutes) + time.seconds);
        }
    }
}
