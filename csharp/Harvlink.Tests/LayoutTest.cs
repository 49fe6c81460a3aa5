using System;
using System.IO;
using NUnit.Framework;

namespace Harvlink.Tests
{
    /// <summary>The records lie as the compiler of C lays them: HARVLINK_TEST_LAYOUT names a file with what it prints.</summary>
    [TestFixture]
    public sealed class LayoutTest
    {
        [Test]
        public void RecordsLieAsInC()
        {
            string path = Environment.GetEnvironmentVariable("HARVLINK_TEST_LAYOUT");
            var written = new StringWriter();
            Layout.Print(written);
            Assert.That(written.ToString().Replace("\r", ""), Is.EqualTo(File.ReadAllText(path).Replace("\r", "")));
        }
    }
}
