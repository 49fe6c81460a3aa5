#include "words/text/Glob.h"

#include <string_view>

namespace harvlink::words {
namespace {

/// Takes a set such as "[!a-f_]" off the glob. Without an end, the bracket stands for itself.
bool TakeSet(std::string_view& glob, char letter) {
    std::size_t const end = glob.find(']', glob.starts_with("[!") ? 3 : 2);
    if (end == std::string_view::npos) {
        glob.remove_prefix(1);
        return letter == '[';
    }
    std::string_view set = glob.substr(1, end - 1);
    glob.remove_prefix(end + 1);
    bool const isNegated = set.starts_with('!');
    set.remove_prefix(isNegated ? 1 : 0);
    bool isIn = false;
    while (!set.empty()) {
        bool const isRange = set.size() > 2 && set[1] == '-';
        isIn = isIn || (isRange ? letter >= set[0] && letter <= set[2] : letter == set[0]);
        set.remove_prefix(isRange ? 3 : 1);
    }
    return isIn != isNegated;
}

bool Matches(std::string_view glob, std::string_view name) {
    std::string_view afterStar;
    std::string_view tried;
    bool hasStar = false;
    while (true) {
        if (glob.starts_with('*')) {
            glob.remove_prefix(1);
            afterStar = glob;
            tried = name;
            hasStar = true;
            continue;
        }
        if (name.empty() && glob.empty()) {
            return true;
        }
        std::string_view rest = glob;
        bool isFitting = !name.empty() && !glob.empty();
        if (isFitting && glob.front() == '[') {
            isFitting = TakeSet(rest, name.front());
        } else if (isFitting) {
            isFitting = glob.front() == '?' || glob.front() == name.front();
            rest.remove_prefix(1);
        }
        if (isFitting) {
            glob = rest;
            name.remove_prefix(1);
        } else if (hasStar && !tried.empty()) { // the star takes one letter more
            tried.remove_prefix(1);
            name = tried;
            glob = afterStar;
        } else {
            return false;
        }
    }
}

} // namespace

bool MatchesGlob(std::string const& glob, std::string const& name) {
    return Matches(glob, name);
}

} // namespace harvlink::words
