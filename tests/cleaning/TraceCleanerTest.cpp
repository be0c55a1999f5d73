// The file side of the trace cleaning on real files in scratch folders: the eleven-pass overwrite
// of the documented lengths, hard links, the rules of the shared temporary folder (links, sockets,
// pipes, files held open by another process, nested folders, mounts), the cookie
// folder's record files, and a preview that finds exactly what the clean then removes.

#include "cleaning/CleanAllPreview.h"
#include "cleaning/TraceCleaner.h"
#include "platform/Platform.h"
#include "tests/cleaning/TraceRecorders.h"
#include "tests/support/Process.h"
#include "tests/support/Hive.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::ScratchDir;

namespace {

struct TraceCleanerTest : ::testing::Test {
    std::unique_ptr<platform::Platform> platform = platform::createNative();
    ScratchDir temp;
    testsupport::TraceRecorder view;
    testsupport::RecordingSink problems;
    cleaning::CURLHistory history{*platform};
    cleaning::TraceCleaner cleaner{*platform, view, &problems};

    TraceCleanerTest() {
        cleaner.SetHistory(history);
        cleaner.SetPaths({"", "", "", temp.str()});
    }
};

/// A socket file at `path`, bound and left behind as programs leave theirs.
void makeSocket(const fs::path& path) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    path.string().copy(addr.sun_path, sizeof addr.sun_path - 1);
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0) << path;
    ::close(fd);
}

} // namespace

TEST_F(TraceCleanerTest, WipeFileWritesBlocksZeroToTheRoundedCountElevenTimesThenDeletes) {
    // length -> bytes a pass writes: 512/1024 = 0.5 rounds to 0, 1536/1024 = 1.5 to 2, 2560 to 2.
    // An empty file holds nothing to overwrite: it is only deleted (checked elsewhere).
    const std::pair<std::size_t, std::uint64_t> cases[] = {{512, 1024}, {1536, 3072}, {2560, 3072}, {3000, 4096}};
    for (const auto& [length, perPass] : cases) {
        const fs::path file = temp.write("f" + std::to_string(length), std::string(length, 'S'));
        std::map<int, std::string> afterPass; // what each pass left, read when the window gets its turn
        view.onPump = [&] {
            const auto& passes = view.passBytes[file.string()];
            if (!passes.empty() && fs::exists(file))
                afterPass[passes.rbegin()->first] = readFile(file);
        };
        cleaner.WipeFile(file.string());
        EXPECT_FALSE(fs::exists(file)) << length;
        const auto& passes = view.passBytes[file.string()];
        ASSERT_EQ(passes.size(), 11u) << length;
        for (int pass = 1; pass <= 11; ++pass) {
            EXPECT_EQ(passes.at(pass), perPass) << length << " pass " << pass;
            // The file grows to the last block's end when that lies past its old end.
            EXPECT_TRUE(afterPass[pass] == std::string(std::max<std::uint64_t>(length, perPass), 'U'))
                << length << " pass " << pass << ": " << afterPass[pass].size() << " bytes";
        }
    }
    EXPECT_TRUE(problems.items.empty());
}

TEST_F(TraceCleanerTest, TempFolderCleanTakesOnlyTheUsersOwnClosedPlainFiles) {
    // What lies right in the folder and is no closed plain file of the user's is for the destruction
    // matrix; here, what the walk does below it.
    ScratchDir outside;
    const fs::path target = outside.write("target.txt", "not in the temp folder");
    const fs::path root = temp.path();

    temp.write("own.txt", "own");
    makeSocket(root / "program.sock");

    temp.write("nested/a.txt", "a");
    temp.write("nested/deeper/b.txt", "b");
    temp.write("nested/deeper/deepest/c.txt", "c");
    temp.write("keeps-link/own.txt", "own");
    fs::create_directories(root / "keeps-link/deep");
    fs::create_symlink(target, root / "keeps-link/deep/link");
    temp.write("keeps-held/own.txt", "own");
    const fs::path heldDeep = temp.write("keeps-held/deep/held.txt", "held deep");
    testsupport::PausedChild holder([&heldDeep] { return ::open(heldDeep.c_str(), O_RDONLY) >= 0; });
    ASSERT_TRUE(holder.ready());
    temp.write("keeps-socket/deep/x.txt", "x");
    makeSocket(root / "keeps-socket/deep/s");

    cleaner.CleanTempFolder();
    const auto left = testsupport::treeSnapshot(root);

    for (const char* gone : {"own.txt", "nested", "keeps-link/own.txt", "keeps-held/own.txt"})
        EXPECT_FALSE(left.count(gone)) << gone;
    // What stays stays whole: a folder holding one is removed whole or not at all.
    for (const char* kept : {"program.sock", "keeps-link/deep/link", "keeps-held/deep/held.txt", "keeps-socket/deep/x.txt"})
        EXPECT_TRUE(left.count(kept)) << kept;
    EXPECT_EQ(readFile(target), "not in the temp folder");
    // What was never the user's to clean is not reported as skipped; a held file is, at any depth.
    EXPECT_FALSE(problems.items.count((root / "program.sock").string()));
    EXPECT_TRUE(problems.items.count(heldDeep.string()));
}

