// Shows the active alarms and the last five major alarms.
#include <iostream>

#include "harvlink/harvlink.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " ADDRESS\n";
        return 2;
    }
    harvlink::StatusInfo status;
    auto const robot = harvlink::Connect({.address = argv[1], .access = harvlink::Access::Observe}, status);
    if (!robot) {
        std::cerr << status << '\n';
        return 1;
    }

    harvlink::ActiveAlarms active;
    status = robot->Faults->GetActiveAlarms(active);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << active << '\n';

    harvlink::AlarmHistory history;
    status = robot->Faults->GetAlarmHistory(harvlink::AlarmCategory::Major, 5, history);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << history << '\n';
    return 0;
}
