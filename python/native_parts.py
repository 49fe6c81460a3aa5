"""What of a wheel is not Python: the shared object, the virtual controller, and the platforms on which both run."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE / "sources" if (HERE / "sources").is_dir() else HERE.parent  # of an sdist, or the checkout
SOURCE_PARTS = ("CMakeLists.txt", "cmake", "include", "src", "words", "recording", "simulator", "LICENSE")
"""What is needed to build both."""

# Every system that takes manylinux wheels has these, and glibc's own parts.
_EVERYWHERE = re.compile(r"lib(c|m|pthread|dl|rt|stdc\+\+|gcc_s)\.so\.\d+|ld-linux.*\.so\.\d+|libharvlink\.so\.\d+")
# The first glibc that comes with a C++ library of this version.
_GLIBC_OF_GLIBCXX = {24: 27, 25: 28, 26: 31, 27: 31, 28: 31, 29: 34, 30: 35}


def find(work):
    """The paths of the shared object and of harvlink-sim; the latter can be missing. Builds them in `work` if need be."""
    sys.path.insert(0, str(HERE))
    from harvlink._library import candidates

    library = next((path for path in candidates() if path.is_file()), None)
    if library is None and "HARVLINK_LIBRARY" in os.environ:
        raise FileNotFoundError(f"HARVLINK_LIBRARY does not name a file: {os.environ['HARVLINK_LIBRARY']}")
    if library is None:
        return _build(pathlib.Path(work))
    named = os.environ.get("HARVLINK_SIMULATOR")
    simulator = pathlib.Path(named) if named else library.parents[1] / "simulator" / "harvlink-sim"
    return library.resolve(), simulator if simulator.is_file() else None


def _build(work):
    """The virtual controller needs libraries of others; without them there is the library alone."""
    for with_simulator in (True, False):
        configure = ["cmake", "-S", SOURCES, "-B", work, "-DCMAKE_BUILD_TYPE=Release", "-DBUILD_SHARED_LIBS=ON"]
        configure += ["-DHARVLINK_PORTABLE=ON", "-DHARVLINK_INSTALL=OFF", "-DCMAKE_UNITY_BUILD=ON"]
        configure += [f"-DHARVLINK_BUILD_SIMULATOR={'ON' if with_simulator else 'OFF'}"]
        if subprocess.run(configure).returncode == 0:
            break
        shutil.rmtree(work, ignore_errors=True)
        if not with_simulator:
            raise RuntimeError("the library can't be built, see above; it needs CMake and a compiler for C++20")
        print("harvlink: building without the virtual controller, see above for what is missing", file=sys.stderr)
    subprocess.run(["cmake", "--build", work, "--parallel", str(os.cpu_count() or 1)], check=True)
    from harvlink._library import FILE_NAME

    library = (work / "src" / FILE_NAME).resolve()
    simulator = work / "simulator" / "harvlink-sim"
    for path in (library, simulator):
        if path.is_file():
            subprocess.run(["strip", "--strip-unneeded", path], check=False)
    return library, simulator if simulator.is_file() else None


def shared_name(library):
    """What the shared object is called in a package. HARVLINK_LIBRARY can name one for Windows, made by a cross compiler."""
    return "harvlink.dll" if str(library).endswith(".dll") else "libharvlink.so"


def platform(paths):
    """The tag of the platforms on which all of these run: manylinux if they need nothing but what each of these has."""
    if shared_name(paths[0]) == "harvlink.dll":
        return "win_amd64"
    here = re.sub(r"[-.]", "_", sysconfig.get_platform())
    least = [_least_glibc(path) for path in paths if path is not None]
    if not here.startswith("linux_") or None in least:
        return here
    return f"manylinux_2_{max(least)}_{here[len('linux_') :]}"


def _least_glibc(path):
    """The minor version of glibc 2 that a program or shared object needs. None if that is not all that it needs."""
    try:
        shown = subprocess.run(
            ["readelf", "--dynamic", "--version-info", "--wide", path], check=True, capture_output=True, text=True
        ).stdout
    except (OSError, subprocess.CalledProcessError):
        return None
    if not all(map(_EVERYWHERE.fullmatch, re.findall(r"\(NEEDED\).*\[(.*)\]", shown))):
        return None
    # Versions of this file's own symbols have no "Flags: none  Version".
    needed = re.findall(r"Name: (\w+?)_(\d+(?:\.\d+)*)\s+Flags: ", shown)
    glibc = [int(version.split(".")[1]) for name, version in needed if name == "GLIBC"]
    glibcxx = [int((version.split(".") + ["0"])[2]) for name, version in needed if name == "GLIBCXX"]
    if any(minor > max(_GLIBC_OF_GLIBCXX) for minor in glibcxx):
        return None
    glibc += [_GLIBC_OF_GLIBCXX.get(minor, min(_GLIBC_OF_GLIBCXX.values())) for minor in glibcxx]
    return max(glibc, default=17)
