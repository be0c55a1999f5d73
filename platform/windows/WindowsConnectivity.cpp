#include "platform/windows/WindowsConnectivity.h"

#include "platform/windows/WinInet.h"

namespace platform::windows {

bool WindowsConnectivity::connected() {
    DWORD flags = 0;
    const auto inet = WinInet::load();
    return inet && inet->connectedState(&flags, 0) != FALSE;
}

} // namespace platform::windows
