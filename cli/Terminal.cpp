#include "cli/Terminal.h"

#ifdef _WIN32
#include "platform/windows/WinText.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <iostream>
#include <cstring>
#include <streambuf>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace cli {
namespace {

bool g_quiet = false;

} // namespace

#ifdef _WIN32

namespace {

/// Text for a console, written with WriteConsoleW. A character split between two writes is held
/// back until its last byte comes.
class ConsoleBuffer : public std::streambuf {
public:
    explicit ConsoleBuffer(HANDLE console) : m_console(console) { setp(m_buffer, m_buffer + sizeof m_buffer); }

protected:
    int_type overflow(int_type c) override {
        if (!flushComplete())
            return traits_type::eof();
        if (!traits_type::eq_int_type(c, traits_type::eof())) {
            *pptr() = traits_type::to_char_type(c);
            pbump(1);
        }
        return traits_type::not_eof(c);
    }
    int sync() override { return flushComplete() ? 0 : -1; }

private:
    /// Writes all whole characters in the buffer and keeps the bytes of an unfinished one.
    bool flushComplete() {
        const char* begin = pbase();
        const char* end = pptr();
        const char* cut = end;
        bool decided = false;
        // Back over at most three continuation bytes to the lead byte of the last character.
        for (int back = 0; back < 4 && cut > begin; ++back) {
            const auto byte = static_cast<unsigned char>(*(cut - 1));
            if ((byte & 0xC0) == 0x80) {
                --cut;
                continue;
            }
            if (byte >= 0xC0) {
                const int need = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
                if (end - (cut - 1) < need)
                    --cut; // incomplete: keep from its lead byte on
                else
                    cut = end;
            } else {
                cut = end;
            }
            decided = true;
            break;
        }
        if (!decided)
            cut = end; // continuation bytes with no lead: nothing to wait for
        if (cut == begin && end - begin >= 4)
            cut = end; // no character is that long: write what there is
        bool written = true;
        if (cut > begin) {
            const std::wstring text = platform::windows::widen(std::string(begin, cut));
            DWORD done = 0;
            written = ::WriteConsoleW(m_console, text.data(), static_cast<DWORD>(text.size()), &done, nullptr) != 0;
        }
        const std::ptrdiff_t kept = end - cut;
        std::memmove(m_buffer, cut, static_cast<std::size_t>(kept));
        setp(m_buffer, m_buffer + sizeof m_buffer);
        pbump(static_cast<int>(kept));
        return written;
    }

    HANDLE m_console;
    char m_buffer[1024];
};

bool isConsole(HANDLE handle) {
    DWORD mode = 0;
    return handle != INVALID_HANDLE_VALUE && handle != nullptr && ::GetConsoleMode(handle, &mode);
}

} // namespace

std::vector<std::string> utf8Arguments(int, char**) {
    std::vector<std::string> out;
    int count = 0;
    wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (!wide)
        return out;
    for (int i = 0; i < count; ++i)
        out.push_back(platform::windows::narrow(wide[i]));
    ::LocalFree(wide);
    return out;
}

void setUpStandardStreams() {
    // Binary on both: a record file's raw dump reaches a file or pipe unchanged, and a line ends
    // in LF on stdout and stderr alike.
    ::_setmode(::_fileno(stdout), _O_BINARY);
    ::_setmode(::_fileno(stderr), _O_BINARY);
    const HANDLE out = ::GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE err = ::GetStdHandle(STD_ERROR_HANDLE);
    // Never destroyed: the standard streams flush into them until the very end of the program.
    if (isConsole(out))
        std::cout.rdbuf(new ConsoleBuffer(out));
    if (isConsole(err)) {
        std::cerr.rdbuf(new ConsoleBuffer(err));
        std::cerr.setf(std::ios::unitbuf);
    }
}

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

std::vector<std::string> utf8Arguments(int argc, char** argv) {
    return std::vector<std::string>(argv, argv + argc);
}

void setUpStandardStreams() {}

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
