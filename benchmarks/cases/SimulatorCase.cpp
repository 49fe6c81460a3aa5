#include <array>
#include <memory>

#include <unistd.h>

#include "cases/Cases.h"
#include "simulator/network/Server.h"
#include "support/BareClient.h"
#include "support/ChildProcess.h"
#include "support/Responder.h"

namespace harvlink::bench {
namespace {

constexpr int controllers = 200;

std::vector<std::string> Addresses(int first) {
    std::vector<std::string> addresses;
    addresses.reserve(controllers);
    for (int i = 0; i < controllers; ++i) {
        addresses.push_back(BenchAddress(first + i));
    }
    return addresses;
}

/// Seconds for reads of every controller in flight at once, a number of times.
class Flood {
public:
    explicit Flood(std::vector<std::string> const& addresses) {
        for (std::string const& address : addresses) {
            clients.push_back(std::make_unique<BareClient>(address));
        }
    }

    double Run() {
        return Time([&] {
            for (int turn = 0; turn < turns; ++turn) {
                for (auto const& client : clients) {
                    client->RequestByteVariable();
                }
                for (auto const& client : clients) {
                    if (!client->ReceiveByteVariable()) {
                        throw std::runtime_error("a reply is missing");
                    }
                }
            }
        });
    }

    static constexpr int turns = 50;

private:
    std::vector<std::unique_ptr<BareClient>> clients;
};

} // namespace

void SimulatorCase(Report& report) {
    PinTo(0);
    std::vector<std::string> const bareAddresses = Addresses(3000);
    std::vector<std::string> const addresses = Addresses(4000);
    Responder const responder(bareAddresses, 0);
    ChildProcess const virtualControllers(0, [&](std::function<void()> const& ready) {
        simulator::Server server;
        for (std::string const& address : addresses) {
            server.Add(address, {});
        }
        if (server.Start()) {
            ready();
            ::pause();
        }
    });
    Flood bare(bareAddresses);
    Flood simulated(addresses);
    Paired const seconds = Pair([&] { return bare.Run(); }, [&] { return simulated.Run(); });
    constexpr double replies = 1.0 * Flood::turns * controllers;
    AddRate(report, "200 virtual controllers by one thread, rate", "1/s", replies, seconds, 0.6);
}

} // namespace harvlink::bench
