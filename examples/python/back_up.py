"""Saves all jobs and data files of a controller into a folder.

It only looks: nothing on the controller changes. Usage: back_up.py ADDRESS FOLDER
"""

import pathlib
import sys

import harvlink
from harvlink import FileType

KINDS = (FileType.JBI, FileType.DAT, FileType.CND)


def back_up(robot: harvlink.Robot, folder: pathlib.Path) -> int:
    saved = 0
    for kind in KINDS:
        for name in robot.files.list(kind):
            robot.files.download(name, folder / name, overwrite=True)
            print(f"{name}: {(folder / name).stat().st_size} bytes")
            saved += 1
    return saved


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("Usage: back_up.py ADDRESS FOLDER")
    target = pathlib.Path(sys.argv[2])
    target.mkdir(parents=True, exist_ok=True)
    try:
        with harvlink.connect(sys.argv[1], access="observe") as controller:
            print(f"{back_up(controller, target)} files saved")
    except harvlink.Error as error:
        sys.exit(str(error))
