// The command line as a user runs it: a real process, its output and exit code.

#include "tests/support/CliProcess.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <vector>
#include <string>

namespace {

std::uint64_t memTotalBytes() {
    std::ifstream in("/proc/meminfo");
    std::string key;
    std::uint64_t kb = 0;
    in >> key >> kb;
    return kb * 1024;
}

} // namespace

TEST(Cli, MemmonOncePrintsTheNineLinesWithTotalPhysicalFromMeminfo) {
    const auto r = testsupport::runCli("memmon --once");
    ASSERT_EQ(r.code, 0) << r.seen();
    std::istringstream lines(r.out);
    std::vector<std::string> got;
    for (std::string line; std::getline(lines, line);)
        got.push_back(line);
    ASSERT_EQ(got.size(), 9u) << r.seen();
    EXPECT_EQ(got[0], "Total Physical     " + std::to_string(memTotalBytes()));
    EXPECT_EQ(got[1].rfind("Available Physical     ", 0), 0u);
    EXPECT_EQ(got[6].rfind("Available Extended Virtual     0", 0), 0u);
    EXPECT_EQ(got[7].rfind("Current memory load:     ", 0), 0u);
    EXPECT_EQ(got[7].substr(got[7].size() - 3), " %.");
    EXPECT_EQ(got[8].rfind("PageFile Usage ", 0), 0u);
}

// Every command's --help is read by the manual page's test.
TEST(Cli, VersionAndUsageErrors) {
    const auto r = testsupport::runCli("--version");
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out.rfind("scourmill-cli ", 0), 0u) << r.seen();
    for (const char* wrong : {"no-such-command", "memmon --bogus", "", "clean-item"})
        EXPECT_EQ(testsupport::runCli(wrong).code, 2) << wrong;
}

TEST(Cli, CleanItemTakesOnlyExactChooserTextsAndPreviewChangesNothing) {
    const std::string hive = std::string(std::getenv("WINEPREFIX")) + "/user.reg";
    std::ofstream(hive) << "WINE REGISTRY Version 2\n\n[Software\\\\Microsoft\\\\Internet Explorer\\\\TypedURLs] 1\n"
                           "#time=1\n\"url1\"=\"http://a.example/\"\n\"url3\"=\"http://c.example/\"\n";
    auto r = testsupport::runCli("clean-item \"ie typed url's\"");
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.seen().find("You must make a choice from the combobox pull down list. If you continue having "
                         "trouble,please contact Tavi support."),
              std::string::npos);

    r = testsupport::runCli("preview");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_NE(r.seen().find("registry: HKEY_CURRENT_USER\\Software\\Microsoft\\Internet Explorer\\TypedURLs : url1\n"),
              std::string::npos)
        << r.seen();
    EXPECT_EQ(r.seen().find("url3"), std::string::npos);

    r = testsupport::runCli("clean-item \"IE Typed URL's\"");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_TRUE(r.err.ends_with("scourmill-cli: clean-item: 1 registry value removed\n")) << r.err;
    std::ifstream in(hive);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(text.find("url1"), std::string::npos);
    EXPECT_NE(text.find("\"url3\"=\"http://c.example/\""), std::string::npos);
}
