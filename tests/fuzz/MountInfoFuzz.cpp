// The mount table reader over any text. Mount points and sources are names users choose (a
// stick's label becomes its folder under /media, FUSE mounts anywhere), and the kernel writes them
// with only blank, tab, newline and backslash escaped. So parsing must not fault on any text, and
// any mount, written as the kernel writes it, must parse back to itself.

#include "platform/linux/MountTable.h"
#include "tests/fuzz/FuzzCheck.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cctype>
#include <cstdint>
#include <string>

namespace {

/// A path field as the kernel writes it: " \t\n\\" as three-digit octal escapes, all else as is.
std::string kernelEscaped(const std::string& text) {
    std::string out;
    char buf[8];
    for (const unsigned char c : text) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\\') {
            std::snprintf(buf, sizeof buf, "\\%03o", c);
            out += buf;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

std::string describe(const platform::linux::Mount& m) {
    return std::to_string(m.id) + " " + std::to_string(m.parent) + " " + std::to_string(m.major) + ":" +
           std::to_string(m.minor) + " [" + m.mountPoint + "] [" + m.fsType + "] [" + m.source + "]";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Any text parses without fault.
    platform::linux::parseMountInfo(std::string(reinterpret_cast<const char*>(data), size));

    // A mount made from the same bytes, written as the kernel writes it, parses back to itself.
    FuzzedDataProvider input(data, size);
    platform::linux::Mount m;
    m.id = input.ConsumeIntegral<std::uint32_t>();
    m.parent = input.ConsumeIntegral<std::uint32_t>();
    m.major = input.ConsumeIntegralInRange<unsigned>(0, 4095);
    m.minor = input.ConsumeIntegralInRange<unsigned>(0, (1u << 20) - 1);
    m.mountPoint = "/" + input.ConsumeRandomLengthString(64);
    m.fsType = input.ConsumeRandomLengthString(16);
    m.source = input.ConsumeRandomLengthString(64);
    // Paths hold no zero byte, and file system types are the kernel's own plain words.
    std::erase(m.mountPoint, '\0');
    std::erase(m.source, '\0');
    std::erase_if(m.fsType, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)) && c != '.' && c != '_'; });
    if (m.fsType.empty())
        m.fsType = "ext4";
    const std::string line = std::to_string(m.id) + " " + std::to_string(m.parent) + " " + std::to_string(m.major) +
                             ":" + std::to_string(m.minor) + " / " + kernelEscaped(m.mountPoint) +
                             " rw,relatime shared:1 - " + m.fsType + " " + kernelEscaped(m.source) + " rw\n";
    const auto parsed = platform::linux::parseMountInfo(line);
    FUZZ_CHECK(parsed.size() == 1);
    FUZZ_CHECK_EQUAL(describe(parsed[0]), describe(m));
    return 0;
}
