// Shows a line on the pendant, and switches servo power on and off.
using System;
using Harvlink;

internal static class ControlCommandsExample
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
            using (var robot = Controller.Connect(args[0], Access.Operate))
            {
                robot.Commands.Display("Hello from C#");
                robot.Commands.SetServos(true);
                Console.WriteLine(robot.ControllerState.Read().IsServoOn ? "servo on" : "servo off");
                robot.Commands.SetServos(false);
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
