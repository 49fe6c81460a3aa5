/* Reads a variable many times through the plain C functions, connected as Calls.cs is. */
#include <stdlib.h>

#include "harvlink/harvlink_c.h"

ControllerHandle direct_open(char const* address) {
    HarvlinkConnectOptions options;
    harvlink_connect_options_init(&options);
    options.address = address;
    IStatusInfo status;
    ControllerHandle const robot = harvlink_connect(&options, &status);
    free(status.Message);
    return robot;
}

int direct_run(ControllerHandle robot, int calls) {
    int failures = 0;
    for (int call = 0; call < calls; ++call) {
        ByteVariableData variable;
        IStatusInfo const status = byte_variable_interface_read(robot, (unsigned short)(call % 10), &variable);
        failures += status.StatusCode != 0;
        free(status.Message);
    }
    return failures;
}
