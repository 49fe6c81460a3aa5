"""The virtual controller in a process of its own, for a user's tests.

    from harvlink.simulator import Simulator

    with Simulator("--groups", "R1,B1") as simulator, harvlink.connect(simulator.address) as robot:
        simulator.ctl("alarm", 4107, 3, "Out of range")
        assert robot.alarms.active()

`harvlink.pytest_plugin` makes a fixture of it.
"""

import contextlib
import json
import os
import pathlib
import random
import shutil
import socket
import subprocess
import sys
import threading
from types import TracebackType
from typing import Any, Iterator, List, Optional, Type, Union

from ._library import build_folders

FILE_NAME = "harvlink-sim"
_TRIES = 20
_LARGEST_ANSWER = 65536
_LONGEST_ANSWER = 10.0
_LONGEST_END = 10.0


def program() -> str:
    """Where harvlink-sim is: HARVLINK_SIMULATOR, beside the package, the build folders of a checkout, the search path.

    Raises FileNotFoundError if it is nowhere.
    """
    named = os.environ.get("HARVLINK_SIMULATOR")
    if named:
        return named
    candidates = [pathlib.Path(__file__).resolve().parent / FILE_NAME]
    candidates += [build / "simulator" / FILE_NAME for build in build_folders()]
    found = next((path for path in candidates if os.access(path, os.X_OK)), None) or shutil.which(FILE_NAME)
    if found is None:
        raise FileNotFoundError(f"there is no {FILE_NAME}: install the package harvlink-tools, or set HARVLINK_SIMULATOR")
    return str(found)


class Simulator:
    """A running virtual controller, on a loopback address of its own unless the options name one. It ends with `stop`, at the
    end of a `with` block, and with this process. Options are those of harvlink-sim, see `harvlink-sim --help`.

    Raises RuntimeError with the words of the program if it does not start.
    """

    def __init__(self, *options: str) -> None:
        self._options = options
        self._reader: Optional[threading.Thread] = None
        for address in self._addresses():
            self.address = address
            self._process = self._start()
            ready = self._output()
            if ": ready on " in ready:
                # Unread output would stop it as soon as the pipe is full.
                self._reader = threading.Thread(target=self._read_rest, name=FILE_NAME, daemon=True)
                self._reader.start()
                return
            self.stop()
            if "Address already in use" not in ready:
                break
        raise RuntimeError(f"{FILE_NAME} did not start: {ready.strip()}")

    def ctl(self, *words: Union[str, int]) -> str:
        """Drives the controller as `harvlink-sim ctl` does: `ctl("hold", "on")`. Raises ValueError with what is wrong."""
        with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as control:
            control.settimeout(_LONGEST_ANSWER)
            control.connect(f"\0harvlink-sim/{self.address}")
            control.send("\0".join(map(str, words)).encode())
            answer = control.recv(_LARGEST_ANSWER).decode()
        if not answer.startswith("+"):
            raise ValueError(answer[1:])
        return answer[1:]

    def alarm(self, code: int, subcode: int = 0, name: str = "Raised by a test") -> None:
        self.ctl("alarm", code, subcode, name)

    def reset(self) -> None:
        """Resets all alarms and the error."""
        self.ctl("reset")

    def signal(self, address: int, on: bool) -> None:
        """Sets a signal, an input too."""
        self.ctl("signal", address, _switch(on))

    def hold(self, on: bool = True) -> None:
        """Presses or releases hold on the pendant."""
        self.ctl("hold", _switch(on))

    def mode(self, name: str) -> None:
        """Turns the mode switch to "teach", "play" or "remote"."""
        self.ctl("mode", name)

    def servo(self, on: bool) -> None:
        self.ctl("servo", _switch(on))

    def fault(self, name: str, count: int = 1) -> None:
        """Lets a fault, such as "drop", hit the next requests."""
        self.ctl("fault", name, count)

    def faults(self, rates: str) -> None:
        """Sets rates as --faults does, such as "drop=2%"; "none" ends them."""
        self.ctl("faults", rates)

    def set(self, scene: str) -> None:
        """Sets what a scene sets, such as "variables.B.5 = 12"."""
        self.ctl("set", scene)

    def show(self) -> Any:
        """Mode, servo power, holds, alarms and counters, as a dictionary."""
        return json.loads(self.ctl("show"))

    def stop(self) -> None:
        """Ends it; a second call does nothing."""
        if self._process.poll() is None:
            self._process.terminate()
        try:
            self._process.wait(_LONGEST_END)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        if self._reader is not None:
            self._reader.join()
        if self._process.stdout is not None:
            self._process.stdout.close()

    def __enter__(self) -> "Simulator":
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], traceback: Optional[TracebackType]
    ) -> None:
        self.stop()

    def _addresses(self) -> Iterator[str]:
        """That of the options, or some of 127.0.0.0/8: with a bit of luck nobody else uses the first."""
        if "--address" in self._options:
            yield self._options[self._options.index("--address") + 1]
            return
        for _ in range(_TRIES):
            yield ".".join(["127", *(str(random.randint(2, 254)) for _ in range(3))])

    def _start(self) -> "subprocess.Popen[str]":
        given: List[str] = [] if "--address" in self._options else ["--address", self.address]
        command = [program(), *given, *self._options]
        if shutil.which("setpriv"):  # it ends even if this process is killed
            command = ["setpriv", "--pdeathsig", "TERM", *command]
        # A runtime that was loaded into this process is not for that program.
        environment = {key: value for key, value in os.environ.items() if key != "LD_PRELOAD"}
        return subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, env=environment
        )

    def _output(self) -> str:
        """All lines until it is ready or has ended."""
        text = ""
        assert self._process.stdout is not None
        for line in self._process.stdout:
            text += line
            if ": ready on " in line:
                break
        return text


    def _read_rest(self) -> None:
        assert self._process.stdout is not None
        for _ in self._process.stdout:
            pass


def _switch(on: bool) -> str:
    return "on" if on else "off"


def main() -> None:
    """The command harvlink-sim of an installed package."""
    with contextlib.suppress(BrokenPipeError):
        path = program()
        os.execv(path, [path, *sys.argv[1:]])
