#include "tests/support/CachedAddresses.h"

#include <cstring>

namespace testsupport {

std::vector<std::string> cachedAddresses(platform::UrlCache& cache) {
    std::vector<std::string> urls;
    std::vector<char> buffer;
    auto take = [&] {
        platform::UrlCacheEntryInfo info;
        std::memcpy(&info, buffer.data(), sizeof info);
        urls.emplace_back(info.lpszSourceUrlName);
    };
    std::uint32_t size = 0;
    cache.findFirst(nullptr, size);
    if (size == 0)
        return urls;
    buffer.assign(size, 0);
    const platform::UrlCacheEnum handle = cache.findFirst(buffer.data(), size);
    if (!handle)
        return urls;
    take();
    for (;;) {
        size = 0;
        cache.findNext(handle, nullptr, size);
        if (size == 0)
            break;
        buffer.assign(size, 0);
        if (!cache.findNext(handle, buffer.data(), size))
            break;
        take();
    }
    cache.findClose(handle);
    return urls;
}

} // namespace testsupport
