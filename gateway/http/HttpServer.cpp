#include "gateway/http/HttpServer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <vector>

#include <fmt/format.h>
#include <libwebsockets.h>
#include <pthread.h>

#include "gateway/config/ConfigError.h"
#include "gateway/http/AnswerQueue.h"
#include "gateway/http/Connections.h"
#include "gateway/http/Guard.h"
#include "gateway/http/PageFiles.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

constexpr lws_usec_t LivePace = 100'000; ///< microseconds: at most ten messages a second
constexpr unsigned SpareDescriptors = 32;
constexpr unsigned HeaderSeconds = 10; ///< for the headers of a request, or what else the library waits for
constexpr auto LongestBody = std::chrono::seconds(10); ///< else a body of single bytes would hold its place for days
constexpr int KeepAliveSeconds = 30;
constexpr int WorkSeconds = 60;
constexpr std::size_t LargestMessage = 4096; ///< of a client of /api/live
constexpr std::uint16_t SecondsToPing = 20;
constexpr std::uint16_t SecondsToHangUp = 40;

/// Counters of the process: a listener that takes the place of another one goes on with them.
struct Counts {
    std::atomic<std::size_t> connections = 0;
    std::atomic<std::size_t> liveClients = 0;
    std::atomic<std::uint64_t> requests = 0;
    std::atomic<std::uint64_t> refused = 0;
    std::atomic<std::uint64_t> givenUp = 0;
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
        queue_.reset(); // it wakes this no more
        lws_context_destroy(context_);
    }

    std::uint16_t Port() const {
        return static_cast<std::uint16_t>(lws_get_vhost_listen_port(lws_get_vhost_by_name(context_, "default")));
    }

    std::uint64_t Rounds() const { return rounds_; }

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
    int ShowCounts() const;
    int Accept();
    int Begin(lws* socket, std::string_view path);
    int BeginLive(lws* socket);
    int TakeBody(lws* socket, std::string_view part);
    int Finish(lws* socket);
    static int AnswerNow(lws* socket, Exchange& exchange, std::shared_ptr<Response> response);
    static int AnswerNow(lws* socket, Exchange& exchange, Response response) {
        return AnswerNow(socket, exchange, std::make_shared<Response>(std::move(response)));
    }
    int AnswerLater(lws* socket, std::shared_ptr<Exchange> const& exchange);
    void TakeAnswers();
    std::shared_ptr<Response> Bounded(std::shared_ptr<Response> const& response);
    int Send(lws* socket);
    std::optional<Response> RefuseLive(lws* socket) const;
    int ConfirmUpgrade(lws* socket, std::string_view to);
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
    Connections open_; ///< the thread's own, as the next
    std::vector<unsigned char> piece_; ///< what is being written, with room for the library before it
    std::atomic<bool> isStopping_ = false;
    std::atomic<std::uint64_t> rounds_ = 0;
    std::unique_ptr<AnswerQueue> queue_ = std::make_unique<AnswerQueue>(api_, [this] { lws_cancel_service(context_); });
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
    info.max_http_header_pool = Connections::Most + SpareDescriptors;
    info.fd_limit_per_thread = Connections::Most + SpareDescriptors;
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
    pthread_setname_np(pthread_self(), "http"); // so that top -H and benchmarks show what open pages cost
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
    ++rounds_;
    if (open_.LiveClients() > 0) {
        LiveText const delta = feed_.Look();
        for (auto& [socket, connection] : open_.All()) {
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
        open_.Add(socket);
        return ShowCounts();
    case LWS_CALLBACK_WSI_DESTROY:
    case LWS_CALLBACK_CLOSED_HTTP:
    case LWS_CALLBACK_CLOSED:
        open_.Remove(socket);
        return ShowCounts();
    case LWS_CALLBACK_HTTP:
        return Begin(socket, text);
    case LWS_CALLBACK_HTTP_BODY:
        return TakeBody(socket, text);
    case LWS_CALLBACK_HTTP_BODY_COMPLETION:
        return Finish(socket);
    case LWS_CALLBACK_HTTP_WRITEABLE:
        return Send(socket);
    case LWS_CALLBACK_EVENT_WAIT_CANCELLED:
        TakeAnswers();
        return 0;
    case LWS_CALLBACK_HTTP_CONFIRM_UPGRADE:
        return ConfirmUpgrade(socket, static_cast<char const*>(in)); // its length is not told
    case LWS_CALLBACK_FILTER_PROTOCOL_CONNECTION:
        return RefuseLive(socket) ? -1 : 0;
    case LWS_CALLBACK_ESTABLISHED:
        return BeginLive(socket);
    case LWS_CALLBACK_RECEIVE:
        return ReceiveLive(socket, text);
    case LWS_CALLBACK_SERVER_WRITEABLE:
        return SendLive(socket);
    default:
        return 0;
    }
}

