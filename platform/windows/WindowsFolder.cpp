#include "platform/windows/WindowsFolder.h"

#include "platform/windows/WinFiles.h"
#include "platform/windows/WinText.h"
#include "platform/windows/WindowsRawFiles.h"

#include <winioctl.h>
#include <winternl.h>

#include <cstring>
#include <vector>

// The directory query of ntdll, which winternl.h leaves out: the only call that reads a folder's
// records for one name without a path.
extern "C" NTSTATUS NTAPI NtQueryDirectoryFile(HANDLE file, HANDLE event, PIO_APC_ROUTINE apc, PVOID apcContext,
                                               PIO_STATUS_BLOCK status, PVOID buffer, ULONG length,
                                               FILE_INFORMATION_CLASS infoClass, BOOLEAN single,
                                               PUNICODE_STRING mask, BOOLEAN restart);

namespace platform::windows {
namespace {

constexpr ULONG ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// No delete sharing: while the handle is open nobody renames, moves or removes the folder.
constexpr ULONG ShareKeepingPlace = FILE_SHARE_READ | FILE_SHARE_WRITE;
// For a file being written: others may read it or take its name away, never write it.
constexpr ULONG ShareOwnWrites = FILE_SHARE_READ | FILE_SHARE_DELETE;
constexpr ACCESS_MASK FolderAccess = FILE_LIST_DIRECTORY | FILE_TRAVERSE | FILE_READ_ATTRIBUTES | READ_CONTROL;
constexpr auto IdBothDirectoryInformation = static_cast<FILE_INFORMATION_CLASS>(37);

/// One entry as the folder's own records list it. The records are what tells a link under Wine,
/// which opens what a host link points to even when asked for the link itself.
struct Record {
    std::wstring name;
    DWORD attributes = 0;
    DWORD tag = 0; ///< the reparse tag, for a reparse point
    std::uint64_t id = 0;
    std::uint64_t size = 0;
    FILETIME written{};

    bool isLink() const { return linkAttributes(attributes, tag) & FILE_ATTRIBUTE_REPARSE_POINT; }
    bool isFolder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) && !isLink(); }
};

