using System;

namespace Harvlink
{
    /// <summary>
    /// An operation failed. Codes up to 0xFFFF are the controller's or the number of an alarm, from 0x10000 up the library's (see
    /// <see cref="ErrorCode"/>), from 0x40000000 up of a file on this computer. Large negative codes are the controller's too:
    /// add 50000000 (motion), 60000000 (control group), 80000000 (job) or 0x70000000 (conversion) to get its own number.
    /// </summary>
    public sealed class HarvlinkException : Exception
    {
        /// <summary>Makes an exception with the code and the text of a status.</summary>
        public HarvlinkException(int code, string text)
            : base(text + " (code " + code + ")")
        {
            Code = (ErrorCode)code;
            Text = text;
        }

        /// <summary>The code; cast it to int for one without a name.</summary>
        public ErrorCode Code { get; }

        /// <summary>The text without the code.</summary>
        public string Text { get; }
    }

    /// <summary>A success that was not complete, for example because a text was cut.</summary>
    public sealed class NoteEventArgs : EventArgs
    {
        internal NoteEventArgs(string text)
        {
            Text = text;
        }

        /// <summary>What was left out.</summary>
        public string Text { get; }
    }
}
