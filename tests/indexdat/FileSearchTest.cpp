// The search over real folders: its order (each folder's own matches, then its subfolders, in the
// order the system lists them), its counters and texts, links, folders named like the pattern,
// the size quirk of large files, the overflow of its 16-bit counters, and trees deeper than any path.

#include "indexdat/FileSearch.h"
#include "controls/folderlist/FolderList.h"
#include "platform/Platform.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testsupport::ScratchDir;

namespace {

class FileSearchTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    ScratchDir dir;
    std::vector<std::string> found;
    std::int16_t files = 0;
    std::int16_t dirs = 0;

    core::Currency search(std::string path, const std::string& pattern) {
        indexdat::FileSearch finder(p->fileSystem(), [&](const std::string& f) { found.push_back(f); });
        return finder.FindFilesAPI(path, pattern, files, dirs);
    }

    /// The expected order, from the standard library's own listing (the system's order).
    void expectedOrder(const fs::path& folder, const std::string& name, std::vector<std::string>& out) {
        std::vector<fs::path> below;
        for (const auto& e : fs::directory_iterator(folder)) {
            if (e.path().filename() == name)
                out.push_back(e.path().string());
            if (e.is_directory() && !e.is_symlink())
                below.push_back(e.path());
        }
        for (const auto& sub : below)
            expectedOrder(sub, name, out);
    }
};

} // namespace

TEST_F(FileSearchTest, ListsEachFoldersMatchesBeforeItsSubfoldersInSystemOrder) {
    for (const char* f : {"u1/index.dat", "u1/a/index.dat", "u1/a/deep/x/index.dat", "u2/index.dat", "u2/b/c.txt",
                          "index.dat", "u3/e/index.dat", "u3/index.dat", "z/index.dat"})
        dir.write(f, "12345");
    fs::create_directories(dir.path() / "empty1" / "empty2");
    fs::create_directory(dir.path() / "u2" / "index.dat.d");
    fs::create_directories(dir.path() / "folder" / "index.dat" / "inner");
    dir.write("folder/index.dat/inner/index.dat", "123");
    fs::create_directory_symlink(dir.path() / "u1", dir.path() / "loop");
    fs::create_symlink(dir.path() / "u1" / "index.dat", dir.path() / "u2" / "b" / "index.dat");

    const core::Currency total = search(dir.str(), "index.dat");
    std::vector<std::string> expected;
    expectedOrder(dir.path(), "index.dat", expected);
    EXPECT_EQ(found, expected);
    // 9 files, the folder called index.dat and the link called index.dat; the link to u1 is no folder.
    EXPECT_EQ(files, 11);
    EXPECT_EQ(dirs, 15);
    EXPECT_EQ(total.rounded(), 8 * 5 + 3);
}

TEST_F(FileSearchTest, PatternsFollowThePlatformsWildcards) {
    dir.write("a/index.dat", "");
    dir.write("a/History.IE5/index.dat", "");
    dir.write("a/other.dat", "");
    search(dir.str() + "/", "*.dat");
    EXPECT_EQ(files, 3);
    EXPECT_EQ(found.front().rfind(dir.str() + "/a/", 0), 0u); // no doubled separator
    found.clear();
    search(dir.str(), "");
    search(dir.str(), "INDEX.DAT");
    EXPECT_TRUE(found.empty());
}

TEST_F(FileSearchTest, SixteenAndThirtyTwoBitQuirksOfSizesAndCounters) {
    // Files of 2 GiB and more add their low word minus their high word.
    fs::resize_file(dir.write("a/index.dat", ""), 0xC0000000ull); // sparse: no real space taken
    fs::resize_file(dir.write("b/index.dat", ""), 0x100000005ull);
    EXPECT_EQ(search(dir.str(), "index.dat").rounded(), -1073741824 + 4);
    EXPECT_THROW(indexdat::totalText(core::Currency::fromWhole(2147483648ll)), indexdat::SearchOverflow);

    // A counter passing 32767 ends the search, keeping what it listed.
    found.clear();
    dir.write("index.dat", "");
    files = 32766;
    EXPECT_THROW(search(dir.str(), "index.dat"), indexdat::SearchOverflow);
    EXPECT_EQ(found, std::vector<std::string>{dir.str() + "/index.dat"});
    files = 0;
    dirs = 32767;
    EXPECT_THROW(search(dir.str(), "index.dat"), indexdat::SearchOverflow);
    EXPECT_THROW(indexdat::countsText(0, 32767), indexdat::SearchOverflow);
}

TEST_F(FileSearchTest, NoDepthStopsTheSearch) {
    // 80 folders of 60 characters, one inside the other: the match lies more than 4,096 bytes of
    // path down, where no path to it can be opened. Made through open folders for that reason.
    const std::string level(60, 'd');
    int fd = ::open(dir.path().c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < 80; ++i) {
        ASSERT_EQ(::mkdirat(fd, level.c_str(), 0755), 0);
        const int below = ::openat(fd, level.c_str(), O_RDONLY | O_DIRECTORY);
        ::close(fd);
        fd = below;
    }
    const int file = ::openat(fd, "index.dat", O_WRONLY | O_CREAT, 0644);
    ASSERT_EQ(::write(file, "12345", 5), 5);
    ::close(file);
    ::close(fd);
    EXPECT_EQ(search(dir.str(), "index.dat").rounded(), 5);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].size(), dir.str().size() + 80 * 61 + 10);
    // rm walks any depth; the scratch folder's own clean-up works by path.
    EXPECT_EQ(std::system(("rm -rf '" + (dir.path() / level).string() + "'").c_str()), 0);
}

TEST_F(FileSearchTest, TheFolderListShowsThePathDownThenTheSubfoldersByName) {
    fs::create_directories(dir.path() / "tavi" / "zeta");
    fs::create_directories(dir.path() / "tavi" / "Alpha");
    dir.write("tavi/file.txt", "");
    fs::create_directory_symlink(dir.path(), dir.path() / "tavi" / "up");
    const auto lines = controls::folderLines(p->fileSystem(), "/", dir.str() + "/tavi");
    ASSERT_GE(lines.size(), 4u);
    for (std::size_t i = 0; i + 3 < lines.size(); ++i)
        EXPECT_TRUE(lines[i].open && lines[i].depth == static_cast<int>(i)) << lines[i].path;
    const auto& chosen = lines[lines.size() - 3];
    EXPECT_EQ(chosen.path, dir.str() + "/tavi");
    EXPECT_EQ(lines[lines.size() - 2].label, "Alpha");
    EXPECT_EQ(lines.back().path, dir.str() + "/tavi/zeta");
    EXPECT_FALSE(lines.back().open);
}

