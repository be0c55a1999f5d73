// clean-all, preview, the cache and the history commands as a user runs them: the
// question and its counts, the exit codes, the lines printed, and what a user is told of what was
// left alone. What the cleans leave on disk is for the cleaning tests.

#include "tests/platform/BrowserHome.h"
#include "tests/support/CachedAddresses.h"
#include "tests/support/Process.h"
#include "tests/support/Hive.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <optional>
#include <unistd.h>

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

/// The number written just before `what` in `text`; -1 when `what` is not there.
long countBefore(const std::string& text, const std::string& what) {
    const auto at = text.find(" " + what);
    if (at == std::string::npos)
        return -1;
    auto start = text.find_last_not_of("0123456789", at - 1);
    return std::stol(text.substr(start + 1, at - start - 1));
}

} // namespace

TEST(BrowserCli, CacheAndHistoryCommandsPrintALineAnEntryAndEveryCountAgrees) {
    testsupport::BrowserHome home;
    // Beside the browsers: two temporary files, one in a folder, and a cookie record file.
    const fs::path tmp = std::getenv("TMPDIR"), prefix = std::getenv("WINEPREFIX");
    const fs::path cookies = prefix / "drive_c/users/me/Cookies";
    testsupport::writeUserReg(prefix, "\n[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\Explorer\\\\Shell Folders] 1\n"
                                      "\"Cookies\"=\"C:\\\\users\\\\me\\\\Cookies\"\n");
    fs::create_directories(cookies);
    fs::create_directories(tmp / "sub");
    std::ofstream(cookies / "index.dat") << "record";
    std::ofstream(tmp / "one.txt") << "one";
    std::ofstream(tmp / "sub/two.txt") << "two";
    EXPECT_TRUE(contains(runCli("preview").out, "cookie record file: " + (cookies / "index.dat").string() + "\n"));
    // An address both browsers cached is one line, one entry to delete: deleting it reaches both.
    std::vector<std::string> cached;
    for (const std::string& address : testsupport::cachedAddresses(home.platform().urlCache()))
        if (std::find(cached.begin(), cached.end(), address) == cached.end())
            cached.push_back(address);
    EXPECT_EQ(linesOf(runCli("show-cache").out), cached);

    const std::string added = "http://cli.example/scourmill-cli-added.html";
    EXPECT_EQ(runCli("history add " + added + " 'Added Title'").code, 0);
    EXPECT_TRUE(contains(runCli("history list").out, added + "\tAdded Title\t"));
    EXPECT_EQ(runCli("history remove " + added).code, 0);
    auto r = runCli("history remove " + added);
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, added + ": is not in the history")) << r.err;

    // The question and the summary count the entries show-cache lists.
    const long addresses = static_cast<long>(testsupport::visitedPages().size());
    r = runCli("clean-all");
    EXPECT_EQ(r.code, 1); // no terminal to ask on: answered No
    EXPECT_TRUE(contains(r.err, "Overwrite and delete 2 temp files and 1 folder in " + tmp.string() + ", and delete "));
    EXPECT_TRUE(contains(r.err, " history entries and 1 cookie record file?")) << r.err;
    EXPECT_EQ(countBefore(r.err, "cache entries,"), static_cast<long>(cached.size())) << r.err;
    EXPECT_EQ(countBefore(r.err, "history entries and"), addresses) << r.err;
    r = runCli("clean-all --yes");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(countBefore(r.err, "cache entries deleted"), static_cast<long>(cached.size())) << r.err;
    EXPECT_EQ(countBefore(r.err, "history entries deleted"), addresses) << r.err;
    fs::remove_all(prefix / "drive_c");
}

TEST(BrowserCli, EveryStoreLeftAloneOrDamagedIsNamedTheRestIsCleanedAndTheExitCodeIsOne) {
    testsupport::BrowserHome home;
    // Chromium's History cut short, Firefox's places of random bytes: both named and left as they
    // are, while everything else of both profiles is cleaned.
    const fs::path history = home.chromiumProfile() / "History";
    const fs::path places = home.firefoxProfile() / "places.sqlite";
    fs::resize_file(history, fs::file_size(history) / 2);
    fs::remove(places.string() + "-wal");
    std::ofstream(places, std::ios::binary | std::ios::trunc) << std::string(8192, '\x5a') << "random";
    auto r = runCli("preview");
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, places.string() + ": ")) << r.err;
    r = runCli("clean-all --yes");
    EXPECT_EQ(r.code, 1) << r.seen();
    EXPECT_TRUE(contains(r.err, history.string() + ": is damaged")) << r.err;
    EXPECT_TRUE(contains(r.err, places.string() + ": is damaged")) << r.err;
    EXPECT_EQ(runCli("show-cache").out, ""); // the rest was cleaned

    testsupport::ChildProcess firefox("lock-holder-f"); // no browser watcher looks for it
    fs::create_symlink("127.0.0.1:+" + std::to_string(firefox.pid()), home.firefoxProfile() / "lock");
    r = runCli("clean-all --yes");
    EXPECT_EQ(r.code, 1) << r.seen();
    EXPECT_TRUE(contains(r.err, home.firefoxProfile().string() + ": its browser is running")) << r.err;
}