/// The records of the open folder `folder`, "." and ".." left out; with `only`, the record of that
/// name alone. The query runs on a handle of its own: the system keeps a query's position and mask
/// with the handle. False when the folder cannot be read.
bool readRecords(HANDLE folder, const std::wstring* only, std::vector<Record>& out) {
    const HANDLE query = reopen(folder, FILE_LIST_DIRECTORY, FILE_DIRECTORY_FILE);
    if (query == INVALID_HANDLE_VALUE)
        return false;
    UNICODE_STRING mask{};
    if (only) {
        mask.Buffer = const_cast<wchar_t*>(only->c_str());
        mask.Length = mask.MaximumLength = static_cast<USHORT>(only->size() * sizeof(wchar_t));
    }
    std::vector<std::uint64_t> buffer(8192);
    bool first = true, read = true;
    for (;;) {
        IO_STATUS_BLOCK status{};
        const NTSTATUS result =
            ::NtQueryDirectoryFile(query, nullptr, nullptr, nullptr, &status, buffer.data(),
                                   static_cast<ULONG>(buffer.size() * sizeof(std::uint64_t)), IdBothDirectoryInformation,
                                   FALSE, only ? &mask : nullptr, first ? TRUE : FALSE);
        if (result == static_cast<NTSTATUS>(0x80000006L) || result == static_cast<NTSTATUS>(0xC000000FL))
            break; // no more records; no record of that name
        if (result < 0) {
            ::SetLastError(::RtlNtStatusToDosError(result));
            read = false;
            break;
        }
        first = false;
        const auto* at = reinterpret_cast<const BYTE*>(buffer.data());
        for (;;) {
            const auto* r = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(at);
            Record record;
            record.name.assign(r->FileName, r->FileNameLength / sizeof(wchar_t));
            const bool dots = record.name == L"." || record.name == L"..";
            if (!dots && (!only || record.name.size() == only->size())) {
                record.attributes = r->FileAttributes;
                // For a reparse point the record's EA size field holds its tag.
                if (r->FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
                    record.tag = r->EaSize;
                record.id = static_cast<std::uint64_t>(r->FileId.QuadPart);
                record.size = static_cast<std::uint64_t>(r->EndOfFile.QuadPart);
                record.written.dwLowDateTime = r->LastWriteTime.LowPart;
                record.written.dwHighDateTime = static_cast<DWORD>(r->LastWriteTime.HighPart);
                out.push_back(std::move(record));
            }
            if (r->NextEntryOffset == 0)
                break;
            at += r->NextEntryOffset;
        }
    }
    ::CloseHandle(query);
    return read;
}

/// The record of `name` in `folder`; empty when there is none (the Win32 error says why).
std::optional<Record> recordOf(HANDLE folder, const std::wstring& name) {
    std::vector<Record> found;
    // A name holding the query's wildcard characters (only a host name under Wine can) is looked
    // for among all records, where it matches only itself.
    const bool plain = name.find_first_of(L"*?<>\"") == std::wstring::npos;
    if (name.empty() || name.find_first_of(L"\\/") != std::wstring::npos || !readRecords(folder, plain ? &name : nullptr, found)) {
        ::SetLastError(ERROR_INVALID_NAME);
        return std::nullopt;
    }
    for (auto& r : found)
        if (::CompareStringOrdinal(r.name.data(), static_cast<int>(r.name.size()), name.data(),
                                   static_cast<int>(name.size()), TRUE) == CSTR_EQUAL)
            return std::move(r);
    ::SetLastError(ERROR_FILE_NOT_FOUND);
    return std::nullopt;
}

/// Whether the link `name` in `folder` is the mount point of a volume rather than a link to a
/// folder: its reparse data name a volume ("\??\Volume{...}").
bool isVolumeMount(HANDLE folder, const std::wstring& name) {
    const HANDLE link = openBelow(folder, name, FILE_READ_ATTRIBUTES, ShareAll, FILE_OPEN, 0);
    if (link == INVALID_HANDLE_VALUE)
        return false;
    std::vector<std::uint64_t> data(MAXIMUM_REPARSE_DATA_BUFFER_SIZE / sizeof(std::uint64_t));
    DWORD returned = 0;
    const bool read = ::DeviceIoControl(link, FSCTL_GET_REPARSE_POINT, nullptr, 0, data.data(),
                                        static_cast<DWORD>(data.size() * sizeof(std::uint64_t)), &returned, nullptr);
    ::CloseHandle(link);
    const auto* bytes = reinterpret_cast<const BYTE*>(data.data());
    DWORD tag = 0;
    std::memcpy(&tag, bytes, 4);
    if (!read || returned < 16 || tag != IO_REPARSE_TAG_MOUNT_POINT)
        return false;
    USHORT offset = 0, length = 0;
    std::memcpy(&offset, bytes + 8, 2);
    std::memcpy(&length, bytes + 10, 2);
    if (16u + offset + length > returned)
        return false;
    const std::wstring target(reinterpret_cast<const wchar_t*>(bytes + 16 + offset), length / sizeof(wchar_t));
    return target.rfind(L"\\??\\Volume{", 0) == 0;
}

/// Opens the entry `record` of `folder` as itself and checks that the handle holds that very
/// entry: reached by its own name (not through a link) and the same file the record lists.
HANDLE openRecord(HANDLE folder, const Record& record, ACCESS_MASK access, ULONG share, ULONG options) {
    const HANDLE handle = openBelow(folder, record.name, access, share, FILE_OPEN, options);
    if (handle == INVALID_HANDLE_VALUE)
        return handle;
    BY_HANDLE_FILE_INFORMATION info{};
    const bool same = reachedAs(handle, record.name) && ::GetFileInformationByHandle(handle, &info) &&
                      ((static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow) == record.id;
    if (!same) {
        ::CloseHandle(handle);
        ::SetLastError(ERROR_FILE_INVALID);
        return INVALID_HANDLE_VALUE;
    }
    return handle;
}

/// Whether `error` says that another open of the file, or a program's mapping of it, stands in
/// the way.
bool isSharingRefusal(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_USER_MAPPED_FILE;
}

/// The names of the extra data streams of the open file `handle` ("name" for ":name:$DATA"); the
/// main stream and any stream of another type are left out. None where the system cannot tell.
std::vector<std::wstring> dataStreams(HANDLE handle) {
    std::vector<std::uint64_t> buffer(1024);
    while (!::GetFileInformationByHandleEx(handle, FileStreamInfo, buffer.data(),
                                           static_cast<DWORD>(buffer.size() * sizeof(std::uint64_t)))) {
        if (::GetLastError() != ERROR_MORE_DATA || buffer.size() >= (std::size_t{1} << 20))
            return {}; // ERROR_HANDLE_EOF: no stream at all (a folder); others: the system keeps none
        buffer.resize(buffer.size() * 4);
    }
    std::vector<std::wstring> names;
    const auto* at = reinterpret_cast<const BYTE*>(buffer.data());
    for (;;) {
        const auto* info = reinterpret_cast<const FILE_STREAM_INFO*>(at);
        const std::wstring full(info->StreamName, info->StreamNameLength / sizeof(wchar_t));
        const std::wstring suffix = L":$DATA";
        // ":name:$DATA"; the main stream is "::$DATA".
        if (full.size() > suffix.size() + 1 && full[0] == L':' &&
            full.compare(full.size() - suffix.size(), suffix.size(), suffix) == 0)
            names.push_back(full.substr(1, full.size() - suffix.size() - 1));
        if (info->NextEntryOffset == 0)
            break;
        at += info->NextEntryOffset;
    }
    return names;
}

std::string lastComponent(const std::string& path) {
    std::string p = path;
    while (p.size() > 3 && (p.back() == '\\' || p.back() == '/'))
        p.pop_back();
    const auto cut = p.find_last_of("\\/");
    return cut == std::string::npos || p.size() <= 3 ? p : p.substr(cut + 1);
}

/// Facts about an entry of `folder` (described by `self`) from its record, completed from a handle
/// to it where one can be had (links, owner, volume); a link is described from its record alone.
FileInfo describeEntry(HANDLE folder, const Record& record, const FileInfo& self) {
    FileInfo fi;
    fi.name = narrow(record.name);
    const DWORD attributes = linkAttributes(record.attributes, record.tag);
    applyAttributes(fi, attributes, record.size);
    fi.modified = unixSeconds(record.written);
    fi.index = record.id;
    fi.device = self.device;
    fi.mount = self.mount; // a link is an entry of this folder's volume
    if (record.isLink()) {
        // A volume's mount point is another mount: it is left in place, never taken for a link.
        if (isVolumeMount(folder, record.name))
            fi.mount = ~self.mount;
        return fi;
    }
    // Links, owner and the volume come from the entry itself, when it can be opened as itself.
    const HANDLE handle = openRecord(folder, record, FILE_READ_ATTRIBUTES | READ_CONTROL, ShareAll, 0);
    if (handle != INVALID_HANDLE_VALUE) {
        FileInfo opened;
        if (describeHandle(handle, opened, attributes)) {
            opened.name = fi.name;
            fi = opened;
        }
        ::CloseHandle(handle);
    }
    return fi;
}

} // namespace

std::unique_ptr<WindowsFolder> WindowsFolder::open(const std::string& path) {
    std::string given = path.empty() ? std::string(".") : path;
    while (given.size() > 3 && (given.back() == '\\' || given.back() == '/'))
        given.pop_back();
    const bool root = isDriveRoot(widen(given));
    if (root && given.back() != '\\' && given.back() != '/')
        given += '\\'; // "D:" alone is the drive's current folder, "\\?\D:" the volume itself
    const std::wstring name = systemPath(given);
    // The last component is looked at as the folder lists it: under Wine that is the only place a
    // host link shows as one.
    const DWORD attributes = ::GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return nullptr;
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY) ||
        ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && !root && isLinkTag(reparseTagAt(name)))) {
        ::SetLastError(ERROR_DIRECTORY);
        return nullptr;
    }
    const HANDLE handle = ::CreateFileW(name.c_str(), FolderAccess | SYNCHRONIZE, ShareKeepingPlace, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    BY_HANDLE_FILE_INFORMATION info{};
    if (!::GetFileInformationByHandle(handle, &info) || !(info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ||
        ((linkAttributes(info.dwFileAttributes, reparseTagOf(handle)) & FILE_ATTRIBUTE_REPARSE_POINT) && !root)) {
        ::CloseHandle(handle);
        ::SetLastError(ERROR_DIRECTORY);
        return nullptr;
    }
    return std::unique_ptr<WindowsFolder>(new WindowsFolder(handle, path, root));
}

WindowsFolder::~WindowsFolder() {
    ::CloseHandle(m_handle);
}

FileInfo WindowsFolder::self() const {
    FileInfo fi;
    fi.name = lastComponent(m_path);
    if (describeHandle(m_handle, fi) && m_isRoot)
        applyAttributes(fi, fi.attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_REPARSE_POINT), 0);
    return fi;
}

