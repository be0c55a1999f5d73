#include "platform/windows/WindowsRawFiles.h"

#include "platform/windows/WinText.h"

#include <windows.h>

#include <algorithm>

namespace platform::windows {
namespace {

class WindowsRawFile final : public RawFile {
public:
    explicit WindowsRawFile(HANDLE handle) : m_handle(handle) {}
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

private:
    HANDLE m_handle;
};

/// Keeps `handle` only when it is a plain file on disk, not a link, folder, pipe or device.
std::unique_ptr<RawFile> plainFileOrNothing(HANDLE handle) {
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    BY_HANDLE_FILE_INFORMATION info{};
    DWORD error = ERROR_INVALID_PARAMETER;
    if (::GetFileType(handle) == FILE_TYPE_DISK && ::GetFileInformationByHandle(handle, &info)) {
        if (info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
            error = ERROR_CANT_RESOLVE_FILENAME;
        else if (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
            error = ERROR_DIRECTORY;
        else
            return std::make_unique<WindowsRawFile>(handle);
    }
    ::CloseHandle(handle);
    ::SetLastError(error);
    return nullptr;
}

/// Refuses a path that names a reparse point before anything opens it; the handle check
/// afterwards catches one that appears in between.
bool namesLink(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_REPARSE_POINT))
        return false;
    ::SetLastError(ERROR_CANT_RESOLVE_FILENAME);
    return true;
}

} // namespace

std::unique_ptr<RawFile> WindowsRawFiles::open(const std::string& path) {
    const std::wstring name = widen(path);
    if (namesLink(name))
        return nullptr;
    return plainFileOrNothing(::CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                            FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

std::unique_ptr<RawFile> WindowsRawFiles::openForReading(const std::string& path) {
    const std::wstring name = widen(path);
    if (namesLink(name))
        return nullptr;
    return plainFileOrNothing(::CreateFileW(name.c_str(), GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                            OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
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
    return length < 1 ? std::string() : narrow(text, static_cast<int>(length));
}

} // namespace platform::windows
