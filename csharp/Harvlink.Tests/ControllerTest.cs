using System;
using System.IO;
using System.Linq;
using System.Text;
using System.Threading;
using NUnit.Framework;

namespace Harvlink.Tests
{
    /// <summary>The ten interfaces against the virtual controller at HARVLINK_TEST_HOST.</summary>
    [TestFixture]
    public sealed class ControllerTest
    {
        private const string Job = "/JOB\r\n//NAME CSHARP\r\n//INST\r\nNOP\r\nEND\r\n";
        private Controller robot;

        internal static string Address => Environment.GetEnvironmentVariable("HARVLINK_TEST_HOST");

        [SetUp]
        public void Connect()
        {
            robot = Controller.Connect(Address, Access.Full, TimeSpan.FromSeconds(1));
        }

        [TearDown]
        public void Close()
        {
            robot.Dispose();
        }

        [Test]
        public void VariablesComeBackAsTheyWereWritten()
        {
            var position = new Position(CoordinateType.BaseCoordinate, 1.5, -2.25, 3, 4, 5, 6) { Tool = 1 };
            robot.Variables.B[1] = 255;
            robot.Variables.I[1] = short.MinValue;
            robot.Variables.D[1] = int.MinValue;
            robot.Variables.R[1] = -1.5f;
            robot.Variables.S[1] = "gr\u00fcn";
            robot.Variables.P[1] = position;
            Assert.That(robot.Variables.B[1], Is.EqualTo(255));
            Assert.That(robot.Variables.I[1], Is.EqualTo(short.MinValue));
            Assert.That(robot.Variables.D[1], Is.EqualTo(int.MinValue));
            Assert.That(robot.Variables.R[1], Is.EqualTo(-1.5f));
            Assert.That(robot.Variables.S[1], Is.EqualTo("gr\u00fcn"));
            Assert.That(robot.Variables.P[1].ToString(), Is.EqualTo(position.ToString()));
            Assert.That(robot.Variables.P[1].Tool, Is.EqualTo(1));
        }

        [Test]
        public void RangesKeepTheirOrderAndNameWhatFails()
        {
            robot.Variables.D.Write(10, 1, 2, 3);
            Assert.That(robot.Variables.D.Read(9, 5).Skip(1).Take(3), Is.EqualTo(new[] { 1, 2, 3 }));
            robot.Variables.D[new Range(10, 12)] = new[] { 7, 8 };
            Assert.That(robot.Variables.D[new Range(10, 13)], Is.EqualTo(new[] { 7, 8, 3 }));
            var failure = Assert.Throws<HarvlinkException>(() => robot.Variables.B.Read(2049, 3));
            Assert.That(failure.Code, Is.EqualTo(ErrorCode.InvalidVariableIndex));
            Assert.That(failure.Text.StartsWith("2049: ", StringComparison.Ordinal), failure.Text);
            Assert.Throws<ArgumentOutOfRangeException>(() => robot.Variables.B[-1] = 1);
        }

        [Test]
        public void TextsKeepTheBytesThatAreNoCharacters()
        {
            using (var latin = Controller.Connect(Address, Access.Operate, encoding: Encoding.GetEncoding("latin1")))
            {
                foreach (string text in new[] { "\u00e9\u00e8", "a\u00ffb" })
                {
                    latin.Variables.S[2] = text;
                    string shown = robot.Variables.S[2];
                    Assert.That(shown.Contains(@"\x"), shown);
                    robot.Variables.S[3] = shown;
                    Assert.That(latin.Variables.S[3], Is.EqualTo(text));
                }
            }
            robot.Variables.S[2] = @"C:\x5Cx41";
            Assert.That(robot.Variables.S[2], Is.EqualTo(@"C:\x5Cx41"));
            Assert.Throws<ArgumentException>(() => robot.Variables.S[2] = "a\0b");
        }

        [Test]
        public void ACutTextIsNoted()
        {
            string note = null;
            robot.Noted += (sender, e) => note = e.Text;
            robot.Variables.S[4] = new string('x', 40);
            Assert.That(note, Is.Not.Null);
            Assert.That(robot.Variables.S[4], Is.EqualTo(new string('x', 32)));
        }

