// The main() of every GoogleTest program: the environment is moved into a scratch folder before
// any test runs, and the folder is removed afterwards.

#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testsupport::enterScratchEnvironment();
    ::testing::InitGoogleTest(&argc, argv);
    const int rc = RUN_ALL_TESTS();
    testsupport::leaveScratchEnvironment();
    return rc;
}
