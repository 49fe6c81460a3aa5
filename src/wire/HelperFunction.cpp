#include "wire/HelperFunction.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "wire/WireInteger.h"

namespace harvlink::HelperFunction {
namespace {

bool IsSpace(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

void SortIf(bool wanted, std::vector<std::string>& items) {
    if (wanted) {
        std::sort(items.begin(), items.end(),
                  [](std::string const& a, std::string const& b) { return CompareStrings(a, b); });
    }
}

} // namespace

bool CompareStrings(std::string_view const& a, std::string_view const& b) {
    return a < b;
}

std::int32_t ConvertDoubleToInt32(double value) {
    return TruncateToInt32(value * 100.0);
}

bool CheckUAPICompatible(ControllerVersion version) {
    return static_cast<std::uint32_t>(version) >= static_cast<std::uint32_t>(ControllerVersion::VersionYA);
}

std::string ToUpper(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    return text;
}

void SplitStringOnCLRF(std::vector<std::string>& out, std::string_view const& text, bool sort) {
    auto const end = text.end();
    for (auto position = text.begin(); position != end;) {
        auto const first = std::find_if_not(position, end, IsSpace);
        auto const last = std::find_if(first, end, IsSpace);
        if (first != last) {
            out.emplace_back(first, last);
        }
        position = last;
    }
    SortIf(sort, out);
}

void SplitStringOnChar(std::vector<std::string>& out, std::string_view const& text, char separator, bool sort) {
    for (std::size_t first = 0; first < text.size();) {
        std::size_t const last = std::min(text.find(separator, first), text.size());
        out.emplace_back(text.substr(first, last - first));
        first = last + 1;
    }
    SortIf(sort, out);
}

bool DoesToolFileExist(int toolFileCount, int toolNumber) {
    return toolNumber >= 0 && toolNumber <= toolFileCount;
}

ControlGroupId ControlGroupFromString(std::string const& text, bool& valid) {
    constexpr std::string_view kinds = "RBS";
    constexpr int firstNumberOfKind[] = {0, 10, 20};

    std::size_t const kind = text.empty() ? kinds.npos : kinds.find(text.front());
    valid = false;
    if (kind == kinds.npos) {
        return ControlGroupId::R1;
    }
    valid = text.front() != 'R'; // on purpose: only for a robot does an unreadable number count as invalid
    std::int64_t const number = std::stoi(text.substr(1));
    valid = true;
    return static_cast<ControlGroupId>(static_cast<std::int32_t>(number + firstNumberOfKind[kind]));
}

} // namespace harvlink::HelperFunction
