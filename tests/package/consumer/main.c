#include <harvlink/harvlink_c.h>
#include <stdio.h>
#include <stdlib.h>

int main(int count, char** arguments) {
    IStatusInfo status;
    ControllerHandle const robot = open_connection(arguments[count - 1], &status, 2000, 0);
    if (status.StatusCode == 0) {
        ControllerStateData state;
        free(status.Message);
        status = controller_state_interface_read_state(robot, &state);
    }
    int const code = status.StatusCode;
    puts(status.Message);
    free(status.Message);
    close_connection(robot);
    return code;
}
