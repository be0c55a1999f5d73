#pragma once
// Connectivity on Linux: connected when the routing table has a default route (IPv4 or IPv6) on an
// interface other than loopback. Nothing is sent over the network.

#include "platform/Connectivity.h"

#include <string>

namespace platform::linux {

class LinuxConnectivity final : public Connectivity {
public:
    bool connected() override;
};

/// Whether /proc/net/route and /proc/net/ipv6_route texts hold a usable default route.
bool hasDefaultRoute(const std::string& ipv4Routes, const std::string& ipv6Routes);

} // namespace platform::linux
