#include "simulator/Dispatcher.h"

#include <utility>

#include "simulator/Catalogue.h"

namespace harvlink::simulator {

Dispatcher::Dispatcher(ControllerModel& model) : model_(model), fileHandler_(MakeFileHandler(model)) {
    Add(MakeControllerStateHandler(model));
    Add(MakeVariablesHandler(model));
    Add(MakeIOHandler(model));
    Add(MakeFaultHandler(model));
    Add(MakeControlCommandsHandler(model));
    Add(MakeControlGroupHandler(model));
    Add(MakeMotionManagerHandler(model));
    Add(MakeKinematicsHandler(model));
    Add(MakeJobHandler(model));
}

void Dispatcher::Add(std::unique_ptr<CommandHandler> handler) {
    for (auto const command : handler->Commands()) {
        byCommand_.at(static_cast<std::size_t>(command)) = handler.get();
    }
    handlers_.push_back(std::move(handler));
}

void Dispatcher::ForgetTransfers() {
    fileHandler_ = MakeFileHandler(model_);
}

void Dispatcher::Handle(Request const& request, Reply& reply) {
    reply.Begin(request);
    if (request.port == Port::File) {
        HandleFilePort(request, reply);
    } else {
        HandleRobotPort(request, reply);
    }
}

void Dispatcher::HandleRobotPort(Request const& request, Reply& reply) {
    if (request.header.division != Division::RobotControl) {
        reply.Refuse(Refusal::CategoryError);
        return;
    }
    if (request.header.payloadSize != request.payload.size()) {
        reply.Refuse(Refusal::DataSizeError);
        return;
    }
    if (reply.RefuseIf(CheckAgainstCatalogue(request, model_.state.HasExtendedCommands()))) {
        return;
    }
    auto* const handler = byCommand_.at(request.subHeader.command);
    if (handler == nullptr) {
        reply.Refuse(Refusal::UndefinedCommand);
        return;
    }
    handler->Handle(request, reply);
}

void Dispatcher::HandleFilePort(Request const& request, Reply& reply) {
    if (request.header.division != Division::FileControl) {
        reply.Refuse(Refusal::CategoryError);
    } else if (request.payload.size() > FileBlockSize) {
        reply.Refuse(Refusal::FrameSizeError);
    } else if (request.header.payloadSize != request.payload.size()) {
        reply.Refuse(Refusal::FrameSizeMismatch);
    } else {
        fileHandler_->Handle(request, reply);
    }
}

} // namespace harvlink::simulator
