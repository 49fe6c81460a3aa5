#include "gateway/http/Guard.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <libwebsockets.h>
#include <unistd.h>

#include "gateway/config/ConfigError.h"
#include "gateway/config/Token.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

/// "press:9750" and "[::1]:9750" without the port and the brackets, in small letters.
std::string HostOf(std::string const& text) {
    if (text.starts_with('[')) {
        std::size_t const end = text.find(']');
        return end == std::string::npos ? text : words::LowerCase(text.substr(1, end - 1));
    }
    return words::LowerCase(text.substr(0, text.rfind(':')));
}

bool IsAddress(std::string const& text) {
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return inet_pton(AF_INET, text.c_str(), address.data()) == 1 ||
           inet_pton(AF_INET6, text.c_str(), address.data()) == 1;
}

/// Takes the same time wherever the first difference is.
bool IsSame(std::string_view left, std::string_view right) {
    unsigned difference = left.size() == right.size() ? 0 : 1;
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
        difference |= static_cast<unsigned char>(left[i]) ^ static_cast<unsigned char>(right[i]);
    }
    return difference == 0;
}

/// A program sends the token as it is. A browser asks for a name, which does not matter, and a password.
std::string TokenOf(std::string const& authorization) {
    std::size_t const blank = std::min(authorization.find(' '), authorization.size());
    std::string const scheme = words::LowerCase(authorization.substr(0, blank));
    std::string const given = authorization.substr(std::min(blank + 1, authorization.size()));
    if (scheme != "basic") {
        return scheme == "bearer" ? given : "";
    }
    std::string login(given.size() + 1, '\0');
    int const length = lws_b64_decode_string(given.c_str(), login.data(), static_cast<int>(login.size()));
    login.resize(static_cast<std::size_t>(std::max(length, 0)));
    std::size_t const colon = login.find(':');
    return colon == std::string::npos ? "" : login.substr(colon + 1);
}

} // namespace

Guard::Guard(ListenConfig const& config) : isAnyHost_(config.address == "0.0.0.0" || config.address == "::") {
    std::transform(config.hosts.begin(), config.hosts.end(), std::back_inserter(hosts_), HostOf);
    hosts_.push_back(config.address);
    if (config.IsLoopback() || isAnyHost_) {
        hosts_.insert(hosts_.end(), {"localhost", "127.0.0.1", "::1"});
    }
    std::array<char, 256> name{};
    if (!config.IsLoopback() && gethostname(name.data(), name.size() - 1) == 0) {
        hosts_.push_back(words::LowerCase(name.data()));
    }
    if (!config.tokenFile.empty()) {
        try {
            token_ = ReadToken(config.tokenFile);
        } catch (words::InputError const& error) {
            throw ConfigError({fmt::format("token_file {}", error.what())});
        }
    }
}

bool Guard::IsOwnHost(std::string const& header) const {
    std::string const host = HostOf(header);
    // An address can't have been made to lead here by somebody's name server.
    return std::find(hosts_.begin(), hosts_.end(), host) != hosts_.end() || (isAnyHost_ && IsAddress(host));
}

std::optional<Response> Guard::Refuse(Request const& request, bool isWebSocket) const {
    if (!IsOwnHost(request.host)) {
        return ErrorResponse(421,
                             "this host is not known here; [gateway] hosts names the hosts by which clients may call");
    }
    if (!token_.empty()) {
        auto const query = request.query.find("token"); // a script's WebSocket has no other place for it
        bool const isKnown = IsSame(TokenOf(request.authorization), token_) ||
                             (isWebSocket && query != request.query.end() && IsSame(query->second, token_));
        if (!isKnown) {
            Response response = ErrorResponse(401, "the request needs the token of this gateway");
            response.headers.emplace_back("www-authenticate:", "Bearer");
            response.headers.emplace_back("www-authenticate:", R"(Basic realm="harvlink-gateway", charset="UTF-8")");
            return response;
        }
    }
    if (isWebSocket || !request.IsRead()) {
        std::size_t const scheme = request.origin.find("://");
        std::string const origin = scheme == std::string::npos ? request.origin : request.origin.substr(scheme + 3);
        // A program that is not a browser sends none.
        if (!request.origin.empty() && words::LowerCase(origin) != words::LowerCase(request.host)) {
            return ErrorResponse(403, "the request comes from the page of another site");
        }
    }
    return std::nullopt;
}

} // namespace harvlink::gateway
