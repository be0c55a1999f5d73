#pragma once
// Facilities whose Linux backends are not built yet: they report nothing and change nothing.

#include "platform/UrlCache.h"
#include "platform/UrlHistory.h"

namespace platform::linux {

class EmptyUrlCache final : public UrlCache {
public:
    UrlCacheEnum findFirst(void*, std::uint32_t& size) override {
        size = 0;
        return 0;
    }
    bool findNext(UrlCacheEnum, void*, std::uint32_t& size) override {
        size = 0;
        return false;
    }
    void findClose(UrlCacheEnum) override {}
    bool deleteEntry(const std::string&) override { return false; }
};

class EmptyUrlHistory final : public UrlHistory {
public:
    bool addUrl(const std::string&, const std::string&, std::uint32_t) override { return false; }
    bool deleteUrl(const std::string&, std::uint32_t) override { return false; }
    std::unique_ptr<UrlHistoryEnum> enumUrls() override { return nullptr; }
    bool clearHistory() override { return false; }
};

} // namespace platform::linux
