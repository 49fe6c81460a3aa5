#include "soak/FilesWorker.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

constexpr std::array<std::size_t, 9> Sizes{1, 200, 478, 479, 480, 958, 4000, 20000, 60000};
constexpr int NoSuchFile = 58035;

bool IsJob(std::string const& name) {
    return name.ends_with(".JBI");
}

std::string ReadWhole(std::filesystem::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Difference(std::string const& wanted, std::string const& got) {
    auto const at = std::ranges::mismatch(wanted, got).in1 - wanted.begin();
    return fmt::format("{} bytes instead of {}, first difference at byte {}", got.size(), wanted.size(), at);
}

Worker::Journals JournalsOf(std::vector<SharedConnection*> const& connections) {
    Worker::Journals journals;
    std::ranges::transform(connections, std::back_inserter(journals), &SharedConnection::journal);
    return journals;
}

} // namespace

FilesWorker::FilesWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                         std::vector<SharedConnection*> const& connections, std::filesystem::path folder)
    : Worker(std::move(name), options, results, seed, JournalsOf(connections)), folder_(std::move(folder)) {
    for (auto* const connection : connections) {
        auto& store = stores_.emplace_back(Store{.connection = connection, .files = {}});
        for (auto const* const file : {"SOAK0.DAT", "SOAK1.DAT", "SOAK2.DAT", "SOAK3.CND", "SOAKA.JBI", "SOAKB.JBI"}) {
            store.files[file] = {std::nullopt};
        }
    }
}

void FilesWorker::Step() {
    auto& store = stores_[Draw(0, stores_.size() - 1)];
    auto const file = std::next(store.files.begin(), static_cast<std::ptrdiff_t>(Draw(0, store.files.size() - 1)));
    std::scoped_lock const lock(store.connection->transfers);
    WaitForLateReplies();
    auto const action = Draw(0, 9);
    if (action < 4) {
        StoreFile(store, file->first);
        WaitForLateReplies();
        Fetch(store, file->first);
    } else if (action < 7) {
        Fetch(store, file->first);
    } else if (action < 8 && IsJob(file->first)) {
        Delete(store, file->first);
    } else {
        List(store);
    }
}

/// Any bytes except zero, which would end a block. A job has a valid header and consists of comments.
std::string FilesWorker::RandomContent(std::string const& name) {
    auto const size = std::min(Sizes.at(Draw(0, Sizes.size() - 1)), options_.LargestFile());
    std::string content;
    if (!IsJob(name)) {
        std::generate_n(std::back_inserter(content), size, [this] { return static_cast<char>(Draw(1, 255)); });
        return content;
    }
    content = "/JOB\r\n//NAME " + name.substr(0, name.size() - 4) + "\r\n//INST\r\nNOP\r\n";
    while (content.size() < size) {
        content += fmt::format("'COMMENT {}\r\n", Draw(0, 1'000'000));
    }
    return content + "END\r\n";
}

StatusInfo FilesWorker::Load(QuorvanController& robot, std::string const& name, std::string const& content) {
    if (Chance(0.5)) {
        return robot.Files->LoadToControllerFromString(name, content);
    }
    auto const path = folder_ / name;
    std::ofstream(path, std::ios::binary) << content;
    return robot.Files->LoadToControllerFromPath(path);
}

StatusInfo FilesWorker::Save(QuorvanController& robot, std::string const& name, std::string& content) {
    if (Chance(0.5)) {
        return robot.Files->SaveFromControllerToString(name, content);
    }
    auto const path = folder_ / ("got-" + name);
    auto status = robot.Files->SaveFromControllerToFile(name, path, true);
    content = status.StatusCode == 0 ? ReadWhole(path) : std::string();
    return status;
}

