// Selects the first job of the controller, and shows which job is executed.
using System;
using System.Linq;
using Harvlink;

internal static class JobExample
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
                robot.Jobs.Select(robot.Files.List(FileType.JobFile).First());
                Job job = robot.Jobs.ReadExecuting();
                Console.WriteLine($"{job.Name} line {job.Line}, {job.SpeedOverride} %");
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
