#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "wire/NetworkManager.h"

namespace harvlink::test {

/// Replaces the sockets for tests with waits that take no time or with errors that sockets do not raise. Two uses at the
/// same time fail the test.
class FakeTransport final : public DatagramTransport {
public:
    struct Record {
        std::vector<std::chrono::microseconds> periods;
        std::vector<std::uint8_t> sentIds;
        std::function<void()> onSend;
        /// Each wait calls it with the last id. It returns the number of bytes that it wrote into the buffer.
        std::function<std::size_t(std::uint8_t id, std::span<std::byte> buffer)> onReceive = AnswerAtOnce;
        std::function<bool()> onRenew = [] { return true; };
        unsigned renewals = 0;
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

    Arrival Receive(Division, std::span<std::byte> buffer, std::chrono::microseconds period) override {
        EXPECT_FALSE(record->isBusy.exchange(true));
        record->periods.push_back(period);
        std::this_thread::yield();
        record->isBusy = false;
        return record->onReceive(record->sentIds.back(), buffer);
    }

    bool Renew(Division) override {
        ++record->renewals;
        return record->onRenew();
    }

    static std::size_t AnswerAtOnce(std::uint8_t id, std::span<std::byte> buffer) {
        buffer[11] = std::byte{id};
        return buffer.size();
    }
    static std::size_t Silence(std::uint8_t, std::span<std::byte>) { return 0; }

private:
    std::shared_ptr<Record> record;
};

/// A manager with a fake transport that answers the probe.
struct FakeSession {
    explicit FakeSession(unsigned timeout = 100, unsigned retries = 0, ConnectionPolicy const& policy = {})
        : manager(std::make_unique<FakeTransport>(record), timeout, retries, probeStatus, policy) {
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
