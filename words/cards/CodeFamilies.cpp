#include <array>

#include "words/cards/ErrorCards.h"

namespace harvlink::words {

namespace {

// clang-format off
constexpr auto Families = std::to_array<CodeFamily>({
    {1, 255, "Status byte of the controller",
     {"The controller refused the request and gave no number beyond its status byte.",
      "Whether this controller's generation has the command and the item: harvlink info.", Retry::No}},
    {256, 999, "File attributes",
     {"The controller refused access to a file.", "The rights of the file on the controller.", Retry::No}},
    {1000, 1999, "Command format",
     {"The controller did not understand the command or its operands.",
      "The values of the request: numbers, lengths, ranges. With right values, report it with the datagram.",
      Retry::No}},
    {2000, 2999, "State of the controller",
     {"The controller does not take this request in its present state. Nothing was done.",
      "harvlink status shows mode, running, hold, alarm, error and servo power.", Retry::AfterFix}},
    {3000, 3999, "Machine set-up",
     {"The machine is not set up or not confirmed: servo power, home position, coordinates, panel locks.",
      "What the text names, on the pendant.", Retry::AfterFix}},
    {4000, 4999, "Jobs and their data",
     {"The job, or the position data in it, is missing, damaged, protected or does not fit this system.",
      "harvlink files list JBI shows the jobs, harvlink files cat NAME.JBI one of them.", Retry::AfterFix}},
    {5000, 5999, "Contents of a file",
     {"The controller read a file, or data such as a target, and found an error in it. What it had before stays.",
      "The line and field that the text names: spelling, number of values, ranges, line ends CR LF.", Retry::AfterFix}},
    {6000, 6999, "Storage and backup",
     {"The controller's memory, storage device or backup function failed or is busy.",
      "The device and its free space on the pendant, and whether an automatic backup runs.", Retry::Later}},
    {40960, 41215, "What was asked for",
     {"The request names a command, instance or attribute that this controller does not have.",
      "The number of the item against what the controller has; its generation: harvlink info.", Retry::No}},
    {41216, 44031, "Size of the answer",
     {"The answer would be larger than the controller can send.", "Ask for less at once.", Retry::No}},
    {44032, 45055, "Settings of the controller",
     {"A setting of the controller that the request relies on is missing.", "What the text names, on the pendant.",
      Retry::AfterFix}},
    {45056, 49151, "Values of the request",
     {"A value in the request is out of range, or names something that is not defined on the controller.",
      "The number that the text names: group, tool, user coordinate, speed, type, index.", Retry::No}},
    {49152, 51199, "Inside the controller",
     {"The controller failed while it put its answer together.",
      "harvlink alarms; if other requests fail too, restart the controller and ask its maker.",
      Retry::ReadBackFirst}},
    {51200, 55295, "Refused without a reason",
     {"The controller failed or refused the request without a reason.",
      "harvlink status and harvlink alarms; then the controller's parameters for remote commands.", Retry::AfterFix}},
    {55296, 57343, "Busy",
     {"The controller is working on another request, of this program or of another one.",
      "Whether a second program or the pendant uses the controller.", Retry::Later}},
    {57344, 57984, "System backup",
     {"The controller could not make its system backup.", "Remote mode, and the backup's parameters.",
      Retry::AfterFix}},
    {57985, 58499, "File transfer",
     {"The transfer failed on the controller. A fetched file is incomplete; a loaded one may be missing or incomplete.",
      "harvlink files list; remote mode; free space. Then transfer the file again.", Retry::Yes}},
    {58500, 58999, "Format of the datagram",
     {"A datagram reached the controller damaged, or the controller does not understand it.",
      "harvlink doctor measures loss and damage on the link; a second program may disturb a transfer.", Retry::Yes}},
    {65280, 65535, "General refusal",
     {"The controller gave a number whose meaning depends on the command: see motion, job and conversion.",
      "harvlink status and harvlink alarms.", Retry::AfterFix}},
    {0x10000, 0x1FFFF, "Library: connection",
     {"The library could not connect, or failed.", "harvlink doctor shows what is wrong with the connection.",
      Retry::AfterFix}},
    {0x20000, 0x2FFFF, "Library: files and arguments",
     {"The library refused before the request was sent: because of a file of this computer, its name or an argument.",
      "What the text names.", Retry::AfterFix}},
    {0x30000, 0x3FFFF, "Library: arguments and answers",
     {"An argument is out of range or does not fit this controller. The library or the controller refused it.",
      "The value that the text names.", Retry::AfterFix}},
    {0x50000, 0x5FFFF, "Library: connections with options",
     {"The connection does not allow the request, or one of its rules refused the answer; the text names the rule.",
      "The access and the rules that the program connects with; harvlink doctor shows which rules the controller keeps.",
      Retry::AfterFix}},
    {0x40000000, 0x4FFFFFFF, "Library: a file of this computer",
     {"A file of this computer could not be read or written, or it is a folder, a pipe or a device.",
      "That the folder exists, its rights and the free space: df, ls -l.", Retry::AfterFix}},
});
// clang-format on

} // namespace

std::span<CodeFamily const> CodeFamilies() {
    return Families;
}

} // namespace harvlink::words
