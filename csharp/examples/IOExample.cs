// Reads a group of inputs, and switches a network input on and off again.
using System;
using Harvlink;

internal static class IOExample
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
                Console.WriteLine($"general inputs 8 to 1: {Convert.ToString(robot.IO.Bytes[10], 2).PadLeft(8, '0')}");
                int address = robot.IO.AddressOf(IOType.NetworkInput, 1, 0);
                robot.IO[address] = true;
                Console.WriteLine($"{address}: {robot.IO[address]}");
                robot.IO[address] = false;
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
