#pragma once
// The browser's URL history store.

#include <string>
#include <vector>

namespace platform {

struct UrlHistoryEntry {
    std::string url;
    std::string title;
    double lastVisited = 0; ///< days since 1899-12-30, as a date variant
};

class UrlHistory {
public:
    virtual ~UrlHistory() = default;

    virtual bool entries(std::vector<UrlHistoryEntry>& out) = 0;
    virtual bool add(const std::string& url, const std::string& title) = 0;
    virtual bool remove(const std::string& url) = 0;
    virtual bool clear() = 0;
};

} // namespace platform
