#include "recording/read/CsvRows.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <fmt/compile.h>
#include <fmt/format.h>

#include "recording/model/TimeText.h"
#include "recording/read/ControllerTexts.h"

namespace harvlink::recording {

namespace {

constexpr Microseconds Second = 1'000'000;
constexpr std::size_t BufferSize = 1U << 16;

void AppendInteger(std::string& text, std::int64_t value) {
    fmt::format_int const digits(value);
    text.append(digits.data(), digits.size());
}

/// Six digits.
void AppendFraction(std::string& text, Microseconds fraction) {
    fmt::format_int const digits(fraction + Second);
    text.append(digits.data() + 1, 6);
}

} // namespace

void CsvRows::Begin(Microseconds time) {
    if (count_ == 0) {
        first_ = time;
    }
    Microseconds const fraction = (time % Second + Second) % Second;
    if (second_ != time - fraction || prefix_.empty()) {
        second_ = time - fraction;
        prefix_ = FormatTime(second_);
        prefix_.resize(prefix_.size() - 7); // without the zeros and the Z
    }
    buffer_ += prefix_;
    AppendFraction(buffer_, fraction);
    buffer_ += 'Z';
    buffer_ += Separator();
    Microseconds const passed = time - first_;
    if (passed < 0) {
        buffer_ += '-';
    }
    AppendInteger(buffer_, std::abs(passed) / Second);
    buffer_ += comma_ ? ',' : '.';
    AppendFraction(buffer_, std::abs(passed) % Second);
}

std::string CsvRows::MakeCell(std::string_view text) const {
    bool const mustBeQuoted = text.find_first_of(",;\"\r\n") != std::string_view::npos;
    if (!mustBeQuoted) {
        return Separator() + std::string(text);
    }
    std::string quoted{Separator(), '"'};
    for (char const character : text) {
        quoted += character == '"' ? "\"\"" : std::string(1, character);
    }
    return quoted + '"';
}

void CsvRows::Cell(std::string_view text) {
    buffer_ += MakeCell(text);
}

void CsvRows::Raw(std::string_view cells) {
    buffer_ += cells;
}

void CsvRows::Real(double value) {
    auto const begin = buffer_.size();
    fmt::format_to(std::back_inserter(buffer_), FMT_COMPILE("{}"), value);
    if (comma_) {
        std::replace(buffer_.begin() + static_cast<std::ptrdiff_t>(begin), buffer_.end(), '.', ',');
    }
}

void CsvRows::Value(RecordedValue const& value) {
    if (auto const* const text = std::get_if<std::string>(&value)) {
        Cell(ShownText(*text));
        return;
    }
    buffer_ += Separator();
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        AppendInteger(buffer_, *integer);
    } else if (auto const* const real = std::get_if<double>(&value)) {
        Real(*real);
    }
}

void CsvRows::End() {
    buffer_ += '\n';
    ++count_;
    if (buffer_.size() >= BufferSize) {
        Flush();
    }
}

void CsvRows::Flush() {
    out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    buffer_.clear();
}

} // namespace harvlink::recording
