#include "cli/watch/CellReader.h"

#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "words/text/Encoding.h"

namespace harvlink::cli::watch {

CellReader::CellReader(Session const& session, std::string const& cell, Selection selection)
    : session_(session), settings_(session.SettingsOf(cell)), selection_(std::move(selection)) {
    sample_.host = fmt::format("{} ({})", cell, settings_.host);
}

void CellReader::Stop() {
    std::lock_guard const lock(mutex_);
    isStopped_ = true;
    if (reader_) {
        reader_->Stop();
    }
}

Sample const& CellReader::Read() {
    ThreadEncoding const encoding{TextEncoding(settings_.encoding)};
    if (!reader_) {
        if (StatusInfo status = Open(); status.StatusCode != 0) {
            sample_.lostSince = sample_.lost ? sample_.lostSince : std::chrono::system_clock::now();
            sample_.lost = std::move(status);
            ++sample_.number;
            return sample_;
        }
    }
    return reader_->Read();
}

StatusInfo CellReader::Open() {
    StatusInfo status;
    try {
        connection_ = session_.Open(settings_, Access::Observe, status);
    } catch (std::runtime_error const& error) { // another generation than the one that is wanted
        return {static_cast<std::int32_t>(ErrorStatusCodes::UnsupportedOnThisController), error.what()};
    }
    if (!connection_) {
        return status;
    }
    auto reader = std::make_unique<Reader>(*connection_, sample_.host, selection_);
    status = reader->Prepare();
    std::lock_guard const lock(mutex_);
    if (status.StatusCode == 0) {
        reader_ = std::move(reader);
        if (isStopped_) {
            reader_->Stop();
        }
    }
    return status;
}

} // namespace harvlink::cli::watch
