#!/usr/bin/env python3
"""A bad network for kernels without netem. It joins two network namespaces by a pair of tunnel interfaces and loses,
delays, doubles, reorders and damages the packets in both directions, as the options say.

    bad_network.py --join NAMESPACE ADDRESS/BITS... --join NAMESPACE ADDRESS/BITS... [--loss 5] [--delay 5 3] ...

Prints "ready" when packets pass, and after SIGTERM the number of lost packets and so on, as JSON. The receiving kernel
has to find a flipped bit by the checksum, which every packet of a tunnel interface has.
"""

import argparse
import fcntl
import heapq
import json
import os
import random
import select
import signal
import struct
import subprocess
import time

TUNSETIFF = 0x400454CA
IFF_TUN, IFF_NO_PI = 0x0001, 0x1000
MAX_PACKET = 65536


class Link:
    """One direction, from the interface that it reads to the interface that it writes."""

    def __init__(self, options, seed):
        self.options = options
        self.random = random.Random(seed)
        self.waiting = []
        self.order = 0
        self.counts = dict.fromkeys(("packets", "lost", "duplicated", "reordered", "corrupted"), 0)

    def happens(self, percent, name):
        happens = self.random.uniform(0, 100) < percent
        self.counts[name] += happens
        return happens

    def take(self, packet, now):
        self.counts["packets"] += 1
        copies = 2 if self.happens(self.options.duplicate, "duplicated") else 1
        if self.happens(self.options.loss, "lost"):
            copies -= 1
        for _ in range(copies):
            self.put(packet, now)

    def put(self, packet, now):
        if self.happens(self.options.corrupt, "corrupted"):
            packet = bytearray(packet)
            packet[self.random.randrange(len(packet))] ^= 1 << self.random.randrange(8)
        mean, spread = self.options.delay
        delay = max(0.0, self.random.uniform(mean - spread, mean + spread)) / 1000
        # A packet that does not wait overtakes the others.
        if self.happens(self.options.reorder, "reordered"):
            delay = 0.0
        self.order += 1
        heapq.heappush(self.waiting, (now + delay, self.order, bytes(packet)))

    def due(self, now):
        while self.waiting and self.waiting[0][0] <= now:
            yield heapq.heappop(self.waiting)[2]


def make_interface(name, namespace, addresses):
    tunnel = os.open("/dev/net/tun", os.O_RDWR | os.O_NONBLOCK)
    fcntl.ioctl(tunnel, TUNSETIFF, struct.pack("16sH", name.encode(), IFF_TUN | IFF_NO_PI))
    subprocess.run(["ip", "link", "set", name, "netns", namespace], check=True)
    inside = ["ip", "-n", namespace]
    for address in addresses:
        subprocess.run([*inside, "address", "add", address, "dev", name], check=True)
    subprocess.run([*inside, "link", "set", name, "up"], check=True)
    return tunnel


def send(tunnel, packet):
    try:
        os.write(tunnel, packet)
    except OSError:
        pass  # the packet is lost if the kernel does not take it at once or can't read it any more


def relay(tunnels, links):
    poller = select.poll()
    for tunnel in tunnels:
        poller.register(tunnel, select.POLLIN)
    while True:
        pending = [link.waiting[0][0] for link in links if link.waiting]
        wait = max(0.0, min(pending) - time.monotonic()) * 1000 if pending else None
        for tunnel, _ in poller.poll(wait):
            links[tunnels.index(tunnel)].take(os.read(tunnel, MAX_PACKET), time.monotonic())
        now = time.monotonic()
        for link, other in zip(links, reversed(tunnels)):
            for packet in link.due(now):
                send(other, packet)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--join", nargs="+", action="append", required=True)
    parser.add_argument("--loss", type=float, default=0)
    parser.add_argument("--delay", type=float, nargs=2, default=(0, 0), help="mean and spread in ms")
    parser.add_argument("--duplicate", type=float, default=0)
    parser.add_argument("--reorder", type=float, default=0)
    parser.add_argument("--corrupt", type=float, default=0)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: exit_now())

    tunnels = [make_interface(f"bad{i}", join[0], join[1:]) for i, join in enumerate(options.join)]
    links = [Link(options, options.seed + i) for i in range(len(tunnels))]
    print("ready", flush=True)
    try:
        relay(tunnels, links)
    except SystemExit:
        total = {name: sum(link.counts[name] for link in links) for name in links[0].counts}
        print(json.dumps(total), flush=True)
        raise


def exit_now():
    raise SystemExit(0)


if __name__ == "__main__":
    main()
