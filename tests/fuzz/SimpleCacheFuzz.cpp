// The reader of Chromium's simple-cache entry files over any bytes. A cache folder holds whatever
// a crashed browser, a full disk or another program left there, so no file may make the reader
// fault, and reading only the head of a file must give the address that the whole file gives.

#include "browsers/CacheKeys.h"
#include "tests/fuzz/CacheEntryFile.h"
#include "tests/fuzz/FuzzCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    const auto address = browsers::simpleCacheEntryAddress(fuzzcache::readerOf(file), size);

    const auto key = browsers::simpleCacheKey(file);
    FUZZ_CHECK(address.has_value() == key.has_value());
    if (key)
        FUZZ_CHECK_EQUAL(*address, std::string(browsers::simpleCacheAddress(*key)));
    return 0;
}
