#include "cli/verbs/TransferReport.h"

#include <filesystem>
#include <ostream>

#include <fmt/format.h>

#include "cli/program/RepeatedRead.h"
#include "words/text/Encoding.h"
#include "words/text/Path.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"

namespace harvlink::cli {

bool TransferReport::Add(std::string const& name, StatusInfo const& status, std::uintmax_t bytes,
                         std::string const& path) {
    bool const succeeded = status.StatusCode == 0;
    std::string const text = path.empty() ? name : ControllerText(name);
    std::string const stored = TextOf(PathOf(path).filename());
    if (!succeeded || (status.Message != "OK" && !output_.json)) {
        ShowStatus(text, status);
    } else if (!output_.json) {
        output_.console().out << fmt::format("{}  {} bytes{}\n", Printable(text), bytes,
                                             stored.empty() || stored == text ? ""
                                                                              : ", stored as " + Printable(stored));
    }
    Json row{{"name", text},
             {"bytes", succeeded ? Json(bytes) : Json()},
             {"code", status.StatusCode},
             {"message", status.Message}};
    if (!path.empty()) {
        row["path"] = succeeded ? Json(path) : Json();
    }
    rows_.push_back(std::move(row));
    done_ += succeeded ? 1 : 0;
    bytes_ += succeeded ? bytes : 0;
    return !IsSilence(status);
}

void TransferReport::Finish(std::size_t wanted) {
    std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start_;
    std::size_t const failed = wanted - done_;
    if (output_.json) {
        output_.Show(Json{{"files", rows_},
                          {verb_, done_},
                          {"failed", failed},
                          {"bytes", bytes_},
                          {"seconds", RoundToMilli(elapsed.count())}});
    } else {
        output_.console().out << fmt::format("{} of {} files {}, {} bytes in {:.1f} s\n", done_, wanted, verb_, bytes_,
                                             elapsed.count());
    }
}

void TransferReport::ShowStatus(std::string const& name, StatusInfo const& status) {
    if (status.StatusCode != 0) {
        output_.Failure(status, name);
    } else {
        output_.console().err << fmt::format("{}: {}\n", Printable(name), status.Message);
    }
}

} // namespace harvlink::cli
