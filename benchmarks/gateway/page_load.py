#!/usr/bin/env python3
"""Measures what open pages cost a gateway: processor and memory, and against bare libwebsockets that sends the same bytes.

    page_load.py GATEWAY BROADCAST [PAGES [CONTROLLERS [SECONDS]]]

The gateway watches virtual controllers at 10 Hz. Half of the pages show the overview, each other one a controller of its own.
What the gateway takes without a page is subtracted. Prints a line of JSON for each figure, as script/bench_report.py reads it.
"""

import base64
import json
import os
import pathlib
import selectors
import socket
import statistics
import struct
import subprocess
import sys
import tempfile
import time
import urllib.request

TEXT, PING, PONG = 1, 9, 10  # kinds of frames
ROUNDS = 3
LISTENER = "http"  # the thread that does all the work for pages; what the others take varies by more than that
SETTLE = 3.0  # seconds: what the first picture costs is not what an open page costs


class Client:
    """One open page: takes whatever comes. It keeps the messages if it is to record them."""

    def __init__(self, port, watch, records=False):
        self.socket = socket.create_connection(("127.0.0.1", port), timeout=20)
        self.messages, self.bytes, self.pending = ([] if records else None), 0, b""
        key = base64.b64encode(os.urandom(16)).decode()
        self.socket.sendall((f"GET /api/live HTTP/1.1\r\nHost: 127.0.0.1:{port}\r\nUpgrade: websocket\r\n"
                             f"Connection: Upgrade\r\nSec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n"
                             f"Origin: http://127.0.0.1:{port}\r\n\r\n").encode())
        head = b""
        while b"\r\n\r\n" not in head:
            head += self.socket.recv(1)
        if b" 101 " not in head.split(b"\r\n")[0]:
            sys.exit(f"the WebSocket was refused: {head.decode(errors='replace')}")
        if watch:
            self.send(json.dumps({"watch": [watch]}).encode())
        self.socket.setblocking(False)

    def send(self, text, kind=TEXT):
        mask = os.urandom(4)
        masked = bytes(byte ^ mask[i % 4] for i, byte in enumerate(text))
        length = bytes([0x80 | len(text)]) if len(text) < 126 else bytes([0xFE]) + struct.pack(">H", len(text))
        self.socket.sendall(bytes([0x80 | kind]) + length + mask + masked)

    def take(self):
        try:
            part = self.socket.recv(1 << 18)
        except BlockingIOError:
            return
        if not part:
            sys.exit("the server has closed a page")
        self.bytes += len(part)
        self.pending += part
        while self.take_frame():
            pass

    def take_frame(self):
        pending = self.pending
        size = pending[1] & 0x7F if len(pending) > 1 else 0
        start = {126: 4, 127: 10}.get(size, 2)
        if len(pending) < start:
            return False
        size = size if start == 2 else int.from_bytes(pending[2:start], "big")
        if len(pending) < start + size:
            return False
        content, self.pending, kind = pending[start:start + size], pending[start + size:], pending[0] & 0x0F
        if kind == PING:
            self.send(content, PONG)
        elif kind == TEXT and self.messages is not None:
            self.messages.append((time.monotonic(), content))
        return True


def read_for(clients, seconds):
    with selectors.DefaultSelector() as selector:
        for client in clients:
            selector.register(client.socket, selectors.EVENT_READ, client)
        end = time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0:
            for key, _ in selector.select(left):
                key.data.take()


def cpu_seconds(process, thread=None):
    """Of all threads, or of the one with this name. From the scheduler: the ticks of stat are too coarse for a per cent."""
    tasks = pathlib.Path(f"/proc/{process.pid}/task").iterdir()
    return sum(int((task / "schedstat").read_text().split()[0])
               for task in tasks if thread in (None, (task / "comm").read_text().strip())) / 1e9


