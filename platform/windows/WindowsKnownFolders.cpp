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

// "C:\..." or "\\server\share\...": a relative TMP would name a different folder from each
// current folder.
bool isAbsolute(const std::string& path) {
    return (path.size() >= 3 && path[1] == ':' && (path[2] == '\\' || path[2] == '/')) ||
           (path.size() >= 2 && path[0] == '\\' && path[1] == '\\');
}

bool isFolder(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace

WindowsKnownFolders::WindowsKnownFolders(const Environment& env) {
    wchar_t path[MAX_PATH + 1];
    DWORD n = 0;
    // The variables GetTempPathW looks at first, taken from the environment given.
    for (const char* name : {"TMP", "TEMP"})
        if (const std::string value = variable(env, name); m_temp.empty() && isAbsolute(value))
            m_temp = withoutTrailingSeparator(value);
    if (m_temp.empty() && (n = ::GetTempPathW(MAX_PATH + 1, path)) > 0 && n <= MAX_PATH)
        m_temp = withoutTrailingSeparator(narrow(path, static_cast<int>(n)));
    n = ::GetSystemDirectoryW(path, MAX_PATH + 1);
    if (n > 0 && n <= MAX_PATH)
        m_system = narrow(path, static_cast<int>(n));

    m_home = variable(env, "USERPROFILE");
    if (m_home.empty() && SUCCEEDED(::SHGetFolderPathW(nullptr, CSIDL_PROFILE, nullptr, SHGFP_TYPE_CURRENT, path)))
        m_home = narrow(path);
    m_home = withoutTrailingSeparator(m_home);
    // Every profile lives beside this user's: "C:\Users\me" or "C:\Documents and Settings\me".
    wchar_t windowsFolder[MAX_PATH + 1];
    n = ::GetWindowsDirectoryW(windowsFolder, MAX_PATH + 1);
    if (n > 0 && n <= MAX_PATH) {
        const std::string windows = narrow(windowsFolder, static_cast<int>(n));
        if (windows.size() >= 3)
            m_systemFolders.push_back(windows.substr(0, 3)); // the system drive's root
        m_systemFolders.push_back(withoutTrailingSeparator(windows));
    }
    if (!m_system.empty())
        m_systemFolders.push_back(m_system);
    for (const int id : {CSIDL_PROGRAM_FILES, CSIDL_PROGRAM_FILESX86, CSIDL_COMMON_APPDATA})
        if (SUCCEEDED(::SHGetFolderPathW(nullptr, id, nullptr, SHGFP_TYPE_CURRENT, path)))
            m_systemFolders.push_back(withoutTrailingSeparator(narrow(path)));
    const auto cut = m_home.find_last_of("\\/");
    if (cut != std::string::npos && cut > 2) {
        const std::string parent = m_home.substr(0, cut);
        if (isFolder(parent))
            m_users = parent;
    }
}

} // namespace platform::windows

namespace platform {

Environment processEnvironment() {
    Environment env;
    for (const auto& [name, wide] : {std::pair{"TMP", L"TMP"}, std::pair{"TEMP", L"TEMP"}, std::pair{"USERPROFILE", L"USERPROFILE"}})
        if (std::string value = windows::environment(wide); !value.empty())
            env[name] = std::move(value);
    return env;
}

} // namespace platform

namespace platform::windows {

RunAs WindowsKnownFolders::runAs() {
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token))
        return RunAs::User;
    TOKEN_ELEVATION elevation {};
    DWORD size = 0;
    const bool elevated = ::GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size) &&
                          elevation.TokenIsElevated != 0;
    ::CloseHandle(token);
    return elevated ? RunAs::Administrator : RunAs::User;
}

} // namespace platform::windows