bool WindowsFolder::list(const std::function<bool(const FileInfo&)>& visit) {
    std::vector<Record> records;
    if (!readRecords(m_handle, nullptr, records))
        return false;
    const FileInfo me = self();
    for (const Record& r : records)
        if (!visit(describeEntry(m_handle, r, me)))
            break;
    return true;
}

bool WindowsFolder::names(const std::function<bool(const std::string& name, EntryKind kind)>& visit) {
    // The records say what each entry is: no entry needs opening, as list() opens each one.
    std::vector<Record> records;
    if (!readRecords(m_handle, nullptr, records))
        return false;
    for (const Record& r : records)
        if (!visit(narrow(r.name), r.isLink() ? EntryKind::Link : r.isFolder() ? EntryKind::Directory : EntryKind::File))
            break;
    return true;
}

std::optional<FileInfo> WindowsFolder::entry(const std::string& name) {
    const auto record = recordOf(m_handle, widen(name));
    if (!record)
        return std::nullopt;
    return describeEntry(m_handle, *record, self());
}

std::unique_ptr<Folder> WindowsFolder::openFolder(const std::string& name) {
    const auto record = recordOf(m_handle, widen(name));
    if (!record)
        return nullptr;
    if (!record->isFolder()) {
        ::SetLastError(ERROR_DIRECTORY);
        return nullptr;
    }
    const HANDLE handle = openRecord(m_handle, *record, FolderAccess, ShareKeepingPlace, FILE_DIRECTORY_FILE);
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    std::string shown = m_path;
    if (!shown.empty() && shown.back() != '\\' && shown.back() != '/')
        shown += '\\';
    return std::unique_ptr<Folder>(new WindowsFolder(handle, shown + name, false));
}

