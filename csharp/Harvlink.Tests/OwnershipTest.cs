using System;
using System.Runtime.InteropServices;
using NUnit.Framework;

namespace Harvlink.Tests
{
    /// <summary>The package releases what the library allocates: the heap of the C library does not grow over many calls.</summary>
    [TestFixture]
    [Platform("Linux")] // whose C library counts what it has given
    public sealed class OwnershipTest
    {
        private const int Calls = 300;
        private const int SmallestBlock = 32;

        [Test]
        public void NothingStaysAllocated()
        {
            using (var robot = Controller.Connect(ControllerTest.Address, Access.Full))
            using (var fleet = new Fleet())
            {
                var position = robot.ControlGroups.ReadPosition();
                var refused = new Motion(ControlGroupId.R1, position, 101);
                foreach (Action operation in new Action[]
                {
                    () => robot.ControllerState.Read(),
                    () => robot.ControllerState.ReadSystemInformation(),
                    () => robot.ControllerState.ReadSystemInformation((SystemInfoId)99),
                    () => robot.Variables.S[1] = "text",
                    () => robot.Variables.S[1].ToString(),
                    () => robot.Variables.S[3000].ToString(),
                    () => robot.Alarms.ReadActive(),
                    () => robot.Alarms.ReadHistory(AlarmCategory.Major, 3),
                    () => robot.Alarms.ReadHistory((AlarmCategory)7),
                    () => robot.Jobs.ReadExecuting(),
                    () => robot.Jobs.ReadStack(),
                    () => robot.Files.List(FileType.JobFile),
                    () => robot.Files.Get("NONE.JBI"),
                    () => robot.IO.AddressOf(IOType.NetworkInput, 1, 8),
                    () => robot.Files.Get("DEMO.JBI"),
                    () => robot.Motion.GetState(),
                    () => Controller.Connect("127.0.0.256"),
                    () => robot.Motion.Add(refused),
                    () => fleet.Add("", ControllerTest.Address, new FleetGroup(TimeSpan.FromSeconds(1), FleetItem.State)),
                    () => fleet.Change("other", ControllerTest.Address),
                    () => fleet.Latest(),
                })
                {
                    // The runtime allocates for itself now and then: what leaks does so each time.
                    long least = long.MaxValue;
                    for (int round = 0; round < 3 && least >= Calls * SmallestBlock / 2; ++round)
                    {
                        Repeat(operation, 30);
                        long before = BytesInUse();
                        Repeat(operation, Calls);
                        least = Math.Min(least, BytesInUse() - before);
                    }
                    Assert.That(least, Is.LessThan(Calls * SmallestBlock / 2));
                }
            }
        }

        private static void Repeat(Action operation, int times)
        {
            for (int call = 0; call < times; ++call)
            {
                try
                {
                    operation();
                }
                catch (HarvlinkException)
                {
                    // Texts of refusals are counted too.
                }
            }
        }

        private static long BytesInUse()
        {
            GC.Collect();
            GC.WaitForPendingFinalizers();
            return (long)mallinfo2().InUse;
        }

        [DllImport("libc.so.6")]
        private static extern Information mallinfo2();

        [StructLayout(LayoutKind.Sequential)]
        private struct Information
        {
            public UIntPtr Arena, OrdBlks, SmBlks, HBlks, HBlkHd, USmBlks, FSmBlks, InUse, FOrdBlks, Top;
        }
    }
}