        [Test]
        public void SignalsAndRegisters()
        {
            int address = robot.IO.AddressOf(IOType.NetworkInput, 1, 3);
            robot.IO[address] = true;
            Assert.That(robot.IO[IOType.NetworkInput, 1, 3], Is.True);
            robot.IO.Bytes[address - 3] = 0x5A;
            Assert.That(robot.IO.Bytes[address - 3], Is.EqualTo(0x5A));
            Assert.That(robot.IO.Words[address - 3] & 0xFF, Is.EqualTo(0x5A));
            robot.IO.Registers[5] = 65535;
            Assert.That(robot.IO.Registers[5], Is.EqualTo(65535));
            Assert.Throws<HarvlinkException>(() => robot.IO.AddressOf(IOType.NetworkInput, 1, 8));
        }

        [Test]
        public void FilesGoThereAndBack()
        {
            robot.Files.Put("CSHARP.JBI", Job);
            Assert.That(robot.Files.Get("CSHARP.JBI"), Is.EqualTo(Job));
            Assert.That(robot.Files.List(FileType.JobFile), Has.Member("CSHARP.JBI"));
            Assert.That(robot.Files.Count(FileType.JobFile), Is.EqualTo(robot.Files.List(FileType.JobFile).Count));
            string path = Path.Combine(Path.GetTempPath(), "Gr\u00fc\u00dfe " + Guid.NewGuid() + ".JBI");
            try
            {
                robot.Files.Download("CSHARP.JBI", path);
                Assert.That(File.ReadAllText(path), Is.EqualTo(Job));
                var refusal = Assert.Throws<HarvlinkException>(() => robot.Files.Download("CSHARP.JBI", path));
                Assert.That(refusal.Code, Is.EqualTo(ErrorCode.FileExistsNoOverwrite));
            }
            finally
            {
                File.Delete(path);
            }
            robot.Jobs.Select("CSHARP");
            Assert.That(robot.Jobs.ReadStack(), Is.Not.Null);
            robot.Files.Delete("CSHARP");
            Assert.Throws<HarvlinkException>(() => robot.Files.Get("CSHARP.JBI"));
        }

        [Test]
        public void AStepArrivesAndARefusedOneSaysWhy()
        {
            robot.Commands.SetServos(true);
            Assert.That(robot.ControllerState.Read().IsServoOn, Is.True);
            Position here = robot.ControlGroups.ReadPosition();
            long step = robot.Motion.Add(new Motion(ControlGroupId.R1, here.Shifted(500), 50));
            robot.Motion.Start();
            robot.Motion.WaitForTarget(step, TimeSpan.FromSeconds(20));
            Assert.That(robot.ControlGroups.ReadPosition()[0], Is.EqualTo(here[0] + 500).Within(1));
            var refusal = Assert.Throws<HarvlinkException>(() => robot.Motion.Add(new Motion(ControlGroupId.R1, here, 101)));
            Assert.That(refusal.Code, Is.EqualTo(ErrorCode.JointSpeedOutOfRange));
            Assert.Throws<ArgumentException>(() => new Motion(ControlGroupId.R1, here, double.NaN).Record());
            Assert.That(robot.Motion.GetState().Sent, Is.EqualTo(1));
            robot.Motion.Stop();
        }

        [Test]
        public void ConversionAndFramesAgreeWithThemselves()
        {
            var pulses = new Position(CoordinateType.Pulse, 3000, 2000, -1000, 500, -10000, 800);
            Position angles = robot.Kinematics.Convert(pulses, Conversion.PulseToJointAngle);
            Position back = robot.Kinematics.Convert(angles, Conversion.JointAngleToPulse);
            Assert.That(back[0], Is.EqualTo(3000).Within(2));
            Pose pose = new Pose(1, 2, 3, 10, 20, 30).ToFrame().ToPose();
            Assert.That(pose.Rz, Is.EqualTo(30).Within(1e-9));
            Frame frame = new Pose(1, 2, 3, 10, 20, 30).ToFrame();
            Assert.That((frame * frame.Inverse()).P.Dot(new Vector(1, 1, 1)), Is.EqualTo(0).Within(1e-9));
        }

