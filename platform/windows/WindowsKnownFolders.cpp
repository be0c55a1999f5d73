#include "platform/windows/WindowsKnownFolders.h"

#include "platform/windows/WinFiles.h"
#include "platform/windows/WinText.h"

#include <windows.h>
#include <shlobj.h>

namespace platform::windows {
namespace {

std::string withoutTrailingSeparator(std::string path) {
    // A drive root keeps its separator: "C:" alone would mean the current folder of drive C.
    while (path.size() > 3 && (path.back() == '\\' || path.back() == '/'))
        path.pop_back();
    return path;
}

std::string environment(const wchar_t* name) {
    wchar_t value[MAX_PATH * 4];
    const DWORD n = ::GetEnvironmentVariableW(name, value, MAX_PATH * 4);
    return n > 0 && n < MAX_PATH * 4 ? narrow(value, static_cast<int>(n)) : std::string();
}

bool isFolder(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace

WindowsKnownFolders::WindowsKnownFolders() {
    wchar_t path[MAX_PATH + 1];
    DWORD n = ::GetTempPathW(MAX_PATH + 1, path);
    if (n > 0 && n <= MAX_PATH)
        m_temp = withoutTrailingSeparator(narrow(path, static_cast<int>(n)));
    n = ::GetSystemDirectoryW(path, MAX_PATH + 1);
    if (n > 0 && n <= MAX_PATH)
        m_system = narrow(path, static_cast<int>(n));

    m_home = environment(L"USERPROFILE");
    if (m_home.empty() && SUCCEEDED(::SHGetFolderPathW(nullptr, CSIDL_PROFILE, nullptr, SHGFP_TYPE_CURRENT, path)))
        m_home = narrow(path);
    m_home = withoutTrailingSeparator(m_home);
    // Every profile lives beside this user's: "C:\Users\me" or "C:\Documents and Settings\me".
    const auto cut = m_home.find_last_of("\\/");
    if (cut != std::string::npos && cut > 2) {
        const std::string parent = m_home.substr(0, cut);
        if (isFolder(parent))
            m_users = parent;
    }
}

} // namespace platform::windows