int HttpServer::Implementation::ShowCounts() const {
    AllCounts().connections = open_.Size();
    AllCounts().liveClients = open_.LiveClients();
    return 0;
}

/// Whoever only holds places must not keep others out, so a new connection takes the place of an idle one.
int HttpServer::Implementation::Accept() {
    if (!open_.IsFull()) {
        return 0;
    }
    bool const hasRoom = open_.GiveUpOne();
    ++(hasRoom ? AllCounts().givenUp : AllCounts().refused);
    return hasRoom ? 0 : -1;
}

int HttpServer::Implementation::Begin(lws* socket, std::string_view path) {
    ++AllCounts().requests;
    HttpConnection* const found = open_.Find(socket);
    if (found == nullptr || found->isGivenUp) {
        return -1;
    }
    HttpConnection& connection = *found;
    connection.exchange = std::make_shared<Exchange>();
    Exchange& exchange = *connection.exchange;
    exchange.request = RequestOf(socket, path);
    if (auto refused = guard_.Refuse(exchange.request, false); refused) {
        return AnswerNow(socket, exchange, std::move(*refused));
    }
    if (exchange.request.method == "POST") {
        // Its body follows. The library would wait for one that nobody said the length of.
        bool const hasLength = lws_hdr_total_length(socket, WSI_TOKEN_HTTP_CONTENT_LENGTH) > 0;
        return hasLength ? 0 : AnswerNow(socket, exchange, ErrorResponse(411, "a POST must have a Content-Length"));
    }
    if (!BelongsToApi(exchange.request.path)) {
        return AnswerNow(socket, exchange, PageFile(exchange.request));
    }
    return AnswerLater(socket, connection.exchange);
}

int HttpServer::Implementation::TakeBody(lws* socket, std::string_view part) {
    HttpConnection* const connection = open_.Find(socket);
    if (connection == nullptr || connection->exchange == nullptr) {
        return -1;
    }
    std::string& body = connection->exchange->request.body;
    bool const isLate = std::chrono::steady_clock::now() - connection->exchange->begin > LongestBody;
    if (isLate || body.size() + part.size() > LargestBody) {
        return -1;
    }
    body += part;
    return 0;
}

int HttpServer::Implementation::Finish(lws* socket) {
    HttpConnection* const connection = open_.Find(socket);
    bool const isNew =
        connection != nullptr && connection->exchange != nullptr && connection->exchange->response == nullptr;
    return isNew ? AnswerLater(socket, connection->exchange) : 0;
}

int HttpServer::Implementation::AnswerNow(lws* socket, Exchange& exchange, std::shared_ptr<Response> response) {
    exchange.response = std::move(response);
    exchange.isComplete = true;
    lws_callback_on_writable(socket);
    return 0;
}

int HttpServer::Implementation::AnswerLater(lws* socket, std::shared_ptr<Exchange> const& exchange) {
    Effort const effort = Api::EffortOf(exchange->request);
    if (effort == Effort::None) {
        return AnswerNow(socket, *exchange, api_.Answer(exchange->request));
    }
    exchange->isComplete = true;
    if (!queue_->Put(exchange)) {
        return AnswerNow(socket, *exchange, ErrorResponse(503, "too many requests wait; try again"));
    }
    lws_set_timeout(socket, PENDING_TIMEOUT_HTTP_CONTENT, WorkSeconds);
    return 0;
}

void HttpServer::Implementation::TakeAnswers() {
    for (AnswerQueue::Answered const& answered : queue_->TakeAll()) {
        for (auto const& exchange : answered.exchanges) {
            if (lws* const socket = open_.SocketOf(exchange); socket != nullptr) {
                open_.Find(socket)->since = std::chrono::steady_clock::now();
                AnswerNow(socket, *exchange, Bounded(answered.response));
            }
        }
    }
}

/// Clients that take their answers slowly, or not at all, must not fill the memory.
std::shared_ptr<Response> HttpServer::Implementation::Bounded(std::shared_ptr<Response> const& response) {
    while (!open_.HasRoomFor(*response)) {
        if (!open_.GiveUpSlowReader()) {
            return std::make_shared<Response>(ErrorResponse(503, "too many answers are being sent; try again"));
        }
        ++AllCounts().givenUp;
    }
    return response;
}

