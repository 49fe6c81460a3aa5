#include "simulator/files/FileFolder.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "simulator/files/FileName.h"
#include "simulator/files/FileRefusals.h"

namespace harvlink::simulator {

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};

/// O_NONBLOCK, so that a named pipe in the folder can't block.
constexpr int ReadFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr int CreateFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
constexpr mode_t NewFileMode = 0644;
constexpr mode_t AnyWriteBit = 0222;

/// Unique, because several controllers may serve one folder.
std::string TemporaryName() {
    static std::atomic<unsigned> counter{0};
    return ".harvlink-" + std::to_string(getpid()) + "-" + std::to_string(counter++);
}

bool WriteAll(int file, std::string_view content) {
    while (!content.empty()) {
        auto const count = write(file, content.data(), content.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        content.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return true;
}

bool ReadAll(int file, std::string& content) {
    std::size_t filled = 0;
    while (filled < content.size()) {
        auto const count = read(file, content.data() + filled, content.size() - filled);
        if (count == 0 || (count < 0 && errno != EINTR)) {
            break;
        }
        filled += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return filled == content.size();
}

Refusal WriteRefusal() {
    return errno == ENOSPC || errno == EDQUOT ? FileRefusal::DiskFull : FileRefusal::NotWritable;
}

} // namespace

FileFolder::FileFolder(std::filesystem::path const& path) {
    if (path.empty()) {
        return;
    }
    folder_ = Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder_.IsOpen()) {
        error_ = "can't open folder " + path.string() + ": " + std::strerror(errno);
    }
}

template <typename Visitor>
void FileFolder::VisitFiles(Visitor&& visit) const {
    VisitAll([&](char const* spelling) {
        if (auto const name = FileNameFrom(spelling)) {
            visit(*name, spelling);
        }
    });
}

template <typename Visitor>
void FileFolder::VisitAll(Visitor&& visit) const {
    // Uses a second descriptor, because reading a folder moves its position.
    int const descriptor = openat(folder_.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::unique_ptr<DIR, DirectoryCloser> const directory(descriptor < 0 ? nullptr : fdopendir(descriptor));
    if (directory == nullptr) {
        if (descriptor >= 0) {
            close(descriptor);
        }
        return;
    }
    for (std::size_t i = 0; i < MaxEntries; ++i) {
        // cppcheck-suppress readdirCalled // no other thread has this stream, and readdir_r is obsolete
        auto const* const entry = readdir(directory.get());
        if (entry == nullptr) {
            return;
        }
        struct stat status {};
        if (FileTypeOf(entry->d_name) && fstatat(folder_.Get(), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(status.st_mode)) {
            visit(entry->d_name);
        }
    }
}

std::vector<std::string> FileFolder::Names() const {
    std::vector<std::string> names;
    VisitFiles([&](std::string const& name, char const*) { names.push_back(name); });
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<std::string> FileFolder::UnservedNames() const {
    std::vector<std::string> names;
    VisitAll([&](char const* spelling) {
        if (!FileNameFrom(spelling)) {
            names.emplace_back(spelling);
        }
    });
    std::ranges::sort(names);
    return names;
}

/// If several spellings differ only in case, the first in byte order is used.
std::optional<std::string> FileFolder::FindSpelling(std::string_view wanted) const {
    std::optional<std::string> found;
    VisitFiles([&](std::string const& name, char const* spelling) {
        if (name == wanted && (!found || spelling < *found)) {
            found = spelling;
        }
    });
    return found;
}

std::optional<std::string> FileFolder::Read(std::string_view name, std::size_t sizeLimit) const {
    auto const spelling = FindSpelling(name);
    if (!spelling) {
        return std::nullopt;
    }
    Descriptor const file(openat(folder_.Get(), spelling->c_str(), ReadFlags));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        static_cast<std::uint64_t>(status.st_size) > sizeLimit) {
        return std::nullopt;
    }
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    if (!ReadAll(file.Get(), content)) {
        return std::nullopt;
    }
    return content;
}

bool FileFolder::IsReplaceable(std::string const& spelling) const {
    struct stat status {};
    if (fstatat(folder_.Get(), spelling.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT;
    }
    // Renaming would also replace a write-protected file, so the permission bits are checked.
    return S_ISREG(status.st_mode) && (status.st_mode & AnyWriteBit) != 0;
}

Refusal FileFolder::Write(std::string const& name, std::string_view content) const {
    auto const target = FindSpelling(name).value_or(name);
    if (!IsReplaceable(target)) {
        return FileRefusal::NotWritable;
    }
    auto const temporary = TemporaryName();
    Descriptor const file(openat(folder_.Get(), temporary.c_str(), CreateFlags, NewFileMode));
    if (!file.IsOpen()) {
        return WriteRefusal();
    }
    if (!WriteAll(file.Get(), content) ||
        renameat(folder_.Get(), temporary.c_str(), folder_.Get(), target.c_str()) != 0) {
        auto const refusal = WriteRefusal();
        unlinkat(folder_.Get(), temporary.c_str(), 0);
        return refusal;
    }
    return Refusal::None;
}

Refusal FileFolder::Remove(std::string_view name) const {
    auto const spelling = FindSpelling(name);
    if (!spelling) {
        return FileRefusal::NoSuchFile;
    }
    bool const isRemoved = IsReplaceable(*spelling) && unlinkat(folder_.Get(), spelling->c_str(), 0) == 0;
    return isRemoved ? Refusal::None : FileRefusal::NotDeletable;
}

} // namespace harvlink::simulator
