/*
 * Harvlink from plain C: reads a controller's state, changes a variable and back, and turns a robot's first axis.
 *
 * Careful: this moves robot R1. Run it against the virtual controller first:
 *     harvlink-sim --address 127.0.0.1 &
 *     harvlink_example_c 127.0.0.1 --yes
 */

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#ifdef _WIN32
#include <windows.h>
#else
#include <threads.h>
#endif

#include "harvlink/harvlink_c.h"

enum { VARIABLE = 5, TURN_PULSES = 2000, MOST_LOOKS = 500 };

/* The memory behind a handle is never released. This pointer keeps it reachable for leak checkers. */
static ControllerHandle controller;

static void rest_milliseconds(long time) {
#ifdef _WIN32
    Sleep((DWORD)time);
#else
    struct timespec const pause = {.tv_nsec = time * 1000 * 1000};
    thrd_sleep(&pause, NULL);
#endif
}

/* The caller frees the message of every status, after a success too. */
static bool succeeded(char const* operation, IStatusInfo status) {
    bool const ok = status.StatusCode == 0;
    if (!ok) {
        (void)fprintf(stderr, "%s: code %d: %s\n", operation, (int)status.StatusCode, status.Message);
    }
    harvlink_free(status.Message);
    return ok;
}

static bool show_state(void) {
    ControllerStateData state;
    ISystemInfoData robot;
    if (!succeeded("read state", controller_state_interface_read_state(controller, &state))) {
        return false;
    }
    /* The texts are allocated after a failure too. */
    bool const ok =
        succeeded("read system information",
                  controller_state_interface_read_system_information(controller, HARVLINK_INFO_ROBOT(1), &robot));
    printf("%s, software %s, servo %s\n", robot.modelName, robot.softwareVersion, state.isServoOn ? "on" : "off");
    harvlink_free(robot.modelName);
    harvlink_free(robot.softwareVersion);
    return ok;
}

static bool change_variable(void) {
    ByteVariableData before;
    if (!succeeded("read variable", byte_variable_interface_read(controller, VARIABLE, &before))) {
        return false;
    }
    ByteVariableData const changed = {(uint8_t)(before.value + 1), VARIABLE};
    ByteVariableData after = {0, 0};
    bool const ok = succeeded("write variable", byte_variable_interface_write(controller, changed)) &&
                    succeeded("read variable", byte_variable_interface_read(controller, VARIABLE, &after));
    printf("B%03d: %d, then %d\n", VARIABLE, before.value, after.value);
    return succeeded("restore variable", byte_variable_interface_write(controller, before)) && ok &&
           after.value == changed.value;
}

static bool read_position(PositionData* position) {
    return succeeded("read position", control_group_interface_read_position_data(controller, HARVLINK_ROBOT(1),
                                                                                 HARVLINK_PULSE, 0, 0, position));
}

static bool wait_until_there(double pulses) {
    for (int look = 0; look < MOST_LOOKS; ++look) {
        PositionData position;
        if (!read_position(&position)) {
            return false;
        }
        if (fabs(position.axes[0] - pulses) <= 1.0) {
            printf("R1 has arrived: S = %.0f pulses\n", position.axes[0]);
            return true;
        }
        rest_milliseconds(10);
    }
    (void)fprintf(stderr, "R1 did not arrive\n");
    return false;
}

static bool turn_first_axis(void) {
    Motion motion = {.controlGroup = HARVLINK_ROBOT(1),
                     .speed = 25.0,
                     .accelerationRatio = HARVLINK_RATIO_NOT_SPECIFIED,
                     .decelerationRatio = HARVLINK_RATIO_NOT_SPECIFIED,
                     .moveType = HARVLINK_JOINT};
    if (!read_position(&motion.position)) {
        return false;
    }
    motion.position.axes[0] += TURN_PULSES;
    bool const there = succeeded("servo on", control_commands_interface_SetServos(controller, HARVLINK_ON)) &&
                       succeeded("add point", motion_manager_AddPointToTrajectory(controller, &motion)) &&
                       succeeded("start motion", motion_manager_MotionStart(controller)) &&
                       wait_until_there(motion.position.axes[0]);
    /* Closing the connection does not stop the robot, so stop it here. */
    bool const stopped = succeeded("stop motion", motion_manager_MotionStop(controller, true));
    return succeeded("servo off", control_commands_interface_SetServos(controller, HARVLINK_OFF)) && there && stopped;
}

int main(int argc, char** argv) {
    if (argc != 3 || strcmp(argv[2], "--yes") != 0) {
        (void)fprintf(stderr, "This turns the first axis of robot R1.\n");
        (void)fprintf(stderr, "Make sure that nobody is near, then run: %s ADDRESS --yes\n", argv[0]);
        return 2;
    }
    IStatusInfo status;
    HarvlinkConnectOptions options;
    harvlink_connect_options_init(&options);
    options.address = argv[1];
    options.access = HARVLINK_FULL; /* clears the targets of other programs */
    controller = harvlink_connect(&options, &status);
    /* A failed connection returns a handle too, which only close_connection accepts. */
    bool const ok = succeeded("connect", status) && show_state() && change_variable() && turn_first_axis();
    close_connection(controller);
    return ok ? 0 : 1;
}
