#include "platform/linux/LinuxConnectivity.h"

#include <fstream>
#include <sstream>

namespace platform::linux {
namespace {

std::string slurp(const char* path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

constexpr unsigned RouteUp = 0x1;

} // namespace

bool hasDefaultRoute(const std::string& ipv4Routes, const std::string& ipv6Routes) {
    std::istringstream v4(ipv4Routes);
    std::string line;
    std::getline(v4, line); // column titles
    while (std::getline(v4, line)) {
        // Iface Destination Gateway Flags RefCnt Use Metric Mask ...
        std::istringstream in(line);
        std::string iface, destination, gateway, flags, refcnt, use, metric, mask;
        if (!(in >> iface >> destination >> gateway >> flags >> refcnt >> use >> metric >> mask))
            continue;
        if (iface != "lo" && destination == "00000000" && mask == "00000000" &&
            (std::stoul(flags, nullptr, 16) & RouteUp))
            return true;
    }
    std::istringstream v6(ipv6Routes);
    while (std::getline(v6, line)) {
        // destination prefixlen source prefixlen nexthop metric refcnt use flags iface
        std::istringstream in(line);
        std::string destination, prefix, source, sourcePrefix, nexthop, metric, refcnt, use, flags, iface;
        if (!(in >> destination >> prefix >> source >> sourcePrefix >> nexthop >> metric >> refcnt >> use >> flags >>
              iface))
            continue;
        if (iface != "lo" && destination == std::string(32, '0') && prefix == "00" &&
            (std::stoul(flags, nullptr, 16) & RouteUp))
            return true;
    }
    return false;
}

bool LinuxConnectivity::connected() {
    return hasDefaultRoute(slurp("/proc/net/route"), slurp("/proc/net/ipv6_route"));
}

} // namespace platform::linux
