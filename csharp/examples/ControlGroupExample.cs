// Reads the position of the first robot, in pulses and in millimetres and degrees.
using System;
using Harvlink;

internal static class ControlGroupExample
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
                Console.WriteLine(robot.ControlGroups.ReadPosition(ControlGroupId.R1));
                Console.WriteLine(robot.ControlGroups.ReadPosition(ControlGroupId.R1, CoordinateType.BaseCoordinate));
                Console.WriteLine(robot.ControlGroups.ReadAxisLetters(ControlGroupId.R1));
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
