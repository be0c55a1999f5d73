#pragma once
// Whether the machine has a network connection (InternetGetConnectedState). Sends no traffic.

namespace platform {

class Connectivity {
public:
    virtual ~Connectivity() = default;

    virtual bool connected() = 0;
};

} // namespace platform
