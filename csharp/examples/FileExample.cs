// Prints the first job file of the controller.
using System;
using System.Linq;
using Harvlink;

internal static class FileExample
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
                Console.Write(robot.Files.Get(robot.Files.List(FileType.JobFile).First()));
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
