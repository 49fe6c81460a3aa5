"""Turns the first axis of robot R1 a little and back, and shows where the tool is at both ends.

Careful: this moves a robot. Usage: turn_first_axis.py ADDRESS --yes
"""

import sys

import harvlink
from harvlink import CoordinateType, Motion


def show(robot: harvlink.Robot) -> None:
    x, y, z, *_ = robot.position("R1", CoordinateType.BASE).axes
    print(f"tool at {x:.1f} {y:.1f} {z:.1f} mm")


def main(address: str) -> None:
    with harvlink.connect(address) as robot:
        start = robot.position("R1")
        there = Motion("R1", start.shifted(10000), speed=25)  # pulses, per cent
        back = Motion("R1", start, speed=25)
        robot.control.servos(True)
        try:
            robot.motion.start()
            for move in (there, back):
                robot.motion.add(move)
                robot.motion.wait(move)
                show(robot)
        finally:
            # Closing the connection does not stop the robot.
            robot.motion.stop()
            robot.control.servos(False)


if __name__ == "__main__":
    if len(sys.argv) != 3 or sys.argv[2] != "--yes":
        sys.exit("This moves robot R1. Make sure that nobody is near, then run: turn_first_axis.py ADDRESS --yes")
    try:
        main(sys.argv[1])
    except (harvlink.Error, TimeoutError) as error:
        sys.exit(str(error))