namespace {

void writeOwned(const fs::path& path, const std::string& text, uid_t owner) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
    ASSERT_EQ(::lchown(path.c_str(), owner, owner), 0) << path;
}

} // namespace

// The temporary folder comes from TMPDIR, which can name anything. Each row is one run of
// clean-all (--yes within the scratch world) over a fresh scratch world: a home with its files, a folder of another user, and
// a shared sticky folder holding another user's file, root's file, X server locks, a service's
// private folder and the files of the user who ran sudo.
TEST(TempFolderCli, ATemporaryFolderThatIsNoneIsRefusedWholeAndSharedOnesLoseOnlyTheUsersFiles) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "other users' files need root to be made";
    constexpr uid_t SudoUser = 4242, Other = 4343;
    struct Row {
        const char* what;
        std::string tmpdir; ///< relative to the world, or absolute
        std::optional<uid_t> sudoUid;
        int code;
        std::string reason; ///< on stderr, after the folder's name; empty: no refusal
        std::vector<std::string> gone;
    };
    const std::vector<Row> rows = {
        {"the home folder, spelled otherwise", "home/u/Documents/..", {}, 1, "is your home folder", {}},
        {"above the home folder", "home", {}, 1, "holds your home folder", {}},
        {"the root folder", "/", {}, 1, "is the system folder /;", {}},
        {"inside a system folder", "/usr/share", {}, 1, "lies inside the system folder /usr;", {}},
        {"another user's folder", "other", {}, 1, "belongs to another user and is not a shared temporary folder", {}},
        {"shared, root without sudo", "shared", {}, 1, "is shared by all users, and run as root without sudo", {}},
        {"shared, root through sudo", "shared", SudoUser, 0, "", {"shared/mine.txt", "shared/mysub", "shared/mysub/a.txt"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        testsupport::ScratchDir world;
        const fs::path w = world.path();
        writeOwned(w / "home/u/Documents/plan.txt", "plan", 0);
        writeOwned(w / "home/u/.bashrc", "rc", 0);
        writeOwned(w / "other/theirs.txt", "theirs", Other);
        ASSERT_EQ(::chown((w / "other").c_str(), Other, Other), 0);
        fs::create_directories(w / "shared");
        fs::permissions(w / "shared", fs::perms::all | fs::perms::sticky_bit);
        writeOwned(w / "shared/theirs.txt", "theirs", Other);
        writeOwned(w / "shared/root.txt", "root's", 0);
        writeOwned(w / "shared/mine.txt", "mine", SudoUser);
        writeOwned(w / "shared/mysub/a.txt", "a", SudoUser);
        ASSERT_EQ(::chown((w / "shared/mysub").c_str(), SudoUser, SudoUser), 0);
        writeOwned(w / "shared/.X0-lock", "       123\n", SudoUser);
        writeOwned(w / "shared/.X11-unix/X0", "x", SudoUser);
        writeOwned(w / "shared/systemd-private-0123-x.service-a/tmp/s.txt", "service", SudoUser);
        ASSERT_EQ(::chown((w / "shared/systemd-private-0123-x.service-a").c_str(), SudoUser, SudoUser), 0);
        const auto before = testsupport::treeSnapshot(w);

        const std::string tmpdir = row.tmpdir[0] == '/' ? row.tmpdir : (w / row.tmpdir).string();
        const std::string env = "env " + std::string(row.sudoUid ? "SUDO_UID=" + std::to_string(*row.sudoUid) : "-u SUDO_UID") +
                                " HOME=" + testsupport::shellQuoted(w / "home/u") + " TMPDIR=" + testsupport::shellQuoted(tmpdir);
        // The machine's own folders are never offered a --yes: should the refusal ever fail, the
        // question comes and, with no terminal to ask on, is answered No.
        const bool machine = row.tmpdir[0] == '/';
        const auto r = testsupport::runCommand("timeout 60 " + env + " " + SCOURMILL_CLI + " clean-all" +
                                               (machine ? "" : " --yes"));
        EXPECT_EQ(r.code, row.code) << r.seen();
        if (!row.reason.empty()) {
            EXPECT_TRUE(contains(r.err, "skipped " + tmpdir + ": " + row.reason)) << r.err;
            EXPECT_FALSE(contains(r.err, "Overwrite and delete")) << r.err; // refused before the question
        }
        auto expected = before;
        for (const std::string& gone : row.gone)
            expected.erase(gone);
        EXPECT_EQ(testsupport::treeSnapshot(w), expected);
    }
}
