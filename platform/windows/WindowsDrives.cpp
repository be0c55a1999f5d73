#include "platform/windows/WindowsDrives.h"

#include "platform/windows/WinText.h"

#include <windows.h>
#include <shlwapi.h>

#include <cwchar>

namespace platform::windows {

std::vector<std::string> WindowsDrives::roots() {
    std::vector<std::string> out;
    std::wstring buffer(512, L'\0');
    DWORD length = ::GetLogicalDriveStringsW(static_cast<DWORD>(buffer.size()), buffer.data());
    if (length > buffer.size()) {
        buffer.assign(length, L'\0');
        length = ::GetLogicalDriveStringsW(static_cast<DWORD>(buffer.size()), buffer.data());
    }
    // "A:\<NUL>C:\<NUL>...<NUL>"
    for (const wchar_t* at = buffer.c_str(); *at && at < buffer.c_str() + length; at += std::wcslen(at) + 1)
        out.push_back(narrow(at));
    return out;
}

std::string WindowsDrives::rootOf(const std::string& path) {
    const std::wstring name = widen(path.empty() ? std::string(".") : path);
    wchar_t full[MAX_PATH * 4];
    const DWORD n = ::GetFullPathNameW(name.c_str(), MAX_PATH * 4, full, nullptr);
    if (n == 0 || n >= MAX_PATH * 4)
        return {};
    wchar_t root[MAX_PATH * 4];
    if (::GetVolumePathNameW(full, root, MAX_PATH * 4) && ::GetDriveTypeW(root) != DRIVE_NO_ROOT_DIR)
        return narrow(root);
    // No volume to ask (a drive without a medium): the drive part of the path, if that drive exists.
    if (std::wcslen(full) < 2 || full[1] != L':')
        return {};
    const std::wstring drive = std::wstring(full, 2) + L"\\";
    return ::GetDriveTypeW(drive.c_str()) != DRIVE_NO_ROOT_DIR ? narrow(drive) : std::string();
}

DriveType WindowsDrives::type(const std::string& path) {
    const std::string root = rootOf(path);
    return root.empty() ? DriveType::NoRootDir : static_cast<DriveType>(::GetDriveTypeW(widen(root).c_str()));
}

bool WindowsDrives::space(const std::string& path, DiskSpace& out) {
    ULARGE_INTEGER caller{}, total{}, free{};
    if (!::GetDiskFreeSpaceExW(widen(path).c_str(), &caller, &total, &free))
        return false;
    out.freeToCaller = caller.QuadPart;
    out.total = total.QuadPart;
    out.totalFree = free.QuadPart;
    return true;
}

bool WindowsDrives::isDirectory(const std::string& path) {
    return ::PathIsDirectoryW(widen(path).c_str()) != FALSE;
}

} // namespace platform::windows
