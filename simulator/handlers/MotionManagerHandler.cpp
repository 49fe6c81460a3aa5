#include "simulator/CommandHandler.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

class MotionManagerHandler final : public CommandHandler {
public:
    explicit MotionManagerHandler(ControllerModel& model) : model_(&model) {}

    std::span<CommandNumber const> Commands() const override { return {}; }

    void Handle(Request const& request, Reply& reply) override {
        static_cast<void>(request);
        reply.Refuse(Refusal::UndefinedCommand);
    }

private:
    [[maybe_unused]] ControllerModel* model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeMotionManagerHandler(ControllerModel& model) {
    return std::make_unique<MotionManagerHandler>(model);
}

} // namespace harvlink::simulator
