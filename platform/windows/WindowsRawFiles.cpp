#include "platform/windows/WindowsRawFiles.h"

#include "platform/windows/WinFiles.h"
#include "platform/windows/WinText.h"

#include <windows.h>
#include <winternl.h>

#include <algorithm>

namespace platform::windows {
namespace {

// The volume's sector sizes (Windows 8 on), which the headers for Windows 7 leave out.
constexpr auto FileFsSectorSizeInformation = static_cast<FS_INFORMATION_CLASS>(11);
struct SectorSizes {
    ULONG logical;
    ULONG physicalForAtomicity;
    ULONG physicalForPerformance;
    ULONG effectiveForAtomicity;
    ULONG flags;
    ULONG sectorAlignmentOffset;
    ULONG partitionAlignmentOffset;
};

/// The alignment reads without the system's cache need on the volume of `handle`: the larger of
/// its logical and physical sector sizes, so that every read covers whole sectors.
std::size_t sectorAlignment(HANDLE handle) {
    std::size_t size = 0;
    SectorSizes sectors{};
    IO_STATUS_BLOCK status{};
    if (::NtQueryVolumeInformationFile(handle, &status, &sectors, sizeof sectors, FileFsSectorSizeInformation) >= 0)
        size = std::max(sectors.logical, sectors.physicalForPerformance);
    FILE_FS_SIZE_INFORMATION volume{};
    if (size == 0 && ::NtQueryVolumeInformationFile(handle, &status, &volume, sizeof volume, FileFsSizeInformation) >= 0)
        size = volume.BytesPerSector; // systems before Windows 8 tell only the logical size
    // A size that is no power of two between 512 bytes and 64 KiB is no sector size: whole pages
    // are whole sectors on every disk there is.
    const bool plausible = size >= 512 && size <= 65536 && (size & (size - 1)) == 0;
    return plausible ? size : 4096;
}

class WindowsRawFile final : public RawFile {
public:
    /// `alignment`: for a handle that reads past the system's cache, what each read must align to.
    explicit WindowsRawFile(HANDLE handle, std::size_t alignment = 1) : m_handle(handle), m_alignment(alignment) {}
    ~WindowsRawFile() override { ::CloseHandle(m_handle); }
    WindowsRawFile(const WindowsRawFile&) = delete;
    WindowsRawFile& operator=(const WindowsRawFile&) = delete;

    std::size_t read(void* buffer, std::size_t count) override {
        auto* out = static_cast<char*>(buffer);
        std::size_t done = 0;
        while (done < count) {
            DWORD n = 0;
            const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(count - done, 1u << 30));
            if (!::ReadFile(m_handle, out + done, chunk, &n, nullptr) || n == 0)
                break;
            done += n;
        }
        return done;
    }

    std::size_t write(const void* data, std::size_t count) override {
        const auto* in = static_cast<const char*>(data);
        std::size_t done = 0;
        while (done < count) {
            DWORD n = 0;
            const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(count - done, 1u << 30));
            if (!::WriteFile(m_handle, in + done, chunk, &n, nullptr) || n == 0)
                break;
            done += n;
        }
        return done;
    }

    std::int64_t seek(std::int64_t distance, From from) override {
        const DWORD method = from == From::Begin ? FILE_BEGIN : from == From::Current ? FILE_CURRENT : FILE_END;
        LONG high = static_cast<LONG>(distance >> 32);
        // INVALID_SET_FILE_POINTER is also a valid low half; only the error code tells them apart.
        ::SetLastError(NO_ERROR);
        const DWORD low = ::SetFilePointer(m_handle, static_cast<LONG>(distance & 0xFFFFFFFF), &high, method);
        if (low == INVALID_SET_FILE_POINTER && ::GetLastError() != NO_ERROR)
            return -1;
        return (static_cast<std::int64_t>(high) << 32) | low;
    }

    bool flush() override { return ::FlushFileBuffers(m_handle) != 0; }

    bool truncate() override { return ::SetEndOfFile(m_handle) != 0; }

    std::intptr_t nativeHandle() const override { return reinterpret_cast<std::intptr_t>(m_handle); }

    std::optional<FileInfo> info() const override {
        FileInfo fi;
        if (!describeHandle(m_handle, fi))
            return std::nullopt;
        return fi;
    }

    // Opened with no write sharing: no other handle can write it at the same time.
    bool openElsewhere() const override { return false; }

