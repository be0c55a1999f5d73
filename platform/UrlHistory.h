#pragma once
// The browser's URL history store, with the operations of the history service the program was
// designed on (IUrlHistoryStg2 and its enumerator IEnumSTATURL): add, delete by address, clear, and
// an enumeration with an address-prefix filter that gives one STATURL record at a time. On Linux the
// store is the history databases of every browser profile found; a profile whose browser is running
// is left alone.

#include "platform/UrlCache.h" // FileTime

#include "platform/Remover.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace platform {

/// One history entry: the STATURL record. Texts are UTF-8 here; an absent title is empty.
struct StatUrl {
    std::uint32_t cbSize = 0;
    std::string pwcsUrl;
    std::string pwcsTitle;
    FileTime ftLastVisited; ///< UTC
    FileTime ftLastUpdated; ///< UTC
    FileTime ftExpires;     ///< UTC
    std::uint32_t dwFlags = 0;
};

/// SetFilter flags of IEnumSTATURL that the enumeration honours.
namespace StatUrlQuery {
constexpr std::uint32_t NoUrl = 0x20000;    ///< STATURL_QUERYFLAG_NOURL: leave the address out
constexpr std::uint32_t NoTitle = 0x40000;  ///< STATURL_QUERYFLAG_NOTITLE: leave the title out
constexpr std::uint32_t TopLevel = 0x80000; ///< STATURL_QUERYFLAG_TOPLEVEL: only pages shown as such
} // namespace StatUrlQuery

/// IEnumSTATURL.
class UrlHistoryEnum {
public:
    virtual ~UrlHistoryEnum() = default;

    /// SetFilter: only entries whose address starts with `urlStartsWith` (all when it is empty).
    virtual bool setFilter(const std::string& urlStartsWith, std::uint32_t flags) = 0;
    /// Next with a count of 1: fills `record` and returns the number fetched, 1, or 0 at the end
    /// and on failure.
    virtual std::uint32_t next(StatUrl& record) = 0;
};

class UrlHistory {
public:
    virtual ~UrlHistory() = default;

    /// AddUrl. False when the store cannot take the entry (safely).
    virtual bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) = 0;
    /// DeleteUrl: removes every record of the address `url`; files that go whole (a profile's
    /// session files) go through `remover`. False when that fails.
    virtual bool deleteUrl(const std::string& url, std::uint32_t flags, Remover& remover) = 0;
    /// EnumUrls: a new enumerator over the whole store, or null on failure.
    virtual std::unique_ptr<UrlHistoryEnum> enumUrls() = 0;
    /// ClearHistory: removes every visited address from the store, files that go whole through
    /// `remover`. False when some part failed.
    virtual bool clearHistory(Remover& remover) = 0;
    /// The stores (browser profile folders) the last call left alone because their browser holds
    /// them; always empty where the history has no such notion.
    virtual std::vector<std::string> storesInUse() const { return {}; }
    /// The stores (or their files) the last call could not reach, read or clean whole, with the
    /// reasons; an enumeration adds to them as it reaches each store.
    virtual std::vector<StoreProblem> storeProblems() const { return {}; }
};

} // namespace platform
