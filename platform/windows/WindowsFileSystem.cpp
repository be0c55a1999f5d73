#include "platform/windows/WindowsFileSystem.h"

#include "platform/windows/WinFiles.h"
#include "platform/windows/WinText.h"
#include "platform/windows/WindowsFolder.h"

#include <windows.h>

namespace platform::windows {
namespace {

std::wstring childPath(const std::wstring& dir, const std::wstring& name) {
    if (dir.empty())
        return name;
    const wchar_t last = dir.back();
    return last == L'\\' || last == L'/' || last == L':' ? dir + name : dir + L'\\' + name;
}

/// Facts about `path` itself. The attributes come first, from the name's own entry: a handle may
/// have gone through a link (Wine opens what a host symbolic link points to), so a link is described
/// from its entry alone. Other entries are opened for their links, volume and owner; when no handle
/// can be had (access denied) the attributes alone serve: one link, unknown volume, not the user's.
std::optional<FileInfo> describe(const std::wstring& path, const std::string& name) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return std::nullopt;
    const bool root = isDriveRoot(plainPath(path));
    if (root)
        data.dwFileAttributes &= ~static_cast<DWORD>(FILE_ATTRIBUTE_REPARSE_POINT);
    else if (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
        data.dwFileAttributes = linkAttributes(data.dwFileAttributes, reparseTagAt(path));
    FileInfo fi;
    fi.name = name;
    applyAttributes(fi, data.dwFileAttributes, (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow);
    fi.modified = unixSeconds(data.ftLastWriteTime);
    if (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
        return fi;
    const HANDLE handle = ::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES | READ_CONTROL,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return fi;
    if (describeHandle(handle, fi) && root)
        applyAttributes(fi, fi.attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_REPARSE_POINT), 0);
    ::CloseHandle(handle);
    return fi;
}

/// Removes the link to a folder at `path` through a handle that is checked to be the link itself.
/// RemoveDirectoryW cannot be trusted with it: Wine sends it on to the folder the link points to,
/// and would remove that folder when it is empty. Where the system cannot open the link as itself,
/// the link stays.
bool removeFolderLink(const std::wstring& path) {
    const HANDLE handle = ::CreateFileW(path.c_str(), DELETE | FILE_READ_ATTRIBUTES,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return isGone(::GetLastError());
    BY_HANDLE_FILE_INFORMATION info{};
    bool removed = false;
    DWORD error = ERROR_NOT_SUPPORTED;
    if (::GetFileInformationByHandle(handle, &info) && (info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
        FILE_DISPOSITION_INFO disposition{TRUE};
        removed = ::SetFileInformationByHandle(handle, FileDispositionInfo, &disposition, sizeof disposition);
        error = ::GetLastError();
    }
    ::CloseHandle(handle);
    ::SetLastError(removed ? ERROR_SUCCESS : error);
    return removed;
}

/// Whether `dir` is a folder that a listing may enter: a real folder, not a link to one.
bool enterable(const std::wstring& dir) {
    const DWORD attributes = ::GetFileAttributesW(dir.empty() ? L"." : dir.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY) ||
        ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && !isDriveRoot(plainPath(dir)) && isLinkTag(reparseTagAt(dir)))) {
        ::SetLastError(ERROR_DIRECTORY);
        return false;
    }
    return true;
}

/// Runs `visit` over the entries of `dir` that FindFirstFileExW gives for `pattern`, "." and ".."
/// left out. False when the folder cannot be listed.
template <typename Visit> bool enumerate(const std::wstring& dir, const std::wstring& pattern, Visit visit) {
    if (!enterable(dir))
        return false;
    WIN32_FIND_DATAW data{};
    const HANDLE find = ::FindFirstFileExW(childPath(dir, pattern).c_str(), FindExInfoBasic, &data,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (find == INVALID_HANDLE_VALUE)
        return ::GetLastError() == ERROR_FILE_NOT_FOUND; // a folder with no match is still listed
    do {
        const wchar_t* n = data.cFileName;
        if (n[0] == L'.' && (n[1] == 0 || (n[1] == L'.' && n[2] == 0)))
            continue;
        if (!visit(data))
            break;
    } while (::FindNextFileW(find, &data));
    ::FindClose(find);
    return true;
}

std::wstring upper(const std::wstring& text) {
    if (text.empty())
        return text;
    std::wstring out(text.size(), L'\0');
    const int n = ::LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.data(), static_cast<int>(text.size()),
                                  out.data(), static_cast<int>(out.size()), nullptr, nullptr, 0);
    return n > 0 ? out : text;
}

} // namespace

bool wildcardMatch(const std::wstring& name, const std::wstring& pattern) {
    if (pattern.empty())
        return false;
    if (pattern == L"*" || pattern == L"*.*")
        return true;
    const std::wstring n = upper(name), p = upper(pattern);
    std::size_t i = 0, j = 0, star = std::wstring::npos, resume = 0;
    while (i < n.size()) {
        if (j < p.size() && (p[j] == L'?' || p[j] == n[i])) {
            ++i;
            ++j;
        } else if (j < p.size() && p[j] == L'*') {
            star = j++;
            resume = i;
        } else if (star != std::wstring::npos) {
            j = star + 1;
            i = ++resume;
        } else {
            return false;
        }
    }
    while (j < p.size() && p[j] == L'*')
        ++j;
    return j == p.size();
}

bool WindowsFileSystem::list(const std::string& dir, const std::string& pattern,
                             const std::function<bool(const FileInfo&)>& visit) {
    const std::wstring folder = systemPath(dir);
    const std::wstring wanted = pattern.empty() ? L"*" : widen(pattern);
    return enumerate(folder, wanted, [&](const WIN32_FIND_DATAW& data) {
        // The system also matches short 8.3 names ("*.htm" finds "a.html"); only long names count.
        if (!wildcardMatch(data.cFileName, wanted))
            return true;
        const auto fi = describe(childPath(folder, data.cFileName), narrow(data.cFileName));
        return !fi || visit(*fi); // gone between listing and asking
    });
}

bool WindowsFileSystem::names(const std::string& dir,
                              const std::function<bool(const std::string& name, EntryKind kind)>& visit) {
    return enumerate(systemPath(dir), L"*", [&](const WIN32_FIND_DATAW& data) {
        // For a reparse point the find data's first reserved field holds its tag.
        const DWORD a = linkAttributes(data.dwFileAttributes, data.dwReserved0);
        const EntryKind kind = (a & FILE_ATTRIBUTE_REPARSE_POINT) ? EntryKind::Link
                               : (a & FILE_ATTRIBUTE_DIRECTORY)   ? EntryKind::Directory
                               : (a & FILE_ATTRIBUTE_DEVICE)      ? EntryKind::Other
                                                                  : EntryKind::File;
        return visit(narrow(data.cFileName), kind);
    });
}

bool WindowsFileSystem::matches(const std::string& name, const std::string& pattern) const {
    return wildcardMatch(widen(name), widen(pattern));
}

std::optional<FileInfo> WindowsFileSystem::info(const std::string& path) {
    std::string trimmed = path;
    while (trimmed.size() > 3 && (trimmed.back() == '\\' || trimmed.back() == '/'))
        trimmed.pop_back();
    const auto cut = trimmed.find_last_of("\\/");
    return describe(systemPath(trimmed), cut == std::string::npos || trimmed.size() <= 3 ? trimmed : trimmed.substr(cut + 1));
}

std::unique_ptr<Folder> WindowsFileSystem::openFolder(const std::string& path) {
    return WindowsFolder::open(path);
}

bool WindowsFileSystem::removeFile(const std::string& path) {
    const std::wstring name = systemPath(path);
    DWORD attributes = ::GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return isGone(::GetLastError());
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
        attributes = linkAttributes(attributes, reparseTagAt(name));
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
        if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
            return removeFolderLink(name);
        ::SetLastError(ERROR_ACCESS_DENIED); // a real folder is not a file
        return false;
    }
    // DeleteFileW removes a link to a file itself, never its target.
    return ::DeleteFileW(name.c_str()) || isGone(::GetLastError());
}

bool WindowsFileSystem::removeDirectory(const std::string& path) {
    const std::wstring name = systemPath(path);
    const DWORD attributes = ::GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return isGone(::GetLastError());
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && isLinkTag(reparseTagAt(name))) {
        ::SetLastError(ERROR_DIRECTORY); // a link is no folder; removeFile() takes it
        return false;
    }
    return ::RemoveDirectoryW(name.c_str()) || isGone(::GetLastError());
}

bool WindowsFileSystem::createDirectory(const std::string& path) {
    return ::CreateDirectoryW(systemPath(path).c_str(), nullptr) != 0;
}

bool WindowsFileSystem::makeNormal(const std::string& path) {
    const std::wstring name = systemPath(path);
    const DWORD attributes = ::GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && isLinkTag(reparseTagAt(name)))
        return true; // the link's own attributes do not stand in the way of removing it
    return ::SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL) != 0;
}

bool WindowsFileSystem::isInUse(const std::string& path) {
    // An exclusive open fails while any other handle with data access is open, in any process.
    const HANDLE handle = ::CreateFileW(systemPath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD error = ::GetLastError();
        return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
    }
    ::CloseHandle(handle);
    return false;
}

} // namespace platform::windows
