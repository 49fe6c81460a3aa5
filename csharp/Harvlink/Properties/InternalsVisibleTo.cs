using System.Runtime.CompilerServices;

// Compares the records with those of C.
[assembly: InternalsVisibleTo("Harvlink.Tests")]
