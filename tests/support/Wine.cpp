#include "tests/support/Wine.h"

#include "platform/windows/WinText.h"

#include <windows.h>
#include <winioctl.h>
#include <wininet.h>

#include <cstring>
#include <cwchar>
#include <memory>
#include <vector>

namespace testsupport {
namespace {

using platform::windows::narrow;
using platform::windows::widen;

/// The mount-point reparse buffer that makes a folder a junction to `target` (an absolute path).
bool makeJunction(const std::wstring& link, const std::wstring& target) {
    if (!::CreateDirectoryW(link.c_str(), nullptr))
        return false;
    const HANDLE folder = ::CreateFileW(link.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (folder == INVALID_HANDLE_VALUE) {
        ::RemoveDirectoryW(link.c_str());
        return false;
    }
    const std::wstring substitute = L"\\??\\" + target;
    const auto subBytes = static_cast<USHORT>(substitute.size() * sizeof(wchar_t));
    const auto printBytes = static_cast<USHORT>(target.size() * sizeof(wchar_t));
    // Tag, data length, reserved; then the mount point's four offsets and lengths and the two names.
    std::vector<BYTE> buffer(8 + 8 + subBytes + 2 + printBytes + 2, 0);
    const auto put16 = [&](std::size_t at, USHORT v) { std::memcpy(buffer.data() + at, &v, 2); };
    const DWORD tag = IO_REPARSE_TAG_MOUNT_POINT;
    std::memcpy(buffer.data(), &tag, 4);
    put16(4, static_cast<USHORT>(buffer.size() - 8));
    put16(8, 0);
    put16(10, subBytes);
    put16(12, static_cast<USHORT>(subBytes + 2));
    put16(14, printBytes);
    std::memcpy(buffer.data() + 16, substitute.c_str(), subBytes);
    std::memcpy(buffer.data() + 16 + subBytes + 2, target.c_str(), printBytes);
    DWORD returned = 0;
    const BOOL ok = ::DeviceIoControl(folder, FSCTL_SET_REPARSE_POINT, buffer.data(), static_cast<DWORD>(buffer.size()),
                                      nullptr, 0, &returned, nullptr);
    ::CloseHandle(folder);
    if (!ok)
        ::RemoveDirectoryW(link.c_str());
    return ok;
}

/// Runs `program` (a Windows path) with `arguments` and waits for it; Wine starts host programs
/// like its own.
bool runProgram(const std::wstring& program, const std::wstring& arguments) {
    std::wstring commandLine = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    // The program is named apart: the command line alone would make the system look for "ln.exe".
    if (!::CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &started))
        return false;
    ::WaitForSingleObject(started.hProcess, 30000);
    if (started.hThread)
        ::CloseHandle(started.hThread);
    ::CloseHandle(started.hProcess);
    return true;
}

std::string hostPathOf(const std::string& windowsPath) {
    using ToUnix = char*(CDECL*)(const wchar_t*);
    const auto toUnix = reinterpret_cast<ToUnix>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
    if (!toUnix)
        return {};
    char* unix = toUnix(widen(windowsPath).c_str());
    if (!unix)
        return {};
    std::string out = unix;
    ::HeapFree(::GetProcessHeap(), 0, unix);
    return out;
}

} // namespace

bool underWine() {
    return ::GetProcAddress(::GetModuleHandleW(L"ntdll"), "wine_get_version") != nullptr;
}

std::string windowsPathOf(const std::string& path) {
    using ToDos = wchar_t*(CDECL*)(const char*);
    const auto toDos = reinterpret_cast<ToDos>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32"), "wine_get_dos_file_name")));
    if (!toDos || path.empty() || path[0] != '/')
        return path;
    wchar_t* dos = toDos(path.c_str());
    if (!dos)
        return path;
    std::string out = narrow(dos);
    ::HeapFree(::GetProcessHeap(), 0, dos);
    return out;
}

bool makeFolderLink(const std::string& link, const std::string& target) {
    if (makeJunction(widen(link), widen(target)))
        return true;
    // Wine 8 refuses FSCTL_SET_REPARSE_POINT but shows a host symbolic link as a reparse point.
    if (!underWine())
        return false;
    const std::string hostLink = hostPathOf(link), hostTarget = hostPathOf(target);
    if (hostLink.empty() || hostTarget.empty())
        return false;
    runHost("/bin/ln", "-s \"" + hostTarget + "\" \"" + hostLink + "\"");
    // Wine neither waits for a host program nor passes its exit code on reliably: the link tells.
    for (int i = 0; i < 400; ++i, ::Sleep(5)) {
        const DWORD attributes = ::GetFileAttributesW(widen(link).c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT))
            return true;
    }
    return false;
}

bool runHost(const std::string& program, const std::string& arguments) {
    return underWine() && runProgram(widen(windowsPathOf(program)), widen(arguments));
}

bool commitCacheEntry(const std::wstring& url, const std::string& body) {
    wchar_t local[MAX_PATH] = {};
    if (!::CreateUrlCacheEntryW(url.c_str(), 0, L"html", local, 0))
        return false;
    const HANDLE file = ::CreateFileW(local, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    ::WriteFile(file, body.data(), static_cast<DWORD>(body.size()), &written, nullptr);
    ::CloseHandle(file);
    wchar_t header[] = L"HTTP/1.1 200 OK\r\n\r\n";
    return ::CommitUrlCacheEntryW(url.c_str(), local, FILETIME{}, FILETIME{}, NORMAL_CACHE_ENTRY, header,
                                  static_cast<DWORD>(std::wcslen(header)), L"html", nullptr) != FALSE;
}

bool inUrlCache(const std::wstring& url) {
    DWORD size = 0;
    ::GetUrlCacheEntryInfoW(url.c_str(), nullptr, &size);
    return ::GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

std::vector<std::wstring> registryValueNames(const std::wstring& key) {
    std::vector<std::wstring> out;
    HKEY k = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &k) != ERROR_SUCCESS)
        return out;
    wchar_t name[256];
    for (DWORD i = 0;; ++i) {
        DWORD length = 256;
        if (::RegEnumValueW(k, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        out.emplace_back(name, length);
    }
    ::RegCloseKey(k);
    return out;
}

} // namespace testsupport
