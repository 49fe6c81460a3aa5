"""Builds the wheel: the package with the shared object of a build of the library.

It compiles nothing, so Python's standard library is enough. The shared object comes from HARVLINK_LIBRARY or from the
build folders of the checkout.
"""

import base64
import hashlib
import os
import pathlib
import re
import sys
import sysconfig
import time
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
PACKAGE = HERE / "harvlink"

WHEEL = """\
Wheel-Version: 1.0
Generator: harvlink
Root-Is-Purelib: false
Tag: {tag}
"""


def _project():
    """The strings of the table [project]. Python before 3.11 has no TOML parser."""
    table = (HERE / "pyproject.toml").read_text(encoding="utf-8").split("[project]")[1]
    project = dict(re.findall(r'^([\w-]+) = "(.*)"$', table, re.MULTILINE))
    source = (PACKAGE / "__init__.py").read_text(encoding="utf-8")
    project["version"] = re.search(r'^__version__ = "(.*)"$', source, re.MULTILINE).group(1)
    return project


def _metadata(project):
    lines = [
        "Metadata-Version: 2.1",
        f"Name: {project['name']}",
        f"Version: {project['version']}",
        f"Summary: {project['description']}",
        "License: MIT",
        "License-File: LICENSE",
        f"Requires-Python: {project['requires-python']}",
        "Description-Content-Type: text/markdown",
        "",
        (HERE / project["readme"]).read_text(encoding="utf-8"),
    ]
    return "\n".join(lines)


def _shared_object():
    sys.path.insert(0, str(HERE))
    from harvlink._library import candidates

    for path in candidates():
        if path.is_file():
            return path
    raise FileNotFoundError("no libharvlink.so found: build the library first, or set HARVLINK_LIBRARY")


def _stem():
    project = _project()
    return f"{project['name']}-{project['version']}"


def _entry(path):
    """A file of a wheel, dated by SOURCE_DATE_EPOCH, so that the same sources make the same wheel."""
    entry = zipfile.ZipInfo(path, time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))[:6])
    entry.compress_type = zipfile.ZIP_DEFLATED
    entry.external_attr = 0o644 << 16
    return entry


def _write_wheel(folder, files, platform):
    stem = _stem()
    tag = f"py3-none-{platform}"
    files = {
        **files,
        f"{stem}.dist-info/LICENSE": (HERE.parent / "LICENSE").read_bytes(),
        f"{stem}.dist-info/METADATA": _metadata(_project()).encode(),
        f"{stem}.dist-info/WHEEL": WHEEL.format(tag=tag).encode(),
    }
    record = f"{stem}.dist-info/RECORD"
    name = f"{stem}-{tag}.whl"
    with zipfile.ZipFile(pathlib.Path(folder) / name, "w", zipfile.ZIP_DEFLATED) as wheel:
        rows = []
        for path, content in files.items():
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
            rows.append(f"{path},sha256={digest},{len(content)}\n")
            wheel.writestr(_entry(path), content)
        wheel.writestr(_entry(record), "".join(rows) + f"{record},,\n")
    return name


def _platform():
    return re.sub(r"[-.]", "_", sysconfig.get_platform())


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    sources = (path for path in sorted(PACKAGE.iterdir()) if path.suffix in (".py", ".typed"))
    files = {f"harvlink/{path.name}": path.read_bytes() for path in sources}
    files["harvlink/libharvlink.so"] = _shared_object().read_bytes()
    return _write_wheel(wheel_directory, files, _platform())


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    folder = f"{_stem()}.dist-info"
    (pathlib.Path(metadata_directory) / folder).mkdir(exist_ok=True)
    (pathlib.Path(metadata_directory) / folder / "METADATA").write_text(_metadata(_project()), encoding="utf-8")
    return folder


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    """`pip install -e`: uses the files of the checkout, and the library in its build folders."""
    return _write_wheel(wheel_directory, {"harvlink.pth": f"{HERE}\n".encode()}, "any")
