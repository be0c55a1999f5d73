#pragma once
// The source address of every entry of a URL cache, in its enumeration order, read with the
// size-first calls into a plain buffer: what the checks compare before and after a clean.

#include "platform/UrlCache.h"

#include <string>
#include <vector>

namespace testsupport {

std::vector<std::string> cachedAddresses(platform::UrlCache& cache);

} // namespace testsupport
