// Reads model, state, position and a variable, and writes a register. look.c and look.py do the same and print the same.
using System;
using System.IO;
using Harvlink;

internal static class Look
{
    private static void Main(string[] args)
    {
        // UTF-8 as in C, on Windows too.
        Console.SetOut(new StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true });
        using (var robot = Controller.Connect(args[0], Access.Operate))
        {
            Console.WriteLine(robot.ControllerState.ReadSystemInformation().ModelName);
            Console.WriteLine(robot.ControllerState.Read().IsServoOn ? "servo on" : "servo off");
            Console.WriteLine(string.Join(" ", robot.ControlGroups.ReadPosition(ControlGroupId.R1).Axes));
            robot.Variables.S[7] = "J\u00f6rg";
            Console.WriteLine(robot.Variables.S[7]);
            robot.IO.Registers[3] = 4711;
            Console.WriteLine(robot.IO.Registers[3]);
            Console.WriteLine(string.Join(" ", robot.Files.List(FileType.JobFile)));
            try
            {
                Console.WriteLine(robot.Variables.B[3000]);
            }
            catch (HarvlinkException failure)
            {
                Console.WriteLine((int)failure.Code + ": " + failure.Text);
            }
        }
    }
}
