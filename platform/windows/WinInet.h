#pragma once
// WinINet, loaded while the program uses it and unloaded when it is done. The library keeps every
// record file of the URL cache it has touched (the cookie folder's index.dat among them) open and
// mapped until it is unloaded, and the cookie step that follows the cache listing must find that
// file free: so the program imports nothing from it and reaches its calls through this.

#include <windows.h>
#include <wininet.h>

#include <memory>

namespace platform::windows {

class WinInet {
public:
    /// The library, loaded; null when it cannot be (the error stays in GetLastError).
    static std::shared_ptr<WinInet> load();
    ~WinInet();
    WinInet(const WinInet&) = delete;
    WinInet& operator=(const WinInet&) = delete;

    decltype(&::FindFirstUrlCacheEntryW) findFirst = nullptr;
    decltype(&::FindNextUrlCacheEntryW) findNext = nullptr;
    decltype(&::FindCloseUrlCache) findClose = nullptr;
    decltype(&::DeleteUrlCacheEntryW) deleteEntry = nullptr;
    decltype(&::InternetGetConnectedState) connectedState = nullptr;

private:
    explicit WinInet(HMODULE module) : m_module(module) {}
    HMODULE m_module;
};

} // namespace platform::windows
