"""Reads model, state, position and a variable, and writes a register. look.c and Look.cs do the same and print the same."""

import sys

import harvlink

with harvlink.connect(sys.argv[1], access="operate") as robot:
    print(robot.controller.system_information().model_name)
    print("servo on" if robot.state().is_servo_on else "servo off")
    print(*(int(axis) for axis in robot.position("R1").axes))
    robot.variables.s[7] = "J\u00f6rg"
    print(robot.variables.s[7])
    robot.io.registers[3] = 4711
    print(robot.io.registers[3])
    print(*robot.files.list("JBI"))
    try:
        robot.variables.b[3000]
    except harvlink.Error as failure:
        print(f"{int(failure.code)}: {failure.text}")
