// The secure delete on real files: the bytes each pass kind leaves, the rounded coverage, tiny
// files, the "EndWipe" flag, and links and swaps in a folder being wiped.

#include "platform/Platform.h"
#include "tests/support/Scratch.h"
#include "tests/wipe/Recorders.h"
#include "wipe/SecureDelete.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::ScratchDir;

namespace {

struct SecureDeleteTest : ::testing::Test {
    std::unique_ptr<platform::Platform> platform = platform::createNative();
    ScratchDir dir;
    testsupport::SecureDeleteRecorder view;
    core::QuietSink quiet;
    wipe::SecureDelete shred{*platform, view, quiet, wipe::PatternRandom(42)};

    /// The file's content at the start of each pass: what the pass before left.
    std::map<int, std::string> contentBeforePass(const fs::path& file) {
        std::map<int, std::string> seen;
        view.onPass = [&seen, file](const std::string& path, int pass) {
            if (path == file.string())
                seen[pass] = readFile(file);
        };
        EXPECT_TRUE(shred.WipeFile(file.string()));
        view.onPass = nullptr;
        return seen;
    }
};

} // namespace

TEST_F(SecureDeleteTest, EachPassLeavesItsThirdBlockOverTheWholeFile) {
    const auto file = dir.write("ten.bin", "0123456789"); // block length 2, five positions
    const auto after = contentBeforePass(file);
    EXPECT_FALSE(fs::exists(file));
    ASSERT_EQ(after.size(), 35u);
    std::set<char> drawn;
    for (int pass : {1, 2, 3, 4, 32, 33, 34}) { // random: one value over the whole file
        const std::string& bytes = after.at(pass + 1);
        EXPECT_EQ(bytes, std::string(10, bytes[0])) << "pass " << pass;
        drawn.insert(bytes[0]);
    }
    EXPECT_GT(drawn.size(), 1u) << "the random passes all drew the same value";
    EXPECT_EQ(after.at(8), std::string(10, '\x24'));  // pass 7: 0x92, 0x49, then 0x24 over them
    EXPECT_EQ(after.at(26), std::string(10, '\xFF')); // pass 25, the last of the steps of 0x11
    EXPECT_EQ(after.at(32), std::string(10, '\xB6')); // pass 31: 0xDB, 0x6D, 0xB6
    ASSERT_EQ(view.valueLines.size(), 35u);
    EXPECT_EQ(view.valueLines[6], "Block1: 0x31 , Block2: 0x49 , Block3: 0x24");
}

TEST_F(SecureDeleteTest, CoverageFollowsTheRoundedBlockLengthAndCountDownToEmptyFiles) {
    const auto empty = dir.write("empty", "");
    EXPECT_TRUE(shred.WipeFile(empty.string()));
    EXPECT_TRUE(view.passes.empty()); // no pass for an empty file
    EXPECT_FALSE(fs::exists(empty));

    // 9 bytes: block 2, count round(4.5) = 4: the last byte is not reached.
    auto after = contentBeforePass(dir.write("nine.bin", "abcdefghi"));
    EXPECT_EQ(after.at(6), std::string(8, '\x55') + "i");
    // 11 bytes: block 2, count round(5.5) = 6: a pass writes 12 bytes.
    after = contentBeforePass(dir.write("eleven.bin", "abcdefghijk"));
    EXPECT_EQ(after.at(6), std::string(12, '\x55'));

    // Two bytes make a block length of 0: passes run but write nothing, and the file still goes.
    const auto tiny = contentBeforePass(dir.write("tiny", "ab"));
    EXPECT_EQ(tiny.at(35), "ab");
    EXPECT_FALSE(fs::exists(dir.path() / "tiny"));

    const auto readOnly = dir.write("ro.txt", "read only secret");
    fs::permissions(readOnly, fs::perms::owner_read, fs::perm_options::replace);
    EXPECT_TRUE(shred.WipeFile(readOnly.string()));
    EXPECT_FALSE(fs::exists(readOnly));
}

TEST_F(SecureDeleteTest, EndWipeStopsTheFileAndLaterFilesAreOnlyCutAndDeleted) {
    const auto a = dir.write("a.bin", std::string(100000, 'A'));
    const auto b = dir.write("b.bin", std::string(100000, 'B'));
    std::map<std::string, std::uint64_t> written;
    view.onPass = [&](const std::string& path, int pass) {
        if (path == a.string() && pass == 3)
            view.endWipe = true;
    };
    view.onProgress = [&](const wipe::FileWipeProgress& now) { written[now.path] += 1; };
    EXPECT_TRUE(shred.WipeSelectedFiles("a.bin", {a.string(), b.string()}));
    EXPECT_FALSE(fs::exists(a) || fs::exists(b));
    EXPECT_EQ(written.count(b.string()), 0u); // b never got a single block
    EXPECT_EQ(view.passes.back(), std::make_pair(b.string(), 1));
}

TEST_F(SecureDeleteTest, NothingSwappedInDuringAWipeIsWrittenOrDeleted) {
    ScratchDir outside;
    outside.write("a.bin", std::string(1000, 'P'));
    outside.write("b.bin", std::string(1000, 'Q'));
    const auto victim = dir.path() / "victim";
    dir.write("victim/a.bin", std::string(1000, 'A'));
    dir.write("victim/b.bin", std::string(1000, 'B'));
    // While the first file is being wiped, the folder moves away and a link to another folder
    // with files of the same names takes its place.
    bool swapped = false;
    view.onPass = [&](const std::string&, int pass) {
        if (pass == 2 && !swapped) {
            fs::rename(victim, dir.path() / "moved");
            fs::create_directory_symlink(outside.path(), victim);
            swapped = true;
        }
    };
    EXPECT_TRUE(shred.WipeFolder(victim.string()));
    EXPECT_EQ(readFile(outside.path() / "a.bin"), std::string(1000, 'P'));
    EXPECT_EQ(readFile(outside.path() / "b.bin"), std::string(1000, 'Q'));
    EXPECT_TRUE(fs::is_empty(dir.path() / "moved")); // the wipe went on in the folder it had opened
    EXPECT_TRUE(fs::is_symlink(victim));               // and did not remove what now bears its name

    // A file replaced under its name between two passes is left alone from then on.
    const auto file = dir.write("swap.bin", std::string(1000, 'S'));
    view.onPass = [&](const std::string&, int pass) {
        if (pass == 3) {
            fs::rename(file, dir.path() / "old.bin");
            std::ofstream(file) << "newcomer";
        }
    };
    EXPECT_FALSE(shred.WipeFile(file.string()));
    EXPECT_EQ(readFile(file), "newcomer");
}