int HttpServer::Implementation::Send(lws* socket) {
    HttpConnection* const connection = open_.Find(socket);
    if (connection == nullptr || connection->exchange == nullptr || connection->exchange->response == nullptr) {
        return 0;
    }
    // The library may end the connection at the end of the answer, and it is removed then.
    auto const exchange = connection->exchange;
    if (SendResponse(socket, *exchange, piece_) != 0) {
        return -1;
    }
    if (exchange->IsSent()) {
        connection->exchange.reset(); // a connection that waits for its next request needs no memory for the last one
        connection->since = std::chrono::steady_clock::now();
    }
    return 0;
}

int HttpServer::Implementation::BeginLive(lws* socket) {
    HttpConnection* const connection = open_.Find(socket);
    if (connection == nullptr) {
        return -1;
    }
    if (open_.LiveClients() == 0) {
        feed_.Look(); // nobody has looked since the last client left
    }
    connection->live = std::make_unique<LiveClient>(feed_);
    lws_callback_on_writable(socket);
    return ShowCounts();
}

std::optional<Response> HttpServer::Implementation::RefuseLive(lws* socket) const {
    std::array<char, 256> path{};
    lws_hdr_copy(socket, path.data(), path.size(), WSI_TOKEN_GET_URI);
    Request const request = RequestOf(socket, path.data());
    if (auto refused = guard_.Refuse(request, true); refused) {
        return refused;
    }
    if (!Api::IsLive(request)) {
        return ErrorResponse(404, "there is a WebSocket at /api/live only");
    }
    return open_.LiveClients() >= Connections::MostLive ? std::optional(ErrorResponse(503, "too many pages are open"))
                                                        : std::nullopt;
}

/// A client that may not have a WebSocket is told why. What else it may upgrade to is the library's.
int HttpServer::Implementation::ConfirmUpgrade(lws* socket, std::string_view to) {
    auto refused = words::LowerCase(to) == "websocket" ? RefuseLive(socket) : std::nullopt;
    if (!refused) {
        return 0;
    }
    Exchange exchange;
    exchange.response = std::make_shared<Response>(std::move(*refused));
    return SendAtOnce(socket, exchange, piece_) == 0 ? 1 : -1;
}

int HttpServer::Implementation::ReceiveLive(lws* socket, std::string_view part) {
    HttpConnection* const connection = open_.Find(socket);
    if (connection == nullptr || connection->live == nullptr ||
        connection->received.size() + part.size() > LargestMessage) {
        return -1;
    }
    connection->received += part;
    if (lws_is_final_fragment(socket) != 0 && lws_remaining_packet_payload(socket) == 0) {
        connection->live->Receive(std::exchange(connection->received, {}));
        lws_callback_on_writable(socket);
    }
    return 0;
}

int HttpServer::Implementation::SendLive(lws* socket) {
    HttpConnection* const connection = open_.Find(socket);
    if (connection == nullptr || connection->live == nullptr) {
        return 0;
    }
    LiveClient& live = *connection->live;
    // What the client does not take at once, the library keeps, and it calls again when all of it is gone: so at most one message
    // waits for a slow client. A fast one gets all that there is at once: each call costs a look at all sockets.
    while (LiveText const text = live.Next()) {
        piece_.resize(std::max(piece_.size(), LWS_PRE + text->size()));
        std::copy(text->begin(), text->end(), piece_.begin() + LWS_PRE);
        if (lws_write(socket, piece_.data() + LWS_PRE, text->size(), LWS_WRITE_TEXT) < 0) {
            return -1;
        }
        if (live.IsDone()) {
            return 0;
        }
        if (lws_send_pipe_choked(socket) != 0) {
            lws_callback_on_writable(socket);
            return 0;
        }
    }
    return 0;
}

HttpServer::HttpServer(ListenConfig const& config, ApiSources sources)
    : implementation_(std::make_unique<Implementation>(config, std::move(sources))) {}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::Port() const {
    return implementation_->Port();
}

std::uint64_t HttpServer::Rounds() const {
    return implementation_->Rounds();
}

std::vector<Figure> HttpServer::Figures() {
    Counts const& counts = AllCounts();
    return {{"harvlink_http_connections", "Connections of clients.", static_cast<double>(counts.connections)},
            {"harvlink_http_requests_total", "Requests of clients.", static_cast<double>(counts.requests)},
            {"harvlink_http_refused_connections_total", "Connections beyond the limit.",
             static_cast<double>(counts.refused)},
            {"harvlink_http_given_up_connections_total",
             "Connections that were closed because others needed their place.", static_cast<double>(counts.givenUp)},
            {"harvlink_http_live_clients", "Open pages.", static_cast<double>(counts.liveClients)}};
}

} // namespace harvlink::gateway
