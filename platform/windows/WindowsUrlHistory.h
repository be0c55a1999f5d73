#pragma once
// The browser's URL history on Windows: the system's history store (CUrlHistory) through its
// IUrlHistoryStg2 interface and the IEnumSTATURL enumerator, created on first use. Where the
// system's store lacks an operation (Wine answers E_NOTIMPL), the call fails like any failed
// platform call; nothing is stood in for it.

#include "platform/UrlHistory.h"

struct IUrlHistoryStg2;

namespace platform::windows {

class WindowsUrlHistory final : public UrlHistory {
public:
    WindowsUrlHistory() = default;
    ~WindowsUrlHistory() override;
    WindowsUrlHistory(const WindowsUrlHistory&) = delete;
    WindowsUrlHistory& operator=(const WindowsUrlHistory&) = delete;

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override;
    bool deleteUrl(const std::string& url, std::uint32_t flags) override;
    std::unique_ptr<UrlHistoryEnum> enumUrls() override;
    bool clearHistory() override;

private:
    /// The store, created on first use; null when the system has none.
    IUrlHistoryStg2* store();

    IUrlHistoryStg2* m_store = nullptr;
    bool m_tried = false;
    bool m_comStarted = false;
};

} // namespace platform::windows
