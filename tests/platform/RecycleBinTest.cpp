// The freedesktop.org Trash and recently-used.xbel: real trash folders in a scratch data home and
// at the top of scratch "mounts" listed in a scratch mount table (and of a real tmpfs where this
// machine allows mounting). The machine's own mount table is never read.

#include "platform/linux/LinuxRecycleBin.h"
#include "wipe/Engine.h"
#include "tests/support/Scratch.h"
#include "tests/support/LoopImage.h"
#include "tests/support/ScratchMount.h"

#include <gtest/gtest.h>

#include <glib.h>
#include <fstream>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using platform::EmptyFlags::NoConfirmation;
using platform::EmptyFlags::NoProgressUi;
using platform::linux::LinuxRecycleBin;

namespace {

const std::string Uid = std::to_string(::getuid());

struct RecordedUi final : platform::RecycleBinUi {
    bool answer = true;
    std::vector<std::string> asked;
    std::vector<std::size_t> progressDone;
    bool confirmEmpty(std::size_t items, std::uint64_t bytes) override {
        asked.push_back(std::to_string(items) + " items, " + std::to_string(bytes) + " bytes");
        return answer;
    }
    void progress(std::size_t done, std::size_t) override { progressDone.push_back(done); }
    // The program's own engine, as the recycle-bin clean hands it over.
    std::unique_ptr<platform::Platform> native = platform::createNative();
    wipe::Engine engine{*native, nullptr, nullptr};
    platform::Remover& remover() override { return engine; }
};

/// Puts `name` with `content` in the trash folder `trash` as a desktop would, with its info file.
void trashFile(const fs::path& trash, const std::string& name, const std::string& content, const std::string& from) {
    fs::create_directories(trash / "files");
    fs::create_directories(trash / "info");
    std::ofstream(trash / "files" / name) << content;
    std::ofstream(trash / "info" / (name + ".trashinfo"))
        << "[Trash Info]\nPath=" << from << "\nDeletionDate=2024-01-02T03:04:05\n";
}

/// A scratch environment whose mount table lists `mountTops` as mount points (made-up mounts) or,
/// with none given, is the test program's scratch table.
platform::linux::Environment environment(const fs::path& dataHome, const std::vector<std::string>& mountTops = {}) {
    platform::linux::Environment env;
    env.dataHome = dataHome.string();
    env.winePrefix = (dataHome / "no-prefix").string();
    env.mountInfo = testsupport::mountTablePath().string();
    if (!mountTops.empty()) {
        env.mountInfo = (dataHome / "mountinfo").string();
        std::ofstream table(env.mountInfo);
        int id = 900;
        for (const std::string& top : mountTops)
            table << ++id << " 1 8:1 / " << top << " rw - ext4 /dev/sdz1 rw\n";
    }
    return env;
}

std::size_t entries(const fs::path& dir) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(dir), fs::directory_iterator()));
}

} // namespace

TEST(RecycleBin, EmptiesHomeAndPerMountTrashAfterAsking) {
    testsupport::ScratchDir data, top;
    const fs::path home = data.path() / "Trash";
    trashFile(home, "report.txt", "12345", "/home/u/report%20v2.txt");
    // A folder trashed read-only.
    fs::create_directories(home / "files/folder/sub");
    std::ofstream(home / "files/folder/sub/a.bin") << "abcdefgh";
    fs::permissions(home / "files/folder/sub", fs::perms::owner_read | fs::perms::owner_exec);
    std::ofstream(home / "info/gone.txt.trashinfo") << "[Trash Info]\nPath=/gone.txt\n";
    std::ofstream(home / "directorysizes") << "8 1700000000 folder\n";

    trashFile(top.path() / (".Trash-" + Uid), "photo.jpg", "xyz", "pictures/photo.jpg");
    fs::create_directories(top.path() / ".Trash");
    fs::permissions(top.path() / ".Trash", fs::perms::all | fs::perms::sticky_bit);
    trashFile(top.path() / ".Trash" / Uid, "shared.txt", "s", "shared.txt");

    LinuxRecycleBin bin(environment(data.path(), {top.str()}));
    std::map<std::string, std::string> originals;
    for (const auto& item : bin.items(""))
        originals[item.path] = item.originalPath;
    ASSERT_EQ(originals.size(), 4u);
    EXPECT_EQ(originals[(home / "files/report.txt").string()], "/home/u/report v2.txt");
    EXPECT_EQ(originals[(top.path() / (".Trash-" + Uid) / "files/photo.jpg").string()], top.str() + "/pictures/photo.jpg");

    RecordedUi ui;
    ui.answer = false;
    EXPECT_FALSE(bin.empty("", 0, ui));
    EXPECT_EQ(ui.asked, std::vector<std::string>{"4 items, 17 bytes"});
    EXPECT_EQ(bin.items("").size(), 4u); // "no" keeps everything

    ui.answer = true;
    EXPECT_TRUE(bin.empty("", 0, ui));
    EXPECT_EQ(ui.progressDone, (std::vector<std::size_t>{1, 2, 3, 4}));
    for (const fs::path& folder : {home, top.path() / (".Trash-" + Uid), top.path() / ".Trash" / Uid})
        EXPECT_EQ(entries(folder / "files") + entries(folder / "info"), 0u) << folder;
    EXPECT_FALSE(fs::exists(home / "directorysizes"));

    // An empty bin asks nothing.
    RecordedUi again;
    EXPECT_TRUE(bin.empty("", 0, again));
    EXPECT_TRUE(again.asked.empty());
}

