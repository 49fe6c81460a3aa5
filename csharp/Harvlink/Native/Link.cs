using System;
using System.Runtime.InteropServices;

namespace Harvlink.Native
{
    /// <summary>
    /// A handle of the library. While a call of any thread uses it, it stays open: the last one that leaves releases it.
    /// </summary>
    internal abstract class Handle : SafeHandle
    {
        protected Handle()
            : base(IntPtr.Zero, true)
        {
        }

        public override bool IsInvalid => handle == IntPtr.Zero;

        /// <summary>Holds the handle until it is disposed of; throws ObjectDisposedException if it was closed.</summary>
        public Held Hold()
        {
            bool isHeld = false;
            DangerousAddRef(ref isHeld);
            return new Held(this);
        }

        internal struct Held : IDisposable
        {
            private readonly Handle handle;

            public Held(Handle handle)
            {
                this.handle = handle;
            }

            public static implicit operator IntPtr(Held held)
            {
                return held.handle.DangerousGetHandle();
            }

            public void Dispose()
            {
                handle.DangerousRelease();
            }
        }
    }

    /// <summary>One open connection, with the encoding of its controller's texts.</summary>
    internal sealed unsafe class Link : Handle
    {
        public readonly Text Text;

        public Link(HarvlinkConnectOptions* options, Text text)
        {
            Text = text;
            IStatusInfo status;
            SetHandle(Functions.harvlink_connect(options, &status));
            try
            {
                Settle(status);
            }
            catch
            {
                Dispose();
                throw;
            }
        }

        /// <summary>Raised for a success that is not complete: the text says what was left out.</summary>
        public event Action<string> Noted;

        /// <summary>Releases the text of a status, and throws if it is a failure.</summary>
        public void Settle(IStatusInfo status)
        {
            if (status.StatusCode == 0 && IsOk(status.Message))
            {
                Functions.harvlink_free(status.Message);
                return;
            }
            string text = Text.Take(status.Message);
            if (status.StatusCode != 0)
            {
                throw new HarvlinkException(status.StatusCode, text);
            }
            if (text != "" && text != "Point added to trajectory.")
            {
                Noted?.Invoke(text);
            }
        }

        /// <summary>Nearly all statuses are; to decode the text would cost a tenth of a call.</summary>
        private static bool IsOk(byte* text)
        {
            return text != null && text[0] == 'O' && text[1] == 'K' && text[2] == 0;
        }

        protected override bool ReleaseHandle()
        {
            Functions.close_connection(handle);
            return true;
        }
    }
}
