#pragma once

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/VirtualClient.h"

namespace harvlink::test {

using simulator::ControllerModel;
using simulator::ControllerParts;
using simulator::Refusal;
using simulator::VirtualController;

inline constexpr std::uint32_t Last = 0x80000000;

/// The answer to a datagram.
struct FileAnswer {
    std::uint16_t code = 0;
    std::uint32_t block = 0;
    std::string payload;
    bool isSilent = false; ///< the controller does not answer
};

/// A client of a controller's file port, without a network.
struct FileClient {
    VirtualController& controller;
    std::uint64_t peer = 1;

    FileAnswer Send(FileServices service, std::string_view payload, std::uint8_t ack = 0,
                    std::uint32_t block = 0) const {
        auto const request = FileRequest(static_cast<unsigned>(service), Text(payload), ack, block);
        auto const answer = HandOver(controller, simulator::Port::File, peer, request);
        if (!answer) {
            return {0, 0, {}, true};
        }
        auto const byte = [&](std::size_t i) { return std::uint32_t{(*answer)[i]}; };
        return {static_cast<std::uint16_t>(CodeOf(*answer)), byte(12) | byte(13) << 8 | byte(14) << 16 | byte(15) << 24,
                std::string(answer->begin() + 32, answer->end())};
    }

    /// Returns a whole list or file, or the code of a refusal as "#code".
    std::string Fetch(FileServices service, std::string_view name) const {
        std::string text;
        for (auto answer = Send(service, name);; answer = Send(service, {}, 1, answer.block)) {
            if (answer.code != 0) {
                return "#" + std::to_string(answer.code);
            }
            text += answer.payload;
            if ((answer.block & Last) != 0) {
                EXPECT_TRUE(Send(service, {}, 1, answer.block).isSilent);
                return text;
            }
        }
    }

    std::string Save(std::string_view name) const { return Fetch(FileServices::SaveFile, name); }
    std::string List(std::string_view pattern) const { return Fetch(FileServices::ListFile, pattern); }

    /// Sends a whole file in full blocks. Returns the code of the first refusal.
    int Load(std::string_view name, std::string_view text) const {
        int code = Send(FileServices::LoadFile, name).code;
        for (std::uint32_t block = 1; code == 0; ++block) {
            std::string piece(text.substr(0, FileBlockSize));
            text.remove_prefix(piece.size());
            piece.resize(FileBlockSize);
            code = Send(FileServices::LoadFile, piece, 1, text.empty() ? block | Last : block).code;
            if (text.empty()) {
                break;
            }
        }
        return code;
    }

    int Delete(std::string_view name) const { return Send(FileServices::DeleteFile, name).code; }
};

/// The text of a job with these lines after NOP.
inline std::string JobText(std::string const& name, std::string_view lines) {
    std::string text = "/JOB\r\n//NAME " + name + "\r\n//INST\r\nNOP\r\n";
    for (auto const character : lines) {
        text += character == '\n' ? "\r\n" : std::string(1, character);
    }
    return text + "END\r\n";
}

} // namespace harvlink::test
