#include "gateway/http/Connections.h"

#include <algorithm>
#include <set>

#include <sys/socket.h>

namespace harvlink::gateway {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds Patience(5); ///< with a client that takes its answer, when others need its place

bool HasNoRequest(HttpConnection const& connection) {
    return connection.live == nullptr && (connection.exchange == nullptr || !connection.exchange->isComplete);
}

bool IsSlowReader(HttpConnection const& connection) {
    return connection.exchange != nullptr && connection.exchange->response != nullptr &&
           steady_clock::now() - connection.since > Patience;
}

} // namespace

void Connections::Add(lws* socket) {
    all_[socket].since = steady_clock::now();
}

void Connections::Remove(lws* socket) {
    all_.erase(socket);
}

HttpConnection* Connections::Find(lws* socket) {
    auto const found = all_.find(socket);
    return found == all_.end() ? nullptr : &found->second;
}

lws* Connections::SocketOf(std::shared_ptr<Exchange> const& exchange) const {
    auto const found =
        std::find_if(all_.begin(), all_.end(), [&](auto const& each) { return each.second.exchange == exchange; });
    return found == all_.end() ? nullptr : found->first;
}

bool Connections::HasRoomFor(Response const& response) const {
    std::set<Response const*> others;
    for (auto const& [socket, connection] : all_) {
        if (connection.exchange != nullptr && connection.exchange->response != nullptr) {
            others.insert(connection.exchange->response.get());
        }
    }
    if (others.contains(&response)) {
        return true;
    }
    std::uint64_t bytes = 0;
    std::size_t downloads = 0;
    for (Response const* other : others) {
        bytes += other->body.size();
        downloads += other->file != nullptr ? 1U : 0U;
    }
    return (bytes == 0 || bytes + response.body.size() <= MostBytes) &&
           (response.file == nullptr || downloads < MostDownloads);
}

std::size_t Connections::LiveClients() const {
    return static_cast<std::size_t>(
        std::count_if(all_.begin(), all_.end(), [](auto const& each) { return each.second.live != nullptr; }));
}

bool Connections::GiveUpOne() {
    return GiveUpOldest(HasNoRequest) || GiveUpSlowReader();
}

bool Connections::GiveUpSlowReader() {
    return GiveUpOldest(IsSlowReader);
}

template <typename Condition>
bool Connections::GiveUpOldest(Condition const& condition) {
    auto oldest = all_.end();
    for (auto each = all_.begin(); each != all_.end(); ++each) {
        bool const isCandidate = !each->second.isGivenUp && condition(each->second);
        if (isCandidate && (oldest == all_.end() || each->second.since < oldest->second.since)) {
            oldest = each;
        }
    }
    if (oldest == all_.end()) {
        return false;
    }
    // The library sees the end of it in its next round; to close it from within the callback of another one is not safe.
    shutdown(lws_get_socket_fd(oldest->first), SHUT_RDWR);
    oldest->second.isGivenUp = true;
    oldest->second.exchange.reset();
    return true;
}

} // namespace harvlink::gateway
