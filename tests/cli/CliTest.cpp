// The command line as a user runs it: a real process, its output and exit code.

#include "tests/support/Process.h"
#include "tests/support/Hive.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>
#include <string>

// The figures and their captions are the platform's and the monitor's, tested there.
TEST(Cli, MemmonOncePrintsTheNineLines) {
    const auto r = testsupport::runCli("memmon --once");
    ASSERT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 9) << r.out;
    EXPECT_TRUE(r.out.starts_with("Total Physical     ")) << r.out;
}

// Every command's --help is read by the manual page's test.
TEST(Cli, VersionAndUsageErrors) {
    const auto r = testsupport::runCli("--version");
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out.rfind("scourmill-cli ", 0), 0u) << r.seen();
    for (const char* wrong : {"", "history", "history add http://only-an-address.example/", "autoclean --interval 1",
                              "wipe-free-space /no/such/folder"})
        EXPECT_EQ(testsupport::runCli(wrong).code, 2) << wrong;
    // The word not known is named, with the one probably meant; options of the commands above
    // count, and an option's value is never taken for a command.
    for (const auto& [wrong, said] : std::vector<std::pair<std::string, std::string>>{
             {"shredd x", "unknown command 'shredd' (did you mean 'shred'?)"},
             {"--quiet indexdat fnd", "unknown command 'fnd' for 'indexdat' (did you mean 'find'?)"},
             {"shred --yse -q x", "unknown option '--yse' for 'shred' (did you mean '--yes'?)"},
             {"indexdat find --pattern memmon -z", "unknown option '-z' for 'indexdat find'\n"},
             {"frobnicate", "unknown command 'frobnicate'\n"}}) {
        const auto r = testsupport::runCli(wrong);
        EXPECT_EQ(r.code, 2) << wrong;
        EXPECT_TRUE(r.err.starts_with("scourmill-cli: " + said)) << r.err;
    }
}

TEST(Cli, CleanItemTakesOnlyExactChooserTexts) {
    const auto hive = testsupport::writeUserReg(std::getenv("WINEPREFIX"),
                                                "\n[Software\\\\Microsoft\\\\Internet Explorer\\\\TypedURLs] 1\n"
                                                "\"url1\"=\"http://a.example/\"\n");
    EXPECT_EQ(testsupport::runCli("clean-item \"ie typed url's\"").code, 2);
    EXPECT_NE(testsupport::readFile(hive).find("url1"), std::string::npos);
    const auto r = testsupport::runCli("clean-item \"IE Typed URL's\"");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_TRUE(r.err.ends_with("scourmill-cli: clean-item: 1 registry value removed\n")) << r.err;
    EXPECT_EQ(testsupport::readFile(hive).find("url1"), std::string::npos);
}
