#include <benchmark/benchmark.h>

#include "harvlink/harvlink.h"
#include "motion/TrajectoryQueue.h"
#include "position/RobotPosition.h"
#include "wire/DatagramTransport.h"
#include "wire/NetworkManager.h"

namespace harvlink {
namespace {

/// Answers at once with the id of the request, so that only the library's own code is left.
class EchoTransport final : public DatagramTransport {
public:
    void Send(Division /*division*/, std::span<std::byte const> datagram) override { id = datagram[11]; }

    Arrival Receive(Division /*division*/, std::span<std::byte> buffer, std::chrono::microseconds /*period*/) override {
        buffer[11] = id;
        return buffer.size();
    }

private:
    std::byte id{};
};

void OkStatus(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
        benchmark::DoNotOptimize(status);
    }
}
BENCHMARK(OkStatus);

void ErrorStatus(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        StatusInfo status = StatusInformation(0xb00d);
        benchmark::DoNotOptimize(status);
    }
}
BENCHMARK(ErrorStatus);

void ExchangeWithoutSockets(benchmark::State& state) {
    StatusInfo status;
    NetworkManager manager(std::make_unique<EchoTransport>(), 1000, 0, status);
    for ([[maybe_unused]] auto _ : state) {
        auto reply = manager.SimpleRequest<std::uint8_t>(0, CommandNumber::ByteVariable, status,
                                                         FixedField::FirstAttribute, ServiceReadOne);
        benchmark::DoNotOptimize(reply);
    }
}
BENCHMARK(ExchangeWithoutSockets);

void FileBlockExchangeWithoutSockets(benchmark::State& state) {
    StatusInfo status;
    NetworkManager manager(std::make_unique<EchoTransport>(), 1000, 0, status);
    for ([[maybe_unused]] auto _ : state) {
        auto reply = manager.SimpleRequest<std::array<char, FileBlockSize>>(0, CommandNumber::ByteVariable, status,
                                                                            FixedField::FirstAttribute, ServiceReadOne);
        benchmark::DoNotOptimize(reply);
    }
}
BENCHMARK(FileBlockExchangeWithoutSockets);

void QueueStep(benchmark::State& state) {
    TrajectoryQueue queue;
    MotionStep step;
    step.groups.set(0);
    for ([[maybe_unused]] auto _ : state) {
        queue.PushBack(step);
        benchmark::DoNotOptimize(queue.Front());
        queue.PopFront();
    }
}
BENCHMARK(QueueStep);

void PositionToWireAndBack(benchmark::State& state) {
    PositionData position{.coordinateType = CoordinateType::BaseCoordinate};
    for ([[maybe_unused]] auto _ : state) {
        position = FromRobotPositionMsg(ToRobotPositionMsg(position));
        benchmark::DoNotOptimize(position);
    }
}
BENCHMARK(PositionToWireAndBack);

} // namespace
} // namespace harvlink
