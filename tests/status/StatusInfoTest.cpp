#include "harvlink/StatusInfo.h"

#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "status/ContextualStatusInfoHandler.h"
#include "status/ErrorTables.h"
#include "status/GetStatusInfo.h"
#include "support/Printed.h"

namespace harvlink::test {
namespace {

// The tables must be complete before a static constructor makes a status.
StatusInformation const madeBeforeMain(2060);

TEST(StatusInfo, TablesAreCompleteBeforeMain) {
    EXPECT_EQ(madeBeforeMain.Message, "There is an active Error or Alarm.");
}

TEST(StatusInfo, OwnWordsAreNotLookedUp) {
    StatusInformation const known(40961, "own words");
    StatusInformation const unknown(ErrorStatusCodes::VersionMismatch, "own words");
    EXPECT_EQ(known.Message, "own words");
    EXPECT_TRUE(known == 40961 && known != 40962 && known != ErrorStatusCodes::Ok);
    EXPECT_EQ(unknown.Message, "own words");
    EXPECT_TRUE(unknown == 0x30013 && unknown == ErrorStatusCodes::VersionMismatch);
}

TEST(StatusInfo, AssignedCodeReplacesWordsToo) {
    StatusInformation status(40961, "own words");
    status = 0;
    EXPECT_EQ(Printed(status), "Code (0): OK");
    status = 12345;
    EXPECT_EQ(Printed(status), "Code (12345): Could not find an error description with that code.");
    status = 834;
    EXPECT_EQ(Printed(status), "Code (834): This file is set to read only");
    std::ostringstream hexadecimal;
    hexadecimal << std::hex << StatusInfo{-59959039, "words"};
    EXPECT_EQ(hexadecimal.str(), "Code (-59959039): words");

    std::string message;
    status.GetError(message, 0);
    EXPECT_EQ(message, "OK");
    EXPECT_TRUE(status == 834);
}

TEST(StatusInfo, LeavesAsPlainRecordAndMovesItsText) {
    StatusInfo source = StatusInformation(1, std::string(100, 'x'));
    char const* const text = source.Message.data();
    StatusInfo target;
    target = std::move(source);
    EXPECT_EQ(target.Message.data(), text);
    static_assert(std::is_nothrow_move_assignable_v<StatusInfo>);
}

TEST(GetStatusInfo, KnownCodesAreOffsetWithWrapping) {
    struct {
        StatusTable<std::int32_t> const& table;
        unsigned offset;
        int code;
        char const* printed;
    } const cases[] = {
        {ControlGroupErrorTable, 60000000, 40961, "Code (-59959039): Invalid Control Group Id"},
        {JobErrorTable, 80000000, 20992, "Code (-79979008): Invalid line number."},
        {JobErrorTable, 80000000, 16448, "Code (-79983552): Invalid job name."},
        {MotionErrorTable, 50000000, 65535,
         "Code (-49934465): MotionManager failure. Ensure remote control mode is selected."},
        {ConversionErrorTable, 0x70000000, 65535, "Code (-1878982657): Failed in conversion."},
        {ConversionErrorTable, 0xffffffff, 65530, "Code (65531): Invalid cartesian position."},
        {MotionErrorTable, 0, 65520, "Code (65520): Timeout"},
        // These do not change: success, and codes that are not in the table.
        {ControlGroupErrorTable, 60000000, 0, "Code (0): OK"},
        {ControlGroupErrorTable, 60000000, 40960, "Code (40960): Undefined command number"},
        {ConversionErrorTable, 0x70000000, 65532, "Code (65532): Could not find an error description with that code."},
    };
    for (auto const& example : cases) {
        StatusInfo status = StatusInformation(example.code);
        HelperFunction::GetStatusInfo(status, example.table, example.offset);
        EXPECT_EQ(Printed(status), example.printed);
    }
    EXPECT_EQ(MotionErrorOffset, 50000000U);
    EXPECT_EQ(ControlGroupErrorOffset, 60000000U);
    EXPECT_EQ(JobErrorOffset, 80000000U);
    EXPECT_EQ(ConversionErrorOffset, 0x70000000U);
}

TEST(ContextualHandler, ReplacesWordsOnly) {
    using FileErrorHandling::FileErrors;
    HSEContextualStatusInfoHandler<FileErrors> const handler(&FileErrorTable);
    ContextualStatusInfoHandler<FileErrors> const& base = handler;
    StatusInfo known = StatusInformation(58014);
    StatusInfo unknown = StatusInformation(58035);
    base.SetContextualError(known);
    base.SetContextualError(unknown);
    EXPECT_EQ(Printed(known), "Code (58014): File is not writable.");
    EXPECT_EQ(Printed(unknown), "Code (58035): File not found");
}

} // namespace
} // namespace harvlink::test
