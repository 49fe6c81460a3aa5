using System;
using System.Collections.Generic;
using System.Linq;
using Mono.Cecil;

/// <summary>
/// Makes an assembly of .NET Standard of one that mono compiled: all that it uses is looked up in the assembly "netstandard", which
/// every runtime of that standard has, instead of in mono's own "mscorlib" and "System.Core". With the folder of such a runtime it
/// looks up all of it there.
/// </summary>
internal static class Retarget
{
    private static readonly byte[] Key = { 0xcc, 0x7b, 0x13, 0xff, 0xcd, 0x2d, 0xdd, 0x51 };

    private static int Main(string[] args)
    {
        if (args.Length != 3 && args.Length != 4)
        {
            Console.Error.WriteLine("Usage: Retarget FROM TO VERSION [RUNTIME]     such as Retarget a/Harvlink.dll b/Harvlink.dll 2.0");
            return 2;
        }
        var resolver = new DefaultAssemblyResolver();
        resolver.RemoveSearchDirectory(".");
        resolver.RemoveSearchDirectory("bin");
        resolver.AddSearchDirectory(args.Length == 4 ? args[3] : ".");
        var module = ModuleDefinition.ReadModule(args[0], new ReaderParameters { AssemblyResolver = resolver });
        var standard = new AssemblyNameReference("netstandard", new Version(args[2] + ".0.0")) { PublicKeyToken = Key };
        IEnumerable<TypeReference> used = module.GetTypeReferences().Where(type => type.Scope is AssemblyNameReference);
        foreach (TypeReference type in used.ToList())
        {
            type.Scope = standard;
        }
        module.AssemblyReferences.Clear();
        module.AssemblyReferences.Add(standard);
        // The permission for unsafe code, which .NET Standard does not have.
        module.Assembly.SecurityDeclarations.Clear();
        module.Write(args[1]);
        return args.Length < 4 || HasAll(args[1], resolver) ? 0 : 1;
    }

    private static bool HasAll(string path, IAssemblyResolver resolver)
    {
        var module = ModuleDefinition.ReadModule(path, new ReaderParameters { AssemblyResolver = resolver });
        var lost = module.GetTypeReferences().Where(type => type.Resolve() == null).Select(type => type.FullName)
            .Concat(module.GetMemberReferences().Where(IsLost).Select(member => member.FullName)).ToList();
        lost.ForEach(name => Console.Error.WriteLine("Retarget: the runtime does not have " + name));
        return lost.Count == 0;
    }

    private static bool IsLost(MemberReference member)
    {
        return member.DeclaringType.Resolve() != null && member.Resolve() == null;
    }
}
