#include "platform/windows/WindowsProcesses.h"

#include "platform/windows/WinText.h"

#include <windows.h>
#include <psapi.h>

namespace platform::windows {

std::vector<long> WindowsProcesses::ids() {
    // The list is complete once the system fills less than the whole buffer.
    std::vector<DWORD> buffer(256);
    DWORD bytes = 0;
    for (;;) {
        const auto capacity = static_cast<DWORD>(buffer.size() * sizeof(DWORD));
        if (!::EnumProcesses(buffer.data(), capacity, &bytes))
            return {};
        if (bytes < capacity)
            break;
        buffer.resize(buffer.size() * 2);
    }
    return std::vector<long>(buffer.begin(), buffer.begin() + bytes / sizeof(DWORD));
}

std::optional<std::string> WindowsProcesses::programName(long id) {
    HANDLE process = ::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, static_cast<DWORD>(id));
    wchar_t path[MAX_PATH * 4];
    DWORD length = 0;
    if (process) {
        HMODULE first = nullptr;
        DWORD needed = 0;
        if (::EnumProcessModules(process, &first, sizeof first, &needed))
            length = ::GetModuleFileNameExW(process, first, path, MAX_PATH * 4);
    } else {
        process = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(id));
    }
    if (process && length == 0) {
        DWORD size = MAX_PATH * 4;
        if (::QueryFullProcessImageNameW(process, 0, path, &size))
            length = size;
    }
    if (process)
        ::CloseHandle(process);
    if (length == 0)
        return std::nullopt;
    const std::string full = narrow(path, static_cast<int>(length));
    const auto cut = full.find_last_of("\\/");
    return cut == std::string::npos ? full : full.substr(cut + 1);
}

} // namespace platform::windows
