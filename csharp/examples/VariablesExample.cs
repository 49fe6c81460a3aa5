// Overwrites variable I010, and reads it back.
using System;
using Harvlink;

internal static class VariablesExample
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
            using (var robot = Controller.Connect(args[0], Access.Operate))
            {
                robot.Variables.I[10] = 321;
                Console.WriteLine(robot.Variables.I[10]);
                Console.WriteLine(string.Join(" ", robot.Variables.B.Read(0, 10)));
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
