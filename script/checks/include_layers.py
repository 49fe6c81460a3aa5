#!/usr/bin/env python3
"""Fails on an include that points up. One table names for each room of the repository, which is a folder of its root, the
rooms that it may include, and for each folder of the room the other folders of the room that it may include. The table
itself must have no cycle, so two folders never include each other."""

import dataclasses
import graphlib
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


@dataclasses.dataclass
class Room:
    """What a room may include besides itself. A folder "*" stands for all that are not named. What lies in the room's own
    root puts the folders together: it may include all of them, and none of them includes it."""

    rooms: list
    folders: dict = dataclasses.field(default_factory=dict)


FLOORS = ["system", "status", "wire", "position"]
DEVICES = ["variables", "io", "controller", "files", "motion", "kinematics"]
VERBS = ["trajectory", "doctor", "explain", "watch", "snapshot", "recording", "completion"]

ROOMS = {
    "include": Room([], {"harvlink": []}),
    "src": Room(["include"], {
        "system": [],
        "status": ["system"],
        "wire": ["status", "system"],
        "position": ["wire", "status"],
        **{device: FLOORS for device in DEVICES},
        "connection": [*DEVICES, *FLOORS],
        "fleet": [*DEVICES, *FLOORS],
        "binding": [],
    }),
    "words": Room(["include"], {
        "text": [],
        "values": ["text"],
        "cards": ["text"],
        "settings": ["text", "values"],
    }),
    "recording": Room(["include", "words"], {
        "model": [],
        "store": ["model"],
        "read": ["store", "model"],
        "write": ["read", "store", "model"],
        "blackbox": ["write", "read", "store", "model"],
        "capture": ["model"],
        "forward": ["store", "model"],
        "fleet": ["model"],
    }),
    "simulator": Room(["include", "src", "recording"], {
        "base": [],
        "protocol": [],
        "faults": ["base", "protocol"],
        "model": ["base", "protocol"],
        "arm": ["model"],
        "jobs": ["base", "protocol", "model"],
        "files": ["base", "protocol", "model"],
        "motion": ["base", "protocol", "model", "arm"],
        "handlers": ["protocol", "model", "arm", "jobs", "files", "motion"],
        "controller": ["base", "protocol", "faults", "model", "jobs", "files", "motion", "handlers"],
        "replay": ["protocol", "model"],
        "scene": ["protocol", "model", "faults", "files", "controller"],
        "network": ["base", "protocol", "faults", "controller"],
        "control": ["base", "protocol", "faults", "model", "arm", "motion", "controller", "scene"],
        "program": ["base", "protocol", "faults", "model", "arm", "jobs", "files", "motion", "handlers", "controller",
                    "replay", "scene", "network", "control"],
    }),
    "page": Room([]),
    "cli": Room(["include", "words", "recording", "page"], {
        "output": [],
        "program": ["output"],
        **{verb: ["program", "output"] for verb in VERBS},
        "verbs": [*VERBS, "program", "output"],
    }),
    "gateway": Room(["include", "words", "recording", "simulator", "page"], {
        "model": [],
        "config": ["model"],
        "watch": ["config", "model"],
        "history": ["config", "model"],
        "sparkplug": ["config", "model"],
        "prometheus": ["watch", "config", "model"],
        "http": ["watch", "history", "config", "model"],
        "program": ["http", "prometheus", "sparkplug", "history", "watch", "config", "model"],
    }),
    "examples": Room(["include"], {"demo": [], "c": []}),
    "soak": Room(["include"]),
    "tools": Room(["include", "src"], {"wireshark": []}),
    "fuzz": Room(["include", "src", "words", "recording", "simulator", "cli", "gateway", "tests"]),
    "benchmarks": Room(["include", "src", "recording", "simulator", "gateway"], {
        "support": [],
        "cases": ["support"],
        "micro": [],
        "recording": [],
    }),
    "tests": Room(["include", "src", "words", "recording", "simulator", "cli", "gateway"], {
        "support": [],
        "controller": ["support", "wire"],
        "*": ["support"],
    }),
}

# A folder sees one file of another one that it sees nothing else of.
DOORS = {
    ("src/io", "src/variables/VariableFunctions.h"),
    # To wait for a target is to read state, alarms and position.
    *(("src/motion", f"src/controller/{subject}Requests.h") for subject in ("State", "Alarm", "Position")),
}

# The virtual controller shares the wire formats with the library and nothing else.
WIRE_FORMATS = re.compile(
    r"src/(wire/(Packets|CommandNumber|WireInteger|GroupAddress|\w+Message)"
    r"|position/\w+"
    r"|(variables|io|controller|files|motion|kinematics)/\w+Messages)\.h$"
)

