#include "platform/windows/WindowsUrlHistory.h"

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

class WindowsUrlHistoryEnum final : public UrlHistoryEnum {
public:
    explicit WindowsUrlHistoryEnum(IEnumSTATURL* enumerator) : m_enum(enumerator) {}
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
    IEnumSTATURL* m_enum;
};

} // namespace

WindowsUrlHistory::~WindowsUrlHistory() {
    if (m_store)
        m_store->Release();
    if (m_comStarted)
        ::CoUninitialize();
}

IUrlHistoryStg2* WindowsUrlHistory::store() {
    if (m_tried) {
        if (!m_store)
            succeeded(m_created);
        return m_store;
    }
    m_tried = true;
    // S_FALSE: this thread had COM already; a thread in the other apartment model can still use it.
    const HRESULT started = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    m_comStarted = SUCCEEDED(started);
    void* created = nullptr;
    m_created = ::CoCreateInstance(UrlHistoryClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUrlHistoryStg2, &created);
    if (succeeded(m_created))
        m_store = static_cast<IUrlHistoryStg2*>(created);
    return m_store;
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
    IUrlHistoryStg2* s = store();
    return s && succeeded(s->AddUrl(widen(url).c_str(), widen(title).c_str(), flags));
}

bool WindowsUrlHistory::deleteUrl(const std::string& url, std::uint32_t flags, Remover& /*remover: the store keeps no files of its own*/) {
    m_problems.clear();
    IUrlHistoryStg2* s = store();
    return s && succeeded(s->DeleteUrl(widen(url).c_str(), flags));
}

std::unique_ptr<UrlHistoryEnum> WindowsUrlHistory::enumUrls() {
    IUrlHistoryStg2* s = store();
    IEnumSTATURL* enumerator = nullptr;
    if (!s || !succeeded(s->EnumUrls(&enumerator)) || !enumerator)
        return nullptr;
    return std::make_unique<WindowsUrlHistoryEnum>(enumerator);
}

bool WindowsUrlHistory::clearHistory(Remover& /*remover*/) {
    m_problems.clear();
    IUrlHistoryStg2* s = store();
    return s && succeeded(s->ClearHistory());
}

} // namespace platform::windows
