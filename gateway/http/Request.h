#pragma once

#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "words/text/Json.h"

namespace harvlink::gateway {

/// A request as far as anything here looks at it.
struct Request {
    std::string method = "GET";
    std::string path; ///< decoded, without the query
    std::map<std::string, std::string> query;
    std::string host; ///< the header, with its port
    std::string origin;
    std::string authorization;
    std::string ifNoneMatch;
    bool takesGzip = false;
    std::string body;

    bool IsRead() const { return method == "GET" || method == "HEAD"; }
};

/// A body that is too large for the memory: it is read while it is sent.
struct FileBody {
    std::ifstream stream;
    std::uint64_t size = 0;
};

struct Response {
    int status = 200;
    std::string contentType = "application/json";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers{}; ///< names in small letters, each with a colon
    std::shared_ptr<FileBody> file{}; ///< in place of `body`

    std::uint64_t Size() const { return file != nullptr ? file->size : body.size(); }
};

inline Response JsonResponse(words::Json const& json, int status = 200) {
    // What is not UTF-8 is replaced rather than an exception.
    return {status, "application/json", json.dump(-1, ' ', false, words::Json::error_handler_t::replace)};
}

inline Response ErrorResponse(int status, std::string const& text) {
    return JsonResponse({{"error", text}}, status);
}

/// Decodes "%20" and "+"; what is not valid stays as it is.
std::string DecodeUrl(std::string_view text, bool isQuery);

/// "a=1&b=2"; the last of several of a name counts.
std::map<std::string, std::string> ParseQuery(std::string_view text);

} // namespace harvlink::gateway
