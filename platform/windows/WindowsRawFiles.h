#pragma once
// Raw file handles on Windows: CreateFileW with share mode 0 and OPEN_ALWAYS for the exclusive
// read-write handle, ReadFile / WriteFile at the file position, SetFilePointer, FlushFileBuffers,
// and FormatMessageW for the system's error texts. The read-back after an overwrite reopens the
// handle itself without intermediate buffering, in whole sectors of its volume. A reparse point (symbolic link, junction) is
// opened as itself and then refused, so no handle ever reaches what a link points to.

#include "platform/RawFiles.h"

#include <windows.h>

namespace platform::windows {

class WindowsRawFiles final : public RawFiles {
public:
    std::unique_ptr<RawFile> open(const std::string& path) override;
    std::unique_ptr<RawFile> openForReading(const std::string& path) override;
    int lastError() const override;
    void setLastError(int code) override;
    std::string errorText(int code) const override;
};

/// Takes `handle` as a raw file when it holds a plain file on disk: a link, folder, pipe or device
/// is closed and refused (null, Win32 error set), and so is a file with other hard links when
/// `forWriting`. INVALID_HANDLE_VALUE gives null and leaves the error as it is.
std::unique_ptr<RawFile> adoptPlainFile(HANDLE handle, bool forWriting = true);

} // namespace platform::windows
