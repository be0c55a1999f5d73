#include "platform/windows/WindowsUrlCache.h"

#include "platform/windows/WinText.h"

#include <windows.h>
#include <wininet.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <vector>

namespace platform::windows {

// The record handed out has the layout of the single-byte record WinINet itself would write.
static_assert(sizeof(UrlCacheEntryInfo) == sizeof(INTERNET_CACHE_ENTRY_INFOA));
static_assert(offsetof(UrlCacheEntryInfo, lpszSourceUrlName) == offsetof(INTERNET_CACHE_ENTRY_INFOA, lpszSourceUrlName));
static_assert(offsetof(UrlCacheEntryInfo, LastSyncTime) == offsetof(INTERNET_CACHE_ENTRY_INFOA, LastSyncTime));
static_assert(offsetof(UrlCacheEntryInfo, lpHeaderInfo) == offsetof(INTERNET_CACHE_ENTRY_INFOA, lpHeaderInfo));
static_assert(offsetof(UrlCacheEntryInfo, dwExemptDelta) == offsetof(INTERNET_CACHE_ENTRY_INFOA, dwExemptDelta));

/// One open WinINet enumeration and the wide entry fetched last, which stays pending until the
/// caller has taken it in a buffer large enough.
struct WindowsUrlCache::Enumeration {
    explicit Enumeration(std::shared_ptr<WinInet> library) : inet(std::move(library)) {}
    ~Enumeration() {
        if (handle)
            inet->findClose(handle);
    }
    std::shared_ptr<WinInet> inet; ///< kept loaded while the enumeration is open
    HANDLE handle = nullptr;
    std::vector<BYTE> entry = std::vector<BYTE>(4096);
    bool pending = false;
};

namespace {

using Entry = INTERNET_CACHE_ENTRY_INFOW;

const Entry& wide(const std::vector<BYTE>& bytes) {
    return *reinterpret_cast<const Entry*>(bytes.data());
}

/// The texts of a wide entry as UTF-8, in record order.
struct Texts {
    std::string url, localFile, header, extension;
    bool hasUrl = false, hasLocalFile = false, hasHeader = false, hasExtension = false;

    explicit Texts(const std::vector<BYTE>& bytes) {
        const Entry& e = wide(bytes);
        hasUrl = e.lpszSourceUrlName != nullptr;
        hasLocalFile = e.lpszLocalFileName != nullptr;
        hasHeader = e.lpHeaderInfo != nullptr;
        hasExtension = e.lpszFileExtension != nullptr;
        url = narrow(e.lpszSourceUrlName);
        localFile = narrow(e.lpszLocalFileName);
        extension = narrow(e.lpszFileExtension);
        if (hasHeader) {
            // The header counts characters and need not end in a NUL; it never reaches past the entry.
            const auto* end = reinterpret_cast<const wchar_t*>(bytes.data() + bytes.size());
            const std::size_t room = static_cast<std::size_t>(end - e.lpHeaderInfo);
            const std::size_t length = ::wcsnlen(e.lpHeaderInfo, std::min<std::size_t>(room, e.dwHeaderInfoSize));
            header = narrow(e.lpHeaderInfo, static_cast<int>(length));
        }
    }

