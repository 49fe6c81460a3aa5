using Harvlink.Native;

namespace Harvlink
{
    /// <summary>
    /// Commands that act on a real machine; most need remote mode. After <see cref="ErrorCode.ResponseTimeout"/> a command may or
    /// may not have taken effect: read the state first.
    /// </summary>
    public sealed unsafe class ControlCommands
    {
        private const int On = 1;
        private const int Off = 2;
        private readonly Link link;

        internal ControlCommands(Link link)
        {
            this.link = link;
        }

        /// <summary>Turns servo power on or off. Waits up to four times as long as others.</summary>
        public void SetServos(bool on)
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_commands_interface_SetServos(handle, on ? On : Off));
            }
        }

        /// <summary>Holds the running job and motion, or releases the hold.</summary>
        public void SetHold(bool on)
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_commands_interface_SetHold(handle, on ? On : Off));
            }
        }

        /// <summary>Sets how a started job runs.</summary>
        public void SetCycleMode(CycleMode mode)
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_commands_interface_SetCycleMode(handle, (int)mode));
            }
        }

        /// <summary>Shows a line on the pendant, cut to 30 bytes.</summary>
        public void Display(string text)
        {
            using (var handle = link.Hold())
            {
                fixed (byte* line = link.Text.Encode(text))
                {
                    link.Settle(Functions.control_commands_interface_DisplayStringToPendant(handle, line));
                }
            }
        }

        /// <summary>Starts the job that <see cref="Jobs.Select"/> selected.</summary>
        public void StartJob()
        {
            using (var handle = link.Hold())
            {
                link.Settle(Functions.control_commands_interface_StartJob(handle));
            }
        }
    }
}
