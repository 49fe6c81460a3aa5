#include "connection/SystemFileParser.h"

#include <algorithm>
#include <string_view>

#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

bool IsDigitUpTo(char last, char character) {
    return character >= '1' && character <= last;
}

/// The first place in `line` where `letter` stands before a character that `accepts` takes; the two characters there.
template <typename Accepts>
std::string_view FindPair(std::string_view line, char letter, Accepts accepts) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        if (line[i] == letter && accepts(line[i + 1])) {
            return line.substr(i, 2);
        }
    }
    return {};
}

} // namespace

SystemFileParser::SystemFileParser(std::string const& fileText) {
    ParseSystemFile(fileText);
}

void SystemFileParser::ParseSystemFile(std::string const& fileText) {
    std::vector<std::string> lines;
    HelperFunction::SplitStringOnChar(lines, fileText, '\n', false);
    std::vector<std::string>* current = nullptr;
    for (std::string& line : lines) {
        if (line.starts_with("//")) {
            FormatSectionName(line);
            std::vector<std::string>& section = sections[line];
            current = line.empty() ? nullptr : &section;
        } else if (current != nullptr) {
            current->push_back(std::move(line));
        }
    }
}

void SystemFileParser::FormatSectionName(std::string& name) const {
    name.erase(0, std::min(name.find_first_not_of('/'), name.size()));
    name.erase(name.find_last_not_of(" \t\n\r") + 1);
}

void SystemFileParser::GetSectionNames(std::vector<std::string>& names) const {
    names.clear();
    for (auto const& section : sections) {
        names.push_back(section.first);
    }
}

void SystemFileParser::GetSection(std::string const& name, std::vector<std::string>& lines) {
    lines = sections[name];
}

ControlGroupId SystemFileParser::GetControlGroupFromLine(std::string const& line, bool& valid, bool& present) const {
    std::string_view group = FindPair(line, 'R', [](char digit) { return IsDigitUpTo('8', digit); });
    if (group.empty()) {
        group = FindPair(line, 'S', [](char digit) { return IsDigitUpTo('9', digit); });
    }
    present = !group.empty();
    if (!present) {
        valid = true;
        return ControlGroupId::R1;
    }
    return HelperFunction::ControlGroupFromString(std::string(group), valid);
}

bool SystemFileParser::GetAllControlGroupsFromSection(std::string const& name, std::vector<ControlGroupId>& groups) {
    groups.clear();
    std::vector<std::string> lines;
    GetSection(name, lines);
    for (std::string const& line : lines) {
        bool valid = false;
        bool present = false;
        ControlGroupId const group = GetControlGroupFromLine(line, valid, present);
        if (present && !valid) {
            return false;
        }
        if (present) {
            groups.push_back(group);
        }
    }
    return true;
}

bool SystemFileParser::NamesBase(std::string const& robotNameLine) {
    auto const isBaseMark = [](char mark) { return IsDigitUpTo('8', mark) || (mark >= 'A' && mark <= 'Z'); };
    return !FindPair(robotNameLine, 'B', isBaseMark).empty();
}

} // namespace harvlink
