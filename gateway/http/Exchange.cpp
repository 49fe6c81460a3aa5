#include "gateway/http/Exchange.h"

#include <algorithm>
#include <array>
#include <vector>

#include "gateway/http/PageFiles.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

constexpr std::size_t LargestHeaders = 2048;
constexpr std::size_t Piece = 65'536;

std::string Header(lws* socket, lws_token_indexes token) {
    int const length = lws_hdr_total_length(socket, token);
    if (length <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    int const copied = lws_hdr_copy(socket, text.data(), length + 1, token);
    text.resize(copied > 0 ? static_cast<std::size_t>(copied) : 0);
    return text;
}

std::string QueryOf(lws* socket) {
    // The library keeps the parts between the ampersands apart.
    std::string query;
    std::array<char, 2048> part{};
    for (int i = 0;; ++i) {
        int const length = lws_hdr_copy_fragment(socket, part.data(), part.size(), WSI_TOKEN_HTTP_URI_ARGS, i);
        if (length <= 0) {
            return query;
        }
        query.append(query.empty() ? "" : "&").append(part.data(), static_cast<std::size_t>(length));
    }
}

std::string MethodOf(lws* socket) {
    constexpr std::array<std::pair<lws_token_indexes, char const*>, 7> Methods{{{WSI_TOKEN_GET_URI, "GET"},
                                                                                {WSI_TOKEN_HEAD_URI, "HEAD"},
                                                                                {WSI_TOKEN_POST_URI, "POST"},
                                                                                {WSI_TOKEN_PUT_URI, "PUT"},
                                                                                {WSI_TOKEN_PATCH_URI, "PATCH"},
                                                                                {WSI_TOKEN_DELETE_URI, "DELETE"},
                                                                                {WSI_TOKEN_OPTIONS_URI, "OPTIONS"}}};
    for (auto const& [token, name] : Methods) {
        if (lws_hdr_total_length(socket, token) > 0) {
            return name;
        }
    }
    return Header(socket, WSI_TOKEN_HTTP_COLON_METHOD); // of HTTP/2, and nothing of others: none of them is answered
}

bool AddHeader(lws* socket, std::string const& name, std::string const& value, unsigned char** at, unsigned char* end) {
    // The name of a header ends with a colon here.
    return lws_add_http_header_by_name(socket, reinterpret_cast<unsigned char const*>(name.c_str()),
                                       reinterpret_cast<unsigned char const*>(value.data()),
                                       static_cast<int>(value.size()), at, end) == 0;
}

int SendHeaders(lws* socket, Exchange& exchange) {
    Response const& response = *exchange.response;
    std::array<unsigned char, LWS_PRE + LargestHeaders> buffer{};
    unsigned char* const start = buffer.data() + LWS_PRE;
    unsigned char* at = start;
    unsigned char* const end = buffer.data() + buffer.size() - 1;
    bool isWell = lws_add_http_common_headers(socket, static_cast<unsigned>(response.status),
                                              response.contentType.c_str(), response.Size(), &at, end) == 0;
    for (auto const& [name, value] : SecurityHeaders()) {
        isWell = isWell && AddHeader(socket, name, value, &at, end);
    }
    for (auto const& [name, value] : response.headers) {
        isWell = isWell && AddHeader(socket, name, value, &at, end);
    }
    if (!isWell || lws_finalize_write_http_header(socket, start, &at, end) != 0) {
        return -1;
    }
    exchange.hasHeaders = true;
    exchange.sent = exchange.request.method == "HEAD" ? response.Size() : 0; // the headers are all that it asks for
    return 0;
}

/// Returns how many bytes; 0 if the file has become shorter.
std::size_t FillPiece(Exchange& exchange, unsigned char* to) {
    Response& response = *exchange.response;
    auto const count = static_cast<std::size_t>(std::min<std::uint64_t>(Piece, response.Size() - exchange.sent));
    if (response.file == nullptr) {
        std::copy_n(response.body.data() + exchange.sent, count, to);
        return count;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes, whatever their sign
    response.file->stream.read(reinterpret_cast<char*>(to), static_cast<std::streamsize>(count));
    return static_cast<std::size_t>(response.file->stream.gcount());
}

} // namespace

Request RequestOf(lws* socket, std::string_view path) {
    Request request;
    request.method = MethodOf(socket);
    request.path = std::string(path);
    request.query = ParseQuery(QueryOf(socket));
    request.host = Header(socket, WSI_TOKEN_HOST);
    if (request.host.empty()) {
        request.host =
            Header(socket, WSI_TOKEN_HTTP_COLON_AUTHORITY); // as HTTP/2 calls it, to which a program may upgrade
    }
    request.origin = Header(socket, WSI_TOKEN_ORIGIN);
    request.authorization = Header(socket, WSI_TOKEN_HTTP_AUTHORIZATION);
    request.ifNoneMatch = Header(socket, WSI_TOKEN_HTTP_IF_NONE_MATCH);
    request.takesGzip = Header(socket, WSI_TOKEN_HTTP_ACCEPT_ENCODING).find("gzip") != std::string::npos;
    return request;
}

int SendAtOnce(lws* socket, Exchange& exchange, std::vector<unsigned char>& piece) {
    piece.resize(LWS_PRE + Piece);
    if (SendHeaders(socket, exchange) != 0) {
        return -1;
    }
    std::size_t const count = FillPiece(exchange, piece.data() + LWS_PRE);
    int const sent = lws_write(socket, piece.data() + LWS_PRE, count, LWS_WRITE_HTTP_FINAL);
    return sent < static_cast<int>(count) ? -1 : 0;
}

int SendResponse(lws* socket, Exchange& exchange, std::vector<unsigned char>& piece) {
    if (!exchange.hasHeaders) {
        if (SendHeaders(socket, exchange) != 0) {
            return -1;
        }
        if (exchange.IsSent()) {
            return lws_http_transaction_completed(socket) != 0 ? -1 : 0;
        }
        lws_callback_on_writable(socket);
        return 0;
    }
    piece.resize(LWS_PRE + Piece);
    std::size_t const count = FillPiece(exchange, piece.data() + LWS_PRE);
    exchange.sent += count;
    lws_write_protocol const kind = exchange.IsSent() ? LWS_WRITE_HTTP_FINAL : LWS_WRITE_HTTP;
    if (count == 0 || lws_write(socket, piece.data() + LWS_PRE, count, kind) < static_cast<int>(count)) {
        return -1;
    }
    if (exchange.IsSent()) {
        return lws_http_transaction_completed(socket) != 0 ? -1 : 0;
    }
    // A client that takes nothing for this long is let go.
    constexpr int Seconds = 20;
    lws_set_timeout(socket, PENDING_TIMEOUT_HTTP_CONTENT, Seconds);
    lws_callback_on_writable(socket);
    return 0;
}

} // namespace harvlink::gateway
