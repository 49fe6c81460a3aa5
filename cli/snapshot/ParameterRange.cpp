#include "cli/snapshot/ParameterRange.h"

#include <cctype>

#include "cli/output/Words.h"
#include "words/values/ParameterText.h"

namespace harvlink::cli::snapshot {

namespace {

constexpr int HighestNumber = 999;

} // namespace

ParameterRange ParseParameterRange(std::string const& text) {
    std::size_t const dots = text.find("..");
    Parameter const first = ParseParameter(text.substr(0, dots));
    ParameterRange range{NameOf(ParameterFamilies, first.type), first.type, first.number, first.number};
    if (dots != std::string::npos) {
        std::string const end = text.substr(dots + 2);
        bool const isNumber = !end.empty() && std::isdigit(static_cast<unsigned char>(end[0])) != 0;
        Parameter const last =
            isNumber ? Parameter{end, first.type, ParseNumber<int>(end, "parameter number")} : ParseParameter(end);
        range.last = last.number;
        if (last.type != first.type || last.number < first.number) {
            throw InputError(fmt::format("'{}' is not a range of parameters such as RS0..RS299", text));
        }
    }
    return range;
}

std::vector<ParameterRange> AllParameterRanges() {
    std::vector<ParameterRange> ranges;
    ranges.reserve(ParameterFamilies.size());
    for (auto const& family : ParameterFamilies) {
        ranges.push_back({std::string(family.name), family.value, 0, HighestNumber});
    }
    return ranges;
}

} // namespace harvlink::cli::snapshot
