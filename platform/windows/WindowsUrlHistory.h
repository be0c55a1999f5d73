#pragma once
// The browser's URL history on Windows: the system's history store (CUrlHistory) through its
// IUrlHistoryStg2 interface and the IEnumSTATURL enumerator. Each call starts COM on its own thread
// when it is not started there, makes the store for itself and lets it go before returning, so that
// no call depends on the thread another one ran on; an enumeration keeps its store and its thread's
// COM until it is destroyed, and is used on the thread that made it. Where the system's store lacks
// an operation (Wine answers E_NOTIMPL), the call fails and the store is named by storeProblems()
// with the system's reason; nothing is stood in for it.

#include "platform/UrlHistory.h"

struct IUrlHistoryStg2;

namespace platform::windows {

class WindowsUrlHistory final : public UrlHistory {
public:
    WindowsUrlHistory() = default;
    ~WindowsUrlHistory() override = default;
    WindowsUrlHistory(const WindowsUrlHistory&) = delete;
    WindowsUrlHistory& operator=(const WindowsUrlHistory&) = delete;

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override;
    bool deleteUrl(const std::string& url, std::uint32_t flags, Remover& remover) override;
    std::unique_ptr<UrlHistoryEnum> enumUrls() override;
    bool clearHistory(Remover& remover) override;
    std::vector<StoreProblem> storeProblems() const override { return m_problems; }

private:
    /// Makes the store, with a reference of its own for the caller; null, with the store named,
    /// when the system has none. COM must be started on the calling thread.
    IUrlHistoryStg2* createStore();
    /// Whether `result` tells success; otherwise names the store with the reason.
    bool succeeded(long result);

    std::vector<StoreProblem> m_problems;
};

} // namespace platform::windows
