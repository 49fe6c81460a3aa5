// Calls a second through the C# package as a share of those of direct C: blocks of either in turn, in one process, against one
// virtual controller, so that a busy machine hits both alike. Fails if the share of the median blocks is below 0.85.
using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Runtime.InteropServices;
using Harvlink;

internal static class Calls
{
    private const int Block = 100;
    private const double Least = 0.85;

    [DllImport("direct")]
    private static extern IntPtr direct_open(string address);

    [DllImport("direct")]
    private static extern int direct_run(IntPtr robot, int calls);

    private static int Main(string[] args)
    {
        int rounds = int.Parse(args[1]);
        IntPtr direct = direct_open(args[0]);
        using (var robot = Controller.Connect(args[0]))
        {
            int failures = 0;
            var directly = new List<double>();
            var through = new List<double>();
            for (int round = -rounds / 10; round < rounds; ++round)
            {
                double one = Time(() => failures += direct_run(direct, Block));
                double other = Time(() => Run(robot, Block));
                if (round >= 0) // before that the package is still being compiled
                {
                    directly.Add(Block / one);
                    through.Add(Block / other);
                }
            }
            if (failures > 0)
            {
                throw new InvalidOperationException(failures + " of the direct calls failed");
            }
            double share = Median(through) / Median(directly);
            Console.WriteLine($"C {Median(directly):0} calls/s, C# {Median(through):0} calls/s, share {share:0.000}");
            return share >= Least ? 0 : 1;
        }
    }

    private static int Run(Controller robot, int calls)
    {
        int sum = 0;
        for (int call = 0; call < calls; ++call)
        {
            sum += robot.Variables.B[call % 10];
        }
        return sum;
    }

    private static double Time(Func<int> block)
    {
        var clock = Stopwatch.StartNew();
        block();
        return clock.Elapsed.TotalSeconds;
    }

    private static double Median(List<double> values)
    {
        values.Sort();
        return values[values.Count / 2];
    }
}
