#include "cli/StderrSink.h"

#include <iostream>

namespace cli {

void StderrSink::skipped(const std::string& item, const std::string& reason) {
    ++m_count;
    std::cerr << "scourmill-cli: skipped " << item << ": " << reason << "\n";
}

} // namespace cli
