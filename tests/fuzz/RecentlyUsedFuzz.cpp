// The recently-used.xbel reader over any text. Every program of the desktop writes that file, so
// it may be cut short, hand-edited or written by a careless program; reading it must neither fault
// nor leak. GLib does the parsing and is not built for coverage, so recently_used.dict names the
// file's words for the fuzzer.

#include "platform/linux/RecentlyUsed.h"

#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    platform::linux::recentlyUsedUrisIn(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