TEST_F(TraceCleanerTest, TempFolderCleanStopsAtAnInterruptionAndNeverCleansTheCurrentFolder) {
    temp.write("a.bin", std::string(600'000, 'a'));
    view.onPump = [&] { view.stop = true; }; // Ctrl-C during the first file's first pass
    cleaner.CleanTempFolder();
    std::size_t left = 0;
    for (const auto& e : fs::directory_iterator(temp.path()))
        left += e.is_regular_file();
    EXPECT_EQ(left, 0u); // the file being overwritten is deleted at once

    view.stop = false;
    view.onPump = nullptr;
    temp.write("b.txt", "stays");
    temp.write("c.txt", "stays");
    view.stop = true;
    cleaner.CleanTempFolder();
    EXPECT_TRUE(fs::exists(temp.path() / "b.txt") && fs::exists(temp.path() / "c.txt"));
    view.stop = false;

    const fs::path here = fs::current_path();
    fs::current_path(temp.path());
    cleaner.SetPaths({});
    cleaner.CleanTempFolder();
    cleaner.CleanAll();
    fs::current_path(here);
    EXPECT_TRUE(fs::exists(temp.path() / "b.txt"));
}

namespace {

// A Wine prefix whose Shell Folders put the cookie folder at C:\users\me\Cookies, with a typed URL.
struct CookieFolderTest : TraceCleanerTest {
    fs::path prefix = std::getenv("WINEPREFIX");
    fs::path cookies = prefix / "drive_c/users/me/Cookies";

    CookieFolderTest() {
        testsupport::writeUserReg(prefix, "\n[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\Explorer\\\\Shell Folders] 1\n"
                                          "\"Cache\"=\"C:\\\\users\\\\me\\\\Temporary Internet Files\"\n"
                                          "\"Cookies\"=\"C:\\\\users\\\\me\\\\Cookies\"\n"
                                          "\"History\"=\"C:\\\\users\\\\me\\\\History\"\n"
                                          "\n[Software\\\\Microsoft\\\\Internet Explorer\\\\TypedURLs] 1\n"
                                          "\"url1\"=\"http://typed.example/\"\n");
        fs::create_directories(cookies / "sub");
        std::ofstream(cookies / "index.dat") << "Client UrlCache MMF Ver 5.2";
        std::ofstream(cookies / "old.index.dat") << "suffix matches";
        std::ofstream(cookies / "INDEX.DAT") << "letter case differs";
        std::ofstream(cookies / "me@example[1].txt") << "the cookie itself";
        std::ofstream(cookies / "sub/index.dat") << "not in the folder itself";
        cleaner.ReadFolderPaths();
    }
    ~CookieFolderTest() override { fs::remove_all(prefix / "drive_c"); }
};

} // namespace

TEST_F(CookieFolderTest, PreviewNamesWhatTheCleanThenRemoves) {
    EXPECT_EQ(cleaner.Paths().CookiesPath, cookies.string());
    const auto before = testsupport::treeSnapshot(prefix);
    const cleaning::CleanAllPreview preview = cleaning::PreviewCleanAll(*platform, nullptr);
    // Record files are those whose names end in index.dat, letter case and all, right in the
    // folder: INDEX.DAT, sub/index.dat and the cookie itself stay.
    EXPECT_EQ(preview.cookieFiles,
              (std::vector<std::string>{(cookies / "index.dat").string(), (cookies / "old.index.dat").string()}));
    EXPECT_EQ(preview.typedUrls,
              std::vector<std::string>{"Software\\Microsoft\\Internet Explorer\\TypedURLs\\url1"});

    cleaner.CleanAll();
    EXPECT_EQ(readFile(prefix / "user.reg").find("typed.example"), std::string::npos);
    // What the preview named is gone, and nothing else.
    for (const auto& file : preview.cookieFiles)
        EXPECT_FALSE(fs::exists(file)) << file;
    EXPECT_EQ(testsupport::treeSnapshot(prefix).size(), before.size() - preview.cookieFiles.size());
}
