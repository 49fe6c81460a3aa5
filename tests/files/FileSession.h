#pragma once

#include "files/FileHandler.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedController.h"

namespace harvlink::test {

inline constexpr std::uint32_t lastBlock = 0x80000000;
inline constexpr unsigned deleteFile = 9;
inline constexpr unsigned loadFile = 21;
inline constexpr unsigned saveFile = 22;
inline constexpr unsigned listFile = 50;

/// A block that the controller sends.
inline Reply Block(std::uint32_t number, std::string_view text) {
    return {.payload = Text(text), .block = number};
}

/// A file handler, its controller, and a working directory for this test.
class FileSession : public testing::Test {
protected:
    void ExpectAcknowledgement(unsigned service, std::uint32_t block, Replies replies = {}) {
        controller.Expect(FileRequest(service, {}, 1, block), std::move(replies));
    }
    /// A save or a listing that ends with its first block.
    void ExpectWhole(unsigned service, std::string_view name, std::string_view content) {
        controller.Expect(FileRequest(service, Text(name)), Block(lastBlock + 1, content));
        ExpectAcknowledgement(service, lastBlock + 1);
    }
    /// A load of these blocks, all of them accepted.
    void ExpectLoad(std::string_view name, std::vector<std::string> const& blocks) {
        controller.Expect(FileRequest(loadFile, Text(name)));
        for (std::uint32_t i = 1; i <= blocks.size(); ++i) {
            controller.Expect(
                FileRequest(loadFile, Text(blocks[i - 1], 479), 1, i == blocks.size() ? lastBlock + i : i));
        }
    }
    void ExpectOneIdSince(std::size_t first) {
        auto const all = controller.Received(first + 1);
        for (std::size_t i = first; i < all.size(); ++i) {
            EXPECT_EQ(all[i].Id(), all[first].Id()) << i;
            EXPECT_EQ(all[i].port, 10041);
        }
    }

    ScratchFolder folder;
    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    FileHandler files{manager.get()};
    std::string text = "old";
};

} // namespace harvlink::test
