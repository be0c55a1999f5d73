#include "platform/windows/WinInet.h"

namespace platform::windows {
namespace {

template <typename Function>
bool find(HMODULE module, const char* name, Function& out) {
    out = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
    return out != nullptr;
}

} // namespace

std::shared_ptr<WinInet> WinInet::load() {
    const HMODULE module = ::LoadLibraryW(L"wininet.dll");
    if (!module)
        return nullptr;
    std::shared_ptr<WinInet> inet(new WinInet(module));
    if (!find(module, "FindFirstUrlCacheEntryW", inet->findFirst) ||
        !find(module, "FindNextUrlCacheEntryW", inet->findNext) || !find(module, "FindCloseUrlCache", inet->findClose) ||
        !find(module, "DeleteUrlCacheEntryW", inet->deleteEntry) ||
        !find(module, "InternetGetConnectedState", inet->connectedState)) {
        ::SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return inet;
}

WinInet::~WinInet() {
    ::FreeLibrary(m_module);
}

} // namespace platform::windows
