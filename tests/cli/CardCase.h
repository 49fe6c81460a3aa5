#pragma once

#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "cli/output/Words.h"
#include "files/FileHandler.h"
#include "harvlink/harvlink.h"
#include "kinematics/Kinematics.h"
#include "motion/MotionManager.h"
#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"
#include "words/cards/Explain.h"

// Compares the cards with the code that raises the status. Each statement has an operation that is refused with the code of
// the card and, if it names a limit, an operation inside the limit that is accepted.

namespace harvlink::cli::cards {

using simulator::ControllerModel;
using enum ControllerVersion;

inline constexpr char const* Job = "/JOB\r\n//NAME A\r\n//POS\r\n///NPOS 0,0,0,0,0,0\r\n//INST\r\nNOP\r\nEND\r\n";

inline std::string JobWith(std::string const& instruction) {
    std::string const text(Job);
    return text.substr(0, text.find("END")) + instruction + "\r\nEND\r\n";
}

/// A controller whose fifth group has no motion slot, and a connection to it.
class Rig {
public:
    explicit Rig(ControllerVersion generation) {
        simulator::ControllerOptions options{.generation = generation};
        using enum ControlGroupId;
        options.groups = {{R1, 6}, {B1, 1}, {S1, 1}, {S2, 1}, {S3, 1}};
        StatusInfo status;
        for (int attempt = 0; attempt < 10 && !robot_; ++attempt) {
            server_ = std::make_unique<simulator::Server>();
            address_ = test::NextLoopbackAddress();
            controller_ = &server_->Add(address_, options);
            if (server_->Start()) {
                robot_ = Connect(address_, status, 2000, 0, false);
            }
        }
        if (!robot_) {
            throw std::runtime_error(status.Message);
        }
    }

    QuorvanController* operator->() { return robot_.get(); }
    std::string const& Address() const { return address_; }
    MotionManager& Motion() { return dynamic_cast<MotionManager&>(*robot_->MotionManager); }
    FileHandler& Files() { return dynamic_cast<FileHandler&>(*robot_->Files); }
    harvlink::Kinematics& Conversion() { return dynamic_cast<harvlink::Kinematics&>(*robot_->Kinematics); }

    template <typename Function>
    void Set(Function const& function) {
        controller_->With([&](ControllerModel& model) { function(model); });
    }

    void Put(std::string_view name, std::string_view content) {
        controller_->WithParts([&](simulator::ControllerParts& parts) { parts.files.Put(name, content); });
    }

    /// Loads a job of these instructions and starts it, with servo power.
    StatusInfo Run(std::string const& instructions) {
        Put("A.JBI", JobWith(instructions));
        Set([](ControllerModel& model) { model.SetServo(true); });
        robot_->Job->SetActiveJob("A", 0);
        return robot_->ControlCommands->StartJob();
    }

private:
    std::string address_;
    std::unique_ptr<simulator::Server> server_;
    simulator::VirtualController* controller_ = nullptr;
    Connection robot_;
};

using Operation = std::function<StatusInfo(Rig&)>;

/// A call as an operation.
#define CALL(...) [=]([[maybe_unused]] Rig& rig) -> StatusInfo { return __VA_ARGS__; }

/// An output that nobody looks at, or an input whose value does not matter.
template <typename Value>
Value& Any() {
    static Value value;
    return value = {};
}

struct Case {
    char const* card; ///< in a form that `harvlink explain` accepts
    char const* says; ///< part of its cause or check
    Operation refused;
    Operation accepted = nullptr; ///< inside the limit
    ControllerVersion generation = VersionYA;
};

inline Operation const StartMotion = [](Rig& rig) { return rig->MotionManager->MotionStart(); };

inline Operation Load(std::string name, std::string text) {
    return CALL(rig->Files->LoadToControllerFromString(name, text));
}

inline Operation ReadPosition(ControlGroupId group, CoordinateType type, unsigned char user, unsigned char tool) {
    return CALL(rig->ControlGroup->ReadPositionData(group, type, user, tool, Any<PositionData>()));
}

inline Operation WritePosition(CoordinateType type, int user, int tool) {
    RobotPositionVariableData const variable{{.coordinateType = type, .toolNumber = tool, .userCoordinateNumber = user},
                                             0};
    return CALL(rig->Variables->robotPositionVariable->Write(variable));
}

inline Operation ReadBit(unsigned address) {
    return CALL(rig->IO->ReadBit(address, Any<bool>()));
}

inline Operation WriteByte(unsigned address) {
    return CALL(rig->IO->WriteByte(address, Any<unsigned char>()));
}

inline void Check(std::span<Case const> cases) {
    for (Case const& each : cases) {
        SCOPED_TRACE(each.card);
        Explanation const card = Explain(each.card).front();
        std::string const text = fmt::format("{} {}", card.advice.cause, card.advice.check);
        EXPECT_NE(text.find(each.says), std::string::npos) << text;
        Rig rig(each.generation);
        StatusInfo const status = each.refused(rig);
        EXPECT_EQ(status.StatusCode, card.code) << status;
        if (each.accepted != nullptr) {
            Rig other(each.generation);
            StatusInfo const beside = each.accepted(other);
            EXPECT_NE(beside.StatusCode, card.code) << beside;
        }
    }
}

} // namespace harvlink::cli::cards
