#!/usr/bin/env python3
"""Writes the committed corpora of the fuzzers with binary input. The texts in fuzz/corpus are edited by hand.

Usage: fuzz/make_seeds.py [CAPTURE [LENGTH]]

The requests come from a capture of the tests' traffic, LENGTH requests for each seed. To make a capture, run
tshark -i lo -f 'udp portrange 10040-10041' -w CAPTURE while the tests run.
"""
import struct
import subprocess
import sys
from pathlib import Path

CORPUS = Path(__file__).resolve().parent / "corpus"
FS, YA = 2, 3
HONEST = struct.pack("<BHH", 0, 0, 0)
BENT = struct.pack("<BHH", 0, 12, 36) + bytes(36)  # with zeros, which change nothing: from the block number into the payload
LAST_BLOCK = 0x80000000


def write(fuzzer, name, content):
    (CORPUS / fuzzer).mkdir(parents=True, exist_ok=True)
    (CORPUS / fuzzer / name).write_bytes(content)


def replies():
    """Each operation, the opening of a connection and the sending of targets, with correct answers."""
    for number in range(300):  # more than there are; those behind the last are the others
        write("replies", f"{number:03}", struct.pack("<HBB", number, 0, number % 3) + BENT * 4)
    for generation in (FS, YA):
        for number in range(0xFFF0, 0xFFF3):
            motion = struct.pack("<BBBBhd", 1, 49, 50, 0, 0, 100.0)
            write("replies", f"{number:04x}-{generation}", struct.pack("<HBB", number, generation, 0)
                  + (b"" if number % 3 == 0 else motion) + HONEST * 40)


def file_blocks():
    for size, losses in ((0, 0), (1, 0), (479, 0), (480, 0), (1200, 0), (1200, 4), (958, 32)):
        for direction in (0, 1):
            content = struct.pack("<BI", direction, losses) + b"0123456789\n" * (size // 11) + b"." * (size % 11)
            write("file_blocks", f"load-{direction}-{size}-{losses}", content)

    def block(number, text, status=0, added=0):
        return struct.pack("<IBBBBHHH", number, 0x96, status, 2 if added else 0, 0, added, 0, len(text)) + text

    write("file_blocks", "save-one", b"\2" + block(LAST_BLOCK | 1, b"text\r\n"))
    write("file_blocks", "save-three", b"\2" + block(1, b"a" * 479) + block(2, b"b\0c") + block(LAST_BLOCK | 3, b""))
    write("file_blocks", "save-refused", b"\2" + block(1, b"a" * 479) + block(2, b"", 0x1F, 0xA001))


def captures():
    """A request and its answer, in each of the link layers, in the classic format and in the new one."""
    header = struct.pack("<4sHHBBBBI8s", b"TROZ", 32, 0, 3, 1, 0, 7, 0, b"99999999")
    request = header + struct.pack("<HHBBH", 122, 5, 1, 0x0E, 0)
    answer = header[:6] + b"\1" + header[7:] + struct.pack("<BBBBHH", 0x8E, 0, 0, 0, 0, 0) + b"\x11"

    def ip(source, target, payload):
        udp = struct.pack(">HHHH", source, target, 8 + len(payload), 0) + payload
        return struct.pack(">BBHHHBBHII", 0x45, 0, 20 + len(udp), 1, 0, 64, 17, 0, source, target) + udp

    packets = (ip(50000, 10040, request), ip(10040, 50000, answer))
    before = {0: b"\2\0\0\0", 1: bytes(12) + b"\x81\0\0\7\x08\0", 101: b"", 113: bytes(14) + b"\x08\0",
              276: b"\x08\0" + bytes(18)}
    for link, front in before.items():
        content = struct.pack("<IHHIIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, link)
        for packet in packets:
            size = len(front + packet)
            content += struct.pack("<IIII", 1790000000, 5, size, size) + front + packet
        write("capture", f"classic-{link}", content)

    def block(kind, body):
        body += bytes(-len(body) % 4)
        return struct.pack("<II", kind, len(body) + 12) + body + struct.pack("<I", len(body) + 12)

    content = block(0x0A0D0D0A, struct.pack("<IIQ", 0x1A2B3C4D, 1, 2**64 - 1)) + block(1, struct.pack("<II", 101, 65535))
    for packet in packets:
        content += block(6, struct.pack("<IIIII", 0, 416760, 1, len(packet), len(packet)) + packet)
    write("capture", "new", content)


def requests(capture, length):
    """The requests in their order, without repetitions. Leaves out a seed that has no new kind of request."""
    fields = ["tshark", "-r", capture, "-T", "fields", "-e", "udp.dstport", "-e", "udp.payload"]
    lines = subprocess.run(fields, capture_output=True, text=True, check=True).stdout.split()
    sent = [(port, bytes.fromhex(payload)) for port, payload in zip(lines[::2], lines[1::2])
            if port in ("10040", "10041") and payload.startswith(b"TROZ".hex()) and len(payload) >= 64]
    sent = [now for before, now in zip([None, *sent], sent) if not before or before[1][12:] != now[1][12:]]
    seen = set()
    for start in range(0, len(sent), length):
        some = sent[start:start + length]
        kinds = {(port, datagram[24:26], datagram[29], datagram[10], len(datagram)) for port, datagram in some}
        if not kinds <= seen:
            seen |= kinds
            time = 6 << 1  # a pause of some milliseconds after each datagram
            content = b"".join(struct.pack("<BH", time | int(port == "10041"), len(datagram)) + datagram
                               for port, datagram in some)
            write("requests", f"{length}-{start:05}", struct.pack("<B", YA) + content)


if __name__ == "__main__":
    replies()
    file_blocks()
    captures()
    if len(sys.argv) > 1:
        requests(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 5)
