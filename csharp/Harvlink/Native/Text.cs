using System;
using System.Runtime.InteropServices;
using System.Text;
using System.Text.RegularExpressions;

namespace Harvlink.Native
{
    /// <summary>
    /// Texts of a controller: bytes in its encoding, and characters here. A byte that is not part of the encoding appears as
    /// "\x" and two hexadecimal digits, and writing that gives the byte back; so does a backslash before such an "x".
    /// </summary>
    internal sealed unsafe class Text
    {
        public static readonly Text Utf8 = new Text(Encoding.UTF8);

        // Not a character of any text, and written back only as the byte that follows.
        private const char Mark = '\uffff';
        private static readonly Regex Escape = new Regex(@"\\x([0-9A-Fa-f]{2})");
        private static readonly Regex BeforeEscape = new Regex(@"\\(?=x[0-9A-Fa-f]{2})");
        private static readonly Regex Marked = new Regex(Mark + "(.)", RegexOptions.Singleline);
        private readonly Encoding encoding;

        public Text(Encoding encoding)
        {
            this.encoding = Encoding.GetEncoding(encoding.CodePage, EncoderFallback.ExceptionFallback, new KeepByte());
        }

        /// <summary>The bytes of a text, with the zero that ends it.</summary>
        public byte[] Encode(string text)
        {
            if (text == null)
            {
                throw new ArgumentNullException(nameof(text));
            }
            if (text.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("a text must not contain a zero character: it would end there");
            }
            var bytes = new System.IO.MemoryStream();
            int place = 0;
            foreach (Match escape in Escape.Matches(text))
            {
                Append(bytes, text.Substring(place, escape.Index - place));
                bytes.WriteByte(Convert.ToByte(escape.Groups[1].Value, 16));
                place = escape.Index + escape.Length;
            }
            Append(bytes, text.Substring(place));
            bytes.WriteByte(0);
            return bytes.ToArray();
        }

        /// <summary>Copies a text of the library, and releases it. Once only.</summary>
        public string Take(byte* text)
        {
            if (text == null)
            {
                throw new OutOfMemoryException("the library could not allocate a text");
            }
            try
            {
                return Decode(text, int.MaxValue);
            }
            finally
            {
                Functions.harvlink_free(text);
            }
        }

        /// <summary>Copies a text that ends at its first zero byte, or after so many bytes.</summary>
        public string Decode(byte* text, int most)
        {
            int length = 0;
            bool isPlain = true;
            for (; length < most && text[length] != 0; ++length)
            {
                isPlain = isPlain && text[length] < 0x80 && text[length] != '\\';
            }
            // The same in every encoding that a controller has.
            if (isPlain)
            {
                return new string((sbyte*)text, 0, length);
            }
            var bytes = new byte[length];
            Marshal.Copy((IntPtr)text, bytes, 0, length);
            return Decode(bytes);
        }

        private string Decode(byte[] bytes)
        {
            string shown = BeforeEscape.Replace(encoding.GetString(bytes), @"\x5C");
            shown = Marked.Replace(shown, found => Hexadecimal((byte)found.Groups[1].Value[0]));
            byte[] back = shown.IndexOf(Mark) < 0 ? Encode(shown) : new byte[0];
            if (back.Length == bytes.Length + 1 && Encoding.GetEncoding(28591).GetString(back, 0, bytes.Length)
                == Encoding.GetEncoding(28591).GetString(bytes))
            {
                return shown;
            }
            // Some encodings have two forms of a character: it is kept as bytes.
            var plain = new StringBuilder();
            foreach (byte each in bytes)
            {
                plain.Append(each < 0x80 && each != '\\' ? ((char)each).ToString() : Hexadecimal(each));
            }
            return plain.ToString();
        }

        private static string Hexadecimal(byte value)
        {
            return @"\x" + value.ToString("X2");
        }

        private void Append(System.IO.Stream bytes, string piece)
        {
            byte[] encoded = encoding.GetBytes(piece);
            bytes.Write(encoded, 0, encoded.Length);
        }

        private sealed class KeepByte : DecoderFallback
        {
            public override int MaxCharCount => 8;

            public override DecoderFallbackBuffer CreateFallbackBuffer()
            {
                return new Buffer();
            }

            private sealed class Buffer : DecoderFallbackBuffer
            {
                private string characters = "";
                private int next;

                public override int Remaining => characters.Length - next;

                public override bool Fallback(byte[] bytesUnknown, int index)
                {
                    characters = "";
                    next = 0;
                    foreach (byte each in bytesUnknown)
                    {
                        // Above the control characters, so that none of them is taken for an end.
                        characters += Mark + ((char)(0x100 + each)).ToString();
                    }
                    return characters.Length > 0;
                }

                public override char GetNextChar()
                {
                    return next < characters.Length ? characters[next++] : '\0';
                }

                public override bool MovePrevious()
                {
                    if (next == 0)
                    {
                        return false;
                    }
                    --next;
                    return true;
                }

                public override void Reset()
                {
                    characters = "";
                    next = 0;
                }
            }
        }
    }
}