std::unique_ptr<RawFile> WindowsFolder::openFile(const std::string& name, Create create) {
    const std::wstring wide = widen(name);
    const auto record = recordOf(m_handle, wide);
    if (record && create == Create::Exclusive) {
        ::SetLastError(ERROR_FILE_EXISTS);
        return nullptr;
    }
    if (!record && (create == Create::Never || ::GetLastError() != ERROR_FILE_NOT_FOUND))
        return nullptr;
    if (record && (record->isLink() || record->isFolder())) {
        ::SetLastError(record->isLink() ? ERROR_CANT_RESOLVE_FILENAME : ERROR_DIRECTORY);
        return nullptr;
    }
    // No other handle may write while this one is open. Reading is shared, so that a second handle
    // of this run can read the last pass back past the system's cache (another reader sees only
    // what the passes wrote); deleting is shared, so that the name can go while the file is still
    // held (cut, then removed, by the same run).
    const HANDLE handle = record ? openRecord(m_handle, *record, GENERIC_READ | GENERIC_WRITE, ShareOwnWrites,
                                              FILE_NON_DIRECTORY_FILE)
                                 : openBelow(m_handle, wide, GENERIC_READ | GENERIC_WRITE, ShareOwnWrites,
                                             // CREATE_NEW: a file put there since the look above is not taken over
                                             create == Create::Exclusive ? FILE_CREATE : FILE_OPEN_IF,
                                             FILE_NON_DIRECTORY_FILE);
    if (!record && handle != INVALID_HANDLE_VALUE && !reachedAs(handle, wide)) {
        ::CloseHandle(handle); // a link put there in the meantime
        ::SetLastError(ERROR_CANT_RESOLVE_FILENAME);
        return nullptr;
    }
    return adoptPlainFile(handle);
}

std::unique_ptr<RawFile> WindowsFolder::openForOverwrite(const std::string& name, Refusal& why) {
    // Asked before anything about the file changes, its read-only mark included.
    if (isInUse(name)) {
        why = Refusal::InUse;
        return nullptr;
    }
    auto file = Folder::openForOverwrite(name, why);
    const DWORD error = ::GetLastError();
    if (!file && why == Refusal::CannotOpen && isSharingRefusal(error))
        why = Refusal::InUse; // opened by some program since the question above
    ::SetLastError(error);
    return file;
}

bool WindowsFolder::isInUse(const std::string& name) {
    const auto record = recordOf(m_handle, widen(name));
    if (!record || record->isLink() || record->isFolder())
        return false;
    // An open that shares nothing is refused while any other handle that reads, writes or deletes
    // the file is open, in any process, and while a program has it mapped.
    const HANDLE handle = openRecord(m_handle, *record, FILE_READ_DATA, 0, FILE_NON_DIRECTORY_FILE);
    if (handle == INVALID_HANDLE_VALUE)
        return isSharingRefusal(::GetLastError());
    ::CloseHandle(handle);
    return false;
}

