#include "recording/store/FileLock.h"

#include <system_error>

#include <fmt/format.h>
#include <windows.h>

#include "recording/store/Database.h"
#include "words/text/Path.h"

namespace harvlink::recording {

using words::TextOf;

FileLock::FileLock(std::filesystem::path const& recording) : path_(NameFor(recording)) {
    // Nobody else can open it, and the system lets go of it however its owner ends.
    HANDLE const file = ::CreateFileW(path_.c_str(), DELETE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        DWORD const error = ::GetLastError();
        if (error == ERROR_SHARING_VIOLATION || error == ERROR_DELETE_PENDING) {
            throw Busy(fmt::format("{}: another recorder writes this file", TextOf(recording)));
        }
        std::error_code const code(static_cast<int>(error), std::system_category());
        throw RecordingError(
            fmt::format("can't write {}: {}", TextOf(path_), code.default_error_condition().message()));
    }
    file_ = reinterpret_cast<std::intptr_t>(file);
}

FileLock::~FileLock() {
    auto* const file = reinterpret_cast<HANDLE>(file_);
    FILE_DISPOSITION_INFO gone{TRUE}; // with the handle: nobody can open it in between
    ::SetFileInformationByHandle(file, FileDispositionInfo, &gone, sizeof gone);
    ::CloseHandle(file);
}

} // namespace harvlink::recording
