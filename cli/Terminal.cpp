#include "cli/Terminal.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace cli {
namespace {

bool g_quiet = false;

} // namespace

#ifdef _WIN32

bool isTerminal(Stream stream) {
    const int fd = stream == Stream::In ? 0 : stream == Stream::Out ? 1 : 2;
    return ::_isatty(fd) != 0;
}

bool escapesWork(Stream stream) {
    if (!isTerminal(stream))
        return false;
    const HANDLE console = ::GetStdHandle(stream == Stream::Out ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (!::GetConsoleMode(console, &mode))
        return false;
    return (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) ||
           ::SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

std::size_t terminalColumns(Stream stream) {
    CONSOLE_SCREEN_BUFFER_INFO info;
    const HANDLE console = ::GetStdHandle(stream == Stream::Err ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
    if (!isTerminal(stream) || !::GetConsoleScreenBufferInfo(console, &info))
        return 0;
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

#else

bool isTerminal(Stream stream) {
    const int fd = stream == Stream::In ? STDIN_FILENO : stream == Stream::Out ? STDOUT_FILENO : STDERR_FILENO;
    return ::isatty(fd) == 1;
}

bool escapesWork(Stream stream) {
    return isTerminal(stream);
}

std::size_t terminalColumns(Stream stream) {
    const int fd = stream == Stream::In ? STDIN_FILENO : stream == Stream::Out ? STDOUT_FILENO : STDERR_FILENO;
    winsize size{};
    if (!isTerminal(stream) || ::ioctl(fd, TIOCGWINSZ, &size) != 0)
        return 0;
    return size.ws_col;
}

#endif

bool stderrIsTerminal() {
    return isTerminal(Stream::Err);
}

void setQuiet(bool quiet) {
    g_quiet = quiet;
}

bool quiet() {
    return g_quiet;
}

bool progressShown() {
    return !g_quiet && stderrIsTerminal();
}

} // namespace cli
