#pragma once
// The browser's URL history on Windows: the system's history store (CUrlHistory) through its
// IUrlHistoryStg2 interface and the IEnumSTATURL enumerator, created on first use. Where the
// system's store lacks an operation (Wine answers E_NOTIMPL), the call fails and the store is
// named by storeProblems() with the system's reason; nothing is stood in for it.

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
    bool deleteUrl(const std::string& url, std::uint32_t flags, Remover& remover) override;
    std::unique_ptr<UrlHistoryEnum> enumUrls() override;
    bool clearHistory(Remover& remover) override;
    std::vector<StoreProblem> storeProblems() const override { return m_problems; }

private:
    /// The store, created on first use; null when the system has none.
    IUrlHistoryStg2* store();
    /// Whether `result` tells success; otherwise names the store with the reason.
    bool succeeded(long result);

    IUrlHistoryStg2* m_store = nullptr;
    bool m_tried = false;
    bool m_comStarted = false;
    long m_created = 0; ///< what creating the store answered
    std::vector<StoreProblem> m_problems;
};

} // namespace platform::windows
