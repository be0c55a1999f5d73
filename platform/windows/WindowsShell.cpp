#include "platform/windows/WindowsShell.h"

#include "platform/windows/WinText.h"

#include <windows.h>
#include <objbase.h>
#include <shellapi.h>

namespace platform::windows {

bool WindowsShell::open(const std::string& target) {
    if (target.empty())
        return false;
    // The handler the shell picks may be a COM object that needs this thread in an apartment.
    const HRESULT com = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    // No verb: the handler's default action; no working folder: the program's own. Results above
    // 32 mean it started.
    const auto result = reinterpret_cast<INT_PTR>(
        ::ShellExecuteW(nullptr, nullptr, widen(target).c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (SUCCEEDED(com))
        ::CoUninitialize();
    return result > 32;
}

bool WindowsShell::startProgram(const std::string& program) {
    if (program.empty() || program.find_first_of("\\/:\"") != std::string::npos)
        return false;
    std::wstring commandLine = L"\"" + widen(program) + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started))
        return false;
    ::CloseHandle(started.hThread);
    ::CloseHandle(started.hProcess);
    return true;
}

} // namespace platform::windows
