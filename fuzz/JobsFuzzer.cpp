#include "Input.h"
#include "simulator/controller/VirtualController.h"

// Jobs that a client loads to the virtual controller, and their execution. Input: cycle mode and whether the text already
// has the head of a job, then the text.

namespace harvlink::fuzz {

using simulator::ControllerParts;
using simulator::JobEngine;
using simulator::Refusal;
using simulator::VirtualController;

namespace {

constexpr std::uint8_t bringsHead = 0x80;

void StartJob(ControllerParts& parts, CycleMode cycle, std::string const& text) {
    parts.model.SetServo(true);
    parts.model.SetCycle(cycle);
    if (parts.files.Load("FUZZ.JBI", text) == Refusal::None) {
        Require(*parts.files.Read("FUZZ.JBI") == text, "a stored job is unchanged");
        Require(parts.jobs.Select("FUZZ", 0) == Refusal::None, "a stored job can be selected");
        Require(parts.jobs.Start() == Refusal::None, "a selected job can be started");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    auto const first = input.Take<std::uint8_t>();
    std::string text = (first & bringsHead) != 0 ? "" : "/JOB\r\n//NAME FUZZ\r\n//INST\r\nNOP\r\n";
    text += input.TakeText();
    VirtualController controller("127.0.0.1", {.timeScale = 0.0});
    controller.WithParts([&](ControllerParts& parts) { StartJob(parts, static_cast<CycleMode>(first % 3), text); });
    for (int i = 0; i < 10; ++i) {
        controller.Advance(std::chrono::milliseconds(150));
        controller.WithParts([&](ControllerParts& parts) {
            auto const lines = static_cast<std::uint32_t>(std::ranges::count(text, '\n') + 1);
            bool const isOwn = parts.jobs.Current().name == "FUZZ";
            Require(parts.jobs.Depth() <= JobEngine::MaxDepth, "the depth of calls is limited");
            Require(!isOwn || parts.jobs.Current().line <= lines, "the current line is a line of the job");
            parts.jobs.Start();
        });
    }
    return 0;
}

} // namespace harvlink::fuzz
