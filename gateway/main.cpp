#include "gateway/program/Program.h"

int main(int argc, char** argv) {
    return harvlink::gateway::RunProgram(argc, argv);
}
