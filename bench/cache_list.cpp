// Lists the browser cache through the platform alone, the way the cache listing calls it (size
// first, then a buffer of that size for each entry) but with a plain buffer: the benchmark sets
// its time beside the whole command to tell the backend's share from the rest.

#include "platform/Platform.h"
#include "tests/support/CachedAddresses.h"

#include <cstdio>

int main() {
    const auto platform = platform::createNative();
    for (const std::string& address : testsupport::cachedAddresses(platform->urlCache()))
        std::puts(address.c_str());
    return 0;
}
