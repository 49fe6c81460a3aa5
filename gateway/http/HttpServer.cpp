#include "gateway/http/HttpServer.h"

#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include <fmt/format.h>
#include <libwebsockets.h>

#include "gateway/config/ConfigError.h"
#include "gateway/http/Connection.h"
#include "gateway/http/Guard.h"
#include "gateway/http/PageFiles.h"
#include "gateway/http/Worker.h"

namespace harvlink::gateway {

namespace {

constexpr std::string_view LivePath = "/api/live";
constexpr lws_usec_t LivePace = 100'000; ///< microseconds: at most ten messages a second
constexpr unsigned HeaderSeconds = 10; ///< for the headers of a request, or what else the library waits for
constexpr int KeepAliveSeconds = 30;
constexpr int WorkSeconds = 60;
constexpr std::size_t LargestMessage = 4096; ///< of a client of /api/live
constexpr std::uint16_t SecondsToPing = 20;
constexpr std::uint16_t SecondsToHangUp = 40;

/// Counters of the process: a listener that takes the place of another one goes on with them.
struct Counts {
    std::atomic<unsigned> connections = 0;
    std::atomic<unsigned> liveClients = 0;
    std::atomic<std::uint64_t> requests = 0;
    std::atomic<std::uint64_t> refused = 0;
};

Counts& AllCounts() {
    static Counts counts;
    return counts;
}

bool BelongsToApi(std::string const& path) {
    return path == "/metrics" || path.starts_with("/health") || path.starts_with("/api/");
}

} // namespace

class HttpServer::Implementation {
public:
    Implementation(ListenConfig const& config, ApiSources sources)
        : guard_(config), api_(std::move(sources)), feed_(api_) {
        Listen(config);
        thread_ = std::thread([this] { Run(); });
    }

    ~Implementation() {
        isStopping_ = true;
        lws_cancel_service(context_);
        thread_.join();
        worker_.reset(); // nothing comes from it any more
        lws_context_destroy(context_);
    }

    std::uint16_t Port() const {
        return static_cast<std::uint16_t>(lws_get_vhost_listen_port(lws_get_vhost_by_name(context_, "default")));
    }

private:
    struct Tick {
        lws_sorted_usec_list_t list{};
        Implementation* self = nullptr;
    };

    static int Callback(lws* socket, lws_callback_reasons reason, void* /*user*/, void* in, std::size_t length) {
        auto* const self = static_cast<Implementation*>(lws_context_user(lws_get_context(socket)));
        return self == nullptr ? 0 : self->Handle(socket, reason, in, length);
    }

    void Listen(ListenConfig const& config);
    void Run();
    int Handle(lws* socket, lws_callback_reasons reason, void* in, std::size_t length);
    int Accept();
    int Begin(lws* socket, std::string_view path);
    int TakeBody(lws* socket, std::string_view part);
    int Finish(lws* socket);
    int AnswerNow(lws* socket, Exchange& exchange, Response response);
    int AnswerLater(lws* socket, std::shared_ptr<Exchange> const& exchange);
    void TakeAnswers();
    int RefuseLive(lws* socket);
    int ReceiveLive(lws* socket, std::string_view part);
    int SendLive(lws* socket);
    void TickLive();

