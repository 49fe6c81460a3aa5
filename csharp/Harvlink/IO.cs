using System;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>
    /// Signals and registers. Eight signals form a group of one byte, and groups of a class count from 1. The address of a signal
    /// is the number of its group in the map of all classes, times ten, plus its bit, 0 to 7.
    /// </summary>
    public sealed unsafe class IO
    {
        private readonly Link link;

        internal IO(Link link)
        {
            this.link = link;
            Bytes = new Places<byte>(link, ReadByte, WriteByte);
            Words = new Places<ushort>(link, ReadWord, WriteWord);
            Registers = new Places<ushort>(link, ReadRegister, WriteRegister);
        }

        /// <summary>Groups of eight signals, by the address of the first one.</summary>
        public Indexed<byte> Bytes { get; }

        /// <summary>Two groups in a row, the first in the low byte, by the address of the first signal.</summary>
        public Indexed<ushort> Words { get; }

        /// <summary>Registers of 16 bits.</summary>
        public Indexed<ushort> Registers { get; }

        /// <summary>A signal by its address.</summary>
        public bool this[int address]
        {
            get
            {
                int value;
                uint place = Checked.NotNegative(address, nameof(address));
                using (var handle = link.Hold())
                {
                    link.Settle(Functions.io_interface_address_ReadBit(handle, place, &value));
                }
                return value != 0;
            }

            set
            {
                uint place = Checked.NotNegative(address, nameof(address));
                using (var handle = link.Hold())
                {
                    link.Settle(Functions.io_interface_address_WriteBit(handle, place, value ? 1 : 0));
                }
            }
        }

        /// <summary>A signal by its class, group and bit. Network inputs can be written, on newer controllers in remote mode also
        /// general outputs and interface panel inputs.</summary>
        public bool this[IOType type, int group, int bit]
        {
            get
            {
                int value;
                ushort place = Checked.Index(group, nameof(group));
                byte number = Checked.Byte(bit, nameof(bit));
                using (var handle = link.Hold())
                {
                    link.Settle(Functions.io_interface_type_ReadBit(handle, (int)type, place, number, &value));
                }
                return value != 0;
            }

            set
            {
                ushort place = Checked.Index(group, nameof(group));
                byte number = Checked.Byte(bit, nameof(bit));
                using (var handle = link.Hold())
                {
                    link.Settle(Functions.io_interface_type_WriteBit(handle, (int)type, place, number, value ? 1 : 0));
                }
            }
        }

        /// <summary>The address of a signal. Sends nothing.</summary>
        public int AddressOf(IOType type, int group, int bit)
        {
            IStatusInfo status;
            ushort place = Checked.Index(group, nameof(group));
            byte number = Checked.Byte(bit, nameof(bit));
            using (var handle = link.Hold())
            {
                uint address = Functions.io_interface_ConvertIOGroupToBitAddress(handle, (int)type, place, number, &status);
                link.Settle(status);
                return (int)address;
            }
        }

        private static IStatusInfo ReadByte(IntPtr handle, int address, out byte value)
        {
            byte read;
            uint place = Checked.NotNegative(address, nameof(address));
            var status = Functions.io_interface_uint8_address_ReadByte(handle, place, &read);
            value = read;
            return status;
        }

        private static IStatusInfo WriteByte(IntPtr handle, int address, byte value)
        {
            uint place = Checked.NotNegative(address, nameof(address));
            return Functions.io_interface_uint8_address_WriteByte(handle, place, value);
        }

        private static IStatusInfo ReadWord(IntPtr handle, int address, out ushort value)
        {
            ushort read;
            uint place = Checked.NotNegative(address, nameof(address));
            var status = Functions.io_interface_uint16_address_ReadWord(handle, place, &read);
            value = read;
            return status;
        }

        private static IStatusInfo WriteWord(IntPtr handle, int address, ushort value)
        {
            uint place = Checked.NotNegative(address, nameof(address));
            return Functions.io_interface_uint16_address_WriteWord(handle, place, value);
        }

        private static IStatusInfo ReadRegister(IntPtr handle, int index, out ushort value)
        {
            ushort read;
            var status = Functions.io_interface_ReadRegister(handle, Checked.Index(index, nameof(index)), &read);
            value = read;
            return status;
        }

        private static IStatusInfo WriteRegister(IntPtr handle, int index, ushort value)
        {
            return Functions.io_interface_WriteRegister(handle, Checked.Index(index, nameof(index)), value);
        }
    }
}
