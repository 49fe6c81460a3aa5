#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "wire/NetworkManager.h"

namespace harvlink::test {

/// Stands in for the sockets where a test asks for waits that never took place or errors that sockets don't raise. Any
/// two uses of it at the same time fail the test.
class FakeTransport final : public DatagramTransport {
public:
    struct Record {
        std::vector<timeval> periods;
        std::vector<std::uint8_t> sentIds;
        std::function<void()> onSend;
        /// Called by each wait with the last id; returns the number of bytes it put into the buffer.
        std::function<std::size_t(std::uint8_t id, std::span<std::byte> buffer)> onReceive = AnswerAtOnce;
        std::atomic<bool> isBusy = false;
    };

    explicit FakeTransport(std::shared_ptr<Record> log) : record(std::move(log)) {}

    void Send(Division, std::span<std::byte const> datagram) override {
        EXPECT_FALSE(record->isBusy.exchange(true));
        record->sentIds.push_back(std::to_integer<std::uint8_t>(datagram[11]));
        std::this_thread::yield();
        record->isBusy = false;
        if (record->onSend) {
            record->onSend();
        }
    }

    std::size_t Receive(std::span<std::byte> buffer, timeval period) override {
        EXPECT_FALSE(record->isBusy.exchange(true));
        record->periods.push_back(period);
        std::this_thread::yield();
        record->isBusy = false;
        return record->onReceive(record->sentIds.back(), buffer);
    }

    static std::size_t AnswerAtOnce(std::uint8_t id, std::span<std::byte> buffer) {
        buffer[11] = std::byte{id};
        return buffer.size();
    }
    static std::size_t Silence(std::uint8_t, std::span<std::byte>) { return 0; }

private:
    std::shared_ptr<Record> record;
};

/// A manager over a fake that answers the probe.
struct FakeSession {
    explicit FakeSession(unsigned timeout = 100, unsigned retries = 0)
        : manager(std::make_unique<FakeTransport>(record), timeout, retries, probeStatus) {
        record->periods.clear();
        record->sentIds.clear();
    }

    StatusInfo Exchange(std::optional<unsigned char> id = {}) {
        OutgoingPacket<NoPayload> request;
        IncomingPacket<std::uint32_t> reply;
        return manager.SendAndReceive(request, reply, id, true);
    }

    std::shared_ptr<FakeTransport::Record> record = std::make_shared<FakeTransport::Record>();
    StatusInfo probeStatus;
    NetworkManager manager;
};

} // namespace harvlink::test
