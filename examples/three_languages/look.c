/* Reads model, state, position and a variable, and writes a register. Look.cs and look.py do the same and print the same. */
#include <stdio.h>
#include <stdlib.h>

#include "harvlink/harvlink_c.h"

static bool settled(IStatusInfo status) {
    if (status.StatusCode != 0) {
        printf("%d: %s\n", (int)status.StatusCode, status.Message);
    }
    harvlink_free(status.Message);
    return status.StatusCode == 0;
}

static bool look(ControllerHandle robot) {
    ISystemInfoData model;
    ControllerStateData state;
    PositionData position;
    IStringVariableData const written = {"J\xc3\xb6rg", 7};
    IStringVariableData text;
    unsigned short value = 0;
    IStatusInfo listed;
    bool ok = settled(controller_state_interface_read_system_information(robot, HARVLINK_INFO_ROBOT(1), &model));
    ok = settled(controller_state_interface_read_state(robot, &state)) && ok;
    printf("%s\n%s\n", model.modelName, state.isServoOn ? "servo on" : "servo off");
    ok = settled(
             control_group_interface_read_position_data(robot, HARVLINK_ROBOT(1), HARVLINK_PULSE, 0, 0, &position)) &&
         ok;
    for (int axis = 0; axis < 8; ++axis) {
        printf("%.0f%c", position.axes[axis], axis < 7 ? ' ' : '\n');
    }
    ok = settled(string_variable_interface_write(robot, &written)) && ok;
    ok = settled(string_variable_interface_read(robot, 7, &text)) && ok;
    ok = settled(io_interface_WriteRegister(robot, 3, 4711)) && ok;
    ok = settled(io_interface_ReadRegister(robot, 3, &value)) && ok;
    printf("%s\n%d\n", text.value, value);
    char* const names = file_interface_ListFiles(robot, HARVLINK_JOB_FILE, &listed, true);
    ok = settled(listed) && ok;
    for (char* each = names; *each != '\0'; ++each) {
        putchar(*each != '\n' ? *each : each[1] != '\0' ? ' ' : '\n');
    }
    ByteVariableData missing;
    ok = !settled(byte_variable_interface_read(robot, 3000, &missing)) && ok;
    harvlink_free(model.modelName);
    harvlink_free(model.softwareVersion);
    harvlink_free(text.value);
    harvlink_free(names);
    return ok;
}

int main(int argc, char** argv) {
    HarvlinkConnectOptions options;
    harvlink_connect_options_init(&options);
    options.address = argc == 2 ? argv[1] : "";
    options.access = HARVLINK_OPERATE;
    IStatusInfo status;
    ControllerHandle const robot = harvlink_connect(&options, &status);
    bool const ok = settled(status) && look(robot);
    close_connection(robot);
    return ok ? 0 : 1;
}
