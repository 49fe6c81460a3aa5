#include "Input.h"
#include "simulator/VirtualController.h"

// Jobs that a client loads to the virtual controller, and their execution. Input: cycle mode and whether the head of a
// job is put in front, then the text.

using namespace harvlink;
using namespace harvlink::fuzz;
using namespace harvlink::simulator;

namespace {

constexpr std::uint8_t bringsHead = 0x80;

void StartJob(ControllerModel& model, CycleMode cycle, std::string const& text) {
    model.SetServo(true);
    model.SetCycle(cycle);
    if (model.files.Load("FUZZ.JBI", text) == Refusal::None) {
        Require(*model.files.Read("FUZZ.JBI") == text, "a job is kept as it came");
        Require(model.jobs.Select("FUZZ", 0) == Refusal::None, "a job that was taken can be selected");
        Require(model.CommandStartJob() == Refusal::None, "a job that was selected can be started");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    auto const first = input.Take<std::uint8_t>();
    std::string text = (first & bringsHead) != 0 ? "" : "/JOB\r\n//NAME FUZZ\r\n//INST\r\nNOP\r\n";
    text += input.TakeText();
    VirtualController controller("127.0.0.1", {.timeScale = 0.0});
    controller.With([&](ControllerModel& model) { StartJob(model, static_cast<CycleMode>(first % 3), text); });
    for (int i = 0; i < 10; ++i) {
        controller.Advance(std::chrono::milliseconds(150));
        controller.With([&](ControllerModel& model) {
            auto const lines = static_cast<std::uint32_t>(std::ranges::count(text, '\n') + 1);
            bool const isOwn = model.jobs.Current().name == "FUZZ";
            Require(model.jobs.Depth() <= JobEngine::MaxDepth, "calls do not nest without end");
            Require(!isOwn || model.jobs.Current().line <= lines, "a job stands in one of its lines");
            model.CommandStartJob();
        });
    }
    return 0;
}
