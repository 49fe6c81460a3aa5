#include <sstream>

#include "io/IOImplementation.h"
#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

using enum ControllerVersion;
using enum IOType;

struct Row {
    IOSelection (*select)(ControllerVersion);
    char const* groups; ///< base and count
    char const* addresses; ///< lowest and highest
};

// By IOType; columns DS, DN, FS, YA, YB, any other.
constexpr Row rows[] = {
    {GetGeneralInput, "1 256  1 512  1 128  1 512  1 512  1 128",
     "10 2567  10 5127  10 1287  10 5127  10 5127  10 5127"},
    {GetGeneralOutput, "1000 256  1000 512  1000 128  1000 512  1000 512  1000 128",
     "10010 12567  10010 15127  10010 11287  10010 15127  10010 15127  10010 15127"},
    {GetExternalInput, "2000 256  2000 512  2000 128  2000 512  2000 128  2000 128",
     "20010 22567  20010 25127  20010 21287  20010 25127  20010 21287  20010 25127"},
    {GetNetworkInput, "2500 256  2700 256  2500 128  2700 256  2700 256  2500 128",
     "25010 25767  27010 29567  25010 26287  27010 29567  27010 29567  27010 29567"},
    {GetExternalOutput, "3000 256  3000 512  3000 128  3000 512  3000 128  3000 128",
     "30010 32567  30010 35127  30010 31287  30010 35127  30010 31287  30010 35127"},
    {GetNetworkOutput, "3500 256  3700 256  3500 128  3700 256  3700 256  2500 128",
     "35010 37567  37010 39567  35010 36287  37010 39567  37010 39567  37010 39567"},
    {GetSpecificInput, "4000 160  4000 160  4000 160  4000 256  4000 256  4000 160",
     "40010 41607  40010 41607  40010 41607  40010 42567  40010 42567  40010 42567"},
    {GetSpecificOutput, "5000 200  5000 300  5000 200  5000 512  5000 512  5000 200",
     "50010 52007  50010 53007  50010 52007  50010 55127  50010 55127  50010 55127"},
    {GetInterfacePanelInput, "6000 64  6000 64  6000 64  6000 64  6000 64  6000 64",
     "60010 60647  60010 60647  60010 60647  60010 60647  60010 60647  60010 60647"},
    {GetAuxiliaryRelay, "7000 999  7000 999  7000 999  7000 999  7000 999  7000 128",
     "70010 79997  70010 79997  70010 79997  70010 79997  70010 79997  70010 79997"},
    {GetRobotControlStatus, "8000 64  8000 128  8000 64  8000 512  8000 512  8000 64",
     "80010 80647  80010 82007  80010 80647  80010 85127  80010 85127  80010 85127"},
    {GetPsuedoInput, "8200 20  8200 20  8200 20  8700 20  8700 20  8200 20",
     "82010 82207  82010 82207  82010 82207  87010 87207  87010 87207  87010 87207"},
};

constexpr ControllerVersion versions[] = {VersionDS, VersionDN, VersionFS,      VersionYA,
                                          VersionYB, VersionYN, VersionUnknown, static_cast<ControllerVersion>(77)};

std::pair<unsigned, unsigned> Column(char const* text, std::size_t column) {
    std::istringstream stream(text);
    std::pair<unsigned, unsigned> entry;
    for (std::size_t i = 0; i <= std::min<std::size_t>(column, 5); ++i) {
        stream >> entry.first >> entry.second;
    }
    return entry;
}

class IOAddressMap : public testing::Test {
protected:
    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();

    IOImplementation Of(ControllerVersion version) {
        manager->controllerVersion = version;
        return IOImplementation(manager.get());
    }
};

