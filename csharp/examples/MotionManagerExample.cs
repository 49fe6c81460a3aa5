// Moves the first robot 20 mm up and back, slowly. From generation YA up.
using System;
using Harvlink;

internal static class MotionManagerExample
{
    private static int Main(string[] args)
    {
        if (args.Length != 2 || args[1] != "--yes")
        {
            Console.Error.WriteLine("This acts on a robot. Make sure that nobody is near, then run: ADDRESS --yes");
            return 2;
        }
        try
        {
            using (var robot = Controller.Connect(args[0], Access.Full))
            {
                robot.Commands.SetServos(true);
                Position here = robot.ControlGroups.ReadPosition(ControlGroupId.R1, CoordinateType.BaseCoordinate);
                robot.Motion.Add(new Motion(ControlGroupId.R1, here.Shifted(0, 0, 20), 50, MoveType.Line));
                long back = robot.Motion.Add(new Motion(ControlGroupId.R1, here, 50, MoveType.Line));
                robot.Motion.Start();
                robot.Motion.WaitForTarget(back, TimeSpan.FromSeconds(20));
                robot.Motion.Stop();
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
