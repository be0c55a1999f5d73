#pragma once
// What the fuzz programs share: checks that stop the run the way a sanitizer does, so that
// libFuzzer keeps the input that broke an expectation just as it keeps one that crashed.

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzzcheck {

/// `text` with bytes outside printable ASCII as \xNN, for reports.
inline std::string printable(const std::string& text) {
    std::string out;
    char buf[8];
    for (const unsigned char c : text) {
        if (c >= 0x20 && c < 0x7F && c != '\\') {
            out += static_cast<char>(c);
        } else {
            std::snprintf(buf, sizeof buf, c == '\n' ? "\\n\n" : "\\x%02x", c);
            out += buf;
        }
    }
    return out;
}

[[noreturn]] inline void fail(const char* file, int line, const char* what) {
    std::fprintf(stderr, "%s:%d: expectation failed: %s\n", file, line, what);
    std::abort();
}

} // namespace fuzzcheck

#define FUZZ_CHECK(condition)                                   \
    do {                                                        \
        if (!(condition))                                       \
            fuzzcheck::fail(__FILE__, __LINE__, #condition);    \
    } while (0)

/// Two texts that must be equal; both are shown when they are not.
#define FUZZ_CHECK_EQUAL(left, right)                                                              \
    do {                                                                                           \
        const std::string l_ = (left), r_ = (right);                                               \
        if (l_ != r_) {                                                                            \
            std::fprintf(stderr, "%s:\n%s\n%s:\n%s\n", #left, fuzzcheck::printable(l_).c_str(),   \
                         #right, fuzzcheck::printable(r_).c_str());                                \
            fuzzcheck::fail(__FILE__, __LINE__, #left " == " #right);                               \
        }                                                                                          \
    } while (0)
