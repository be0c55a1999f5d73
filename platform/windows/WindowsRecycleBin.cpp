#include "platform/windows/WindowsRecycleBin.h"

#include "platform/windows/WinCom.h"
#include "platform/windows/WinFiles.h"
#include "platform/windows/WinText.h"

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <shobjidl.h>

#include <cctype>
#include <cstdio>

namespace platform::windows {
namespace {

template <typename T> struct Released {
    T* p = nullptr;
    ~Released() {
        if (p)
            p->Release();
    }
};

std::string text(STRRET& value, PCUITEMID_CHILD item) {
    wchar_t buffer[MAX_PATH * 4];
    return SUCCEEDED(::StrRetToBufW(&value, item, buffer, MAX_PATH * 4)) ? narrow(buffer) : std::string();
}

std::uint64_t bytesOf(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
        return 0;
    return (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

bool sameDrive(const std::string& path, const std::string& root) {
    return root.empty() ||
           (path.size() >= 2 && root.size() >= 1 && std::toupper(static_cast<unsigned char>(path[0])) ==
                                                         std::toupper(static_cast<unsigned char>(root[0])));
}

/// The target a shortcut points to; empty when it cannot be read.
std::wstring shortcutTarget(const std::wstring& shortcut) {
    Released<IShellLinkW> link;
    Released<IPersistFile> file;
    if (FAILED(::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                  reinterpret_cast<void**>(&link.p))) ||
        FAILED(link.p->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file.p))) ||
        FAILED(file.p->Load(shortcut.c_str(), STGM_READ)))
        return {};
    wchar_t target[MAX_PATH * 4] = {};
    return SUCCEEDED(link.p->GetPath(target, MAX_PATH * 4, nullptr, SLGP_RAWPATH)) ? std::wstring(target) : std::wstring();
}

} // namespace

std::string fileAddress(const std::string& path) {
    std::string out = "file:///";
    for (const unsigned char c : path) {
        if (c == '\\')
            out += '/';
        else if (c <= 0x20 || c >= 0x7F || c == '%' || c == '#' || c == '?') {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", c);
            out += escaped;
        } else
            out += static_cast<char>(c);
    }
    return out;
}

std::vector<TrashItem> WindowsRecycleBin::items(const std::string& root) {
    std::vector<TrashItem> out;
    ComScope com;
    Released<IShellFolder> desktop;
    Released<IShellFolder2> bin;
    Released<IEnumIDList> children;
    PIDLIST_ABSOLUTE binId = nullptr;
    if (FAILED(::SHGetDesktopFolder(&desktop.p)) || FAILED(::SHGetSpecialFolderLocation(nullptr, CSIDL_BITBUCKET, &binId)))
        return out;
    const HRESULT bound = desktop.p->BindToObject(binId, nullptr, IID_IShellFolder2, reinterpret_cast<void**>(&bin.p));
    ::CoTaskMemFree(binId);
    if (FAILED(bound) ||
        bin.p->EnumObjects(nullptr, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS | SHCONTF_INCLUDEHIDDEN, &children.p) != S_OK)
        return out;
    PITEMID_CHILD child = nullptr;
    while (children.p->Next(1, &child, nullptr) == S_OK) {
        TrashItem item;
        STRRET value{};
        if (SUCCEEDED(bin.p->GetDisplayNameOf(child, SHGDN_FORPARSING, &value)))
            item.path = text(value, child);
        // The bin's columns: 0 the name, 1 the folder it was deleted from.
        SHELLDETAILS name{}, from{};
        // Each text is read (and so freed) on its own: one column may answer when the other fails.
        const bool named = SUCCEEDED(bin.p->GetDetailsOf(child, 0, &name));
        const std::string shownName = named ? text(name.str, child) : std::string();
        const std::string folder = SUCCEEDED(bin.p->GetDetailsOf(child, 1, &from)) ? text(from.str, child) : std::string();
        if (named && !folder.empty())
            item.originalPath = folder + (folder.back() == '\\' ? "" : "\\") + shownName;
        item.bytes = bytesOf(systemPath(item.path));
        ::CoTaskMemFree(child);
        if (!item.path.empty() && sameDrive(item.originalPath.empty() ? item.path : item.originalPath, root))
            out.push_back(std::move(item));
    }
    return out;
}

bool WindowsRecycleBin::empty(const std::string& root, unsigned flags, RecycleBinUi& ui) {
    const std::wstring drive = widen(root);
    const wchar_t* which = drive.empty() ? nullptr : drive.c_str();
    SHQUERYRBINFO info{};
    info.cbSize = sizeof info;
    if (FAILED(::SHQueryRecycleBinW(which, &info)))
        return false;
    if (info.i64NumItems == 0)
        return true;
    const auto items = static_cast<std::size_t>(info.i64NumItems);
    if (!(flags & EmptyFlags::NoConfirmation) && !ui.confirmEmpty(items, static_cast<std::uint64_t>(info.i64Size)))
        return false;
    // The questions and the progress are the caller's; the shell only does the work.
    DWORD shellFlags = SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI;
    if (flags & EmptyFlags::NoSound)
        shellFlags |= SHERB_NOSOUND;
    ::SHEmptyRecycleBinW(nullptr, which, shellFlags);
    if (!(flags & EmptyFlags::NoProgressUi))
        ui.progress(items, items);
    info = SHQUERYRBINFO{};
    info.cbSize = sizeof info;
    return SUCCEEDED(::SHQueryRecycleBinW(which, &info)) && info.i64NumItems == 0;
}

std::vector<std::string> WindowsRecycleBin::recentDocuments() {
    std::vector<std::string> out;
    wchar_t folder[MAX_PATH];
    if (FAILED(::SHGetFolderPathW(nullptr, CSIDL_RECENT, nullptr, SHGFP_TYPE_CURRENT, folder)))
        return out;
    ComScope com;
    const std::wstring dir = folder;
    WIN32_FIND_DATAW data{};
    const HANDLE find = ::FindFirstFileW((dir + L"\\*.lnk").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
        return out;
    do {
        const std::wstring shortcut = dir + L"\\" + data.cFileName;
        const std::wstring target = shortcutTarget(shortcut);
        out.push_back(fileAddress(narrow(target.empty() ? shortcut : target)));
    } while (::FindNextFileW(find, &data));
    ::FindClose(find);
    return out;
}

bool WindowsRecycleBin::clearRecentDocuments(Remover& /*remover: the shell clears its own list*/) {
    ::SHAddToRecentDocs(SHARD_PIDL, nullptr);
    return true;
}

} // namespace platform::windows
