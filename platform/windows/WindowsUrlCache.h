#pragma once
// The browser's URL cache on Windows: WinINet's cache enumeration and DeleteUrlCacheEntryW. The
// wide-character entry WinINet gives is handed to the caller as the single-byte record the
// enumeration's contract describes (UrlCacheEntryInfo), its texts in UTF-8 after the record in the
// caller's buffer, and the size asked for is the size of that record.

#include "platform/UrlCache.h"

#include <memory>
#include "platform/windows/WinInet.h"

#include <memory>
#include <set>

namespace platform::windows {

class WindowsUrlCache final : public UrlCache {
public:
    WindowsUrlCache();
    ~WindowsUrlCache() override;

    UrlCacheEnum findFirst(void* buffer, std::uint32_t& size) override;
    bool findNext(UrlCacheEnum enumeration, void* buffer, std::uint32_t& size) override;
    void findClose(UrlCacheEnum enumeration) override;
    bool deleteEntry(const std::string& url, Remover& remover) override;
    void release() override;

    struct Enumeration;

private:
    /// WinINet, loaded on first use and until release().
    WinInet* inet();

    std::shared_ptr<WinInet> m_inet;
    std::set<Enumeration*> m_open;
};

} // namespace platform::windows
