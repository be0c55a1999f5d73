// The reader of Firefox's cache2 entry files over any bytes. A cache folder holds whatever a
// crashed browser, a full disk or another program left there (an entry cut to a few bytes, an
// offset pointing anywhere), so no file may make the reader fault, and reading only the end of a
// file must give the address that the whole file gives.

#include "browsers/CacheKeys.h"
#include "tests/fuzz/CacheEntryFile.h"
#include "tests/fuzz/FuzzCheck.h"

#include <optional>

namespace {

/// The address read from the whole file at once.
std::optional<std::string> wholeFileAddress(std::string_view file) {
    using namespace browsers;
    if (file.size() < 4)
        return std::nullopt;
    const auto offset = cache2MetadataOffset(file.substr(file.size() - 4), file.size());
    if (!offset)
        return std::nullopt;
    const auto key = cache2Key(file.substr(*offset), *offset);
    if (!key)
        return std::nullopt;
    const auto address = cache2Address(*key);
    return address ? std::optional<std::string>(*address) : std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    const auto address = browsers::cache2EntryAddress(fuzzcache::readerOf(file), size);
    const auto expected = wholeFileAddress(file);
    FUZZ_CHECK(address.has_value() == expected.has_value());
    if (expected)
        FUZZ_CHECK_EQUAL(*address, *expected);
    return 0;
}
