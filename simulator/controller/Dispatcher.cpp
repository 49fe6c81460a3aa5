#include "simulator/controller/Dispatcher.h"

#include <utility>

#include "simulator/handlers/Handlers.h"
#include "simulator/protocol/Catalogue.h"

namespace harvlink::simulator {

Dispatcher::Dispatcher(ControllerParts& parts) : parts_(parts), fileHandler_(MakeFileHandler(parts.files)) {
    auto& model = parts.model;
    Add(MakeControllerStateHandler(model));
    Add(MakeVariablesHandler(model));
    Add(MakeIOHandler(model));
    Add(MakeFaultHandler(model));
    Add(MakeControlCommandsHandler(model, parts.jobs));
    Add(MakeControlGroupHandler(model, parts.motion));
    Add(MakeMotionManagerHandler(parts.motion));
    Add(MakeKinematicsHandler(model, parts.motion));
    Add(MakeJobHandler(parts.jobs));
}

void Dispatcher::Add(std::unique_ptr<CommandHandler> handler) {
    for (auto const command : handler->Commands()) {
        byCommand_.at(static_cast<std::size_t>(command)) = handler.get();
    }
    handlers_.push_back(std::move(handler));
}

void Dispatcher::ForgetTransfers() {
    fileHandler_ = MakeFileHandler(parts_.files);
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
    if (reply.RefuseIf(CheckAgainstCatalogue(request, parts_.model.state.HasExtendedCommands()))) {
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
