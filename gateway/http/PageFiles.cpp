#include "gateway/http/PageFiles.h"

#include <fmt/format.h>

#include "page/EmbeddedPage.h"

namespace harvlink::gateway {

namespace {

std::string Text(std::span<unsigned char const> bytes) {
    return {bytes.begin(), bytes.end()};
}

} // namespace

Response PageFile(Request const& request) {
    if (!request.IsRead()) {
        return ErrorResponse(405, "use GET");
    }
    std::string const name = request.path == "/" ? "index.html" : request.path.substr(1);
    for (page::File const& file : page::Files()) {
        if (file.name != name) {
            continue;
        }
        std::string const tag = fmt::format("\"{}\"", file.tag);
        Response response{200, std::string(file.contentType), {}, {{"etag:", tag}, {"cache-control:", "no-cache"}}};
        if (request.ifNoneMatch == tag) {
            response.status = 304;
            return response;
        }
        if (request.takesGzip) {
            response.headers.emplace_back("content-encoding:", "gzip");
        }
        response.headers.emplace_back("vary:", "accept-encoding");
        response.body = Text(request.takesGzip ? file.compressed : file.content);
        return response;
    }
    return ErrorResponse(404, "there is no such page");
}

std::vector<std::pair<std::string, std::string>> const& SecurityHeaders() {
    static std::vector<std::pair<std::string, std::string>> const Headers{
        {"content-security-policy:",
         "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; "
         "img-src 'self' data:; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
        {"x-content-type-options:", "nosniff"},
        {"referrer-policy:", "no-referrer"},
        {"cross-origin-resource-policy:", "same-origin"}};
    return Headers;
}

} // namespace harvlink::gateway