    std::unique_ptr<RawFile> openUncached() const override {
        // The same file, reached through this handle and not through any name, read without the
        // system's cache: what the reads return is what the device holds.
        const HANDLE direct =
            reopen(m_handle, FILE_READ_DATA | FILE_READ_ATTRIBUTES, FILE_NON_DIRECTORY_FILE | FILE_NO_INTERMEDIATE_BUFFERING);
        if (direct != INVALID_HANDLE_VALUE)
            return std::make_unique<WindowsRawFile>(direct, sectorAlignment(direct));
        // A handle that shares no reading lets no second one open: the cache is written out, and
        // what it then holds is read through a copy of this handle.
        HANDLE copy = nullptr;
        const HANDLE self = ::GetCurrentProcess();
        if (!::FlushFileBuffers(m_handle) ||
            !::DuplicateHandle(self, m_handle, self, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS))
            return nullptr;
        return std::make_unique<WindowsRawFile>(copy);
    }

    std::size_t readAlignment() const override { return m_alignment; }

private:
    HANDLE m_handle;
    std::size_t m_alignment;
};

} // namespace

std::unique_ptr<RawFile> adoptPlainFile(HANDLE handle, bool forWriting) {
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    BY_HANDLE_FILE_INFORMATION info{};
    DWORD error = ERROR_INVALID_PARAMETER;
    if (::GetFileType(handle) == FILE_TYPE_DISK && ::GetFileInformationByHandle(handle, &info)) {
        if (linkAttributes(info.dwFileAttributes, reparseTagOf(handle)) & FILE_ATTRIBUTE_REPARSE_POINT)
            error = ERROR_CANT_RESOLVE_FILENAME;
        else if (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
            error = ERROR_DIRECTORY;
        else if (forWriting && info.nNumberOfLinks > 1)
            error = ERROR_TOO_MANY_LINKS; // writing would change the file under its other names too
        else
            return std::make_unique<WindowsRawFile>(handle);
    }
    ::CloseHandle(handle);
    ::SetLastError(error);
    return nullptr;
}

namespace {

/// Refuses a path that names a link before anything opens it; the handle check
/// afterwards catches one that appears in between.
bool namesLink(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_REPARSE_POINT) ||
        !isLinkTag(reparseTagAt(path)))
        return false;
    ::SetLastError(ERROR_CANT_RESOLVE_FILENAME);
    return true;
}

/// The long form of the last component of `path`, as the system names the file.
std::wstring ownName(const std::wstring& path) {
    std::wstring full(32768, L'\0');
    DWORD n = ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (n == 0 || n >= full.size())
        return {};
    full.resize(n);
    std::wstring longer(32768, L'\0');
    n = ::GetLongPathNameW(full.c_str(), longer.data(), static_cast<DWORD>(longer.size()));
    if (n > 0 && n < longer.size())
        full.assign(longer.data(), n);
    const auto cut = full.find_last_of(L"\\/");
    return cut == std::wstring::npos ? full : full.substr(cut + 1);
}

/// Opens `path` with CreateFileW as itself and keeps the handle only when it holds that name's
/// own plain file, not what a link put in between points to.
std::unique_ptr<RawFile> openPlain(const std::wstring& path, DWORD access, DWORD share, DWORD disposition,
                                   bool forWriting) {
    if (namesLink(path))
        return nullptr;
    const HANDLE handle = ::CreateFileW(path.c_str(), access, share, nullptr, disposition,
                                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle != INVALID_HANDLE_VALUE && !reachedAs(handle, ownName(path))) {
        ::CloseHandle(handle);
        ::SetLastError(ERROR_CANT_RESOLVE_FILENAME);
        return nullptr;
    }
    return adoptPlainFile(handle, forWriting);
}

} // namespace

std::unique_ptr<RawFile> WindowsRawFiles::open(const std::string& path) {
    return openPlain(systemPath(path), GENERIC_READ | GENERIC_WRITE, 0, OPEN_ALWAYS, true);
}

std::unique_ptr<RawFile> WindowsRawFiles::openForReading(const std::string& path) {
    return openPlain(systemPath(path), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
                     false);
}

int WindowsRawFiles::lastError() const {
    return static_cast<int>(::GetLastError());
}

void WindowsRawFiles::setLastError(int code) {
    ::SetLastError(static_cast<DWORD>(code));
}

std::string WindowsRawFiles::errorText(int code) const {
    wchar_t text[256];
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                          static_cast<DWORD>(code), 0, text, 256, nullptr);
    // The system's texts end in a full stop and CR LF (some in CR CR LF); the message they go into
    // carries on after them on the same line.
    DWORD end = length;
    while (end > 0 && (text[end - 1] == L'\r' || text[end - 1] == L'\n' || text[end - 1] == L' '))
        --end;
    return end < 1 ? std::string() : narrow(text, static_cast<int>(end));
}

} // namespace platform::windows
