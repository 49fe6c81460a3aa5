// The floor of what open pages cost: libwebsockets alone sends the same messages, at the same pace, to every client. It makes no
// message, knows no controller and copies nothing.
//
// Usage: harvlink_broadcast PORT FILE     FILE: messages, one a line; an empty line ends those of a tenth of a second
#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include <libwebsockets.h>

namespace {

constexpr lws_usec_t Pace = 100'000; // microseconds

struct Broadcast {
    lws_sorted_usec_list_t timer{};
    lws_context* context = nullptr;
    std::vector<std::vector<std::vector<unsigned char>>> rounds; // messages with room for the header before them
    std::size_t round = 0;
    std::map<lws*, std::size_t> next; // of each client: the message of this round that comes next
};

Broadcast& State() {
    static Broadcast state;
    return state;
}

bool Read(char const* file) {
    std::ifstream stream(file);
    auto& rounds = State().rounds;
    rounds.emplace_back();
    for (std::string line; std::getline(stream, line);) {
        if (line.empty()) {
            rounds.emplace_back();
            continue;
        }
        std::vector<unsigned char> message(LWS_PRE);
        message.insert(message.end(), line.begin(), line.end());
        rounds.back().push_back(std::move(message));
    }
    rounds.pop_back(); // the last one may not be whole
    return !rounds.empty();
}

void Tick(lws_sorted_usec_list_t* /*list*/) {
    Broadcast& state = State();
    state.round = (state.round + 1) % state.rounds.size();
    for (auto& [socket, next] : state.next) {
        next = 0;
        lws_callback_on_writable(socket);
    }
    lws_sul_schedule(state.context, 0, &state.timer, Tick, Pace);
}

int Send(lws* socket) {
    Broadcast& state = State();
    auto& messages = state.rounds[state.round];
    std::size_t& next = state.next[socket];
    if (next >= messages.size()) {
        return 0;
    }
    auto& message = messages[next++];
    if (lws_write(socket, message.data() + LWS_PRE, message.size() - LWS_PRE, LWS_WRITE_TEXT) < 0) {
        return -1;
    }
    if (next < messages.size()) {
        lws_callback_on_writable(socket);
    }
    return 0;
}

int Handle(lws* socket, lws_callback_reasons reason, void* /*user*/, void* /*in*/, std::size_t /*length*/) {
    if (reason == LWS_CALLBACK_ESTABLISHED) {
        State().next[socket] = State().rounds[State().round].size();
    } else if (reason == LWS_CALLBACK_CLOSED) {
        State().next.erase(socket);
    } else if (reason == LWS_CALLBACK_SERVER_WRITEABLE) {
        return Send(socket);
    }
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3 || !Read(arguments[2])) {
        std::cerr << "usage: harvlink_broadcast PORT FILE\n";
        return 2;
    }
    lws_set_log_level(0, nullptr);
    std::array<lws_protocols, 2> const protocols{{{"harvlink", Handle, 0, 4096, 0, nullptr, 0}, {}}};
    lws_context_creation_info info{};
    info.port = static_cast<int>(std::strtol(arguments[1], nullptr, 10));
    info.iface = "127.0.0.1";
    info.protocols = protocols.data();
    info.gid = -1;
    info.uid = -1;
    info.options = LWS_SERVER_OPTION_FAIL_UPON_UNABLE_TO_BIND | LWS_SERVER_OPTION_DISABLE_IPV6;
    State().context = lws_create_context(&info);
    if (State().context == nullptr) {
        std::cerr << "harvlink_broadcast: can't listen on port " << arguments[1] << '\n';
        return 1;
    }
    lws_sul_schedule(State().context, 0, &State().timer, Tick, Pace);
    std::cout << "ready" << std::endl;
    while (lws_service(State().context, 0) >= 0) { // until it is terminated
    }
    lws_context_destroy(State().context);
    return 1;
}
