// Reads the state, model and software version of a controller.
using System;
using Harvlink;

internal static class ControllerStateExample
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
                State state = robot.ControllerState.Read();
                SystemInformation system = robot.ControllerState.ReadSystemInformation();
                Console.WriteLine($"{system.ModelName}, software {system.SoftwareVersion}");
                Console.WriteLine($"{state.ControlMode}, {state.CycleMode}, servo {(state.IsServoOn ? "on" : "off")}");
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
