#include "platform/windows/WinFiles.h"

#include "platform/windows/WinText.h"

#include <aclapi.h>
#include <winternl.h>

#include <vector>

namespace platform::windows {
namespace {

/// The SIDs a file of this user carries as its owner: the user itself, and the default owner the
/// token gives new objects (the Administrators group for an elevated administrator).
class OwnSids {
public:
    OwnSids() {
        HANDLE token = nullptr;
        if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token))
            return;
        m_user = query(token, TokenUser);
        m_owner = query(token, TokenOwner);
        ::CloseHandle(token);
    }

    bool owns(PSID owner) const {
        return owner && ((!m_user.empty() && ::EqualSid(owner, reinterpret_cast<const TOKEN_USER*>(m_user.data())->User.Sid)) ||
                         (!m_owner.empty() && ::EqualSid(owner, reinterpret_cast<const TOKEN_OWNER*>(m_owner.data())->Owner)));
    }

private:
    static std::vector<BYTE> query(HANDLE token, TOKEN_INFORMATION_CLASS what) {
        DWORD size = 0;
        ::GetTokenInformation(token, what, nullptr, 0, &size);
        std::vector<BYTE> data(size);
        if (size == 0 || !::GetTokenInformation(token, what, data.data(), size, &size))
            data.clear();
        return data;
    }

    std::vector<BYTE> m_user;
    std::vector<BYTE> m_owner;
};

bool ownedByUser(HANDLE handle) {
    static const OwnSids own;
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (::GetSecurityInfo(handle, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr,
                          &descriptor) != ERROR_SUCCESS)
        return false;
    const bool mine = own.owns(owner);
    ::LocalFree(descriptor);
    return mine;
}

} // namespace

std::wstring systemPath(const std::string& path) {
    std::wstring wide = widen(path);
    const bool drive = wide.size() >= 3 && wide[1] == L':' && (wide[2] == L'\\' || wide[2] == L'/');
    const bool unc = wide.size() >= 3 && (wide[0] == L'\\' || wide[0] == L'/') && (wide[1] == L'\\' || wide[1] == L'/') &&
                     wide[2] != L'?' && wide[2] != L'.';
    if (!drive && !unc)
        return wide;
    // The prefix turns off the system's own tidying: "." and "..", forward slashes and doubled
    // separators are resolved here first.
    std::wstring full(wide.size() + 1, L'\0');
    DWORD n = ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (n >= full.size()) {
        full.resize(n);
        n = ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    }
    if (n == 0 || n >= full.size())
        return wide;
    full.resize(n);
    if (unc)
        return L"\\\\?\\UNC\\" + full.substr(2);
    return L"\\\\?\\" + full;
}

std::wstring plainPath(const std::wstring& path) {
    if (path.rfind(L"\\\\?\\UNC\\", 0) == 0)
        return L"\\\\" + path.substr(8);
    if (path.rfind(L"\\\\?\\", 0) == 0)
        return path.substr(4);
    return path;
}

bool isLinkTag(DWORD tag) {
    return tag == 0 || IsReparseTagNameSurrogate(tag);
}

DWORD linkAttributes(DWORD attributes, DWORD tag) {
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && !isLinkTag(tag))
        attributes &= ~static_cast<DWORD>(FILE_ATTRIBUTE_REPARSE_POINT);
    return attributes;
}

DWORD reparseTagOf(HANDLE handle) {
    FILE_ATTRIBUTE_TAG_INFO info{};
    if (!::GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &info, sizeof info) ||
        !(info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT))
        return 0;
    return info.ReparseTag;
}

DWORD reparseTagAt(const std::wstring& path) {
    const HANDLE handle = ::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return 0;
    const DWORD tag = reparseTagOf(handle);
    ::CloseHandle(handle);
    return tag;
}

bool isGone(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

std::int64_t unixSeconds(const FILETIME& time) {
    const std::int64_t ticks = (static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return (ticks - 116444736000000000LL) / 10000000LL;
}

bool isDriveRoot(const std::wstring& given) {
    const std::wstring path = plainPath(given);
    return (path.size() == 2 || path.size() == 3) && path[1] == L':' && (path.size() == 2 || path[2] == L'\\' || path[2] == L'/');
}

void applyAttributes(FileInfo& fi, DWORD attributes, std::uint64_t size) {
    fi.attributes = attributes;
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
        fi.attributes &= ~static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY);
    const bool plain = !(attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE));
    fi.isRegular = plain;
    fi.size = plain ? size : 0;
}

