#pragma once
// Facilities whose Linux backends are not built yet: they report nothing and change nothing.

#include "platform/UrlCache.h"
#include "platform/UrlHistory.h"

namespace platform::linux {

class EmptyUrlCache final : public UrlCache {
public:
    std::vector<std::string> entries() override { return {}; }
    bool deleteEntry(const std::string&) override { return false; }
};

class EmptyUrlHistory final : public UrlHistory {
public:
    bool entries(std::vector<UrlHistoryEntry>& out) override {
        out.clear();
        return false;
    }
    bool add(const std::string&, const std::string&) override { return false; }
    bool remove(const std::string&) override { return false; }
    bool clear() override { return false; }
};

} // namespace platform::linux
