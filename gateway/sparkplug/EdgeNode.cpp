#include "gateway/sparkplug/EdgeNode.h"

#include <algorithm>
#include <csignal>

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "gateway/sparkplug/BackgroundStore.h"
#include "gateway/sparkplug/DiskStore.h"
#include "gateway/sparkplug/MemoryStore.h"
#include "gateway/sparkplug/NodeLoop.h"

namespace harvlink::gateway::sparkplug {

namespace {

constexpr std::uint64_t MostInMemory = 64ULL << 20;

std::unique_ptr<Store> StoreOf(MqttStoreConfig const& config) {
    if (!config.folder.empty()) {
        return std::make_unique<BackgroundStore>(std::make_unique<DiskStore>(config), MostInMemory);
    }
    return std::make_unique<MemoryStore>(std::min(config.maxBytes, MostInMemory));
}

/// Signals are for the program. That of a broken connection, which TLS would raise, is of no use to anyone.
void BlockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace

EdgeNode::EdgeNode(MqttConfig const& config, Log& log) : EdgeNode(config, log, StoreOf(config.store)) {}

EdgeNode::EdgeNode(MqttConfig const& config, Log& log, std::unique_ptr<Store> store)
    : store_(std::move(store)), wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    thread_ = std::thread([this, config, &log] { Run(config, log); });
}

EdgeNode::~EdgeNode() {
    mustStop_ = true;
    eventfd_write(wake_, 1);
    thread_.join();
    close(wake_);
}

void EdgeNode::Run(MqttConfig const& config, Log& log) {
    BlockSignals();
    NodeLoop loop(config, *store_, inbox_, log);
    bool isStopping = false;
    while (!loop.HasStopped()) {
        loop.Turn(isStopping ? -1 : wake_);
        if (mustStop_ && !isStopping) {
            isStopping = true;
            loop.Stop();
        }
        std::scoped_lock const lock(mutex_);
        statistics_ = loop.Statistics();
    }
}

void EdgeNode::Added(ControllerPtr const& controller) {
    inbox_.Add({.kind = Delivery::Kind::Added, .controller = controller, .samples = {}, .events = {}});
}

void EdgeNode::Removed(ControllerPtr const& controller) {
    inbox_.Add({.kind = Delivery::Kind::Removed, .controller = controller, .samples = {}, .events = {}});
}

void EdgeNode::Take(Batch const& batch) {
    if (batch.samples.empty() && batch.events.empty()) {
        return;
    }
    inbox_.Add({.kind = Delivery::Kind::Batch,
                .controller = nullptr,
                .samples = {batch.samples.begin(), batch.samples.end()},
                .events = {batch.events.begin(), batch.events.end()}});
}

NodeStatistics EdgeNode::Statistics() const {
    std::scoped_lock const lock(mutex_);
    return statistics_;
}

std::vector<Figure> EdgeNode::Figures() const {
    return FiguresOf(Statistics(), inbox_.Dropped());
}

} // namespace harvlink::gateway::sparkplug
