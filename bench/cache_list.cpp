// Lists the browser cache through the platform alone, the way the cache listing calls it (size
// first, then a buffer of that size for each entry) but with a plain buffer: the benchmark sets
// its time beside the whole command to tell the backend's share from the rest.

#include "platform/Platform.h"

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

void printEntry(const std::vector<char>& buffer) {
    platform::UrlCacheEntryInfo info;
    std::memcpy(&info, buffer.data(), sizeof info);
    std::puts(info.lpszSourceUrlName);
}

} // namespace

int main() {
    const auto platform = platform::createNative();
    platform::UrlCache& cache = platform->urlCache();
    std::uint32_t size = 0;
    cache.findFirst(nullptr, size);
    if (size == 0)
        return 0;
    std::vector<char> buffer(size, 0);
    const platform::UrlCacheEnum handle = cache.findFirst(buffer.data(), size);
    if (!handle)
        return 0;
    printEntry(buffer);
    for (;;) {
        size = 0;
        cache.findNext(handle, nullptr, size);
        if (size == 0)
            break;
        buffer.assign(size, 0);
        if (!cache.findNext(handle, buffer.data(), size))
            break;
        printEntry(buffer);
    }
    cache.findClose(handle);
    return 0;
}
