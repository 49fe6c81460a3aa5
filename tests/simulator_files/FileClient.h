#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "simulator/controller/VirtualController.h"

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
    bool isSilent = false;
};

/// A client of a controller's file port, without a network.
struct FileClient {
    VirtualController& controller;
    std::uint64_t peer = 1;

    FileAnswer Send(FileServices service, std::string_view payload, std::uint8_t ack = 0,
                    std::uint32_t block = 0) const {
        OutgoingPacket<std::array<char, 600>> packet;
        packet.header.division = Division::FileControl;
        packet.header.ack = ack;
        packet.header.blockNumber = block;
        packet.header.payloadSize = static_cast<std::uint16_t>(payload.size());
        packet.subHeader = SubHeaderForSending(service);
        std::ranges::copy(payload, packet.payload.begin());
        simulator::Reply reply;
        controller.Handle(simulator::Port::File, peer, packet.Bytes().first(HeaderSize + payload.size()), reply);
        FileAnswer answer{static_cast<std::uint16_t>(reply.Code()), 0, {}, reply.IsSuppressed()};
        auto const bytes = reply.Bytes();
        std::memcpy(&answer.block, bytes.data() + offsetof(CommonHeader, blockNumber), sizeof(answer.block));
        answer.payload.assign(reinterpret_cast<char const*>(bytes.data()) + HeaderSize, bytes.size() - HeaderSize);
        return answer;
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

/// A controller whose clock does not run.
inline simulator::ControllerOptions StillOptions() {
    simulator::ControllerOptions options;
    options.timeScale = 0.0;
    return options;
}

/// The text of a job with these lines after NOP.
inline std::string JobText(std::string const& name, std::string_view lines) {
    std::string text = "/JOB\r\n//NAME " + name + "\r\n//INST\r\nNOP\r\n";
    for (auto const character : lines) {
        text += character == '\n' ? "\r\n" : std::string(1, character);
    }
    return text + "END\r\n";
}

} // namespace harvlink::test
