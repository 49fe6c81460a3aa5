#include "simulator/replay/RequestNamer.h"

namespace harvlink::simulator {

namespace {

template <typename Number>
void Append(std::string& text, Number number) {
    text.append(reinterpret_cast<char const*>(&number), sizeof(number));
}

bool BelongsToTransfer(Request const& request) {
    return request.port == Port::File && request.header.ack != 0;
}

bool OpensTransfer(Request const& request) {
    return request.port == Port::File && request.header.ack == 0;
}

} // namespace

NamedRequest RequestNamer::Name(Request const& request) {
    NamedRequest named;
    Append(named.text, request.port);
    Append(named.text, request.header.ack);
    Append(named.text, request.subHeader);
    if (BelongsToTransfer(request)) {
        Append(named.text, request.header.blockNumber);
        auto const found = transfers_.find(request.peer);
        named.opening = found == transfers_.end() ? std::string() : found->second.opening;
    }
    named.text.append(reinterpret_cast<char const*>(request.payload.data()), request.payload.size());
    named.text += named.opening;
    if (OpensTransfer(request)) {
        constexpr std::size_t MostTransfers = 4096; // of clients that never come again
        if (transfers_.size() >= MostTransfers) {
            transfers_.clear();
        }
        transfers_[request.peer].opening = named.text;
    }
    return named;
}

recording::Microseconds RequestNamer::TimeOf(Request const& request, recording::Microseconds now) {
    auto const found = request.port == Port::File ? transfers_.find(request.peer) : transfers_.end();
    if (found == transfers_.end()) {
        return now;
    }
    if (OpensTransfer(request)) {
        found->second.time = now;
    }
    return found->second.time;
}

} // namespace harvlink::simulator
