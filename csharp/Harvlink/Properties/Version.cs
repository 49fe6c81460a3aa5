// Made from the headers in include/harvlink by tools/generate_bindings: change those, and run it again.
using System.Reflection;

[assembly: AssemblyVersion("1.1.3.0")]
[assembly: AssemblyFileVersion("1.1.3.0")]
