#!/usr/bin/env python3
"""Measures what the gateway costs with many controllers: processor, memory, the time of a scrape, and what a broker carries.

    gateway_bench.py GATEWAY SIMULATOR [CONTROLLERS [SECONDS]] [--broker SECONDS]

The controllers are virtual ones in a process of their own, each with 20 items at 1 Hz, and /metrics is read every 5 s. With
--broker, a second gateway with 100 controllers that work sends to a mosquitto of its own, and a consumer counts. Prints JSON and
fails if a limit is exceeded: 35 % of a core, 150 MiB, 100 ms for /metrics, and, in a run of at least ten minutes, 2 % growth of
the memory. An hour of it:

    gateway_bench.py GATEWAY SIMULATOR 1000 3600
"""

import argparse
import contextlib
import json
import os
import pathlib
import signal
import socket
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.request

LIMITS = {"core_percent": 35.0, "resident_mib": 150.0, "metrics_ms": 100.0, "growth_percent": 2.0}
ITEMS = ["state", "job", "position R1 pulse", "position R1 base", "torque R1", "signal 10010 x 8", "B0..B4",
         "register 0..1"]
NETWORK = "127.130"
SCRAPES = 15
SCRAPE_PERIOD = 5.0  # seconds
LONG_RUN = 600.0  # seconds, from which on growth is more than noise
WORKING = 100  # controllers of the second gateway


def addresses(count):
    return [f"{NETWORK}.{i // 250}.{1 + i % 250}" for i in range(count)]


def config(port, count):
    controllers = "".join(f'[[controller]]\nname = "robot{i}"\nhost = "{address}"\npoll = "all"\n'
                          for i, address in enumerate(addresses(count)))
    return (f'[gateway]\nlisten = "127.0.0.1:{port}"\n[poll.all]\nperiod = "1s"\nitems = {json.dumps(ITEMS)}\n'
            + controllers)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def get(port, path):
    start = time.perf_counter()
    with urllib.request.urlopen(f"http://127.0.0.1:{port}{path}", timeout=60) as answer:
        text = answer.read()
    return text, 1000 * (time.perf_counter() - start)


def cpu_seconds(process):
    fields = pathlib.Path(f"/proc/{process}/stat").read_text(encoding="ascii").rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def resident_mib(process):
    pages = int(pathlib.Path(f"/proc/{process}/statm").read_text(encoding="ascii").split()[1])
    return pages * os.sysconf("SC_PAGE_SIZE") / 2**20


@contextlib.contextmanager
def running(arguments, word=None):
    output = subprocess.DEVNULL if word is None else subprocess.PIPE
    process = subprocess.Popen(arguments, stdout=output, stderr=subprocess.DEVNULL, text=True)
    try:
        line = process.stdout.readline() if word else ""
        if word and word not in line:
            sys.exit(f"{arguments[0]} did not start: {line}")
        yield process
    finally:
        process.terminate()
        process.wait(10)


def wait_online(port, count):
    end = time.monotonic() + 60
    while json.loads(get(port, "/health/live")[0])["online"] < count:
        if time.monotonic() > end:
            sys.exit("not all controllers are online after a minute")
        time.sleep(0.5)


def figure(port, name):
    return next(float(line.rsplit(None, 1)[1]) for line in get(port, "/metrics")[0].decode().splitlines()
                if line.startswith((name + " ", name + "{")))


def watch(port, process, seconds):
    """Scrapes for this long. Returns the resident memory at each scrape."""
    memory = []
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        get(port, "/metrics")
        memory.append(resident_mib(process.pid))
        time.sleep(max(0.0, min(SCRAPE_PERIOD, end - time.monotonic())))
    return memory


