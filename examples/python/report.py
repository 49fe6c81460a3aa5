"""Prints model, state, job, alarms and alarm history of a controller.

It only looks: nothing on the controller changes. Usage: report.py ADDRESS
"""

import sys

import harvlink
from harvlink import AlarmCategory, IOType, TimeType


def report(robot: harvlink.Robot) -> None:
    information = robot.controller.system_information()
    state = robot.state()
    powered = robot.controller.operating_time(TimeType.CONTROL_POWER)
    print(f"{information.model_name}, software {information.software_version}")
    print(f"{state.control_mode.name}, servo {'on' if state.is_servo_on else 'off'}, up {powered.elapsed}")
    print(f"R1 ({robot.groups.axis_letters('R1')}): {robot.position('R1')}")

    job = robot.jobs.executing()
    print(f"job {job.name or 'none'}, line {job.line}; files: {', '.join(robot.files.list('JBI'))}")
    print("B000 to B004:", *(robot.variables.b[index] for index in range(5)))
    print(f"first general outputs: {robot.io.bytes[IOType.GENERAL_OUTPUT, 1]:08b}")

    for alarm in robot.alarms.active():
        print(f"ACTIVE {alarm.code}-{alarm.subcode} {alarm.name}")
    for category in (AlarmCategory.MAJOR, AlarmCategory.MINOR):
        for alarm in robot.alarms.history(category, most=5):
            print(f"{category.name.lower()} {alarm.time} {alarm.code}-{alarm.subcode} {alarm.name}")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("Usage: report.py ADDRESS")
    try:
        with harvlink.connect(sys.argv[1], access="observe") as controller:
            report(controller)
    except harvlink.Error as error:
        sys.exit(str(error))
