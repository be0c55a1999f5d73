#include "platform/windows/WindowsUrlHistory.h"

#include "platform/windows/WinText.h"

#include <windows.h>
#include <objbase.h>
#include <urlhist.h>

#include <memory>

namespace platform::windows {
namespace {

// CLSID_CUrlHistory, the system's history store.
constexpr CLSID UrlHistoryClass = {0x3C374A40, 0xBAE4, 0x11CF, {0xBF, 0x7D, 0x00, 0xAA, 0x00, 0x69, 0x46, 0xEE}};

FileTime fileTime(const FILETIME& t) {
    return FileTime{t.dwLowDateTime, t.dwHighDateTime};
}

/// COM on the calling thread for as long as this lives. The store is an apartment-threaded object:
/// each call makes its own on the thread that calls, so no thread is left in an apartment that
/// another one entered, and COM is left on the thread that started it.
class ComScope {
public:
    // S_FALSE: this thread had COM already, and is left with it; a thread in the other apartment
    // model (RPC_E_CHANGED_MODE) can still use the store.
    ComScope() : m_started(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComScope() {
        if (m_started)
            ::CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    bool m_started;
};

/// The system's history store, made on the calling thread; null when the system has none.
IUrlHistoryStg2* createStore() {
    void* created = nullptr;
    if (FAILED(::CoCreateInstance(UrlHistoryClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUrlHistoryStg2, &created)))
        return nullptr;
    return static_cast<IUrlHistoryStg2*>(created);
}

/// A store and COM for one call.
class Store {
public:
    Store() : m_store(createStore()) {}
    ~Store() {
        if (m_store)
            m_store->Release();
    }
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    IUrlHistoryStg2* get() const { return m_store; }

private:
    ComScope m_com; // first made, last gone
    IUrlHistoryStg2* m_store;
};

class WindowsUrlHistoryEnum final : public UrlHistoryEnum {
public:
    WindowsUrlHistoryEnum(std::unique_ptr<Store> store, IEnumSTATURL* enumerator)
        : m_store(std::move(store)), m_enum(enumerator) {}
    ~WindowsUrlHistoryEnum() override { m_enum->Release(); }
    WindowsUrlHistoryEnum(const WindowsUrlHistoryEnum&) = delete;
    WindowsUrlHistoryEnum& operator=(const WindowsUrlHistoryEnum&) = delete;
    bool setFilter(const std::string& urlStartsWith, std::uint32_t flags) override {
        const std::wstring prefix = widen(urlStartsWith);
        return SUCCEEDED(m_enum->SetFilter(prefix.empty() ? nullptr : prefix.c_str(), flags));
    }

    std::uint32_t next(StatUrl& record) override {
        STATURL found{};
        found.cbSize = sizeof found;
        ULONG fetched = 0;
        if (m_enum->Next(1, &found, &fetched) != S_OK || fetched == 0)
            return 0;
        record.cbSize = found.cbSize;
        record.pwcsUrl = narrow(found.pwcsUrl);
        record.pwcsTitle = narrow(found.pwcsTitle);
        record.ftLastVisited = fileTime(found.ftLastVisited);
        record.ftLastUpdated = fileTime(found.ftLastUpdated);
        record.ftExpires = fileTime(found.ftExpires);
        record.dwFlags = found.dwFlags;
        // The texts are the store's allocations, and ours to give back.
        ::CoTaskMemFree(found.pwcsTitle);
        ::CoTaskMemFree(found.pwcsUrl);
        return 1;
    }

private:
    std::unique_ptr<Store> m_store; // outlives the enumerator: declared first
    IEnumSTATURL* m_enum;
};

} // namespace

bool WindowsUrlHistory::addUrl(const std::string& url, const std::string& title, std::uint32_t flags) {
    const Store s;
    return s.get() && SUCCEEDED(s.get()->AddUrl(widen(url).c_str(), widen(title).c_str(), flags));
}

bool WindowsUrlHistory::deleteUrl(const std::string& url, std::uint32_t flags) {
    const Store s;
    return s.get() && SUCCEEDED(s.get()->DeleteUrl(widen(url).c_str(), flags));
}

std::unique_ptr<UrlHistoryEnum> WindowsUrlHistory::enumUrls() {
    auto s = std::make_unique<Store>();
    IEnumSTATURL* enumerator = nullptr;
    if (!s->get() || FAILED(s->get()->EnumUrls(&enumerator)) || !enumerator)
        return nullptr;
    return std::make_unique<WindowsUrlHistoryEnum>(std::move(s), enumerator);
}

bool WindowsUrlHistory::clearHistory() {
    const Store s;
    return s.get() && SUCCEEDED(s.get()->ClearHistory());
}

} // namespace platform::windows
