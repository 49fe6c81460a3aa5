#include <array>

#include "io/IOMessages.h"
#include "simulator/handlers/Acknowledgement.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

/// A number has its own size; a bit set has the 8 bytes that it takes in the memory of the client.
bool IsSizeOf(Request const& request, std::size_t numberSize) {
    return request.payload.size() == numberSize || request.payload.size() == 8;
}

class IOHandler final : public CommandHandler {
public:
    explicit IOHandler(ControllerModel& model) : model_(model) {}

    std::span<CommandNumber const> Commands() const override {
        using enum CommandNumber;
        static constexpr std::array Own{IOData, RegisterData, UAPIWriteIO};
        return Own;
    }

    void Handle(Request const& request, Reply& reply) override {
        if (request.Command() == CommandNumber::UAPIWriteIO) {
            Finish(WriteSignal(request.As<UAPIIoData>()), reply);
        } else if (request.Command() == CommandNumber::IOData) {
            request.IsWrite() ? Finish(WriteGroup(request), reply) : ReadGroup(request, reply);
        } else {
            request.IsWrite() ? Finish(WriteRegister(request), reply) : ReadRegister(request, reply);
        }
    }

private:
    static void Finish(Refusal refusal, Reply& reply) {
        if (!reply.RefuseIf(refusal)) {
            reply.Set(Written);
        }
    }

    Refusal CheckRemote() const {
        return model_.state.mode == Mode::Remote ? Refusal::None : Refusal::WritingNeedsRemoteMode;
    }

    void ReadGroup(Request const& request, Reply& reply) const {
        if (auto const value = model_.signals.ReadGroup(request.subHeader.instance)) {
            reply.Set(*value);
        } else {
            reply.Refuse(Refusal::InvalidInstance);
        }
    }

    /// On every generation, only network inputs can be written by group.
    Refusal WriteGroup(Request const& request) {
        auto const group = request.subHeader.instance;
        auto const type = model_.signals.TypeOf(group);
        if (!type) {
            return Refusal::InvalidInstance;
        }
        if (*type != IOType::NetworkInput) {
            return Refusal::DataUseProhibited;
        }
        if (!IsSizeOf(request, 1)) {
            return Refusal::DataSizeError;
        }
        auto const refusal = CheckRemote();
        if (refusal == Refusal::None) {
            model_.signals.WriteGroup(group, request.As<std::uint8_t>());
        }
        return refusal;
    }

    Refusal WriteSignal(UAPIIoData const& wanted) {
        auto const type = model_.signals.TypeOf(wanted.address / 10);
        if (!type || !model_.signals.Read(wanted.address)) {
            return Refusal::InvalidInstance;
        }
        if (*type != IOType::GeneralOutput && *type != IOType::InterfacePanelInput) {
            return Refusal::DataUseProhibited;
        }
        if (wanted.value > 1) {
            return Refusal::DataOutOfRange;
        }
        auto const refusal = CheckRemote();
        if (refusal == Refusal::None) {
            model_.signals.Write(wanted.address, wanted.value == 1);
        }
        return refusal;
    }

    void ReadRegister(Request const& request, Reply& reply) const {
        if (request.subHeader.instance < model_.registers.size()) {
            reply.Set(model_.registers[request.subHeader.instance]);
        } else {
            reply.Refuse(Refusal::InvalidInstance);
        }
    }

    Refusal WriteRegister(Request const& request) {
        if (request.subHeader.instance >= model_.registers.size()) {
            return Refusal::InvalidInstance;
        }
        if (!IsSizeOf(request, 2)) {
            return Refusal::DataSizeError;
        }
        model_.registers[request.subHeader.instance] = request.As<std::uint16_t>();
        return Refusal::None;
    }

    ControllerModel& model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeIOHandler(ControllerModel& model) {
    return std::make_unique<IOHandler>(model);
}

} // namespace harvlink::simulator