/// Checks that a failed transfer failed because of a missing answer. True if it succeeded.
bool FilesWorker::CheckTransfer(std::string const& what, StatusInfo const& status) {
    if (status.StatusCode == 0) {
        return true;
    }
    results_.Note(FaultEffect::BrokenTransfer);
    bool const isOutOfStep = status.StatusCode == static_cast<int>(ErrorStatusCodes::FileBlockMissing);
    // If requests are lost, the controller may miss a block or drop the transfer.
    if (!isOutOfStep && !options_.badNetwork) {
        IsSent(what, status);
    }
    return false;
}

void FilesWorker::StoreFile(Store& store, std::string const& name) {
    auto content = RandomContent(name);
    auto const status = Done(Family::Files, Load(*store.connection->robot, name, content));
    auto& possible = store.files[name];
    bool const isStored = CheckTransfer("store of " + name, status);
    if (isStored && !options_.badNetwork) {
        possible.clear();
    }
    possible.insert(std::move(content));
}

void FilesWorker::Fetch(Store& store, std::string const& name) {
    auto& possible = store.files[name];
    std::string got;
    auto const ask = [&] {
        WaitForLateReplies();
        auto const status = Done(Family::Files, Save(*store.connection->robot, name, got));
        return CompareContent(possible, status, got);
    };
    AskUntilRight("fetch of " + name, ask, [&] { return difference_; });
}

Answer FilesWorker::CompareContent(std::set<Content>& possible, StatusInfo const& status, std::string const& got) {
    bool const isMissing = status.StatusCode == NoSuchFile;
    auto const found = isMissing ? possible.find(std::nullopt) : possible.find(got);
    if ((isMissing || status.StatusCode == 0) && found != possible.end()) {
        results_.NoteFileBytes(got.size());
        possible = {isMissing ? Content() : Content(got)};
        return Answer::Right;
    }
    if (status.StatusCode != 0) {
        difference_ = fmt::format("{} {}", status.StatusCode, status.Message);
        CheckTransfer("fetch", status);
        return isMissing ? Answer::Wrong : Answer::Missing;
    }
    for (auto const& content : possible) {
        difference_ = Difference(content.value_or(""), got);
    }
    return Answer::Wrong;
}

void FilesWorker::Delete(Store& store, std::string const& name) {
    auto& possible = store.files[name];
    auto const status = Done(Family::Files, store.connection->robot->Files->DeleteJobFile(name));
    if (status.StatusCode == NoSuchFile && possible.contains(std::nullopt)) {
        return;
    }
    bool const isSent = options_.badNetwork || IsSent("delete of " + name, status);
    if (isSent && !options_.badNetwork && !IsDamagedSince(StepBegin())) {
        possible.clear();
    }
    possible.insert(std::nullopt);
}

void FilesWorker::List(Store& store) {
    auto const type = Chance(0.5) ? FileType::JobFile : FileType::DataFile;
    std::vector<std::string> names;
    std::string problem;
    auto const ask = [&] {
        WaitForLateReplies();
        auto const status = Done(Family::Files, store.connection->robot->Files->ListFiles(type, names, true));
        if (status.StatusCode != 0) {
            CheckTransfer("list", status);
            return Answer::Missing;
        }
        for (auto const& [name, possible] : store.files) {
            bool const isListed = std::ranges::find(names, name) != names.end();
            bool const isOfType = name.ends_with(type == FileType::JobFile ? ".JBI" : ".DAT");
            bool const mayBeMissing = !isOfType || possible.contains(std::nullopt);
            bool const mayBeThere = isOfType && *possible.rbegin() != std::nullopt;
            if (isListed ? !mayBeThere : !mayBeMissing) {
                problem = fmt::format("{} is {}in the list", name, isListed ? "" : "not ");
                return Answer::Wrong;
            }
        }
        return Answer::Right;
    };
    AskUntilRight("list", ask, [&] { return problem; });
}

std::size_t FilesWorker::KeptBytes() const {
    std::size_t bytes = difference_.capacity();
    for (auto const& store : stores_) {
        for (auto const& [name, contents] : store.files) {
            for (auto const& content : contents) {
                bytes += content ? content->capacity() : 0;
            }
        }
    }
    return bytes;
}

} // namespace harvlink::soak
