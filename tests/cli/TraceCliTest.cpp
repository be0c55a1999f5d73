// clean-all, preview, autoclean, the cache and the history commands as a user runs them: the
// question and its counts, the exit codes, the lines printed, and what a user is told of what was
// left alone. What the cleans leave on disk is for the cleaning tests.

#include "tests/platform/BrowserHome.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/CliProcess.h"
#include "tests/support/Hive.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::contains;
using testsupport::runCli;

namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// The scratch temporary folder and a Wine prefix whose cookie folder holds a record file.
struct TraceCli : ::testing::Test {
    fs::path tmp = std::getenv("TMPDIR");
    fs::path prefix = std::getenv("WINEPREFIX");
    fs::path cookies = prefix / "drive_c/users/me/Cookies";

    TraceCli() {
        testsupport::writeUserReg(prefix, "\n[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\Explorer\\\\Shell Folders] 1\n"
                                          "\"Cookies\"=\"C:\\\\users\\\\me\\\\Cookies\"\n");
        fs::create_directories(cookies);
        std::ofstream(cookies / "index.dat") << "record";
        write("one.txt", "one");
        write("sub/two.txt", "two");
    }
    ~TraceCli() override {
        for (const auto& e : fs::directory_iterator(tmp))
            fs::remove_all(e.path());
        fs::remove_all(prefix / "drive_c");
    }
    void write(const std::string& rel, const std::string& text) {
        fs::create_directories((tmp / rel).parent_path());
        std::ofstream(tmp / rel) << text;
    }
    std::string everything() {
        std::ostringstream all;
        for (const fs::path& root : {tmp, prefix})
            for (const auto& e : fs::recursive_directory_iterator(root))
                all << e.path().string() << "=" << (e.is_regular_file() ? readFile(e.path()) : "") << "\n";
        return all.str();
    }
};

} // namespace

TEST_F(TraceCli, CleanAllAsksWithTheCountsAndPreviewNamesWhatItThenRemoves) {
    const std::string before = everything();
    auto r = runCli("clean-all");
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, "Overwrite and delete 2 temp files, and delete 0 cache entries, 0 history entries and "
                                "1 cookie record file?"))
        << r.err;
    r = runCli("preview");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(everything(), before);
    for (const std::string& line : {"temp file: " + (tmp / "sub/two.txt").string(), "temp folder: " + (tmp / "sub").string(),
                                    "cookie record file: " + (cookies / "index.dat").string()})
        EXPECT_TRUE(contains(r.out, line + "\n")) << r.out;

    r = runCli("clean-all --yes");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_FALSE(fs::exists(tmp / "sub"));
    EXPECT_FALSE(fs::exists(cookies / "index.dat"));
}

TEST_F(TraceCli, AFileInUseIsNamedOnStderrAndMakesTheExitCodeOne) {
    write("held.txt", "held");
    testsupport::FileHolder holder((tmp / "held.txt").string());
    ASSERT_TRUE(holder.holding());
    const auto r = runCli("clean-all --yes");
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, (tmp / "held.txt").string() + ": is open in a running program")) << r.err;
    EXPECT_EQ(readFile(tmp / "held.txt"), "held");
    EXPECT_FALSE(fs::exists(tmp / "one.txt"));
}

TEST_F(TraceCli, AutocleanCleansOnceEachTimeTheBrowserClosesUntilCtrlC) {
    const fs::path out = tmp.parent_path() / "autoclean.out";
    testsupport::BackgroundCli cli("autoclean --interval 40 >" + testsupport::shellQuoted(out) + " 2>/dev/null");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_TRUE(fs::exists(cookies / "index.dat")); // no browser has run yet: nothing cleaned
    {
        testsupport::ChildProcess browser("chromium");
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_TRUE(fs::exists(cookies / "index.dat")); // still running
    }
    EXPECT_TRUE(testsupport::waitUntil([&] { return !fs::exists(cookies / "index.dat"); }));
    EXPECT_TRUE(testsupport::waitUntil([&] { return contains(readFile(out), "cookie record file"); }));
    EXPECT_TRUE(fs::exists(tmp / "one.txt")); // AutoClean leaves the temporary folder alone
    EXPECT_EQ(cli.stop(SIGINT), 0);
    const std::string printed = readFile(out);
    EXPECT_TRUE(contains(printed, "the browser closed; cleaned 0 cache entries, 1 cookie record file and the history"))
        << printed;
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 1);
    fs::remove(out);
}

TEST(BrowserCli, CacheAndHistoryCommandsPrintALineAnEntryAndPreviewNamesEachCacheLine) {
    testsupport::BrowserHome home;
    const auto before = home.snapshot();
    const std::vector<std::string> cached = platform::cachedAddresses(home.platform().urlCache());
    EXPECT_EQ(linesOf(runCli("show-cache").out), cached);
    // The same address cached by two profiles is two lines of the preview, as it is two deletions.
    std::vector<std::string> previewed;
    for (const auto& line : linesOf(runCli("preview").out))
        if (line.rfind("cache entry: ", 0) == 0)
            previewed.push_back(line.substr(13));
    EXPECT_EQ(previewed, cached);
    EXPECT_EQ(testsupport::changedFiles(before, home.snapshot()), std::vector<std::string>{});

    const std::string untitled = testsupport::visitedPages()[2].url;
    const auto listed = linesOf(runCli("history list --prefix " + untitled).out);
    ASSERT_FALSE(listed.empty());
    EXPECT_EQ(listed[0].rfind(untitled + "\t     (No Title Given)\t", 0), 0u) << listed[0];
    const std::string added = "http://cli.example/scourmill-cli-added.html";
    EXPECT_EQ(runCli("history add " + added + " 'Added Title'").code, 0);
    EXPECT_TRUE(contains(runCli("history list").out, added + "\tAdded Title\t"));
    EXPECT_EQ(runCli("history remove " + added).code, 0);
    EXPECT_FALSE(contains(runCli("history list").out, added));
    auto r = runCli("history remove " + added);
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, added + ": is not in the history")) << r.err;

    EXPECT_EQ(runCli("wipe-cache --yes").code, 0);
    EXPECT_EQ(runCli("history clear --yes").code, 0);
    EXPECT_EQ(runCli("show-cache").out + runCli("history list").out, "");
}

TEST(BrowserCli, AProfileInUseIsNamedOnStderrAndTheExitCodeIsOne) {
    testsupport::BrowserHome home;
    testsupport::ChildProcess firefox("lock-holder-f"); // no browser watcher looks for it
    fs::create_symlink("127.0.0.1:+" + std::to_string(firefox.pid()), home.firefoxProfile() / "lock");
    for (const char* command : {"show-cache", "clean-all --yes"}) {
        const auto r = runCli(command);
        EXPECT_EQ(r.code, 1) << command << ": " << r.seen();
        EXPECT_TRUE(contains(r.err, home.firefoxProfile().string() + ": its browser is running")) << command << ": " << r.err;
    }
}
