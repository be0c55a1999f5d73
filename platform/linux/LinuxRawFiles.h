#pragma once
// Raw file handles on Linux: open(2) read-write with O_CREAT, O_NOFOLLOW and O_CLOEXEC, and an
// exclusive non-blocking flock standing for the no-sharing open of Windows; that open also refuses
// a file held by another opener, which openElsewhere() checks for here in /proc.

#include "platform/RawFiles.h"

namespace platform::linux {

class LinuxRawFiles final : public RawFiles {
public:
    std::unique_ptr<RawFile> open(const std::string& path) override;
    std::unique_ptr<RawFile> openForReading(const std::string& path) override;
    int lastError() const override;
    void setLastError(int code) override;
    std::string errorText(int code) const override;
};

/// Opens `name` in folder `at` as LinuxRawFiles::open does (plain files with one name only,
/// exclusively, never through a link), creating it when missing only if `create`; with `exclusive`
/// too, only a file this call creates (EEXIST when the name is taken).
std::unique_ptr<RawFile> openRawAt(int at, const std::string& name, bool create, bool exclusive = false);

/// Takes the descriptor `fd` (opened read-write) as a raw file under the same rules: null, with
/// the descriptor closed and errno set, when it is no plain file of one name or another holds it.
/// With `restoreMode`, the file is given those permissions again when it is closed.
std::unique_ptr<RawFile> adoptRaw(int fd, int restoreMode = -1);

} // namespace platform::linux
