#pragma once

namespace harvlink::gateway {

/// The program. Returns its exit status: 0 after SIGTERM, 1 if it can't run, 2 for wrong usage.
int RunProgram(int argc, char** argv);

} // namespace harvlink::gateway
