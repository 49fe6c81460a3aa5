#!/usr/bin/env python3
"""Changes values of virtual controllers each second, through the socket that harvlink-sim ctl uses, until its input ends.

    writer.py PREFIX COUNT      D000 counts up in all; S000 and P001 in one of SHARE in turn, which a line of the input sets, at first 1
"""

import os
import select
import socket
import sys
import time


def tell(address, text):
    with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as control:
        control.settimeout(30)
        control.connect(f"\0harvlink-sim/{address}")
        control.send(f"set\0{text}".encode())
        answer = control.recv(65536)
        if not answer.startswith(b"+"):
            raise RuntimeError(answer.decode())


def main():
    addresses = [f"{sys.argv[1]}{place // 250}.{1 + place % 250}" for place in range(int(sys.argv[2]))]
    second, share, due = 0, 1, time.monotonic()
    while True:
        if select.select([sys.stdin], [], [], max(0.0, due - time.monotonic()))[0]:
            line = os.read(0, 100)
            if not line:
                return
            share = int(line)
            continue
        due = max(due + 1.0, time.monotonic())
        second += 1
        for place, address in enumerate(addresses):
            tell(address, f"variables.D.0 = {second}")
            if place % share == second % share:
                tell(address, f'variables.S.0 = "part {second}"')
                tell(address, f'variables.P.1 = {{ type = "base", axes = {[second + axis / 8 for axis in range(6)]} }}')


if __name__ == "__main__":
    main()
