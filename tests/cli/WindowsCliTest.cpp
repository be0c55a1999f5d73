// scourmill-cli.exe as a user runs it on Windows (under Wine here), for what only Windows makes
// different: shredding and free-space wiping on a drive of its own whose raw bytes show whether the
// data is gone, names outside the ANSI code page, long paths and files another program holds. What
// the commands do beyond that is the same code as on Linux, tested there.

#include "platform/windows/WinText.h"
#include "tests/support/Process.h"
#include "tests/support/Scratch.h"
#include "tests/support/Wine.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <shlobj.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

namespace fs = std::filesystem;
using testsupport::runCli;
using testsupport::ScratchDir;

// The listing opens WinINet's record files, the cookie folder's among them; the cookie step after it
// must still find that one free. The first case of this program, so that no earlier case has had
// this process's WinINet open that file.
TEST(WindowsCli, CleanAllDeletesTheCookieRecordFileItsOwnListingOpenedAndEndsWithZero) {
    wchar_t cookies[MAX_PATH] = {};
    ASSERT_EQ(::SHGetFolderPathW(nullptr, CSIDL_COOKIES, nullptr, 0, cookies), S_OK);
    const std::filesystem::path record = std::filesystem::path(cookies) / "index.dat";
    const auto r = runCli("clean-all --yes");
    // Wine has no URL history store: that is said, and is no failure of a full clean.
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_EQ(r.err.find("index.dat"), std::string::npos) << r.seen();
    EXPECT_FALSE(std::filesystem::exists(record)) << r.seen();
}

namespace {

/// `path` as UTF-8: what a user's command line holds, whatever the ANSI code page.
std::string utf8(const fs::path& path) {
    return platform::windows::narrow(path.wstring());
}

std::string q(const fs::path& path) {
    std::string quoted(1, '"');
    quoted += utf8(path);
    quoted += '"';
    return quoted;
}


const std::string Secret = "TAVI-WINE-SECRET-5d1c-do-not-survive\n";

/// A drive of its own that the test run maps in the prefix (scripts/wine-tests.sh): a small
/// loop-mounted ext4 image, so that filling its free space is quick and its raw bytes can be read.
struct ScratchDrive {
    std::string root;  ///< "S:\\"
    fs::path image;    ///< the image file, as Windows reaches it

    static std::optional<ScratchDrive> find() {
        const char* letter = std::getenv("SCOURMILL_WINE_DRIVE");
        const char* image = std::getenv("SCOURMILL_WINE_DRIVE_IMAGE");
        if (!letter || !*letter || !image || !*image)
            return std::nullopt;
        return ScratchDrive{std::string(letter) + "\\", fs::path(testsupport::windowsPathOf(image))};
    }

    /// Whether the raw image holds `needle`, after the host has written everything down.
    bool holds(const std::string& needle) const {
        testsupport::runHost("/bin/sync", "");
        return testsupport::readFile(image).find(needle) != std::string::npos;
    }
};

void plant(const fs::path& path, const std::string& secret, std::size_t copies) {
    std::ofstream out(path, std::ios::binary);
    for (std::size_t i = 0; i < copies; ++i)
        out << secret;
}

} // namespace

// The shell's own call takes the recent documents' key whole; the summary counts every value.
TEST(WindowsCli, RecentDocumentsCountsEveryValueTheShellRemoves) {
    if (!testsupport::underWine())
        GTEST_SKIP() << "would clean this user's own recent documents; runs under Wine in a scratch prefix";
    const std::wstring recentDocs = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RecentDocs";
    for (const auto& [name, text] : std::vector<std::pair<std::wstring, std::wstring>>{
             {L"MRUList", L"ba"}, {L"a", L"a.txt"}, {L"b", L"b.txt"}, {L"c", L"c.txt"}})
        ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, recentDocs.c_str(), name.c_str(), REG_SZ, text.c_str(),
                                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    const auto r = runCli("clean-item \"Recent Documents\"");
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_TRUE(testsupport::registryValueNames(recentDocs).empty());
    EXPECT_NE(r.err.find("4 registry values removed"), std::string::npos) << r.err;
}

