#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "cli/program/Session.h"
#include "cli/watch/Reader.h"

namespace harvlink::cli::watch {

/// Opens a connection to a cell when it is read for the first time, so that a controller that does not answer holds up
/// nobody but the thread that reads.
class CellReader : public SampleSource {
public:
    CellReader(Session const& session, std::string const& cell, Selection selection);

    /// As long as there is no connection, it is tried again, and the sample says why there is none.
    Sample const& Read() override;
    void Stop() override;

    /// The sample before the first Read.
    Sample const& First() const { return sample_; }

    std::string const& Encoding() const { return settings_.encoding; }

private:
    StatusInfo Open();

    Session const& session_;
    Settings settings_;
    Selection selection_;
    Connection connection_;
    std::mutex mutex_; ///< of the pointer below
    std::unique_ptr<Reader> reader_;
    Sample sample_; ///< of the time before there is a connection
    bool isStopped_ = false;
};

} // namespace harvlink::cli::watch
