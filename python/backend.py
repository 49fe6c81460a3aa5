"""The build backend: setuptools, wherever it is.

pip builds in an environment without the packages of this computer and fills it from an index. Where setuptools is installed
that is not needed, and without a network it is not possible; so the build looks where Debian and the interpreter have it.
"""

import functools
import subprocess
import sys
import sysconfig

_OWN = sysconfig.get_path("purelib", vars={"base": sys.base_prefix})
_DEBIAN = "/usr/lib/python3/dist-packages"
_REQUIRED = ["setuptools>=61", "wheel"]

# Tried in another process: setuptools changes the interpreter that imports it, even if it is one for another version.
_TRIAL = """
import sys
sys.path += sys.argv[1:]
import setuptools.build_meta, wheel.bdist_wheel
sys.exit(int(setuptools.__version__.split(".")[0]) < 61)
"""


@functools.lru_cache(maxsize=None)
def _find_setuptools():
    """Makes it importable. Returns whether there is one."""
    for places in ([], [_OWN], [_OWN, _DEBIAN], [_DEBIAN]):
        if subprocess.run([sys.executable, "-c", _TRIAL, *places], stderr=subprocess.DEVNULL).returncode == 0:
            sys.path += places
            return True
    return False


def _setuptools():
    if not _find_setuptools():
        raise ImportError(f"this build needs {' and '.join(_REQUIRED)}; Debian has them as python3-setuptools, python3-wheel")
    from setuptools import build_meta

    return build_meta


def get_requires_for_build_wheel(config_settings=None):
    return [] if _find_setuptools() else _REQUIRED


get_requires_for_build_sdist = get_requires_for_build_editable = get_requires_for_build_wheel


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    return _setuptools().build_wheel(wheel_directory, config_settings, metadata_directory)


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    return _setuptools().build_editable(wheel_directory, config_settings, metadata_directory)


def build_sdist(sdist_directory, config_settings=None):
    return _setuptools().build_sdist(sdist_directory, config_settings)


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    return _setuptools().prepare_metadata_for_build_wheel(metadata_directory, config_settings)


prepare_metadata_for_build_editable = prepare_metadata_for_build_wheel
