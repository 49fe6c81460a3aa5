// Watches many controllers by one fleet and shows them in one table, those first that need somebody. Ends when one has raised
// an alarm and one has fallen silent, or after 30 seconds.
//
// Usage: example_FleetTable ADDRESS...

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <map>
#include <span>
#include <string>

#include "harvlink/harvlink.h"

namespace {

std::size_t CountOnline(harvlink::FleetStatistics const& seen) {
    return static_cast<std::size_t>(std::ranges::count(seen.controllers, harvlink::FleetState::Online,
                                                       &harvlink::FleetControllerStatistics::state));
}

/// The last event of each controller that has one. Returns whether there are enough of them.
bool TakeNews(harvlink::Fleet& fleet, std::map<std::string, std::string>& news) {
    std::array<harvlink::FleetEvent, 64> events;
    std::size_t const count = fleet.TakeEvents(events, std::chrono::milliseconds(200));
    for (harvlink::FleetEvent const& event : std::span(events).first(count)) {
        bool const isSilent = event.after == static_cast<int>(harvlink::FleetState::Silent);
        if (event.kind == harvlink::FleetEventKind::AlarmRaised) {
            news[event.controller] = "alarm";
        } else if (event.kind == harvlink::FleetEventKind::StateChanged && isSilent) {
            news[event.controller] = "silent since its answers stopped";
        }
    }
    return news.size() >= 2;
}

void ShowTable(harvlink::Fleet const& fleet, std::map<std::string, std::string> const& news) {
    auto const seen = fleet.Statistics();
    std::cout << "    " << seen.controllers.size() << " controllers, " << CountOnline(seen) << " online, "
              << seen.samples << " samples\n";
    for (auto const& [controller, text] : news) {
        std::cout << "    " << controller << "  " << text << '\n';
    }
    std::size_t rows = 0;
    for (auto const& controller : seen.controllers) {
        if (!news.contains(controller.controller) && rows++ < 3) {
            std::cout << "    " << controller.controller << "  fine, " << controller.exchanges << " exchanges\n";
        }
    }
    std::cout << "    ... and " << seen.controllers.size() - news.size() - std::min<std::size_t>(rows, 3) << " more\n";
}

} // namespace

int main(int argc, char** argv) {
    harvlink::Fleet fleet;
    for (char const* const address : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        harvlink::FleetGroup const group{.period = std::chrono::milliseconds(200),
                                         .items = {harvlink::FleetItem::State()}};
        if (auto const status = fleet.Add(address, {.address = address, .timeout = 200}, {group});
            status.StatusCode != 0) {
            std::cerr << status << '\n';
            return 1;
        }
    }
    if (auto const status = fleet.Start(); status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    std::map<std::string, std::string> news;
    bool isAnnounced = false;
    while (std::chrono::steady_clock::now() < end && !TakeNews(fleet, news)) {
        if (!isAnnounced && CountOnline(fleet.Statistics()) + 1 == static_cast<std::size_t>(argc)) {
            std::cout << "    all online" << std::endl;
            isAnnounced = true;
        }
    }
    ShowTable(fleet, news);
    return news.size() >= 2 ? 0 : 1;
}