TEST(WindowsCli, ShredAndWipeFreeSpaceLeaveNothingOnTheDrive) {
    const auto drive = ScratchDrive::find();
    if (!drive)
        GTEST_SKIP() << "no scratch drive: scripts/wine-tests.sh maps a loop-mounted image as a drive when run as root";
    const fs::path root = drive->root;
    const fs::path shredded = root / "secret.txt";
    plant(shredded, "shred:" + Secret, 2000);
    const fs::path deleted = root / "deleted.txt";
    plant(deleted, "plain:" + Secret, 2000);
    ASSERT_TRUE(drive->holds("shred:" + Secret)) << "the secret never reached the disk; the test proves nothing";

    auto r = runCli("shred --yes " + q(shredded));
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_FALSE(fs::exists(shredded));
    EXPECT_FALSE(drive->holds("shred:" + Secret));

    fs::remove(deleted); // an ordinary delete leaves the bytes behind
    ASSERT_TRUE(drive->holds("plain:" + Secret));
    // Through a folder on the drive: Wine shows the drive's root itself as a link.
    fs::create_directory(root / "fill");
    r = runCli("wipe-free-space --yes " + q(root / "fill"));
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_FALSE(fs::exists(root / "WNXTEMP.000"));
    EXPECT_FALSE(drive->holds("plain:" + Secret));
}

TEST(WindowsCli, NamesOutsideTheAnsiCodePageAndPathsPastTwoHundredSixtyCharactersWork) {
    ScratchDir dir;
    // Cyrillic, Japanese and a Latin letter with an accent: no single code page holds them all.
    const std::wstring name = L"\u0416\u0443\u0440\u65E5\u672Ccaf\u00E9";
    const fs::path top = dir.path() / name;
    fs::path deep = top;
    for (char c = 'b'; c < 'j'; ++c)
        deep /= std::string(40, c);
    fs::create_directories(deep);
    ASSERT_GT(utf8(deep).size(), 300u);
    const fs::path plain = deep / (name + L".txt"), prefixed = deep / "prefixed.txt";
    std::ofstream(plain, std::ios::binary) << "secret";
    std::ofstream(prefixed, std::ios::binary) << "secret";
    auto r = runCli("shred --yes " + q(plain));
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_FALSE(fs::exists(plain));
    r = runCli("shred --yes " + q(L"\\\\?\\" + prefixed.wstring()));
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_FALSE(fs::exists(prefixed));
    std::ofstream(deep / "last.txt", std::ios::binary) << "secret";
    r = runCli("shred-dir --yes " + q(top));
    EXPECT_EQ(r.code, 0) << r.seen();
    EXPECT_FALSE(fs::exists(top));

    const fs::path record = dir.path() / (name + L".dat");
    std::ofstream(record, std::ios::binary) << "Visited: u@http://a.example/x";
    r = runCli("indexdat report " + q(record));
    EXPECT_EQ(r.out, "http://a.example/x\n") << r.seen();
    r = runCli("indexdat find " + q(dir.path()) + " --pattern " + q(name + L"*"));
    EXPECT_NE(r.out.find(utf8(record)), std::string::npos) << r.out;
}

TEST(WindowsCli, AFileAnotherProgramHoldsIsLeftAndNamed) {
    ScratchDir dir;
    const fs::path file = dir.write("held.txt", "secret");
    // Held as a program holds a document it has open: others may read it, nobody may write it or
    // take its name.
    const HANDLE held = ::CreateFileW(file.wstring().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    const auto r = runCli("shred --yes " + q(file));
    ::CloseHandle(held);
    EXPECT_EQ(r.code, 1) << r.seen();
    EXPECT_NE(r.err.find("held.txt: is open or mapped in a running program; left alone"), std::string::npos) << r.err;
    EXPECT_EQ(testsupport::readFile(file), "secret");
    EXPECT_EQ(r.err.find('\r'), std::string::npos) << r.seen();

    // A drive's root is refused before anything is asked (no --yes: were it not, nothing answers).
    const auto root = runCli("shred-dir C:\\");
    EXPECT_EQ(root.code, 2) << root.seen();
    EXPECT_NE(root.err.find("is the root of a filesystem"), std::string::npos) << root.err;
}
