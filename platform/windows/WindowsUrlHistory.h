#pragma once
// The browser's URL history on Windows: the system's history store (CUrlHistory) through its
// IUrlHistoryStg2 interface and the IEnumSTATURL enumerator, made for each call on the thread that
// calls. Where the
// system's store lacks an operation (Wine answers E_NOTIMPL), the call fails like any failed
// platform call; nothing is stood in for it.

#include "platform/UrlHistory.h"

namespace platform::windows {

class WindowsUrlHistory final : public UrlHistory {
public:
    WindowsUrlHistory() = default;

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override;
    bool deleteUrl(const std::string& url, std::uint32_t flags) override;
    std::unique_ptr<UrlHistoryEnum> enumUrls() override;
    bool clearHistory() override;
};

} // namespace platform::windows
