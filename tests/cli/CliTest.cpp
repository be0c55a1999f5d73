// The command line as a user runs it: a real process, its output and exit code.

#include "tests/support/Process.h"
#include "tests/support/Hive.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>
#include <string>

// The figures themselves are the platform's, tested there.
TEST(Cli, MemmonOncePrintsTheNineLines) {
    const auto r = testsupport::runCli("memmon --once");
    ASSERT_EQ(r.code, 0) << r.seen();
    std::istringstream lines(r.out);
    std::vector<std::string> got;
    for (std::string line; std::getline(lines, line);)
        got.push_back(line);
    ASSERT_EQ(got.size(), 9u) << r.seen();
    EXPECT_EQ(got[0].rfind("Total Physical     ", 0), 0u);
    EXPECT_EQ(got[6].rfind("Available Extended Virtual     0", 0), 0u);
    EXPECT_TRUE(got[7].starts_with("Current memory load:     ") && got[7].ends_with(" %.")) << got[7];
}

// Every command's --help is read by the manual page's test.
TEST(Cli, VersionAndUsageErrors) {
    const auto r = testsupport::runCli("--version");
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out.rfind("scourmill-cli ", 0), 0u) << r.seen();
    for (const char* wrong : {"no-such-command", "memmon --bogus", "", "clean-item", "history",
                              "history add http://only-an-address.example/", "autoclean --interval 1",
                              "wipe-free-space", "wipe-free-space /no/such/folder"})
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
