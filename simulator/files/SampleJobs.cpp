#include <array>

#include "simulator/files/GeneratedFiles.h"

namespace harvlink::simulator {

namespace {

constexpr std::string_view Demo = "/JOB\r\n"
                                  "//NAME DEMO\r\n"
                                  "///COMM COUNTS TEN PARTS\r\n"
                                  "//INST\r\n"
                                  "///DATE 2024/03/11 08:15\r\n"
                                  "NOP\r\n"
                                  "'I000 counts the parts of this run, D000 those of all runs\r\n"
                                  "SET I000 0\r\n"
                                  "*NEXT\r\n"
                                  "CALL JOB:PICK\r\n"
                                  "TIMER T=0.25\r\n"
                                  "INC I000\r\n"
                                  "INC D000\r\n"
                                  "JUMP *NEXT IF I000<10\r\n"
                                  "DOUT OT#(1) ON\r\n"
                                  "TIMER T=0.50\r\n"
                                  "DOUT OT#(1) OFF\r\n"
                                  "END\r\n";

constexpr std::string_view Pick = "/JOB\r\n"
                                  "//NAME PICK\r\n"
                                  "///COMM CLOSES AND OPENS THE GRIPPER\r\n"
                                  "//INST\r\n"
                                  "///DATE 2024/03/11 08:20\r\n"
                                  "NOP\r\n"
                                  "DOUT OT#(2) ON\r\n"
                                  "TIMER T=0.20\r\n"
                                  "DOUT OT#(2) OFF\r\n"
                                  "END\r\n";

constexpr std::string_view Handshake = "/JOB\r\n"
                                       "//NAME HANDSHAKE\r\n"
                                       "///COMM ANSWERS INPUT 1 BY OUTPUT 3\r\n"
                                       "//INST\r\n"
                                       "///DATE 2024/03/12 14:02\r\n"
                                       "NOP\r\n"
                                       "WAIT IN#(1)=ON\r\n"
                                       "DOUT OT#(3) ON\r\n"
                                       "WAIT IN#(1)=OFF\r\n"
                                       "DOUT OT#(3) OFF\r\n"
                                       "INC B000\r\n"
                                       "END\r\n";

constexpr std::array<SampleJob, 3> Jobs{{{"DEMO.JBI", Demo}, {"HANDSHAKE.JBI", Handshake}, {"PICK.JBI", Pick}}};

} // namespace

std::span<SampleJob const> SampleJobs() {
    return Jobs;
}

} // namespace harvlink::simulator
