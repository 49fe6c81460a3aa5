using System;

namespace Harvlink
{
    /// <summary>
    /// What is read and written by an index; each is one exchange, and several are one after the other. The failure of a range
    /// names its index; what was written before it stays.
    /// </summary>
    public abstract class Indexed<T>
    {
        internal Indexed()
        {
        }

        /// <summary>Reads or writes one value.</summary>
        public T this[int index]
        {
            get { return Get(index); }
            set { Set(index, value); }
        }

        /// <summary>Reads <paramref name="count"/> values from <paramref name="first"/> on.</summary>
        public T[] Read(int first, int count)
        {
            var values = new T[count];
            for (int place = 0; place < count; ++place)
            {
                int index = first + place;
                values[place] = Named(index, () => Get(index));
            }
            return values;
        }

        /// <summary>Writes values from <paramref name="first"/> on, in order, up to the first that fails.</summary>
        public void Write(int first, params T[] values)
        {
            for (int place = 0; place < values.Length; ++place)
            {
                int index = first + place;
                T value = values[place];
                Named(index, () =>
                {
                    Set(index, value);
                    return value;
                });
            }
        }

#if NETSTANDARD2_1_OR_GREATER
        /// <summary>
        /// Reads or writes the values of a range such as [0..10], whose end is not part of it. Ends can't be counted from the
        /// last one, which nobody knows.
        /// </summary>
        public T[] this[Range range]
        {
            get
            {
                return Read(First(range), range.End.Value - First(range));
            }

            set
            {
                if (value.Length != range.End.Value - First(range))
                {
                    throw new ArgumentException("the range takes as many values as it is long", nameof(value));
                }
                Write(First(range), value);
            }
        }

        private static int First(Range range)
        {
            if (range.Start.IsFromEnd || range.End.IsFromEnd || range.End.Value < range.Start.Value)
            {
                throw new ArgumentOutOfRangeException(nameof(range), "a range goes upwards and has both ends, such as [0..10]");
            }
            return range.Start.Value;
        }
#endif

        internal abstract T Get(int index);

        internal abstract void Set(int index, T value);

        private static T Named(int index, Func<T> operation)
        {
            try
            {
                return operation();
            }
            catch (HarvlinkException failure)
            {
                throw new HarvlinkException((int)failure.Code, index + ": " + failure.Text);
            }
        }
    }
}
