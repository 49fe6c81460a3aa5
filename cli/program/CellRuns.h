#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/output/CellTable.h"
#include "cli/output/Output.h"

namespace harvlink::cli {

/// One command for several cells at the same time, each on a thread of its own: one that does not answer delays none of the
/// others. Their results are shown together when all have ended; problems and the records of series at once, with the name of
/// the cell.
class CellRuns {
public:
    explicit CellRuns(Output& output) : output_(output) {}

    /// The command for one cell, as if it ran alone with no terminal.
    class Run : public OutputSink {
    public:
        Run(CellRuns& runs, std::string cell);

        void Document(Json const& document) override { documents_.push_back(document); }
        void Event(Json const& event, std::string_view text) override;
        void Problem(std::string_view line) override;

        std::string const& Cell() const { return cell_; }

        /// What it has shown: one document, a list if there were more, its text if there was none, null if there is nothing.
        Json Result() const;
        bool HasText() const { return documents_.empty() && !out_.view().empty(); }
        std::string RestOfErrors() const { return err_.str(); }

    private:
        CellRuns& runs_;
        std::string cell_;
        std::vector<Json> documents_;
        std::istringstream in_;
        std::ostringstream out_;
        std::ostringstream err_;

    public:
        Console console{.in = in_, .out = out_, .err = err_};
        Output output{console, this};
        std::string encoding; ///< of the texts of the controller
        std::function<int()> work; ///< throws nothing
        int exit = 0;
    };

    Run& Add(std::string const& cell) { return runs_.emplace_back(*this, cell); }

    /// Runs all and shows the results. Returns the highest exit status.
    int Finish();

private:
    void RunAll();
    void Show();
    void ShowErrors(Run const& run);

    Output& output_;
    std::mutex showing_;
    std::deque<Run> runs_;
    bool hasSeries_ = false;
};

} // namespace harvlink::cli
