// clean-all, preview, autoclean, the cache and the history commands as a user runs them: a real
// process in the scratch environment (its temporary folder, Wine prefix and copies of real browser
// profiles), its question, its exit code, and what is left on disk.

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
#include <unistd.h>

namespace fs = std::filesystem;
using testsupport::readFile;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
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
        std::ofstream(cookies / "me@site.txt") << "cookie";
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

TEST_F(TraceCli, CleanAllAsksWithTheCountsAndPreviewListsExactlyWhatItThenRemoves) {
    const std::string before = everything();
    auto r = testsupport::runCli("clean-all");
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, "Overwrite and delete 2 temp files, and delete 0 cache entries, 0 history entries and "
                                "1 cookie record file?"))
        << r.err;
    EXPECT_EQ(everything(), before);

    r = testsupport::runCli("preview");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(everything(), before);
    std::vector<std::string> listed;
    std::istringstream lines(r.out);
    for (std::string line; std::getline(lines, line);)
        for (const char* kind : {"temp file: ", "cookie record file: "})
            if (line.rfind(kind, 0) == 0)
                listed.push_back(line.substr(std::string(kind).size()));
    EXPECT_EQ(listed, (std::vector<std::string>{(tmp / "one.txt").string(), (tmp / "sub/two.txt").string(),
                                                (cookies / "index.dat").string()}));
    EXPECT_TRUE(contains(r.out, "temp folder: " + (tmp / "sub").string() + "\n"));

    r = testsupport::runCli("clean-all --yes");
    EXPECT_EQ(r.code, 0) << r.seen();
    for (const auto& path : listed)
        EXPECT_FALSE(fs::exists(path)) << path;
    EXPECT_FALSE(fs::exists(tmp / "sub"));
    EXPECT_EQ(readFile(cookies / "me@site.txt"), "cookie");
}

TEST_F(TraceCli, AFileInUseIsNamedOnStderrAndMakesTheExitCodeOne) {
    write("held.txt", "held");
    testsupport::FileHolder holder((tmp / "held.txt").string());
    ASSERT_TRUE(holder.holding());
    const auto r = testsupport::runCli("clean-all --yes");
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

TEST_F(TraceCli, HistoryAndCacheCommandsAnswerOnAnEmptyStoreAndRefuseBadUse) {
    auto r = testsupport::runCli("show-cache");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(r.out, "");
    r = testsupport::runCli("wipe-cache");
    EXPECT_EQ(r.code, 0) << r.seen(); // nothing listed: nothing to ask about
    r = testsupport::runCli("history remove http://never.example/");
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, "http://never.example/: is not in the history")) << r.err;
    EXPECT_EQ(testsupport::runCli("history").code, 2);
    EXPECT_EQ(testsupport::runCli("history add http://only-an-address.example/").code, 2);
    EXPECT_EQ(testsupport::runCli("autoclean --interval 1").code, 2);
}

namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

TEST(BrowserCli, CacheAndHistoryCommandsWorkOnRealProfiles) {
    testsupport::BrowserHome home;
    auto r = testsupport::runCli("show-cache");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(linesOf(r.out), testsupport::listCache(home.platform().urlCache()));

    r = testsupport::runCli("history list --prefix " + testsupport::visitedPages()[2].url);
    EXPECT_EQ(r.code, 0) << r.seen();
    ASSERT_FALSE(linesOf(r.out).empty());
    EXPECT_EQ(linesOf(r.out)[0].rfind(testsupport::visitedPages()[2].url + "\t     (No Title Given)\t", 0), 0u) << r.out;

    const std::string added = "http://cli.example/scourmill-cli-added.html";
    r = testsupport::runCli("history add " + added + " 'Added Title'");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_TRUE(contains(testsupport::runCli("history list").out, added + "\tAdded Title\t"));
    r = testsupport::runCli("history remove " + added);
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_FALSE(contains(testsupport::runCli("history list").out, added));

    r = testsupport::runCli("history clear");
    EXPECT_EQ(r.code, 1); // no terminal to ask on: answered no
    EXPECT_FALSE(testsupport::runCli("history list").out.empty());
    r = testsupport::runCli("wipe-cache --yes");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_TRUE(testsupport::listCache(home.freshPlatform()->urlCache()).empty());
    r = testsupport::runCli("history clear --yes");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(testsupport::runCli("history list").out, "");
}

TEST(BrowserCli, AProfileInUseIsNamedOnStderrAndTheExitCodeIsOne) {
    testsupport::BrowserHome home;
    testsupport::ChildProcess firefox("lock-holder-f"); // no browser watcher looks for it
    fs::create_symlink("127.0.0.1:+" + std::to_string(firefox.pid()), home.firefoxProfile() / "lock");
    const auto before = readFile(home.firefoxProfile() / "places.sqlite");
    for (const char* command : {"show-cache", "clean-all --yes", "history list", "preview"}) {
        const auto r = testsupport::runCli(command);
        EXPECT_EQ(r.code, 1) << command << ": " << r.seen();
        EXPECT_TRUE(contains(r.err, home.firefoxProfile().string() + ": its browser is running")) << command << ": " << r.err;
    }
    EXPECT_EQ(readFile(home.firefoxProfile() / "places.sqlite"), before);
}

TEST(BrowserCli, PreviewNamesTheProfilesEntriesWithoutTouchingThemAndCleanAllThenRemovesThem) {
    testsupport::BrowserHome home;
    const auto before = home.snapshot();
    const auto r = testsupport::runCli("preview");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(testsupport::changedFiles(before, home.snapshot()), std::vector<std::string>{});
    std::vector<std::string> cache, history;
    for (const auto& line : linesOf(r.out)) {
        if (line.rfind("cache entry: ", 0) == 0)
            cache.push_back(line.substr(13));
        if (line.rfind("history entry: ", 0) == 0)
            history.push_back(line.substr(15));
    }
    EXPECT_EQ(cache, testsupport::listCache(home.platform().urlCache()));
    EXPECT_EQ(history.size(), testsupport::listHistory(home.platform().urlHistory()).size());
    EXPECT_FALSE(history.empty());

    const auto clean = testsupport::runCli("clean-all --yes");
    EXPECT_EQ(clean.code, 0) << clean.seen();
    EXPECT_TRUE(testsupport::listCache(home.freshPlatform()->urlCache()).empty());
    EXPECT_TRUE(testsupport::listHistory(home.freshPlatform()->urlHistory()).empty());
}
