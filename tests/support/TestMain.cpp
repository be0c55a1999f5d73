// The main() of every GoogleTest program: the environment is moved into a scratch folder before
// any test runs, and the folder is removed afterwards.

#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    const fs::path root = testsupport::scratchRoot();
    for (const char* sub : {"home", "tmp", "data", "config", "cache", "state", "runtime", "wine"})
        fs::create_directories(root / sub);
    testsupport::setEnv("HOME", (root / "home").string());
    testsupport::setEnv("TMPDIR", (root / "tmp").string());
    testsupport::setEnv("XDG_DATA_HOME", (root / "data").string());
    testsupport::setEnv("XDG_CONFIG_HOME", (root / "config").string());
    testsupport::setEnv("XDG_CACHE_HOME", (root / "cache").string());
    testsupport::setEnv("XDG_STATE_HOME", (root / "state").string());
    testsupport::setEnv("XDG_RUNTIME_DIR", (root / "runtime").string());
    testsupport::setEnv("WINEPREFIX", (root / "wine").string());

    ::testing::InitGoogleTest(&argc, argv);
    const int rc = RUN_ALL_TESTS();
    std::error_code ec;
    fs::remove_all(root, ec);
    return rc;
}
