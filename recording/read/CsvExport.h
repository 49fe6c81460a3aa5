#pragma once

#include <chrono>
#include <ostream>
#include <vector>

#include "recording/read/Recording.h"

namespace harvlink::recording {

struct CsvOptions {
    TimeRange range{};
    bool wide = false; ///< a column for each item, or a row for each value
    std::chrono::microseconds every{0}; ///< rows at these times, each with what was known then; 0: a row at each change
    bool decimalComma = false; ///< 1,5 and cells between semicolons
    std::vector<std::uint32_t> readings; ///< empty: all
};

/// Writes a recording as comma separated values. Times are given twice: in ISO form, and in seconds since the first row.
/// Returns the number of rows without the header. Ends early when the stream has failed.
std::uint64_t ExportCsv(Recording& recording, CsvOptions const& options, std::ostream& out);

} // namespace harvlink::recording