TEST(RecycleBin, IgnoresSharedTrashWithoutStickyBitAndTrashThatIsALink) {
    testsupport::ScratchDir data, top, elsewhere;
    trashFile(top.path() / ".Trash" / Uid, "unsafe.txt", "u", "unsafe.txt");
    fs::permissions(top.path() / ".Trash", fs::perms::owner_all); // no sticky bit: not to be trusted
    trashFile(elsewhere.path(), "victim.txt", "v", "/victim.txt");
    fs::create_symlink(elsewhere.path(), data.path() / "Trash");

    LinuxRecycleBin bin(environment(data.path(), {top.str()}));
    EXPECT_TRUE(bin.items("").empty());
    RecordedUi ui;
    EXPECT_TRUE(bin.empty("", NoConfirmation | NoProgressUi, ui));
    EXPECT_TRUE(fs::exists(top.path() / ".Trash" / Uid / "files/unsafe.txt"));
    EXPECT_TRUE(fs::exists(elsewhere.path() / "files/victim.txt"));
}

TEST(RecycleBin, ARootNamesOneFilesystem) {
    testsupport::ScratchDir data, dir;
    testsupport::ScratchMount stick("-t tmpfs -o size=4m scourmill", dir.path() / "stick");
    if (!stick.mounted())
        GTEST_SKIP() << stick.reason();
    const fs::path mnt = stick.point();
    trashFile(data.path() / "Trash", "home.txt", "h", "/home.txt");
    trashFile(mnt / (".Trash-" + Uid), "stick.txt", "s", "stick.txt");

    LinuxRecycleBin bin(environment(data.path()));
    RecordedUi ui;
    EXPECT_TRUE(bin.empty(mnt.string(), NoConfirmation, ui));
    EXPECT_TRUE(ui.asked.empty());
    EXPECT_FALSE(fs::exists(mnt / (".Trash-" + Uid) / "files/stick.txt"));
    EXPECT_TRUE(fs::exists(data.path() / "Trash/files/home.txt"));
}

TEST(RecycleBin, RecentDocumentsAreEmptiedInPlaceLeavingNoAddressOnTheDrive) {
    // On a drive of its own, so that the drive's bytes can be searched: a list written anew
    // elsewhere would leave the old one's blocks holding the addresses.
    testsupport::ScratchDir data;
    testsupport::LoopImage image(data.path(), 16);
    if (!image.mounted())
        GTEST_SKIP() << image.reason();
    const std::string path = image.mountPoint().string() + "/recently-used.xbel";
    LinuxRecycleBin bin(environment(image.mountPoint()));
    RecordedUi ui; // for its engine
    EXPECT_TRUE(bin.clearRecentDocuments(ui.engine)); // no file, nothing to clear, nothing created
    EXPECT_FALSE(fs::exists(path));

    std::ofstream(path) << "<?xml version=\"1.0\"?>\n<xbel version=\"1.0\">\n"
                          "<bookmark href=\"file:///home/u/secret%20plan.odt\" added=\"2024-01-01T00:00:00Z\"/>\n"
                          "<bookmark href=\"file:///home/u/diary.txt\" added=\"2024-01-01T00:00:00Z\"/>\n</xbel>\n";
    ::chmod(path.c_str(), 0600);

    EXPECT_EQ(bin.recentDocuments(),
              (std::vector<std::string>{"file:///home/u/secret%20plan.odt", "file:///home/u/diary.txt"}));
    EXPECT_TRUE(bin.clearRecentDocuments(ui.engine));
    EXPECT_TRUE(bin.recentDocuments().empty());
    image.sync();
    EXPECT_FALSE(image.imageContains("secret%20plan")) << "the old list is still on the drive";
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    GBookmarkFile* reread = g_bookmark_file_new();
    EXPECT_TRUE(g_bookmark_file_load_from_file(reread, path.c_str(), nullptr)) << "no longer a bookmark list";
    g_bookmark_file_free(reread);
}

// Whoever can write to a drive's trash folder can put a FIFO where a record belongs; a
// recent-documents list that is a link is how recording is switched off. Neither is ever opened in
// a way that could wait (an alarm ends the test program should one be), and each is named once,
// left as it was.
TEST(RecycleBin, RecordsThatAreNoRegularFilesAreNamedAndLeftWithoutWaiting) {
    testsupport::ScratchDir data;
    fs::create_directories(data.path() / "Trash/info");
    data.write("Trash/files/item.txt", "trashed");
    const fs::path record = data.path() / "Trash/info/item.txt.trashinfo", list = data.path() / "recently-used.xbel";
    ASSERT_EQ(::mkfifo(record.c_str(), 0600), 0);
    fs::create_symlink("/dev/null", list);
    LinuxRecycleBin bin(environment(data.path()));
    ::alarm(60);
    const auto items = bin.items("");
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].originalPath, "");
    EXPECT_TRUE(bin.recentDocuments().empty());
    RecordedUi ui;
    EXPECT_FALSE(bin.clearRecentDocuments(ui.engine));
    ::alarm(0);
    const auto refused = bin.takeRefused();
    ASSERT_EQ(refused.size(), 2u);
    EXPECT_EQ(refused[0].path + ": " + refused[0].reason.substr(0, 29), record.string() + ": is a FIFO, not a regular file");
    EXPECT_EQ(refused[1].path + ": " + refused[1].reason.substr(0, 18), list.string() + ": is a symbolic link");
    EXPECT_TRUE(bin.takeRefused().empty()); // each named once
    EXPECT_TRUE(fs::is_symlink(list));
}