# Libraries of others have their places too; the library and its headers use none.
LIBRARIES = {
    "CLI/": ["cli/", "simulator/program/", "gateway/program/", "soak/", "tests/cli/"],
    "curses.h": ["cli/watch/"],
    "sqlite3.h": ["recording/store/"],
    "zlib.h": ["recording/forward/"],
    "pcap/": ["recording/capture/", "tests/recording/"],
    "toml++/": ["words/settings/", "simulator/scene/", "gateway/config/"],
    "libwebsockets.h": ["gateway/http/", "benchmarks/gateway/"],
    "prometheus/": ["gateway/prometheus/"],
    "mosquitto.h": ["gateway/sparkplug/", "tests/gateway/"],
    "google/protobuf/": ["gateway/sparkplug/", "tests/gateway/"],
    "fmt/": ["words/", "recording/", "simulator/", "cli/", "gateway/", "soak/", "fuzz/", "tests/"],
    "nlohmann/": ["words/", "simulator/control/", "recording/", "cli/", "gateway/", "soak/", "fuzz/", "benchmarks/", "tests/"],
}


INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)


def reached_by(path, room, target):
    """The file of ours that an include reaches, as a path below the root; None for a header of somebody else."""
    for folder in (path.parent, ROOT / room, ROOT / "include", ROOT / "src", ROOT / "cli", ROOT):
        file = (folder / target).resolve()
        if file.is_file() and file.is_relative_to(ROOT):
            return file.relative_to(ROOT)
    return None


def place(path):
    """Room and folder of a path below the root; the folder of what lies in the room's own root is empty."""
    return path.parts[0], path.parts[1] if len(path.parts) > 2 else ""


def fault_in_room(room, folder, seen):
    if folder in ("", seen):
        return None
    folders = ROOMS[room].folders
    allowed = folders.get(folder, folders.get("*"))
    if allowed is None:
        return f"no arrow is known for {room}/{folder}/"
    if seen in allowed:
        return None
    return f"of {room}/, {room}/{folder}/ may include {', '.join(allowed) or 'itself only'}"


def fault(source, reached):
    """What is wrong with an include of ours, if anything is."""
    room, folder = place(source)
    seen_room, seen_folder = place(reached)
    if (f"{room}/{folder}", reached.as_posix()) in DOORS:
        return None
    if seen_room == room:
        return fault_in_room(room, folder, seen_folder)
    if seen_room not in ROOMS[room].rooms:
        return f"of the other rooms, {room}/ may include {', '.join(ROOMS[room].rooms) or 'none'}"
    if room == "simulator" and seen_room == "src" and not WIRE_FORMATS.match(reached.as_posix()):
        return "the virtual controller shares wire formats with the library, nothing else"
    return None


def library_fault(source, target):
    for library, places in LIBRARIES.items():
        room = place(source)[0]
        if target.startswith(library) and not source.as_posix().startswith(tuple(places)):
            return f"{library} is for {', '.join(places)}"
    return None


def faults_of(room):
    for path in sorted((ROOT / room).rglob("*")):
        if path.suffix not in (".h", ".cpp", ".c"):
            continue
        source = path.relative_to(ROOT)
        for quote, target in INCLUDE.findall(path.read_text(encoding="utf-8")):
            reached = reached_by(path, room, target)
            if reached is not None:
                reason = fault(source, reached)
            else:
                reason = "there is no such header" if quote == '"' else library_fault(source, target)
            if reason:
                yield f'{source}: "{target}": {reason}'


def cycle(arrows):
    try:
        graphlib.TopologicalSorter(arrows).prepare()
    except graphlib.CycleError as error:
        return " -> ".join(error.args[1])
    return None


def faults_of_table():
    """A cycle among the rooms or among the folders of one, and a folder with sources that the table doesn't know."""
    tables = {"the rooms": {name: room.rooms for name, room in ROOMS.items()},
              **{f"{name}/": room.folders for name, room in ROOMS.items()}}
    for name, arrows in tables.items():
        found = cycle(arrows)
        if found:
            yield f"the arrows of {name} go in a circle: {found}"
    for name in sorted({place(path.relative_to(ROOT))[0] for path in ROOT.glob("*/*/*.h")} - set(ROOMS) - {"build"}):
        yield f"{name}/: no arrow is known for this room"
    for name, room in ROOMS.items():
        for folder in sorted((ROOT / name).glob("*/")):
            known = folder.name in room.folders or "*" in room.folders
            if not known and any(folder.rglob("*.h")):
                yield f"{name}/{folder.name}/: no arrow is known for this folder"


def main():
    found = [*faults_of_table(), *(line for room in ROOMS for line in faults_of(room))]
    print("\n".join(found), end="\n" if found else "", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
