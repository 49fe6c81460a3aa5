#include "simulator/CommandHandler.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

class VariablesHandler final : public CommandHandler {
public:
    explicit VariablesHandler(ControllerModel& model) : model_(&model) {}

    std::span<CommandNumber const> Commands() const override { return {}; }

    void Handle(Request const& request, Reply& reply) override {
        static_cast<void>(request);
        reply.Refuse(Refusal::UndefinedCommand);
    }

private:
    [[maybe_unused]] ControllerModel* model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeVariablesHandler(ControllerModel& model) {
    return std::make_unique<VariablesHandler>(model);
}

} // namespace harvlink::simulator
