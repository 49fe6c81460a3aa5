#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "recording/model/Records.h"

namespace harvlink::recording {

/// Makes rows of comma separated values, quickly: a recording has millions.
class CsvRows {
public:
    CsvRows(std::ostream& out, bool decimalComma) : out_(out), comma_(decimalComma) {}

    /// Begins a row with its time, in ISO form and in seconds since the first row.
    void Begin(Microseconds time);

    void Cell(std::string_view text); ///< quoted if it must be
    void Raw(std::string_view cells); ///< cells as MakeCell returns them
    void Value(RecordedValue const& value);
    void Empty() { buffer_ += Separator(); }
    void End();
    void Flush();

    std::string MakeCell(std::string_view text) const;
    char Separator() const { return comma_ ? ';' : ','; }
    std::uint64_t Count() const { return count_; }

private:
    void Real(double value);

    std::ostream& out_;
    bool comma_;
    std::string buffer_;
    std::uint64_t count_ = 0;
    Microseconds first_ = 0;
    Microseconds second_ = -1; ///< that of `prefix_`
    std::string prefix_; ///< "2026-11-22T03:15:00."
};

} // namespace harvlink::recording
