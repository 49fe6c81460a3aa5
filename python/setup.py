"""The parts of a build that setuptools can't know; the rest is in pyproject.toml."""

import pathlib
import shutil
import tempfile

from native_parts import SOURCE_PARTS, SOURCES, find, platform, shared_name
from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from setuptools.command.install import install
from setuptools.command.sdist import sdist
from wheel.bdist_wheel import bdist_wheel

# A build leaves nothing in the checkout, which may not be writable.
work = tempfile.TemporaryDirectory(prefix="harvlink-")
_native = []


def native():
    """Found or built once."""
    if not _native:
        _native.extend(find(pathlib.Path(work.name, "cmake")))
    return _native


class BuildWithNativeParts(build_py):
    def run(self):
        super().run()
        if getattr(self, "editable_mode", False):
            return  # the checkout's own build is used
        for path, name in zip(native(), (shared_name(native()[0]), "harvlink-sim")):
            if path is not None:
                target = pathlib.Path(self.build_lib, "harvlink", name)
                shutil.copyfile(path, target)
                target.chmod(0o755)


class InstallOfAnyInterpreter(install):
    install_layout = prefix_option = None  # Debian's setuptools asks for them, and only Debian's interpreter has them


class NotOnlyPython(Distribution):
    def has_ext_modules(self):
        return True


class WheelForThePlatform(bdist_wheel):
    def get_tag(self):
        return "py3", "none", platform(native())


class SdistWithSources(sdist):
    def make_release_tree(self, base_dir, files):
        super().make_release_tree(base_dir, [name for name in files if not pathlib.Path(name).is_absolute()])
        for part in SOURCE_PARTS:
            source, target = SOURCES / part, pathlib.Path(base_dir, "sources", part)
            target.parent.mkdir(parents=True, exist_ok=True)
            if source.is_dir():
                shutil.copytree(source, target)
            else:
                shutil.copyfile(source, target)


setup(
    distclass=NotOnlyPython,
    cmdclass={
        "build_py": BuildWithNativeParts,
        "bdist_wheel": WheelForThePlatform,
        "install": InstallOfAnyInterpreter,
        "sdist": SdistWithSources,
    },
    options={"egg_info": {"egg_base": work.name}, "build": {"build_base": str(pathlib.Path(work.name, "build"))}},
)