std::vector<std::string> WindowsFolder::extraStreams(const std::string& name) {
    const auto record = recordOf(m_handle, widen(name));
    if (!record || record->isLink() || record->isFolder())
        return {};
    // Asked of the file itself: attribute access shares with every other open, the overwrite's own.
    const HANDLE handle = openRecord(m_handle, *record, FILE_READ_ATTRIBUTES, ShareAll, FILE_NON_DIRECTORY_FILE);
    if (handle == INVALID_HANDLE_VALUE)
        return {};
    std::vector<std::string> names;
    for (const std::wstring& stream : dataStreams(handle))
        names.push_back(narrow(stream));
    ::CloseHandle(handle);
    return names;
}

std::unique_ptr<RawFile> WindowsFolder::openStream(const std::string& name, const std::string& stream) {
    const std::wstring wide = widen(stream);
    const auto record = recordOf(m_handle, widen(name));
    if (!record)
        return nullptr;
    if (record->isLink() || record->isFolder() || wide.empty() || wide.find_first_of(L":\\/") != std::wstring::npos) {
        ::SetLastError(record->isLink() ? ERROR_CANT_RESOLVE_FILENAME : ERROR_INVALID_NAME);
        return nullptr;
    }
    const HANDLE file = openRecord(m_handle, *record, FILE_READ_ATTRIBUTES, ShareAll, FILE_NON_DIRECTORY_FILE);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    // The stream is opened below the file's own handle, by its name alone: the file checked above
    // is the one whose stream is written.
    const HANDLE handle = openBelow(file, L":" + wide + L":$DATA", GENERIC_READ | GENERIC_WRITE, ShareOwnWrites,
                                    FILE_OPEN, FILE_NON_DIRECTORY_FILE);
    const DWORD error = ::GetLastError();
    ::CloseHandle(file);
    ::SetLastError(error);
    return adoptPlainFile(handle);
}

bool WindowsFolder::removeFile(const std::string& name) {
    const auto record = recordOf(m_handle, widen(name));
    if (!record)
        return isGone(::GetLastError());
    if (record->isFolder()) {
        ::SetLastError(ERROR_ACCESS_DENIED); // a real folder is not a file
        return false;
    }
    // Where the system cannot open a link as itself (Wine), the link stays: the handle would hold
    // what it points to.
    const HANDLE handle = openRecord(m_handle, *record, DELETE | FILE_READ_ATTRIBUTES, ShareAll, 0);
    if (handle == INVALID_HANDLE_VALUE)
        return isGone(::GetLastError());
    BY_HANDLE_FILE_INFORMATION info{};
    bool removed = false;
    if (::GetFileInformationByHandle(handle, &info) &&
        (!(info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) || (info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)))
        removed = deleteOnClose(handle);
    else
        ::SetLastError(ERROR_CANT_RESOLVE_FILENAME);
    const DWORD error = ::GetLastError();
    ::CloseHandle(handle);
    ::SetLastError(removed ? ERROR_SUCCESS : error);
    return removed;
}

bool WindowsFolder::removeFolder(const std::string& name) {
    const auto record = recordOf(m_handle, widen(name));
    if (!record)
        return isGone(::GetLastError());
    if (!record->isFolder()) {
        ::SetLastError(ERROR_DIRECTORY);
        return false;
    }
    const HANDLE handle = openRecord(m_handle, *record, DELETE | FILE_READ_ATTRIBUTES, ShareAll, FILE_DIRECTORY_FILE);
    if (handle == INVALID_HANDLE_VALUE)
        return isGone(::GetLastError());
    const bool removed = deleteOnClose(handle); // refused while the folder holds anything
    const DWORD error = ::GetLastError();
    ::CloseHandle(handle);
    ::SetLastError(removed ? ERROR_SUCCESS : error);
    return removed;
}

bool WindowsFolder::makeNormal(const std::string& name) {
    return setAttributes(name, 0);
}

bool WindowsFolder::setMarks(const std::string& name, std::uint32_t attributes) {
    return setAttributes(name, attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
}

bool WindowsFolder::setAttributes(const std::string& name, DWORD marks) {
    const auto record = recordOf(m_handle, widen(name));
    if (!record)
        return false;
    if (record->isLink())
        return true; // its attributes do not stand in the way of removing it
    const HANDLE handle = openRecord(m_handle, *record, FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES, ShareAll, 0);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    FILE_BASIC_INFO basic{}; // zero times: left as they are
    basic.FileAttributes = record->isFolder() ? FILE_ATTRIBUTE_DIRECTORY | marks : marks ? marks : FILE_ATTRIBUTE_NORMAL;
    const bool done = ::SetFileInformationByHandle(handle, FileBasicInfo, &basic, sizeof basic) != 0;
    ::CloseHandle(handle);
    return done;
}

} // namespace platform::windows
