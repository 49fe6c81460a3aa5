using System;

namespace Harvlink.Tests
{
    /// <summary>Prints what the runtime thinks of records and arguments, where there is no test runner to compare it.</summary>
    internal static class PrintLayout
    {
        private static void Main()
        {
            Layout.Print(Console.Out);
        }
    }
}
