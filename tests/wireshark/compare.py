#!/usr/bin/env python3
"""compare.py TSHARK DISSECTOR SIMULATOR DEMO: runs the demo against a virtual controller that records, and compares the
fields that the dissector shows with the bytes of each datagram."""

import pathlib
import struct
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADER = struct.Struct("<4sHHBBBBI8s")
REQUEST = struct.Struct("<HHBB")
REPLY = struct.Struct("<BBBxH")
# The place of the axes in a payload, by direction and command.
AXES = {
    **{("request", command): f"<4x{'8x8i32x' * 4}4x" for command in (842,)},
    **{("request", command): "<24x8i" for command in (866, 868, 869)},
    **{("reply", command): "<16x8i" for command in (829, 866, 868, 869)},
    **{("reply", command): "<8i" for command in (118, 119)},
    ("reply", 117): "<20x8i",
}
FIELDS = (
    *("udp.payload", "udp.dstport", "harvlink.payload_size", "harvlink.request_id", "harvlink.block"),
    *("harvlink.command", "harvlink.instance", "harvlink.attribute", "harvlink.service", "harvlink.file_service"),
    *("harvlink.status", "harvlink.added_status", "harvlink.code", "harvlink.status_text"),
    *("harvlink.request_in", "harvlink.reply_in", "harvlink.file_name", "harvlink.file_data", "harvlink.data.job"),
    *("harvlink.data.axis", "_ws.col.Info", "harvlink.wrong_size", "harvlink.extra_data", "_ws.lua.error", "_ws.malformed"),
)


def record(simulator, demo, folder):
    capture = folder / "demo.pcap"
    run = [ROOT / "examples/run-with-simulator", simulator, "--groups", "R1,B1,S1", "--pcap", capture, "--", demo, "ADDRESS"]
    subprocess.run(run, cwd=folder, check=True, stdout=subprocess.DEVNULL)
    return capture


# Two passes (-2), because a request refers to a reply that comes later.
def show(tshark, dissector, capture):
    options = [option for field in FIELDS for option in ("-e", field)]
    command = [tshark, "-2", "-n", "-X", f"lua_script:{dissector}", "-r", capture, "-T", "fields", "-E", "aggregator=|", *options]
    shown = subprocess.run(command, check=True, capture_output=True, text=True, encoding="latin-1")
    assert "lua" not in shown.stderr.lower(), shown.stderr
    return [dict(zip(FIELDS, line.split("\t"))) for line in shown.stdout.splitlines()]


def expected(frame):
    """The fields of a datagram, taken from its bytes."""
    datagram = bytes.fromhex(frame["udp.payload"])
    _, _, size, _, division, ack, number, block, _ = HEADER.unpack_from(datagram)
    fields = {"harvlink.payload_size": size, "harvlink.request_id": number, "harvlink.block": block & 0x7FFFFFFF}
    text = datagram[32:].split(b"\0")[0].decode("latin-1")
    to_controller = frame["udp.dstport"] in ("10040", "10041")
    if to_controller:
        command, instance, attribute, service = REQUEST.unpack_from(datagram, 24)
        if division == 1:
            fields.update({"harvlink.command": command, "harvlink.instance": instance, "harvlink.attribute": attribute})
            fields["harvlink.service"] = service
        else:
            fields["harvlink.file_service"] = service
    else:
        _, status, _, added = REPLY.unpack_from(datagram, 24)
        fields.update({"harvlink.status": status, "harvlink.added_status": added})
    axes = AXES.get(("request" if to_controller else "reply", int(frame["harvlink.command"] or 0)))
    if axes and size == struct.calcsize(axes):
        fields["harvlink.data.axis"] = "|".join(map(str, struct.unpack_from(axes, datagram, 32)))
    if division == 2:
        fields["harvlink.file_data" if ack or not to_controller else "harvlink.file_name"] = text
    return fields


def check(frames):
    for number, frame in enumerate(frames, 1):
        for name, value in expected(frame).items():
            shown = frame[name]
            if not isinstance(value, str):
                shown = int(shown, 0)
            else:
                # tshark escapes line ends and similar characters.
                value, shown = value.split("\r")[0], shown.split("\\r")[0]
            assert shown == value, f"frame {number}: {name} is {shown!r}, but the datagram has {value!r}: {frame}"
        for problem in FIELDS[-4:]:
            assert not frame[problem], f"frame {number}: {problem}: {frame}"


def check_exchanges(frames):
    """Each reply refers to its request and shows the same command."""
    replies = [(number, frame) for number, frame in enumerate(frames, 1) if frame["harvlink.status"]]
    assert len(replies) > 200, f"only {len(replies)} replies"
    for number, frame in replies:
        request = frames[int(frame["harvlink.request_in"]) - 1]
        assert request["harvlink.reply_in"] == str(number), f"frame {number}: its request refers to another reply"
        for name in ("harvlink.request_id", "harvlink.command"):
            assert request[name] == frame[name], f"frame {number}: {name} differs from that of its request"


def check_words(frames):
    words = [frame["_ws.col.Info"] for frame in frames]
    for wanted in (
        *("RobotPositionRead, instance ", "JobSelect, instance 1, WriteAll", "MotionSendTarget, instance 0, WriteAll"),
        *("SaveFile block 1", ", the last", "ListFile *", "DeleteFile ", "refused with "),
    ):
        assert any(wanted in info for info in words), f"no datagram shows {wanted!r}"
    refused = {frame["harvlink.status_text"] for frame in frames if frame["harvlink.status"] not in ("", "0")}
    assert refused and "no text for this code" not in refused, refused
    assert any(frame["harvlink.data.axis"].count("|") == 7 for frame in frames), "no position is shown"


def main(tshark, dissector, simulator, demo):
    with tempfile.TemporaryDirectory() as folder:
        frames = show(tshark, dissector, record(simulator, demo, pathlib.Path(folder)))
    check(frames)
    check_exchanges(frames)
    check_words(frames)
    print(f"{len(frames)} datagrams are shown correctly")


if __name__ == "__main__":
    main(*sys.argv[1:])
