#include <chrono>

#include "simulator/files/FileTransfers.h"
#include "simulator/handlers/Handlers.h"

namespace harvlink::simulator {

namespace {

/// Answers every request of the file port.
class FileTransferHandler final : public CommandHandler {
public:
    explicit FileTransferHandler(FileStore& files) : transfers_(files) {}

    std::span<CommandNumber const> Commands() const override { return {}; }

    /// Uses real time, because clients live in real time however fast the controller's clock runs.
    void Handle(Request const& request, Reply& reply) override {
        transfers_.Handle(request, std::chrono::steady_clock::now(), reply);
    }

private:
    FileTransfers transfers_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeFileHandler(FileStore& files) {
    return std::make_unique<FileTransferHandler>(files);
}

} // namespace harvlink::simulator
