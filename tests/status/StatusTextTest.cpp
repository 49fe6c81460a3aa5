#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "harvlink/StatusInfo.h"
#include "status/ErrorTables.h"
#include "status/MainStatusTable.h"

namespace harvlink::test {
namespace {

constexpr char const* notFound = "Could not find an error description with that code.";

// The texts are repeated here, so that a mistake in the table shows as a difference.
constexpr struct {
    int code;
    char const* text;
} sample[] = {
    // clang-format off
    {8, "Requested command is undefined."},
    {40, "An instance of the requested data does not exist in the specified command."},
    {1013, "Command operand length error"},
    {5390, "Error in JOB formatting. Check formatting of the Job."},
    {2040, "External hold from PLC, HMI, or safety circuitry"},
    {2100, "The controller must be in REMOTE mode and have COMMAND REMOTE SEL (Pseudo Input) enabled"},
    {2140, "Servo power must be disabled for this file load."},
    {834, "This file is set to read only"},
    {3220, "Panel lock; mode/cycle prohibit signal is ON"},
    {3390, "Relative job conversion prohibited (at CVTRJ)"},
    {4012, "Insufficient memory capacity(position data registered memory)"},
    {4230, "Invalid instruction in this system. This instruction cannot be used in this system."},
    {4490, "Relative job/ independent control function not permitted"},
    {5130, "No NOP or END. (If NOP and END are present in the job), verify the line endings and the end of the file are in Windows format. CR-LF"},
    {5370, "Error in condition file data record"},
    {5480, "Incorrect welding function type"},
    {6010, "The robot or station is under operation"},
    {6140, "Cannot be backed up under the auto backup"},
    {40960, "Undefined command number"},
    {40961, "Instance value is invalid"},
    {41217, "Replying data part size error (software limit)"},
    {45059, "Requiring data size error"},
    {45066, "Operating speed is not set"},
    {45070, "User No. setting error"},
    {49154, "System error (over the replying data area)"},
    {51200, "Request failed. (Example: This may occur when sending a write-command during play if S2C541 = 1."},
    {53247, "Unknown error"},
    {55546, "Transmission exclusive error (BUSY or Semaphore error)"},
    {57935, "Wrong parameter setting for the system backup"},
    {57996, "Cannot overwrite the target file. System parameter RS214 must be set to 2 to allow file overwrite."},
    {58012, "The requested file does not exist or the file size is '0'."},
    {58014, "System error"},
    {58035, "File not found"},
    {58436, "Processing the another command (BUSY condition)"},
    {58535, "Format error (the size of the requested command and received frame are different)"},
    {65520, "System error"},
    {65534, "The remote mode is detected), and disconnect the communication"},
    {65535, "General error. Verify input parameters."},
    {65519, "Operation was interupted"},
    {44544, "Language not found."},
    {4112, "Command error"},
    {8256, "External hold from PLC), HMI), or safety circuitry"},
    {8448, "The controller must be in REMOTE mode and have COMMAND REMOTE SEL (Pseudo Input) enabled"},
    {13184, "Incorrect base axis data"},
    {16402, "Insufficient memory capacity(position data registered memory)"},
    {16448, "No specified job"},
    {20784, "No NOP or END. (If NOP and END are present in the job), verify the line endings and the end of the file are in Windows format. CR-LF"},
    {21392, "Error in JOB formatting. Check formatting of the Job. Ensure proper spacing in tags. (ex. VJ=0.78 is correct while VJ = 0.78 is not.)"},
    {24704, "Failed to remove backup file."},
    {24896, "Cannot be backed up under the auto backup"},
    {0x10000, "An undefined exception occurred."},
    {0x10001, "A communication error occurred. Check physical connections and network configuration."},
    {0x10003, "An error occurred trying to open the socket. Ensure that the requested IP address is valid."},
    {0x10004, "The bit value you are trying to access is invalid. Bit value must be between 0 and 7 and in a valid group."},
    {0x10007, "Unable to create the QuorvanController object. Check the Robot Controller setup documentation."},
    {0x20000, "Error opening or saving file to PC."},
    {0x20002, "File already exists and overwrite flag is set to false."},
    {0x20004, "Unable to open file for writing or unable to create file. Check access permissions and existence of destination file."},
    {0x20005, "Unable to open file for reading. Check access permissions and existence of target file."},
    {0x20007, "Job name invalid. Check length."},
    {0x20009, "This IO group is invalid."},
    {0x20011, "System Kinematic type is set to Delta but no previous angle was provided. Check system parameter S2C430."},
    {0x20012, "The System Kinematic type value is in valid. This is set in system parameter S2C430. Valid values are 1:Figure), 2:Delta"},
    {0x20014, "The selected Kinematic Conversion type is incorrect for this function. Valid choices are JointAngleToCartesianPos), PulseToJointAngle,JointAngleToPulse), PulseToCartesianPos,"},
    {0x20015, "Invalid Coordinate Type for this operation"},
    {0x30001, "Speed value is out of range for a joint move. Valid range is 0.01 - 100.00%."},
    {0x30002, "Speed value is out of range. Valid range is 0.1 - 1500.00"},
    {0x30005, "This function is only available on VRK9000 or newer controllers"},
    {0x30006, "Controller response timed out. Check connection to the controller or increase the timeout."},
    {0x30007, "This IO address cannot be written to."},
    {0x30008, "The requested variable index is invalid."},
    {0x30014, "The job name in the file does not match the file name."},
    {0x30015, "This Control Group is not attached to the controller."},
    // clang-format on
};

struct Digest {
    unsigned entries = 0;
    std::uint64_t hash = 0xcbf29ce484222325U;
};

/// FNV-1a over "<code>:<text>\n" of all entries, in the order of their codes.
template <typename Code>
Digest DigestOf(StatusTable<Code> const& table) {
    Digest digest;
    for (int code = 0; code < 0x40000; ++code) {
        if (auto const text = table.Find(static_cast<Code>(code))) {
            ++digest.entries;
            for (char const character : std::to_string(code) + ':' + std::string(*text) + '\n') {
                digest.hash = (digest.hash ^ static_cast<unsigned char>(character)) * 0x100000001b3U;
            }
        }
    }
    return digest;
}

TEST(StatusText, SampleOfAllFamilies) {
    for (auto const& [code, text] : sample) {
        EXPECT_EQ(StatusInformation(code).Message, text) << code;
        EXPECT_EQ(StatusInformation(code).StatusCode, code);
    }
}

// The digests come from the list of the controller, not from the tables, so they detect a changed letter.
TEST(StatusText, NoLetterOfAnyTableIsChanged) {
    struct {
        char const* name;
        Digest actual;
        unsigned entries;
        std::uint64_t hash;
    } const tables[] = {
        {"main", DigestOf(MainStatusTable), 265, 0x3ea12a6b97693b30},
        {"job", DigestOf(JobErrorTable), 3, 0x7e2fbc25b1bc6c0},
        {"file", DigestOf(FileErrorTable), 1, 0xfe51692925be6cf4},
        {"io", DigestOf(IOErrorTable), 3, 0x9101d3dbcaaf368d},
        {"motion", DigestOf(MotionErrorTable), 30, 0xc9585d3fc67c2893},
        {"motion short", DigestOf(MotionShortErrorTable), 30, 0x8e43c5e185aa4b60},
        {"conversion", DigestOf(ConversionErrorTable), 5, 0x522acdcbe535d380},
        {"control group", DigestOf(ControlGroupErrorTable), 1, 0xc1d5c99058c24bf3},
    };
    for (auto const& table : tables) {
        EXPECT_EQ(table.actual.entries, table.entries) << table.name;
        EXPECT_EQ(table.actual.hash, table.hash) << table.name;
    }
    EXPECT_EQ(MainStatusTable.Size(), 268U); // three rows have the code of an earlier row
}

TEST(StatusText, FourDigitNumbersStandByValueAndByDigits) {
    int pairs = 0;
    for (int code = 1000; code < 9000; ++code) {
        auto const byValue = MainStatusTable.Find(code);
        auto const byDigits = MainStatusTable.Find(std::stoi(std::to_string(code), nullptr, 16));
        if (byValue && byDigits) {
            ++pairs;
            bool const differs = code == 2040 || code == 5390;
            EXPECT_EQ(*byValue != *byDigits, differs) << code;
        }
    }
    EXPECT_EQ(pairs, 80);
}

TEST(StatusText, CodesWithoutRowAreKeptAndHaveNoWords) {
    for (int const code : {1, 7, 0x1389, 0x20008, 0x20016, 0x30009, 0x30010, 0x30011, 0x30012, 0x30013, 0x30016,
                           0x30017, 0x3000a, -1, -59959039, 0x7fffffff, INT32_MIN}) {
        EXPECT_EQ(StatusInformation(code).Message, notFound) << code;
        EXPECT_EQ(StatusInformation(code).StatusCode, code);
    }
}

TEST(StatusText, LocalCodesHaveTheirNumbers) {
    using enum ErrorStatusCodes;
    struct {
        ErrorStatusCodes code;
        int number;
    } const codes[] = {
        {Ok, 0},
        {OperationInterrupted, 0xffef},
        {GeneralError, 65535},
        {SocketOpenError, 65539},
        {InvalidBitValue, 65540},
        {ControllerObjectCreationFailed, 65543},
        {FileNotFoundOnPc, 0x20003},
        {FileTypeNotWritable, 0x20008},
        {InvalidIOGroup, 0x20009},
        {KinematicTypeMissing, 0x20010},
        {ActiveToolOnly, 0x20016},
        {JointSpeedOutOfRange, 0x30001},
        {UnsupportedOnThisController, 196613},
        {ResponseTimeout, 196614},
        {AccelerationOutOfRange, 0x30009},
        {DecelerationOutOfRange, 0x30010},
        {VersionMismatch, 0x30013},
        {InvalidAlarmCategory, 0x30017},
    };
    for (auto const& [code, number] : codes) {
        EXPECT_TRUE(StatusInformation(number) == code) << number;
    }
}

} // namespace
} // namespace harvlink::test
