#include "platform/windows/WindowsUrlHistory.h"

#include "platform/windows/WinCom.h"
#include "platform/windows/WinText.h"

#include <cstdio>
#include <windows.h>
#include <objbase.h>
#include <urlhist.h>

namespace platform::windows {
namespace {

// CLSID_CUrlHistory, the system's history store.
constexpr CLSID UrlHistoryClass = {0x3C374A40, 0xBAE4, 0x11CF, {0xBF, 0x7D, 0x00, 0xAA, 0x00, 0x69, 0x46, 0xEE}};

// How the store is named when it cannot be reached: it has no file of its own to name.
const char* const kStoreName = "the URL history store";

/// "not implemented (0x80004001)": the system's words for `result`, with its number.
std::string describe(HRESULT result) {
    wchar_t* text = nullptr;
    std::string words;
    if (::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                         static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr) && text) {
        words = narrow(text);
        ::LocalFree(text);
        while (!words.empty() && (words.back() == '\n' || words.back() == '\r' || words.back() == ' ' || words.back() == '.'))
            words.pop_back();
    }
    if (words.empty())
        words = result == E_NOTIMPL ? "not implemented" : "failed";
    char number[16];
    std::snprintf(number, sizeof number, "0x%08lX", static_cast<unsigned long>(result));
    return words + " (" + number + ")";
}

FileTime fileTime(const FILETIME& t) {
    return FileTime{t.dwLowDateTime, t.dwHighDateTime};
}

/// One reference to a COM object, given back when it goes.
template <typename T>
class Held {
public:
    explicit Held(T* object = nullptr) : m_object(object) {}
    ~Held() {
        if (m_object)
            m_object->Release();
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    T* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    T* m_object;
};

class WindowsUrlHistoryEnum final : public UrlHistoryEnum {
public:
    /// Takes `com` (started by the call that made the enumerator), the store and the enumerator.
    WindowsUrlHistoryEnum(std::unique_ptr<ComScope> com, IUrlHistoryStg2* store, IEnumSTATURL* enumerator)
        : m_com(std::move(com)), m_store(store), m_enum(enumerator) {}
    ~WindowsUrlHistoryEnum() override {
        // The enumerator before the store, and both before the thread's COM ends.
        m_enum->Release();
        m_store->Release();
    }
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
    std::unique_ptr<ComScope> m_com;
    IUrlHistoryStg2* m_store;
    IEnumSTATURL* m_enum;
};

} // namespace

IUrlHistoryStg2* WindowsUrlHistory::createStore() {
    void* created = nullptr;
    const HRESULT result = ::CoCreateInstance(UrlHistoryClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUrlHistoryStg2, &created);
    return succeeded(result) ? static_cast<IUrlHistoryStg2*>(created) : nullptr;
}

bool WindowsUrlHistory::succeeded(HRESULT result) {
    if (SUCCEEDED(result))
        return true;
    // Named once: the listing that follows a change meets the same refusal.
    if (m_problems.empty())
        m_problems.push_back({kStoreName, "cannot be reached: " + describe(result)});
    return false;
}

bool WindowsUrlHistory::addUrl(const std::string& url, const std::string& title, std::uint32_t flags) {
    m_problems.clear();
    const ComScope com;
    const Held<IUrlHistoryStg2> store(createStore());
    return store && succeeded(store->AddUrl(widen(url).c_str(), widen(title).c_str(), flags));
}

bool WindowsUrlHistory::deleteUrl(const std::string& url, std::uint32_t flags, Remover& /*remover: the store keeps no files of its own*/) {
    m_problems.clear();
    const ComScope com;
    const Held<IUrlHistoryStg2> store(createStore());
    return store && succeeded(store->DeleteUrl(widen(url).c_str(), flags));
}

std::unique_ptr<UrlHistoryEnum> WindowsUrlHistory::enumUrls() {
    auto com = std::make_unique<ComScope>();
    IUrlHistoryStg2* store = createStore();
    IEnumSTATURL* enumerator = nullptr;
    if (!store || !succeeded(store->EnumUrls(&enumerator)) || !enumerator) {
        if (store)
            store->Release();
        return nullptr;
    }
    return std::make_unique<WindowsUrlHistoryEnum>(std::move(com), store, enumerator);
}

bool WindowsUrlHistory::clearHistory(Remover& /*remover*/) {
    m_problems.clear();
    const ComScope com;
    const Held<IUrlHistoryStg2> store(createStore());
    return store && succeeded(store->ClearHistory());
}

} // namespace platform::windows
