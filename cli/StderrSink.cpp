#include "cli/StderrSink.h"

#include <iostream>

namespace cli {

void StderrSink::skipped(const std::string& item, const std::string& reason) {
    ++m_count;
    std::cerr << "scourmill-cli: skipped " << item << ": " << reason << "\n";
}

void StderrSink::noted(const std::string& item, const std::string& text) {
    std::cerr << "scourmill-cli: note: " << item << ": " << text << "\n";
}

} // namespace cli
