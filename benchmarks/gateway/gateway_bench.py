#!/usr/bin/env python3
"""Measures what the gateway costs with many controllers: processor, memory, the time of a scrape.

    gateway_bench.py GATEWAY SIMULATOR [CONTROLLERS [SECONDS]]

The controllers are virtual ones in a process of their own, each with 20 items at 1 Hz. Prints JSON and fails if a limit is
exceeded: 35 % of a core, 150 MiB, 100 ms for /metrics.
"""

import json
import os
import pathlib
import socket
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.request

LIMITS = {"core_percent": 35.0, "resident_mib": 150.0, "metrics_ms": 100.0}
ITEMS = ["state", "job", "position R1 pulse", "position R1 base", "torque R1", "signal 10010 x 8", "B0..B4",
         "register 0..1"]
NETWORK = "127.130"
SCRAPES = 15


def addresses(count):
    return [f"{NETWORK}.{i // 250}.{1 + i % 250}" for i in range(count)]


def config(port, count):
    controllers = "".join(f'[[controller]]\nname = "robot{i}"\nhost = "{address}"\npoll = "all"\n'
                          for i, address in enumerate(addresses(count)))
    return (f'[gateway]\nlisten = "127.0.0.1:{port}"\n[poll.all]\nperiod = "1s"\nitems = {json.dumps(ITEMS)}\n'
            + controllers)


def get(port, path):
    start = time.perf_counter()
    with urllib.request.urlopen(f"http://127.0.0.1:{port}{path}", timeout=60) as answer:
        text = answer.read()
    return text, 1000 * (time.perf_counter() - start)


def cpu_seconds(process):
    fields = pathlib.Path(f"/proc/{process}/stat").read_text(encoding="ascii").rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def resident_mib(process):
    return int(pathlib.Path(f"/proc/{process}/statm").read_text(encoding="ascii").split()[1]) * 4096 / 2**20


def start(arguments, word):
    process = subprocess.Popen(arguments, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    line = process.stdout.readline()
    if word not in line:
        sys.exit(f"{arguments[0]} did not start: {line}")
    return process


def wait_online(port, count):
    end = time.monotonic() + 60
    while json.loads(get(port, "/health/live")[0])["online"] < count:
        if time.monotonic() > end:
            sys.exit("not all controllers are online after a minute")
        time.sleep(0.5)


def samples(port):
    return next(float(line.split()[1]) for line in get(port, "/metrics")[0].decode().splitlines()
                if line.startswith("harvlink_gateway_samples_total "))


def measure(port, process, count, seconds):
    wait_online(port, count)
    time.sleep(5)  # what the start costs is not what running costs
    before = samples(port), cpu_seconds(process.pid), time.monotonic()
    time.sleep(seconds)
    elapsed = time.monotonic() - before[2]
    core = 100 * (cpu_seconds(process.pid) - before[1]) / elapsed
    rate = (samples(port) - before[0]) / elapsed
    scrapes = [get(port, "/metrics") for _ in range(SCRAPES)]
    return {"controllers": count, "samples_per_second": round(rate, 1), "core_percent": round(core, 1),
            "resident_mib": round(resident_mib(process.pid), 1),
            "metrics_ms": round(statistics.median(time for _, time in scrapes), 1),
            "metrics_bytes": len(scrapes[-1][0])}


def main():
    gateway, simulator = sys.argv[1:3]
    count = int(sys.argv[3]) if len(sys.argv) > 3 else 1000
    seconds = float(sys.argv[4]) if len(sys.argv) > 4 else 30.0
    with socket.socket() as probe, tempfile.TemporaryDirectory() as folder:
        probe.bind(("127.0.0.1", 0))
        port = probe.getsockname()[1]
        probe.close()
        file = pathlib.Path(folder) / "plant.toml"
        file.write_text(config(port, count), encoding="utf-8")
        plant = start([simulator, "--address", *addresses(count)], "ready")
        try:
            process = start([gateway, "--config", str(file)], "ready")
            try:
                result = measure(port, process, count, seconds)
            finally:
                process.terminate()
                process.wait(10)
        finally:
            plant.terminate()
            plant.wait(10)
    print(json.dumps(result))
    exceeded = [name for name, limit in LIMITS.items() if result[name] > limit]
    if exceeded:
        sys.exit(f"over the limit: {', '.join(exceeded)}")


if __name__ == "__main__":
    main()
