#include "cli/program/Terminal.h"

#include <memory>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <windows.h>

#include "words/text/Path.h"

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

} // namespace

void PrepareStreams() {
    ::SetConsoleCP(CP_UTF8);
    ::SetConsoleOutputCP(CP_UTF8);
    for (Stream const stream : {Stream::Out, Stream::Err}) {
        DWORD mode = 0;
        if (::GetConsoleMode(HandleOf(stream), &mode) != 0) { // colours and the moving line of a progress
            ::SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
        }
        ::_setmode(static_cast<int>(stream), _O_BINARY); // what a program reads is the same on every system
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
        arguments.push_back(TextOf(std::filesystem::path(wide.get()[i])));
    }
    return arguments;
}

} // namespace harvlink::cli
