"""A gateway that runs, for the tests of the program."""

import contextlib
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.error
import urllib.request

PROGRAM = sys.argv[1]
SOURCE = pathlib.Path(sys.argv[2])
PATIENCE = 30  # seconds


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def closed_port(test):
    """One that nobody else takes as long as the test lasts."""
    taken = socket.socket()
    test.addCleanup(taken.close)
    taken.bind(("127.0.0.1", 0))
    return taken.getsockname()[1]


def wait_for(condition, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.1)
    raise AssertionError(f"waited in vain for {what}")


def get(port, path, expected=200, body=None, **headers):
    request = urllib.request.Request(f"http://127.0.0.1:{port}{path}", data=body, headers=headers)
    try:
        with urllib.request.urlopen(request, timeout=PATIENCE) as answer:
            status, text = answer.status, answer.read().decode()
    except urllib.error.HTTPError as error:
        status, text = error.code, error.read().decode()
    assert status == expected, f"{path}: {status} {text}"
    return text


class Gateway:
    """One that runs, with what it prints. `world` are words before its command line."""

    def __init__(self, test, text, *options, environment=None, listen="127.0.0.1", errors=None, world=()):
        folder = test.folder
        self.port = free_port()
        self.listen = listen
        self.file = folder / "plant.toml"
        self.write(text)
        self.errors = open(folder / "errors", "a+", encoding="utf-8")
        self.of_others = self.errors.tell()
        self.process = subprocess.Popen([*world, PROGRAM, "--config", self.file, *options], stdout=subprocess.PIPE, text=True,
                                        stderr=errors or self.errors, env={**os.environ, **(environment or {})})
        test.addCleanup(self.end)
        line = self.process.stdout.readline()
        assert "ready" in line, (folder / "errors").read_text()

    def write(self, text, port=None):
        self.file.write_text(f'[gateway]\nname = "hall"\nlisten = "{self.listen}:{port or self.port}"\n{text}',
                             encoding="utf-8")

    def log(self):
        return pathlib.Path(self.errors.name).read_bytes()[self.of_others:].decode()

    def open_files(self):
        files = []
        for link in pathlib.Path(f"/proc/{self.process.pid}/fd").iterdir():
            with contextlib.suppress(OSError):
                files.append(os.readlink(link))
        return files

    def reload(self):
        self.process.send_signal(signal.SIGHUP)

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        return self.process.wait(PATIENCE)

    def end(self):
        self.process.kill()
        self.process.wait(PATIENCE)
        self.process.stdout.close()
        self.errors.close()


class GatewayTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
