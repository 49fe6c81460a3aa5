using System;
using System.Text;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>
    /// A connection to one controller. Its members may be used from several threads; a failed operation throws
    /// <see cref="HarvlinkException"/>, and after <see cref="Dispose"/> every one throws ObjectDisposedException.
    /// </summary>
    public sealed unsafe class Controller : IDisposable
    {
        private readonly Link link;

        private Controller(Link link)
        {
            this.link = link;
            link.Noted += text => Noted?.Invoke(this, new NoteEventArgs(text));
            ControllerState = new ControllerState(link);
            ControlGroups = new ControlGroups(link);
            Variables = new Variables(link);
            Alarms = new Alarms(link);
            Jobs = new Jobs(link);
            Files = new Files(link);
            IO = new IO(link);
            Commands = new ControlCommands(link);
            Motion = new MotionManager(link);
            Kinematics = new Kinematics(link);
        }

        /// <summary>Raised on the calling thread when an operation succeeds only in part: a text was cut, for example.</summary>
        public event EventHandler<NoteEventArgs> Noted;

        /// <summary>The controller as a whole: mode, model, operating times, parameters.</summary>
        public ControllerState ControllerState { get; }

        /// <summary>Positions, torques and axes of the control groups.</summary>
        public ControlGroups ControlGroups { get; }

        /// <summary>Numbered variables.</summary>
        public Variables Variables { get; }

        /// <summary>Active alarms and their history.</summary>
        public Alarms Alarms { get; }

        /// <summary>The running job, and the one that a start runs.</summary>
        public Jobs Jobs { get; }

        /// <summary>Files of the controller.</summary>
        public Files Files { get; }

        /// <summary>Signals and registers.</summary>
        public IO IO { get; }

        /// <summary>Servo power, hold, cycle, pendant and job start. They act on a real machine.</summary>
        public ControlCommands Commands { get; }

        /// <summary>Motion through a queue of points. It moves a real machine.</summary>
        public MotionManager Motion { get; }

        /// <summary>Conversion of positions by the controller.</summary>
        public Kinematics Kinematics { get; }

        /// <summary>What this connection has seen of its link. Sends nothing.</summary>
        public Statistics Statistics
        {
            get
            {
                HarvlinkConnectionStatistics record;
                record.size = (uint)sizeof(HarvlinkConnectionStatistics);
                using (var handle = link.Hold())
                {
                    link.Settle(Functions.harvlink_get_connection_statistics(handle, &record));
                }
                return new Statistics(&record);
            }
        }

        /// <summary>Opens a connection.</summary>
        /// <param name="address">IPv4 address in dotted form, or the name of a host.</param>
        /// <param name="access">What may be sent; anything beyond it fails with <see cref="ErrorCode.AccessDenied"/>, and nothing
        /// is sent. With <see cref="Access.Full"/>, opening clears the motion targets of newer controllers, those of other
        /// programs too, unless <paramref name="clearTargets"/> is false.</param>
        /// <param name="timeout">How long one try waits for an answer, in whole milliseconds; 0.5 s unless given.</param>
        /// <param name="retries">Further tries. An exchange ends after (1 + retries) x timeout at the latest.</param>
        /// <param name="rules">The rules of a strict connection that hold.</param>
        /// <param name="audit">The rules only count what they would have refused, see <see cref="Statistics"/>.</param>
        /// <param name="largestFile">Bytes above which a file is not received; 256 MiB unless given.</param>
        /// <param name="clearTargets">See <paramref name="access"/>.</param>
        /// <param name="logging">Whether motion failures go to HarvlinkLog.txt in the working directory.</param>
        /// <param name="encoding">That of the controller's texts, UTF-8 unless given. A byte that is not part of it appears as an
        /// escape such as "\xE9", and writing that gives the byte back.</param>
        /// <exception cref="HarvlinkException">There is no connection; the code says why.</exception>
        public static Controller Connect(
            string address,
            Access access = Access.Observe,
            TimeSpan? timeout = null,
            int retries = 3,
            Rules rules = Rules.Strict,
            bool audit = false,
            long? largestFile = null,
            bool clearTargets = true,
            bool logging = true,
            Encoding encoding = null)
        {
            HarvlinkConnectOptions options;
            Functions.harvlink_connect_options_init(&options);
            options.access = (int)access;
            options.timeout = Checked.Milliseconds(timeout ?? TimeSpan.FromSeconds(0.5), nameof(timeout));
            options.retries = Checked.NotNegative(retries, nameof(retries));
            options.rules = (uint)rules;
            options.audit = audit ? 1 : 0;
            options.clearTargets = clearTargets ? 1 : 0;
            options.logging = logging ? 1 : 0;
            options.largestFile = largestFile == null ? options.largestFile : Checked.Size(largestFile.Value, nameof(largestFile));
            fixed (byte* text = Text.Utf8.Encode(address))
            {
                options.address = text;
                return new Controller(new Link(&options, encoding == null ? Text.Utf8 : new Text(encoding)));
            }
        }

        /// <summary>
        /// Closes the connection when the operations of other threads have ended. It sends nothing, so a moving robot does not
        /// stop; queued points are dropped. Without <see cref="Rules.BoundedClose"/> it waits until they are all sent.
        /// </summary>
        public void Dispose()
        {
            link.Dispose();
        }
    }
}
