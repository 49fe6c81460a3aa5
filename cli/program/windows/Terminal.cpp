#include "cli/program/Terminal.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <windows.h>

#include "cli/program/windows/Utf8.h"

namespace harvlink::cli {
namespace {

HANDLE HandleOf(Stream stream) {
    switch (stream) {
    case Stream::In:
        return ::GetStdHandle(STD_INPUT_HANDLE);
    case Stream::Out:
        return ::GetStdHandle(STD_OUTPUT_HANDLE);
    default:
        return ::GetStdHandle(STD_ERROR_HANDLE);
    }
}

/// How the console was before. It outlives this process, and is that of the shell too.
struct Former {
    struct Mode {
        HANDLE handle = nullptr;
        DWORD mode = 0;
    };

    UINT inPage = 0; ///< 0: there is no console
    UINT outPage = 0;
    std::array<Mode, 2> modes{};
    std::atomic<bool> isRestored = true;
};

Former& Kept() {
    static auto* const kept =
        new Former; // NOLINT(cppcoreguidelines-owning-memory): the handler may run at the very end
    return *kept;
}

void PrepareConsole(Former& former) {
    former.inPage = ::GetConsoleCP();
    former.outPage = ::GetConsoleOutputCP();
    ::SetConsoleCP(CP_UTF8);
    ::SetConsoleOutputCP(CP_UTF8);
    std::size_t next = 0;
    for (Stream const stream : {Stream::Out, Stream::Err}) {
        Former::Mode& kept = former.modes.at(next++);
        if (::GetConsoleMode(HandleOf(stream), &kept.mode) != 0) { // colours and the moving line of a progress
            kept.handle = HandleOf(stream);
            ::SetConsoleMode(kept.handle, kept.mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
        }
    }
    former.isRestored = false;
}

} // namespace

void PrepareStreams() {
    PrepareConsole(Kept());
    for (FILE* const file : {stdout, stderr}) {
        ::_setmode(::_fileno(file), _O_BINARY); // what a program reads is the same on every system
        // A character reaches the console as a whole: our streams flush, and the library of the system would write each byte.
        (void)std::setvbuf(file, nullptr, _IOFBF, BUFSIZ * 8);
    }
}

void RestoreStreams() {
    Former& former = Kept();
    if (former.isRestored.exchange(true)) {
        return;
    }
    for (Former::Mode const& each : former.modes) {
        if (each.handle != nullptr) {
            ::SetConsoleMode(each.handle, each.mode);
        }
    }
    if (former.inPage != 0) {
        ::SetConsoleCP(former.inPage);
        ::SetConsoleOutputCP(former.outPage);
    }
}

bool IsTerminal(Stream stream) {
    DWORD mode = 0;
    return ::GetConsoleMode(HandleOf(stream), &mode) != 0;
}

std::size_t TerminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO seen{};
    bool const isKnown = ::GetConsoleScreenBufferInfo(HandleOf(Stream::Out), &seen) != 0;
    return isKnown ? static_cast<std::size_t>(seen.srWindow.Right - seen.srWindow.Left + 1) : 0;
}

void DiscardTyped() {
    ::FlushConsoleInputBuffer(HandleOf(Stream::In));
}

/// Those of main are in the code page.
std::vector<std::string> ProgramArguments(int /*argc*/, char const* const* /*argv*/) {
    int count = 0;
    std::unique_ptr<LPWSTR, decltype(&::LocalFree)> const wide(::CommandLineToArgvW(::GetCommandLineW(), &count),
                                                               ::LocalFree);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        arguments.push_back(Utf8(wide.get()[i]));
    }
    return arguments;
}

} // namespace harvlink::cli
