using System;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;

namespace Harvlink.Tests
{
    internal static partial class Layout
    {
        /// <summary>0 is the result, unless there is none, and 1 the first argument.</summary>
        private static void PrintSizes(TextWriter writer, string function)
        {
            MethodInfo method = typeof(Native.Functions).GetMethod(function, BindingFlags.Static | BindingFlags.NonPublic);
            Type[] types = new[] { method.ReturnType }.Concat(method.GetParameters().Select(each => each.ParameterType)).ToArray();
            for (int place = method.ReturnType == typeof(void) ? 1 : 0; place < types.Length; ++place)
            {
                int size = types[place].IsPointer ? IntPtr.Size : Marshal.SizeOf(types[place]);
                writer.Write(function + "." + place + " " + size + "\n");
            }
        }
    }
}
