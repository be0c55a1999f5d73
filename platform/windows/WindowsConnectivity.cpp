#include "platform/windows/WindowsConnectivity.h"

#include <windows.h>
#include <wininet.h>

namespace platform::windows {

bool WindowsConnectivity::connected() {
    DWORD flags = 0;
    return ::InternetGetConnectedState(&flags, 0) != FALSE;
}

} // namespace platform::windows
