#include "simulator/CommandHandler.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

class IOHandler final : public CommandHandler {
public:
    explicit IOHandler(ControllerModel& model) : model_(&model) {}

    std::span<CommandNumber const> Commands() const override { return {}; }

    void Handle(Request const& request, Reply& reply) override {
        static_cast<void>(request);
        reply.Refuse(Refusal::UndefinedCommand);
    }

private:
    [[maybe_unused]] ControllerModel* model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeIOHandler(ControllerModel& model) {
    return std::make_unique<IOHandler>(model);
}

} // namespace harvlink::simulator
