#pragma once
// The browser's URL cache: its entries can be listed by source address and deleted one by one.

#include <string>
#include <vector>

namespace platform {

class UrlCache {
public:
    virtual ~UrlCache() = default;

    /// The source addresses of the cache's entries, in enumeration order.
    virtual std::vector<std::string> entries() = 0;
    /// Deletes the entry for `url` (DeleteUrlCacheEntryA); false when there is none or it fails.
    virtual bool deleteEntry(const std::string& url) = 0;
};

} // namespace platform
