// Processes on Windows: a command-line program run with CreateProcessW, its standard output and
// error read through pipes and its standard input from NUL, so it sees no console to ask on; the
// test sleeper copied under a chosen program name, or holding a file open.

#include "tests/support/Process.h"

#include "platform/windows/WinText.h"
#include "tests/support/Wine.h"

#include <windows.h>
#include <thread>
#include <psapi.h>
#include <filesystem>

namespace testsupport {
namespace {

std::string drain(HANDLE pipe) {
    std::string out;
    char buffer[4096];
    DWORD n = 0;
    while (::ReadFile(pipe, buffer, sizeof buffer, &n, nullptr) && n > 0)
        out.append(buffer, n);
    return out;
}

} // namespace

CliResult runCommand(const std::string& commandLine) {
    CliResult r;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE outRead = nullptr, outWrite = nullptr, errRead = nullptr, errWrite = nullptr;
    if (!::CreatePipe(&outRead, &outWrite, &inherit, 0) || !::CreatePipe(&errRead, &errWrite, &inherit, 0))
        return r;
    ::SetHandleInformation(outRead, HANDLE_FLAG_INHERIT, 0);
    ::SetHandleInformation(errRead, HANDLE_FLAG_INHERIT, 0);
    const HANDLE nul = ::CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, 0,
                                     nullptr);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nul;
    startup.hStdOutput = outWrite;
    startup.hStdError = errWrite;
    std::wstring command = platform::windows::widen(commandLine);
    PROCESS_INFORMATION started{};
    const BOOL ok = ::CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                                     &startup, &started);
    ::CloseHandle(outWrite);
    ::CloseHandle(errWrite);
    ::CloseHandle(nul);
    if (ok) {
        // Both pipes are read at once, so that neither can fill up and stall the program.
        std::thread errors([&] { r.err = drain(errRead); });
        r.out = drain(outRead);
        errors.join();
        ::WaitForSingleObject(started.hProcess, INFINITE);
        DWORD code = 0;
        ::GetExitCodeProcess(started.hProcess, &code);
        r.code = static_cast<int>(code);
        ::CloseHandle(started.hThread);
        ::CloseHandle(started.hProcess);
    }
    ::CloseHandle(outRead);
    ::CloseHandle(errRead);
    return r;
}

CliResult runCli(const std::string& arguments) {
    return runCommand(shellQuoted(windowsPathOf(SCOURMILL_CLI)) + " " + arguments);
}

std::string shellQuoted(const std::filesystem::path& path) {
    std::string quoted(1, '"');
    quoted += path.string();
    quoted += '"';
    return quoted;
}


ChildProcess::ChildProcess(const std::string& programName) {
    const auto exe = m_dir.path() / programName;
    std::filesystem::copy_file(windowsPathOf(SCOURMILL_TEST_SLEEPER), exe);
    std::wstring commandLine = L"\"" + exe.wstring() + L"\" 60";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(exe.wstring().c_str(), commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                          nullptr, &startup, &started))
        return;
    ::CloseHandle(started.hThread);
    m_process = started.hProcess;
    // Right after the start its modules may not be listed yet.
    wchar_t name[MAX_PATH];
    for (int i = 0; i < 400; ++i) {
        HMODULE first = nullptr;
        DWORD needed = 0;
        if (::K32EnumProcessModules(started.hProcess, &first, sizeof first, &needed) &&
            ::K32GetModuleFileNameExW(started.hProcess, first, name, MAX_PATH) > 0)
            break;
        ::Sleep(5);
    }
    m_pid = static_cast<pid_t>(started.dwProcessId);
}

void ChildProcess::stop() {
    if (m_pid > 0) {
        ::TerminateProcess(m_process, 1);
        ::WaitForSingleObject(m_process, 10000);
        ::CloseHandle(m_process);
        m_pid = -1;
    }
}

} // namespace testsupport
