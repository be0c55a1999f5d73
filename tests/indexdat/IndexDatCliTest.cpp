// The indexdat commands as a user and a script run them: a real scourmill-cli process, its
// standard output kept apart from its messages, and its exit code.

#include "indexdat/ActivityWipe.h"
#include "tests/support/Process.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

using testsupport::readFile;
using testsupport::runCli;
using testsupport::ScratchDir;
constexpr auto q = &testsupport::shellQuoted;

TEST(IndexDatCli, FindPrintsMatchesThenCountsAndTotal) {
    ScratchDir dir;
    dir.write("tavi/History/index.dat", std::string(1500, 'x'));
    dir.write("tavi/Cookies/index.dat", std::string(234, 'y'));
    dir.write("tavi/Cookies/other.txt", "z");
    testsupport::CliResult r = runCli("indexdat find " + q(dir.path() / "tavi"));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find(dir.str() + "/tavi/History/index.dat\n"), std::string::npos);
    EXPECT_EQ(r.out.substr(r.out.find("2/3\n")), "2/3\n=1,734 Bytes\n");
    r = runCli("indexdat find --pattern '*.txt' " + q(dir.path()));
    EXPECT_EQ(r.out, dir.str() + "/tavi/Cookies/other.txt\n1/4\n=1 Bytes\n");
    // Without DIR: the Wine prefix's users folder when there is one, else the home folder.
    const std::filesystem::path home = std::getenv("HOME");
    const std::filesystem::path users = std::filesystem::path(std::getenv("WINEPREFIX")) / "drive_c" / "users";
    std::ofstream(home / "index.dat") << "h";
    EXPECT_EQ(runCli("indexdat find").out.rfind(home.string() + "/index.dat\n", 0), 0u);
    std::filesystem::create_directories(users);
    EXPECT_EQ(runCli("indexdat find").out, "0/1\n=0 Bytes\n");
    std::filesystem::remove_all(users.parent_path());
    std::filesystem::remove(home / "index.dat");
    r = runCli("indexdat find " + q(dir.path() / "nowhere"));
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("nowhere"), std::string::npos);

    // A folder the user may not enter is named on stderr and ends the search with exit 1; the rest
    // is searched and counted all the same. Root enters every folder: the search then runs as nobody,
    // started inside the tree so that the folders above it need not be open to nobody.
    dir.write("tavi/Locked/index.dat", "l");
    for (const char* sub : {"", "tavi", "tavi/History", "tavi/Cookies"})
        std::filesystem::permissions(dir.path() / sub, std::filesystem::perms(0755));
    std::filesystem::permissions(dir.path() / "tavi/Locked", std::filesystem::perms::none);
    const std::string asUser = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    r = testsupport::runCommand("cd " + q(dir.path()) + " && " + asUser + SCOURMILL_CLI + " indexdat find tavi");
    std::filesystem::permissions(dir.path() / "tavi/Locked", std::filesystem::perms(0755));
    EXPECT_EQ(r.code, 1) << r.err;
    EXPECT_NE(r.err.find("tavi/Locked/"), std::string::npos) << r.err;
    EXPECT_EQ(r.out.substr(r.out.find("2/4\n")), "2/4\n=1,734 Bytes\n") << r.out;
}

TEST(IndexDatCli, ReportAndRawGiveTheBytesAsStoredAndWipeAsksFirst) {
    ScratchDir dir;
    const std::string content = std::string("Visited: u@http://a.example/x\ny\0Cookie:u@b/\0", 45);
    const auto path = dir.write("index.dat", content);
    testsupport::CliResult r = runCli("indexdat report " + q(path));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "http://a.example/x\ny\nCookie:u@b/\n");
    r = runCli("indexdat report -0 " + q(path));
    EXPECT_EQ(r.out, std::string("http://a.example/x\ny\0Cookie:u@b/\0", 33));
    r = runCli("indexdat raw " + q(path));
    EXPECT_EQ(r.out, "File Size in bytes = 45\n" + content);
    // A file that cannot be read is named and the others are still reported.
    r = runCli("indexdat report " + q(dir.path() / "gone.dat") + " " + q(path));
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, "http://a.example/x\ny\nCookie:u@b/\n");
    EXPECT_EQ(runCli("indexdat raw").code, 2);
    // Only regular files are read: a folder or a device that never ends is refused.
    EXPECT_EQ(runCli("indexdat report /dev/zero " + q(dir.path())).code, 1);

    // Wiping asks first; with no terminal to ask on the answer is No and nothing changes.
    r = runCli("indexdat wipe " + q(path));
    EXPECT_NE(r.err.find("TaviWipe " + path.string() + " ?"), std::string::npos);
    EXPECT_EQ(readFile(path), content);
    r = runCli("indexdat wipe --yes " + q(path));
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(readFile(path).size(), indexdat::lengthAfterWipe(content.size()));
}