TEST_F(IOAddressMap, EveryClassOfEveryGeneration) {
    for (std::size_t column = 0; column < std::size(versions); ++column) {
        IOImplementation io = Of(versions[column]);
        for (std::size_t row = 0; row < std::size(rows); ++row) {
            SCOPED_TRACE(testing::Message() << "generation " << column << ", class " << row);
            auto const type = static_cast<IOType>(row);
            auto const [base, count] = Column(rows[row].groups, column);
            EXPECT_EQ(rows[row].select(versions[column]).baseNumber, base);
            EXPECT_EQ(io.GetIOSelection(type).groupCount, count);

            auto const address = [&](unsigned group, unsigned char bit, int code) {
                StatusInfo status{77, ""};
                auto const result = io.ConvertIOGroupToBitAddress(type, static_cast<std::uint16_t>(group), bit, status);
                EXPECT_EQ(status.StatusCode, code) << group;
                return result;
            };
            unsigned const first = row == 0 ? 10 : base * 10 + 10;
            EXPECT_EQ(address(1, 0, 0), first);
            EXPECT_EQ(address(count, 7, 0), first + (count - 1) * 10 + 7);
            EXPECT_EQ(address(count + 1, 0, 0x20009), 0U);
            EXPECT_EQ(address(0, 0, 0x20009), 0U);
            EXPECT_EQ(address(1, 8, 0x10004), 0U);
            EXPECT_EQ(address(count + 1, 8, 0x20009), 0U); // the group is checked first

            auto const [lowest, highest] = Column(rows[row].addresses, column);
            bool const isNew = versions[column] > VersionFS || versions[column] == VersionUnknown;
            auto const writability = [&](unsigned signal) {
                StatusInfo status;
                int const result = static_cast<int>(io.CheckAddressWriteable(signal, status, true));
                return result * 1000000 + status.StatusCode;
            };
            constexpr int unknown = 2000000 + 40961;
            int const expected = type == NetworkInput                                   ? 1000000
                                 : !isNew                                               ? unknown
                                 : type == GeneralOutput || type == InterfacePanelInput ? 0
                                                                                        : 2000000 + 0x30007;
            EXPECT_EQ(writability(lowest - 1), unknown);
            EXPECT_EQ(writability(lowest), expected);
            EXPECT_EQ(writability(highest), expected);
            EXPECT_EQ(writability(highest + 1), unknown);
        }
    }
}

TEST_F(IOAddressMap, EdgesOfTheTables) {
    IOImplementation io = Of(VersionYA);
    StatusInfo status;
    EXPECT_EQ(io.CheckAddressWriteable(27013, status, true), WriteCommand::Group);
    EXPECT_EQ(io.CheckAddressWriteable(27013, status, false), WriteCommand::Refused);
    EXPECT_EQ(status.Message, "The address is invalid.");
    EXPECT_EQ(io.CheckAddressWriteable(12, status, true), WriteCommand::Refused);
    EXPECT_EQ(status.Message, "This IO address cannot be written to.");
    EXPECT_EQ(io.CheckAddressWriteable(60010, status, false), WriteCommand::OneSignal);
    EXPECT_EQ(status.StatusCode, 0);

    bool network = true, panel = true, output = true;
    EXPECT_TRUE(io.IsAddressValid(20010, network, panel, output));
    EXPECT_FALSE(network || panel || output);
    EXPECT_TRUE(io.IsAddressValid(15127, network, panel, output) && output && !network && !panel);
    EXPECT_TRUE(io.IsAddressValid(60010, network, panel, output) && panel && !network && !output);
    EXPECT_TRUE(io.IsAddressValid(29567, network, panel, output) && network && !panel && !output);

    EXPECT_TRUE(io.IsGroupValid(GeneralInput, {}, 9)); // independent of the table
    EXPECT_FALSE(io.IsGroupValid(GeneralInput, {}, 10));
    EXPECT_TRUE(io.IsGroupValid(ExternalInput, {2000, 5}, 0));
    EXPECT_FALSE(io.IsGroupValid(ExternalInput, {2000, 5}, 6));
    for (int const type : {12, -1}) {
        EXPECT_EQ(io.GetIOSelection(static_cast<IOType>(type)).baseNumber, 0);
        EXPECT_EQ(io.ConvertIOGroupToBitAddress(static_cast<IOType>(type), 0, 0, status), 0U);
        EXPECT_EQ(status.StatusCode, 0x20009);
        EXPECT_EQ(status.Message, "This IO group is invalid.");
    }
    manager->controllerVersion = VersionDS; // the ranges change only on request
    EXPECT_EQ(io.CheckAddressWriteable(25010, status, true), WriteCommand::Refused);
    io.SetMinMaxVals();
    EXPECT_EQ(io.CheckAddressWriteable(25010, status, true), WriteCommand::Group);
}

} // namespace
} // namespace harvlink::test