    Guard guard_;
    Api api_;
    LiveFeed feed_;
    std::array<lws_protocols, 2> protocols_{{{"harvlink", Callback, 0, LargestMessage, 0, nullptr, 0}, {}}};
    lws_retry_bo_t idle_{};
    lws_context* context_ = nullptr;
    Tick tick_;
    std::map<lws*, Connection> open_; ///< the thread's own
    std::mutex answersMutex_;
    std::vector<std::pair<std::shared_ptr<Exchange>, Response>> answers_;
    std::atomic<bool> isStopping_ = false;
    unsigned connections_ = 0; ///< the thread's own, as the next
    unsigned liveClients_ = 0;
    std::unique_ptr<Worker> worker_ = std::make_unique<Worker>();
    std::thread thread_;
};

void HttpServer::Implementation::Listen(ListenConfig const& config) {
    lws_set_log_level(0, nullptr); // it logs to the error stream whatever a client does
    lws_context_creation_info info{};
    info.port = config.port;
    info.iface = config.address.c_str();
    info.protocols = protocols_.data();
    info.user = this;
    info.gid = -1;
    info.uid = -1;
    info.max_http_header_data = LargestHeader;
    info.max_http_header_pool = MostConnections;
    info.fd_limit_per_thread = MostConnections + 32;
    info.pt_serv_buf_size = 2 * 65'536;
    info.timeout_secs = HeaderSeconds;
    info.keepalive_timeout = KeepAliveSeconds;
    idle_.secs_since_valid_ping = SecondsToPing;
    idle_.secs_since_valid_hangup = SecondsToHangUp;
    info.retry_and_idle_policy = &idle_;
    info.options = LWS_SERVER_OPTION_FAIL_UPON_UNABLE_TO_BIND;
    bool const isIpv6 = config.address.find(':') != std::string::npos;
    info.options |= isIpv6 ? LWS_SERVER_OPTION_IPV6_V6ONLY_MODIFY | LWS_SERVER_OPTION_IPV6_V6ONLY_VALUE
                           : LWS_SERVER_OPTION_DISABLE_IPV6;
    if (!config.key.empty()) {
        info.options |= LWS_SERVER_OPTION_DO_SSL_GLOBAL_INIT;
        info.alpn = "http/1.1"; // of HTTP/2 the headers have other names, and a WebSocket gains nothing
        info.ssl_cert_filepath = config.certificate.c_str();
        info.ssl_private_key_filepath = config.key.c_str();
    }
    context_ = lws_create_context(&info);
    if (context_ == nullptr) {
        throw ConfigError({fmt::format("can't listen on {} port {}: the port is in use, the address is not one of this "
                                       "computer, or certificate and key do not fit",
                                       config.address, config.port)});
    }
}

void HttpServer::Implementation::Run() {
    feed_.Look();
    tick_.self = this;
    auto const next = [](lws_sorted_usec_list_t* list) {
        auto* const self = lws_container_of(list, Tick, list)->self;
        self->TickLive();
    };
    tick_.list.cb = next;
    lws_sul_schedule(context_, 0, &tick_.list, next, LivePace);
    while (!isStopping_ && lws_service(context_, 0) >= 0) {
    }
    lws_sul_schedule(context_, 0, &tick_.list, next, LWS_SET_TIMER_USEC_CANCEL);
}

void HttpServer::Implementation::TickLive() {
    if (liveClients_ > 0) {
        LiveText const delta = feed_.Look();
        for (auto& [socket, connection] : open_) {
            if (connection.live != nullptr && connection.live->Tick(delta)) {
                lws_callback_on_writable(socket);
            }
        }
    }
    lws_sul_schedule(context_, 0, &tick_.list, tick_.list.cb, LivePace);
}

int HttpServer::Implementation::Handle(lws* socket, lws_callback_reasons reason, void* in, std::size_t length) {
    std::string_view const text(static_cast<char const*>(in), in == nullptr ? 0 : length);
    switch (reason) {
    case LWS_CALLBACK_FILTER_NETWORK_CONNECTION:
        return Accept();
    case LWS_CALLBACK_WSI_CREATE:
        AllCounts().connections = ++connections_;
        return 0;
    case LWS_CALLBACK_WSI_DESTROY:
        AllCounts().connections = --connections_;
        open_.erase(socket);
        return 0;
    case LWS_CALLBACK_HTTP:
        return Begin(socket, text);
    case LWS_CALLBACK_HTTP_BODY:
        return TakeBody(socket, text);
    case LWS_CALLBACK_HTTP_BODY_COMPLETION:
        return Finish(socket);
    case LWS_CALLBACK_HTTP_WRITEABLE: {
        auto const found = open_.find(socket);
        bool const isReady =
            found != open_.end() && found->second.exchange != nullptr && found->second.exchange->isAnswered;
        return isReady ? SendResponse(socket, *found->second.exchange) : 0;
    }
    case LWS_CALLBACK_CLOSED_HTTP:
        open_.erase(socket);
        return 0;
    case LWS_CALLBACK_EVENT_WAIT_CANCELLED:
        TakeAnswers();
        return 0;
    case LWS_CALLBACK_FILTER_PROTOCOL_CONNECTION:
        return RefuseLive(socket);
    case LWS_CALLBACK_ESTABLISHED:
        if (liveClients_++ == 0) {
            feed_.Look(); // nobody has looked since the last client left
        }
        AllCounts().liveClients = liveClients_;
        open_[socket].live = std::make_unique<LiveClient>(feed_);
        lws_callback_on_writable(socket);
        return 0;
    case LWS_CALLBACK_RECEIVE:
        return ReceiveLive(socket, text);
    case LWS_CALLBACK_SERVER_WRITEABLE:
        return SendLive(socket);
    case LWS_CALLBACK_CLOSED:
        liveClients_ -= open_.erase(socket) > 0 ? 1U : 0U;
        AllCounts().liveClients = liveClients_;
        return 0;
    default:
        return 0;
    }
}

int HttpServer::Implementation::Accept() {
    if (connections_ < MostConnections) {
        return 0;
    }
    ++AllCounts().refused;
    return -1;
}

int HttpServer::Implementation::Begin(lws* socket, std::string_view path) {
    ++AllCounts().requests;
    Connection& connection = open_[socket];
    connection.exchange = std::make_shared<Exchange>();
    Exchange& exchange = *connection.exchange;
    exchange.request = RequestOf(socket, path);
    if (auto refused = guard_.Refuse(exchange.request, false); refused) {
        return AnswerNow(socket, exchange, std::move(*refused));
    }
    if (exchange.request.method == "POST") {
        return 0; // its body follows
    }
    if (!BelongsToApi(exchange.request.path)) {
        return AnswerNow(socket, exchange, PageFile(exchange.request));
    }
    return AnswerLater(socket, connection.exchange);
}

int HttpServer::Implementation::TakeBody(lws* socket, std::string_view part) {
    auto const found = open_.find(socket);
    if (found == open_.end() || found->second.exchange == nullptr) {
        return -1;
    }
    std::string& body = found->second.exchange->request.body;
    if (body.size() + part.size() > LargestBody) {
        return -1;
    }
    body += part;
    return 0;
}

int HttpServer::Implementation::Finish(lws* socket) {
    auto const found = open_.find(socket);
    bool const isNew = found != open_.end() && found->second.exchange != nullptr && !found->second.exchange->isAnswered;
    return isNew ? AnswerLater(socket, found->second.exchange) : 0;
}

int HttpServer::Implementation::AnswerNow(lws* socket, Exchange& exchange, Response response) {
    exchange.response = std::move(response);
    exchange.isAnswered = true;
    lws_callback_on_writable(socket);
    return 0;
}

int HttpServer::Implementation::AnswerLater(lws* socket, std::shared_ptr<Exchange> const& exchange) {
    bool const isTaken = worker_->Put([this, exchange] {
        Response response = api_.Answer(exchange->request);
        {
            std::scoped_lock const lock(answersMutex_);
            answers_.emplace_back(exchange, std::move(response));
        }
        lws_cancel_service(context_);
    });
    if (!isTaken) {
        return AnswerNow(socket, *exchange, ErrorResponse(503, "too many requests wait; try again"));
    }
    lws_set_timeout(socket, PENDING_TIMEOUT_HTTP_CONTENT, WorkSeconds);
    return 0;
}

void HttpServer::Implementation::TakeAnswers() {
    std::vector<std::pair<std::shared_ptr<Exchange>, Response>> answers;
    {
        std::scoped_lock const lock(answersMutex_);
        answers.swap(answers_);
    }
    for (auto& [exchange, response] : answers) {
        for (auto& [socket, connection] : open_) {
            if (connection.exchange == exchange) {
                AnswerNow(socket, *exchange, std::move(response));
                break;
            }
        }
    }
}

int HttpServer::Implementation::RefuseLive(lws* socket) {
    std::array<char, 256> path{};
    if (lws_hdr_copy(socket, path.data(), path.size(), WSI_TOKEN_GET_URI) <= 0 || LivePath != path.data()) {
        return -1;
    }
    auto const refused = guard_.Refuse(RequestOf(socket, path.data()), true);
    return refused ? -1 : 0;
}

int HttpServer::Implementation::ReceiveLive(lws* socket, std::string_view part) {
    Connection& connection = open_[socket];
    if (connection.live == nullptr || connection.received.size() + part.size() > LargestMessage) {
        return -1;
    }
    connection.received += part;
    if (lws_is_final_fragment(socket) != 0 && lws_remaining_packet_payload(socket) == 0) {
        connection.live->Receive(std::exchange(connection.received, {}));
        lws_callback_on_writable(socket);
    }
    return 0;
}

int HttpServer::Implementation::SendLive(lws* socket) {
    auto const found = open_.find(socket);
    if (found == open_.end() || found->second.live == nullptr) {
        return 0;
    }
    LiveText const text = found->second.live->Next();
    if (text == nullptr) {
        return 0;
    }
    // What the client does not take at once, the library keeps, and it calls again when all of it is gone: so at most one message
    // waits for a slow client.
    std::vector<unsigned char> message(LWS_PRE + text->size());
    std::copy(text->begin(), text->end(), message.begin() + LWS_PRE);
    if (lws_write(socket, message.data() + LWS_PRE, text->size(), LWS_WRITE_TEXT) < 0) {
        return -1;
    }
    lws_callback_on_writable(socket);
    return 0;
}

HttpServer::HttpServer(ListenConfig const& config, ApiSources sources)
    : implementation_(std::make_unique<Implementation>(config, std::move(sources))) {}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::Port() const {
    return implementation_->Port();
}

std::vector<Figure> HttpServer::Figures() {
    Counts const& counts = AllCounts();
    return {{"harvlink_http_connections", "Connections of clients.", static_cast<double>(counts.connections)},
            {"harvlink_http_requests_total", "Requests of clients.", static_cast<double>(counts.requests)},
            {"harvlink_http_refused_connections_total", "Connections beyond the limit.",
             static_cast<double>(counts.refused)},
            {"harvlink_http_live_clients", "Open pages.", static_cast<double>(counts.liveClients)}};
}

} // namespace harvlink::gateway
