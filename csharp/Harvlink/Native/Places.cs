using System;

namespace Harvlink.Native
{
    internal delegate IStatusInfo Reader<T>(IntPtr handle, int index, out T value);

    internal delegate IStatusInfo Writer<T>(IntPtr handle, int index, T value);

    /// <summary>What is read and written by an index through one pair of functions.</summary>
    internal sealed class Places<T> : Indexed<T>
    {
        private readonly Link link;
        private readonly Reader<T> read;
        private readonly Writer<T> write;

        public Places(Link link, Reader<T> read, Writer<T> write)
        {
            this.link = link;
            this.read = read;
            this.write = write;
        }

        internal override T Get(int index)
        {
            using (var handle = link.Hold())
            {
                T value;
                link.Settle(read(handle, index, out value));
                return value;
            }
        }

        internal override void Set(int index, T value)
        {
            using (var handle = link.Hold())
            {
                link.Settle(write(handle, index, value));
            }
        }
    }
}
