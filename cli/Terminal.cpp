#include "cli/Terminal.h"

#include <cstdio>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace cli {
namespace {

bool g_quiet = false;

} // namespace

bool stderrIsTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return ::isatty(STDERR_FILENO) == 1;
#endif
}

void setQuiet(bool quiet) {
    g_quiet = quiet;
}

bool quiet() {
    return g_quiet;
}

bool progressShown() {
    return !g_quiet && stderrIsTerminal();
}

} // namespace cli
