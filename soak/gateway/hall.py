"""One gateway with its virtual controllers, for the soak of gateways."""

import os
import pathlib
import re
import signal
import struct
import subprocess
import sys
import time
import urllib.error
import urllib.request

FOLDER = pathlib.Path(__file__).resolve().parent
VALUES_PER_SECOND = 5000  # as consumer.js knows
PREFIX = "127.9{}."  # of the addresses of a hall's controllers


def wait_for(condition, what, seconds):
    """Returns how long it took."""
    begin = time.monotonic()
    while not condition():
        if time.monotonic() > begin + seconds:
            raise AssertionError(f"waited {seconds:.0f} s in vain for {what}")
        time.sleep(0.05)
    return time.monotonic() - begin


class Hall:
    """All of its programs run behind `prefix`, the words that lead into its network namespace."""

    def __init__(self, number, size, programs, folder, broker, listen, prefix=()):
        self.name, self.number, self.size = f"gw{number}", number, size
        self.programs, self.broker, self.listen, self.prefix = programs, broker, listen, list(prefix)
        self.folder = folder / self.name
        self.folder.mkdir(parents=True)
        self.recording = self.folder / "plant.harvlink"
        self.store = self.folder / "store"
        self.shift = self.folder / "shift"
        self.shift.write_bytes(struct.pack("q", 0))
        self.excused = []  # from when to when a killed gateway may have lost what it read, in microseconds
        self.log = open(self.folder / "log", "ab")
        self.gateway = None
        addresses = [f"{PREFIX.format(number)}{place // 250}.{1 + place % 250}" for place in range(size)]
        self.simulator = subprocess.Popen(
            [*self.prefix, programs / "simulator/harvlink-sim", *(word for one in addresses for word in ("--address", one))],
            stdout=subprocess.PIPE, stderr=self.log)
        line = self.simulator.stdout.readline()
        assert b"ready" in line, line
        self.writer = subprocess.Popen([*self.prefix, sys.executable, FOLDER / "writer.py", PREFIX.format(number), str(size)],
                                       stdin=subprocess.PIPE, stderr=self.log)

    def configure(self, store_size):
        controllers = [(f"{self.name}a{{n}}", f"{PREFIX.format(self.number)}0.[1-{min(250, self.size)}]")]
        if self.size > 250:
            controllers.append((f"{self.name}b{{n}}", f"{PREFIX.format(self.number)}1.[1-{self.size - 250}]"))
        tables = "".join(f'[[controller]]\nname = "{name}"\nhost = "{host}"\npoll = ["fast", "slow"]\n' for name, host in controllers)
        (self.folder / "plant.toml").write_text(f"""
[gateway]
name = "{self.name}"
listen = "{self.listen}"
open = true
[poll.fast]
period = "1s"
items = ["D0", "P1"]
[poll.slow]
period = "5s"
items = ["state", "S0"]
{tables}
[mqtt]
broker = "{self.broker}"
group = "Soak"
node = "{self.name}"
primary_host = "scada"
keep_alive = "5s"
[mqtt.store]
folder = "{self.store}"
max_size = "{store_size}"
values_per_second = {VALUES_PER_SECOND}
[recording]
file = "{self.recording}"
""", encoding="utf-8")

    def start(self):
        environment = {**os.environ, "LD_PRELOAD": str(self.programs / "soak/libharvlink_shifted_clock.so"),
                       "HARVLINK_CLOCK_SHIFT": str(self.shift)}
        self.gateway = subprocess.Popen([*self.prefix, "env", f"LD_PRELOAD={environment['LD_PRELOAD']}",
                                         self.programs / "gateway/harvlink-gateway", "--config", self.folder / "plant.toml"],
                                        stdout=subprocess.PIPE, stderr=self.log,
                                        env={key: value for key, value in environment.items() if key != "LD_PRELOAD"})
        line = self.gateway.stdout.readline()
        assert b"ready" in line, f"{self.name} does not start, see {self.log.name}"

    def now(self):
        """As this gateway reads the clock, in microseconds."""
        return int((time.time() + struct.unpack("q", self.shift.read_bytes())[0]) * 1e6)

    def shift_clock(self, seconds):
        with open(self.shift, "r+b") as file:
            file.write(struct.pack("q", seconds))

    def kill(self, tolerance):
        self.gateway.kill()
        self.gateway.wait()
        self.excused.append((self.now() - int(tolerance * 1e6), self.now()))

    def stop(self):
        """Returns how long it took."""
        begin = time.monotonic()
        self.gateway.send_signal(signal.SIGTERM)
        assert self.gateway.wait(60) == 0, f"{self.name} ends with {self.gateway.returncode}"
        return time.monotonic() - begin

    def flip_bytes(self):
        """Returns how many."""
        flipped = 0
        for file in sorted(self.store.glob("*.entries")):
            content = bytearray(file.read_bytes())
            for place in range(5000, len(content), 50_000):
                content[place] ^= 0xFF
                flipped += 1
            file.write_bytes(content)
        return flipped

    def figure(self, name):
        try:
            with urllib.request.urlopen(f"http://{self.listen}/metrics", timeout=20) as answer:
                found = re.search(rf"^{name}(?:{{[^}}]*}})? (\S+)$", answer.read().decode(), re.MULTILINE)
        except (OSError, urllib.error.URLError):
            return None
        return float(found[1]) if found else None

    def memory(self):
        """In KiB."""
        status = pathlib.Path(f"/proc/{self.gateway.pid}/status").read_text(encoding="utf-8")
        return int(re.search(r"VmRSS:\s+(\d+)", status)[1])

    def end(self):
        for process in (self.gateway, self.writer, self.simulator):
            if process is not None:
                process.kill()
                process.wait()
        self.log.close()
