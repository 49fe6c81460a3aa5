#include <map>
#include <tuple>

#include "support/ScriptedController.h"
#include "wire/MinimumAccess.h"

namespace harvlink::test {
namespace {

/// Division, command, service.
using Row = std::tuple<int, int, int>;
using Rows = std::map<Row, Access>;

/// All that is allowed to less than full access.
Rows const expected = [] {
    Rows rows{{{2, 0, 0x16}, Access::Observe},
              {{2, 0, 0x32}, Access::Observe},
              {{2, 0, 0x09}, Access::Operate},
              {{2, 0, 0x15}, Access::Operate},
              {{1, 114, 14}, Access::Observe}};
    auto const add = [&](Access access, int service, std::initializer_list<int> commands) {
        for (int const command : commands) {
            rows.insert({{1, command, service}, access});
        }
    };
    add(Access::Observe, 1,
        {112, 113, 114, 115, 116, 117, 118, 119, 127, 128, 129, 136, 137, 829, 844, 866, 867, 868, 869, 924, 981});
    add(Access::Observe, 14, {120, 121, 122, 123, 124, 125, 140});
    add(Access::Operate, 16, {120, 121, 122, 123, 124, 125, 140, 130, 131, 132, 133, 134});
    add(Access::Operate, 2, {127, 128, 129, 135, 840, 841, 909, 916});
    return rows;
}();

/// Every command, service and port: what no table lists takes full access, and is not known to only read.
TEST(Access, IsFullForAllThatIsNotListed) {
    Rows found;
    bool isReadWhatIsObserved = true;
    for (int const division : {1, 2}) {
        for (int command = 0; command < 0x10000; ++command) {
            for (int service = 0; service < 0x100; ++service) {
                auto const asked = std::tuple(static_cast<Division>(division), static_cast<CommandNumber>(command),
                                              static_cast<std::uint8_t>(service));
                Access const access = std::apply(MinimumAccess, asked);
                isReadWhatIsObserved =
                    isReadWhatIsObserved && std::apply(OnlyReads, asked) == (access == Access::Observe);
                if (access != Access::Full) {
                    found.insert({{division, command, service}, access});
                }
            }
        }
    }
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(isReadWhatIsObserved);
}

/// The engine asks the table about the very datagram, and sends nothing that it does not allow.
TEST(Access, IsHeldBeforeAnythingIsSent) {
    for (Access const access : {Access::Observe, Access::Operate, Access::Full}) {
        ScriptedController controller;
        auto const manager = controller.Connect("YA1.00", 0, {.access = access});
        controller.AnswerRest([](Datagram const&) { return Replies{{}}; });
        std::size_t sent = 1;
        Rows rows = expected;
        rows.insert({{{1, 839, 2}, Access::Full}, {{1, 842, 2}, Access::Full}, {{2, 0, 0x33}, Access::Full}});
        for (auto const& [row, needed] : rows) {
            OutgoingPacket<NoPayload> request;
            IncomingPacket<std::uint32_t> reply;
            request.header.division = static_cast<Division>(std::get<0>(row));
            request.subHeader.command = static_cast<std::uint16_t>(std::get<1>(row));
            request.subHeader.service = static_cast<std::uint8_t>(std::get<2>(row));
            StatusInfo const status = manager->SendAndReceive(request, reply, {}, true);
            sent += needed <= access ? 1 : 0;
            EXPECT_EQ(status.StatusCode, needed <= access ? 0 : 0x50001) << std::get<1>(row);
            if (needed > access) {
                EXPECT_NE(status.Message.find(needed == Access::Full ? "access Full" : "access Operate"),
                          std::string::npos)
                    << status.Message;
            }
        }
        EXPECT_EQ(controller.Received(sent).size(), sent);
    }
}

} // namespace
} // namespace harvlink::test