bool describeHandle(HANDLE handle, FileInfo& fi, DWORD extraAttributes) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!::GetFileInformationByHandle(handle, &info))
        return false;
    DWORD attributes = info.dwFileAttributes;
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
        attributes = linkAttributes(attributes, reparseTagOf(handle));
    applyAttributes(fi, attributes | (extraAttributes & FILE_ATTRIBUTE_REPARSE_POINT),
                    (static_cast<std::uint64_t>(info.nFileSizeHigh) << 32) | info.nFileSizeLow);
    fi.device = info.dwVolumeSerialNumber;
    fi.mount = info.dwVolumeSerialNumber;
    fi.index = (static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    fi.links = info.nNumberOfLinks;
    fi.modified = unixSeconds(info.ftLastWriteTime);
    fi.ownedByUser = ownedByUser(handle);
    return true;
}

namespace {

HANDLE createBelow(HANDLE folder, const std::wstring& name, ACCESS_MASK access, ULONG share, ULONG disposition,
                   ULONG options) {
    UNICODE_STRING object{};
    object.Buffer = const_cast<wchar_t*>(name.c_str());
    object.Length = static_cast<USHORT>(name.size() * sizeof(wchar_t));
    object.MaximumLength = object.Length;
    OBJECT_ATTRIBUTES attributes{};
    InitializeObjectAttributes(&attributes, &object, OBJ_CASE_INSENSITIVE, folder, nullptr);
    IO_STATUS_BLOCK status{};
    HANDLE handle = nullptr;
    const NTSTATUS result =
        ::NtCreateFile(&handle, access | SYNCHRONIZE, &attributes, &status, nullptr, FILE_ATTRIBUTE_NORMAL, share,
                       disposition, options | FILE_OPEN_REPARSE_POINT | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0);
    if (result < 0) {
        ::SetLastError(::RtlNtStatusToDosError(result));
        return INVALID_HANDLE_VALUE;
    }
    return handle;
}

} // namespace

HANDLE openBelow(HANDLE folder, const std::wstring& name, ACCESS_MASK access, ULONG share, ULONG disposition,
                 ULONG options) {
    if (name.empty() || name == L"." || name == L".." || name.find_first_of(L"\\/") != std::wstring::npos ||
        name.size() > 32767) {
        ::SetLastError(ERROR_INVALID_NAME);
        return INVALID_HANDLE_VALUE;
    }
    return createBelow(folder, name, access, share, disposition, options);
}

HANDLE reopen(HANDLE handle, ACCESS_MASK access, ULONG options) {
    return createBelow(handle, std::wstring(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       FILE_OPEN, options);
}

bool reachedAs(HANDLE handle, const std::wstring& name) {
    std::vector<std::uint64_t> buffer(8192); // 64 KiB: FILE_NAME_INFO and the longest path
    if (!::GetFileInformationByHandleEx(handle, FileNameInfo, buffer.data(),
                                        static_cast<DWORD>(buffer.size() * sizeof(std::uint64_t))))
        return true; // the system keeps no name for it: nothing to tell a link by
    const auto* info = reinterpret_cast<const FILE_NAME_INFO*>(buffer.data());
    const std::wstring full(info->FileName, info->FileNameLength / sizeof(wchar_t));
    const auto cut = full.find_last_of(L"\\/");
    const std::wstring last = cut == std::wstring::npos ? full : full.substr(cut + 1);
    return ::CompareStringOrdinal(last.data(), static_cast<int>(last.size()), name.data(),
                                  static_cast<int>(name.size()), TRUE) == CSTR_EQUAL;
}

bool deleteOnClose(HANDLE handle) {
    FILE_DISPOSITION_INFO disposition{TRUE};
    return ::SetFileInformationByHandle(handle, FileDispositionInfo, &disposition, sizeof disposition) != 0;
}

} // namespace platform::windows
