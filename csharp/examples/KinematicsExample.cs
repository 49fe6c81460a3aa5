// Asks the controller to convert joint pulses to a pose. From generation YA up.
using System;
using Harvlink;

internal static class KinematicsExample
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
                var pulses = new Position(CoordinateType.Pulse, 30000, 20000, -10000, 5000, -100000, 8000);
                Console.WriteLine(robot.Kinematics.Convert(pulses, Conversion.PulseToCartesianPos));
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
