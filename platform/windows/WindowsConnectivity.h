#pragma once
// Whether the machine is connected, as WinINet's InternetGetConnectedState says. Sends no traffic.

#include "platform/Connectivity.h"

namespace platform::windows {

class WindowsConnectivity final : public Connectivity {
public:
    bool connected() override;
};

} // namespace platform::windows