def measure(port, process, count, seconds):
    wait_online(port, count)
    watch(port, process, 15)  # what the start costs is not what running costs
    before = figure(port, "harvlink_gateway_samples_total"), cpu_seconds(process.pid), time.monotonic()
    memory = watch(port, process, seconds)
    elapsed = time.monotonic() - before[2]
    core = 100 * (cpu_seconds(process.pid) - before[1]) / elapsed
    rate = (figure(port, "harvlink_gateway_samples_total") - before[0]) / elapsed
    cpu, start = cpu_seconds(process.pid), time.monotonic()
    scrapes = [get(port, "/metrics") for _ in range(SCRAPES)]
    scraping = cpu_seconds(process.pid) - cpu - core / 100 * (time.monotonic() - start)
    text = scrapes[-1][0].decode()
    tenth = max(1, len(memory) // 10)
    first, last = statistics.median(memory[:tenth]), statistics.median(memory[-tenth:])
    return {"controllers": count, "items": 20, "seconds": round(elapsed), "samples_per_second": round(rate, 1),
            "core_percent": round(core, 1), "resident_mib": round(max(memory), 1),
            "growth_percent": round(100 * (last / first - 1), 2),
            "metrics_ms": round(statistics.median(taken for _, taken in scrapes), 1),
            "metrics_cpu_ms": round(1000 * scraping / SCRAPES, 1), "metrics_bytes": len(text),
            "series": sum(not line.startswith("#") for line in text.splitlines())}


def measure_idle(arguments, folder):
    port = free_port()
    file = folder / "plant.toml"
    file.write_text(config(port, arguments.controllers), encoding="utf-8")
    with running([arguments.simulator, "--address", *addresses(arguments.controllers)], "ready"), \
            running([arguments.gateway, "--config", str(file)], "ready") as process:
        return measure(port, process, arguments.controllers, arguments.seconds)


def measure_broker(arguments, folder):
    """What a broker carries of controllers that move: payloads as a consumer gets them, and its processor time."""
    broker_port, port = free_port(), free_port()
    (folder / "mosquitto.conf").write_text(f"listener {broker_port} 127.0.0.1\nallow_anonymous true\n", encoding="ascii")
    (folder / "broker.toml").write_text(
        f'[gateway]\nlisten = "127.0.0.1:{port}"\n[mqtt]\nbroker = "127.0.0.1:{broker_port}"\ngroup = "bench"\n'
        f'state_folder = "{folder}"\n', encoding="utf-8")
    with running(["mosquitto", "-c", str(folder / "mosquitto.conf")]) as broker, \
            running([arguments.gateway, "--config", str(folder / "broker.toml"), "--simulate", str(WORKING)], "ready"):
        wait_online(port, WORKING)
        time.sleep(10)  # births
        values, cpu, start = figure(port, 'harvlink_mqtt_values_sent_total'), cpu_seconds(broker.pid), time.monotonic()
        consumer = subprocess.Popen(["mosquitto_sub", "-p", str(broker_port), "-t", "spBv1.0/+/DDATA/#", "-F", "%l"],
                                    stdout=subprocess.PIPE, text=True)
        time.sleep(arguments.broker)
        consumer.send_signal(signal.SIGINT)
        lengths = [int(line) for line in consumer.communicate()[0].split()]
        elapsed = time.monotonic() - start
        core = 100 * (cpu_seconds(broker.pid) - cpu) / elapsed
        values = figure(port, 'harvlink_mqtt_values_sent_total') - values
    return {"controllers": WORKING, "seconds": round(elapsed), "messages_per_second": round(len(lengths) / elapsed, 1),
            "kilobytes_per_second": round(sum(lengths) / elapsed / 1000, 1), "values_per_second": round(values / elapsed, 1),
            "broker_core_percent": round(core, 1)}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("gateway")
    parser.add_argument("simulator")
    parser.add_argument("controllers", type=int, nargs="?", default=1000)
    parser.add_argument("seconds", type=float, nargs="?", default=30.0)
    parser.add_argument("--broker", type=float, metavar="SECONDS", help="measure a broker too, for this long")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        result = measure_idle(arguments, pathlib.Path(name))
        if arguments.broker:
            result["broker"] = measure_broker(arguments, pathlib.Path(name))
    print(json.dumps(result))
    limits = LIMITS if arguments.seconds >= LONG_RUN else {key: LIMITS[key] for key in LIMITS if key != "growth_percent"}
    exceeded = [key for key, limit in limits.items() if result[key] > limit]
    if exceeded:
        sys.exit(f"over the limit: {', '.join(exceeded)}")


if __name__ == "__main__":
    main()