def resident_mib(process):
    return int(pathlib.Path(f"/proc/{process.pid}/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE") / 2**20


def core_percent(processes, clients, seconds, thread=None):
    def spent():
        return sum(cpu_seconds(process, thread) for process in processes)

    before, began = spent(), time.monotonic()
    read_for(clients, seconds)
    return 100 * (spent() - before) / (time.monotonic() - began)


def start(*arguments):
    process = subprocess.Popen(arguments, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    if "ready" not in (line := process.stdout.readline()):
        sys.exit(f"{arguments[0]} did not start: {line}")
    return process


def stop(process):
    process.terminate()
    process.wait(20)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def open_pages(port, watches, recorded=()):
    return [Client(port, watch, index in recorded) for index, watch in enumerate(watches)]


def close(clients):
    for client in clients:
        client.socket.close()


def rounds_of(messages, since):
    """The messages by tenths of a second, as harvlink_broadcast reads them."""
    rounds = {}
    for moment, message in messages:
        if moment >= since:
            rounds.setdefault(int((moment - since) * 10), []).append(message)
    return b"".join(b"".join(line + b"\n" for line in rounds.get(i, [])) + b"\n" for i in range(max(rounds) + 1))


def measure_gateway(program, pages, controllers, seconds, folder):
    port = free_port()
    file = pathlib.Path(folder) / "plant.toml"
    file.write_text(f'[gateway]\nlisten = "127.0.0.1:{port}"\n', encoding="utf-8")
    gateway = start(program, "--config", str(file), "--simulate", str(controllers))
    try:
        with urllib.request.urlopen(f"http://127.0.0.1:{port}/api/controllers", timeout=60) as answer:
            names = [each["name"] for each in json.load(answer)]
        watches = [names[i % len(names)] if i % 2 else None for i in range(pages)]
        time.sleep(SETTLE)
        memory, costs, sent = resident_mib(gateway), [], []
        for _ in range(ROUNDS):
            idle = core_percent([gateway], [], seconds, LISTENER)
            clients = open_pages(port, watches, recorded=(0, 1))
            read_for(clients, SETTLE)
            since, before = time.monotonic(), sum(client.bytes for client in clients)
            costs.append(core_percent([gateway], clients, seconds, LISTENER) - idle)
            sent.append((sum(client.bytes for client in clients) - before) / seconds)
            memory_open = resident_mib(gateway)
            close(clients)
        kinds = [rounds_of(client.messages, since) for client in clients[:2]]
    finally:
        stop(gateway)
    return statistics.median(costs), memory_open - memory, statistics.median(sent), kinds


def measure_bare(program, pages, kinds, seconds, folder):
    """Half of the pages get what a page with the overview got, the others what a page with a controller got."""
    servers, clients = [], []
    try:
        for kind, messages in enumerate(kinds):
            file = pathlib.Path(folder) / f"messages-{kind}"
            file.write_bytes(messages)
            port = free_port()
            servers.append(start(program, str(port), str(file)))
            clients += open_pages(port, [None] * (pages // 2))
        read_for(clients, SETTLE)
        costs, sent = [], []
        for _ in range(ROUNDS):
            before = sum(client.bytes for client in clients)
            costs.append(core_percent(servers, clients, seconds))
            sent.append((sum(client.bytes for client in clients) - before) / seconds)
        close(clients)
    finally:
        for server in servers:
            stop(server)
    return statistics.median(costs), statistics.median(sent)


def row(case, unit, value, comparison, target, floor=None):
    gated = value if floor is None else value / floor
    met = gated <= target
    print(json.dumps({"case": case, "unit": unit, "floor": None if floor is None else round(floor, 2),
                      "value": round(value, 2), "gated": None if floor is None else round(gated, 2),
                      "comparison": comparison, "target": target}))
    return met


def main():
    gateway, broadcast = sys.argv[1:3]
    pages, controllers = (int(sys.argv[i]) if len(sys.argv) > i else default for i, default in ((3, 100), (4, 200)))
    seconds = float(sys.argv[5]) if len(sys.argv) > 5 else 10.0
    with tempfile.TemporaryDirectory() as folder:
        core, memory, sent, kinds = measure_gateway(gateway, pages, controllers, seconds, folder)
        bare, bare_sent = measure_bare(broadcast, pages, kinds, seconds, folder)
    print(f"{pages} pages, {controllers} controllers: {sent / 1e6:.2f} MB/s, bare {bare_sent / 1e6:.2f} MB/s", file=sys.stderr)
    bare *= sent / bare_sent  # a machine with other work keeps neither pace
    name = f"{pages} pages, {controllers} controllers at 10 Hz"
    met = [row(f"{name}: processor more", "% of a core", core, "<=", 20),
           row(f"{name}: memory more", "MiB", memory, "<=", 20),
           row(f"{name}: processor against bare libwebsockets", "% of a core", core, "<=", 1.5, bare)]
    sys.exit(0 if all(met) else 3)


if __name__ == "__main__":
    main()
