#include "cli/snapshot/Staging.h"

#include <string>

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/program/Interrupt.h"
#include "cli/snapshot/Folder.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"

namespace harvlink::cli::snapshot {

namespace filesystem = std::filesystem;

filesystem::path CheckTarget(filesystem::path const& target, bool force) {
    filesystem::path place = filesystem::weakly_canonical(filesystem::absolute(target));
    if (!place.has_filename()) {
        place = place.parent_path();
    }
    std::string const name = TextOf(place);
    if (!filesystem::is_directory(place.parent_path())) {
        throw InputError(fmt::format("{} does not exist", TextOf(place.parent_path())));
    }
    if (!filesystem::exists(place)) {
        return place;
    }
    if (!filesystem::is_directory(place)) {
        throw InputError(fmt::format("{} exists and is not a folder", name));
    }
    if (filesystem::is_empty(place)) {
        return place;
    }
    if (!IsSnapshot(place)) {
        throw InputError(fmt::format("{} exists and is not a snapshot; it was not changed", name));
    }
    if (filesystem::path const foreign = ForeignEntry(place); !foreign.empty()) {
        throw InputError(
            fmt::format("{} is not part of a snapshot and would be lost; save into another folder", TextOf(foreign)));
    }
    if (!force) {
        throw InputError(fmt::format("{} is a snapshot already; give --force to replace it", name));
    }
    return place;
}

void MoveInto(filesystem::path const& finished, filesystem::path const& target, ScratchSpace& scratch) {
    SignalsHeldBack const untilOneIsInPlace;
    filesystem::path const former = scratch.Path() / "former";
    bool const isReplaced = filesystem::exists(target);
    if (isReplaced) {
        filesystem::rename(target, former);
    }
    std::error_code error;
    filesystem::rename(finished, target, error);
    if (error && isReplaced) {
        std::error_code lost;
        filesystem::rename(former, target, lost);
        if (lost) {
            scratch.Keep();
            throw filesystem::filesystem_error("the old snapshot was moved away and is kept", former, lost);
        }
    }
    if (error) {
        throw filesystem::filesystem_error("the snapshot can't be moved to its place", target, error);
    }
}

} // namespace harvlink::cli::snapshot
