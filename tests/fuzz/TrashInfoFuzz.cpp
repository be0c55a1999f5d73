// The trash's .trashinfo reader over any text. A drive's trash folder can be written by anyone who
// had the drive, so its records may hold anything; reading one must neither fault nor produce a
// path that is not one. What it reads must also survive being written back the way the trash
// records paths (percent-encoded) and read again.

#include "FuzzCheck.h"
#include "platform/linux/LinuxRecycleBin.h"

#include <cstdint>
#include <string>

namespace {

std::string percentEncoded(const std::string& path) {
    static const char* const hex = "0123456789ABCDEF";
    std::string out;
    for (const unsigned char c : path) {
        if (c == '/' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.' ||
            c == '-' || c == '_') {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string top = "/media/usb";
    const std::string onDrive = platform::linux::trashInfoOriginalPath(text, top);
    const std::string inHome = platform::linux::trashInfoOriginalPath(text, "");

    FUZZ_CHECK(onDrive.find('\0') == std::string::npos);
    // Against a drive's top every recorded path is absolute; the home trash's records are taken
    // as they are, and a relative one is the drive-relative form of the same record.
    FUZZ_CHECK(onDrive.empty() || onDrive[0] == '/');
    FUZZ_CHECK(onDrive.empty() == inHome.empty());
    if (!inHome.empty() && inHome[0] != '/')
        FUZZ_CHECK_EQUAL(onDrive, top + "/" + inHome);
    else
        FUZZ_CHECK_EQUAL(onDrive, inHome);

    if (!inHome.empty()) {
        const std::string record = "[Trash Info]\nPath=" + percentEncoded(inHome) + "\nDeletionDate=2024-01-02T03:04:05\n";
        FUZZ_CHECK_EQUAL(platform::linux::trashInfoOriginalPath(record, ""), inHome);
    }
    return 0;
}
