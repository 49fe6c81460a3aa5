using System;

namespace Harvlink.Native
{
    /// <summary>Arguments that have to fit a number of the library: a cast alone would cut off the high bits.</summary>
    internal static class Checked
    {
        public static uint Milliseconds(TimeSpan time, string name)
        {
            double milliseconds = Math.Round(time.TotalMilliseconds);
            if (milliseconds < 0 || milliseconds > uint.MaxValue)
            {
                throw new ArgumentOutOfRangeException(name, time, "not a time that can be waited for");
            }
            return (uint)milliseconds;
        }

        public static uint Microseconds(TimeSpan time, string name)
        {
            long microseconds = time.Ticks / 10;
            if (microseconds < 0 || microseconds > uint.MaxValue)
            {
                throw new ArgumentOutOfRangeException(name, time, "not a time between two requests");
            }
            return (uint)microseconds;
        }

        public static long Nanoseconds(TimeSpan time, string name)
        {
            if (time.Ticks > long.MaxValue / 100 || time.Ticks < 0)
            {
                throw new ArgumentOutOfRangeException(name, time, "not a period");
            }
            return time.Ticks * 100;
        }

        public static uint NotNegative(int number, string name)
        {
            if (number < 0)
            {
                throw new ArgumentOutOfRangeException(name, number, "must not be negative");
            }
            return (uint)number;
        }

        public static ulong Size(long number, string name)
        {
            if (number <= 0)
            {
                throw new ArgumentOutOfRangeException(name, number, "must be above 0");
            }
            return (ulong)number;
        }

        public static ushort Index(int number, string name)
        {
            if (number < 0 || number > ushort.MaxValue)
            {
                throw new ArgumentOutOfRangeException(name, number, "must be from 0 to 65535");
            }
            return (ushort)number;
        }

        public static byte Byte(int number, string name)
        {
            if (number < 0 || number > byte.MaxValue)
            {
                throw new ArgumentOutOfRangeException(name, number, "must be from 0 to 255");
            }
            return (byte)number;
        }
    }
}