        [Test]
        public void AccessIsHeldAndAfterDisposeNothingRuns()
        {
            using (var observer = Controller.Connect(Address))
            {
                var refusal = Assert.Throws<HarvlinkException>(() => observer.Commands.SetHold(true));
                Assert.That(refusal.Code, Is.EqualTo(ErrorCode.AccessDenied));
                Assert.That(observer.Statistics.Link, Is.EqualTo(LinkState.Online));
                observer.Dispose();
                Assert.Throws<ObjectDisposedException>(() => observer.ControllerState.Read());
            }
            var silence = Assert.Throws<HarvlinkException>(
                () => Controller.Connect("127.255.255.254", timeout: TimeSpan.FromMilliseconds(10), retries: 0));
            Assert.That(silence.Message.Contains(((int)silence.Code).ToString()), silence.Message);
            Assert.Throws<ArgumentOutOfRangeException>(() => Controller.Connect(Address, timeout: TimeSpan.FromDays(99)));
            Assert.Throws<ArgumentNullException>(() => Controller.Connect(null));
        }

        [Test]
        public void AFleetGivesSamplesUntilItIsStopped()
        {
            using (var fleet = new Fleet())
            {
                fleet.Add(
                    "cell",
                    Address,
                    new FleetGroup(
                        TimeSpan.FromMilliseconds(20),
                        FleetItem.State,
                        FleetItem.Position(ControlGroupId.R1),
                        FleetItem.Numbered(FleetItemKind.ByteVariable, 0, 2)));
                Assert.That(fleet.Plan().Single().ExchangesPerSecond, Is.GreaterThan(100));
                var samples = fleet.Samples().Take(8).ToList();
                Assert.That(samples.Select(sample => sample.Value.GetType()).Distinct(), Is.EquivalentTo(
                    new[] { typeof(State), typeof(Position), typeof(long) }));
                Assert.That(samples.All(sample => sample.Quality == FleetQuality.Good && sample.Controller == "cell"), Is.True);
                var stream = fleet.GetAsyncEnumerator();
                Assert.That(stream.MoveNextAsync().AsTask().Result, Is.True);
                Assert.That(stream.Current.Controller, Is.EqualTo("cell"));
                Assert.That(fleet.Latest().Count, Is.EqualTo(4));
                using (new Timer(unused => fleet.Stop(), null, 100, Timeout.Infinite))
                {
                    Assert.That(fleet.Samples().Count(), Is.GreaterThanOrEqualTo(0));
                }
                var never = new FleetGroup(TimeSpan.MaxValue, FleetItem.State);
                Assert.Throws<ArgumentOutOfRangeException>(() => fleet.Add("never", Address, never));
                var slow = new FleetOptions { Gap = TimeSpan.FromHours(2) };
                Assert.Throws<ArgumentOutOfRangeException>(() => fleet.Add("slow", Address, slow));
                var fewer = new FleetGroup(TimeSpan.FromMilliseconds(20), FleetItem.Numbered(FleetItemKind.Register, 3));
                fleet.Change("cell", Address, new FleetOptions { Lanes = 2 }, fewer);
                Assert.That(fleet.Samples().First(sample => sample.Item.Kind == FleetItemKind.Register).Value, Is.TypeOf<long>());
                Assert.That(fleet.Latest().Single().Controller, Is.EqualTo("cell"));
                var impossible = new FleetGroup(TimeSpan.FromTicks(1), FleetItem.State);
                Assert.Throws<HarvlinkException>(() => fleet.Change("cell", Address, impossible));
                Assert.That(fleet.Latest().Single().Item.Kind, Is.EqualTo(FleetItemKind.Register));
                Assert.Throws<HarvlinkException>(() => fleet.Change("other", Address, fewer));
                var refusal = Assert.Throws<HarvlinkException>(() => fleet.Remove("other"));
                Assert.That(refusal.Code, Is.EqualTo(ErrorCode.UnknownFleetController));
            }
        }
    }
}