    std::uint32_t recordSize() const {
        std::size_t size = sizeof(UrlCacheEntryInfo);
        for (const auto& [text, present] : {std::pair{&url, hasUrl}, {&localFile, hasLocalFile}, {&header, hasHeader},
                                            {&extension, hasExtension}})
            if (present)
                size += text->size() + 1;
        return static_cast<std::uint32_t>(size);
    }
};

/// Writes the single-byte record of the wide entry `bytes` into `buffer`, which holds recordSize().
void writeRecord(const std::vector<BYTE>& bytes, const Texts& texts, void* buffer) {
    const Entry& e = wide(bytes);
    auto* record = static_cast<UrlCacheEntryInfo*>(buffer);
    *record = UrlCacheEntryInfo{};
    record->dwStructSize = sizeof(UrlCacheEntryInfo);
    record->CacheEntryType = e.CacheEntryType;
    record->dwUseCount = e.dwUseCount;
    record->dwHitRate = e.dwHitRate;
    record->dwSizeLow = e.dwSizeLow;
    record->dwSizeHigh = e.dwSizeHigh;
    const auto time = [](const FILETIME& t) { return FileTime{t.dwLowDateTime, t.dwHighDateTime}; };
    record->LastModifiedTime = time(e.LastModifiedTime);
    record->ExpireTime = time(e.ExpireTime);
    record->LastAccessTime = time(e.LastAccessTime);
    record->LastSyncTime = time(e.LastSyncTime);
    record->dwExemptDelta = e.dwExemptDelta;

    char* at = static_cast<char*>(buffer) + sizeof(UrlCacheEntryInfo);
    const auto place = [&at](const std::string& text, bool present) -> char* {
        if (!present)
            return nullptr;
        char* start = at;
        std::memcpy(at, text.c_str(), text.size() + 1);
        at += text.size() + 1;
        return start;
    };
    record->lpszSourceUrlName = place(texts.url, texts.hasUrl);
    record->lpszLocalFileName = place(texts.localFile, texts.hasLocalFile);
    record->lpHeaderInfo = place(texts.header, texts.hasHeader);
    record->dwHeaderInfoSize = static_cast<std::uint32_t>(texts.header.size());
    record->lpszFileExtension = place(texts.extension, texts.hasExtension);
}

/// Fetches the next wide entry of `state` (the first when no enumeration is open yet).
bool fetch(WindowsUrlCache::Enumeration& state) {
    for (;;) {
        auto size = static_cast<DWORD>(state.entry.size());
        auto* buffer = reinterpret_cast<Entry*>(state.entry.data());
        bool ok;
        if (!state.handle) {
            state.handle = state.inet->findFirst(nullptr, buffer, &size);
            ok = state.handle != nullptr;
        } else {
            ok = state.inet->findNext(state.handle, buffer, &size) != FALSE;
        }
        if (ok) {
            state.entry.resize(size);
            state.pending = true;
            return true;
        }
        if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER || size <= state.entry.size())
            return false;
        state.entry.resize(size);
    }
}

/// Hands the pending entry to the caller when `buffer` holds it; otherwise says what it needs.
bool deliver(WindowsUrlCache::Enumeration& state, void* buffer, std::uint32_t& size) {
    const Texts texts(state.entry);
    const std::uint32_t needed = texts.recordSize();
    if (!buffer || size < needed) {
        size = needed;
        ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return false;
    }
    writeRecord(state.entry, texts, buffer);
    size = needed;
    state.pending = false;
    return true;
}

} // namespace

WindowsUrlCache::WindowsUrlCache() = default;

WindowsUrlCache::~WindowsUrlCache() {
    release();
}

WinInet* WindowsUrlCache::inet() {
    if (!m_inet)
        m_inet = WinInet::load();
    return m_inet.get();
}

void WindowsUrlCache::release() {
    for (Enumeration* state : m_open)
        delete state;
    m_open.clear();
    m_inet.reset();
}

UrlCacheEnum WindowsUrlCache::findFirst(void* buffer, std::uint32_t& size) {
    if (!inet()) {
        size = 0;
        return 0;
    }
    auto state = std::make_unique<Enumeration>(m_inet);
    if (!fetch(*state)) {
        const DWORD error = ::GetLastError();
        state.reset();
        size = 0;
        ::SetLastError(error);
        return 0;
    }
    if (!deliver(*state, buffer, size)) {
        // Only a size was asked for: the caller starts again with a buffer.
        state.reset();
        ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    m_open.insert(state.get());
    return reinterpret_cast<UrlCacheEnum>(state.release());
}

bool WindowsUrlCache::findNext(UrlCacheEnum enumeration, void* buffer, std::uint32_t& size) {
    auto* state = reinterpret_cast<Enumeration*>(enumeration);
    if (!m_open.count(state)) {
        size = 0;
        ::SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    if (!state->pending && !fetch(*state)) {
        size = 0;
        return false;
    }
    return deliver(*state, buffer, size);
}

void WindowsUrlCache::findClose(UrlCacheEnum enumeration) {
    auto* state = reinterpret_cast<Enumeration*>(enumeration);
    if (!m_open.erase(state))
        return;
    delete state;
}

bool WindowsUrlCache::deleteEntry(const std::string& url, Remover& /*remover: the cache deletes its own files*/) {
    return inet() && m_inet->deleteEntry(widen(url).c_str()) != FALSE;
}

} // namespace platform::windows
