// Shows the active alarms and the last five major alarms.
using System;
using System.Linq;
using Harvlink;

internal static class AlarmsExample
{
    private static int Main(string[] args)
    {
        if (args.Length != 1)
        {
            Console.Error.WriteLine("Usage: ADDRESS");
            return 2;
        }
        try
        {
            using (var robot = Controller.Connect(args[0], Access.Observe))
            {
                foreach (Alarm alarm in robot.Alarms.ReadActive().Concat(robot.Alarms.ReadHistory(AlarmCategory.Major, 5)))
                {
                    Console.WriteLine($"{alarm.Time} {alarm.Code} {alarm.Name}");
                }
            }
            return 0;
        }
        catch (HarvlinkException failure)
        {
            Console.Error.WriteLine(failure.Message);
            return 1;
        }
    }
}
