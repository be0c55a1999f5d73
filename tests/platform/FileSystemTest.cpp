#include "platform/Platform.h"
#include "tests/support/LoopImage.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testsupport::ScratchDir;

namespace {

/// Whether `path` is in use as a user who cannot open the loop devices' nodes is told, going by
/// the path sysfs names instead: asked in a child process that sees an empty /dev in a mount
/// namespace of its own. Empty when the child could not ask.
std::optional<bool> inUseWithoutDeviceNodes(platform::FileSystem& files, const fs::path& path) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("tmpfs", "/dev", "tmpfs", 0, "size=4k") != 0)
            ::_exit(2);
        ::_exit(files.isInUse(path.string()) ? 1 : 0);
    }
    int status = 0;
    if (pid < 0 || ::waitpid(pid, &status, 0) != pid || !WIFEXITED(status) || WEXITSTATUS(status) > 1)
        return std::nullopt;
    return WEXITSTATUS(status) == 1;
}

} // namespace

class FileSystemTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::FileSystem& files = p->fileSystem();
    ScratchDir dir;

    std::map<std::string, platform::FileInfo> listed(const std::string& pattern) {
        std::map<std::string, platform::FileInfo> out;
        EXPECT_TRUE(files.list(dir.str(), pattern, [&](const platform::FileInfo& fi) {
            out[fi.name] = fi;
            return true;
        }));
        return out;
    }
};

TEST_F(FileSystemTest, ListsWithWildcardsAndDescribesLinksAsLinks) {
    dir.write("index.dat", "12345");
    fs::create_directory(dir.path() / "sub");
    fs::create_directory_symlink(dir.path() / "sub", dir.path() / "loop");
    fs::create_symlink(dir.path() / "index.dat", dir.path() / "linked.dat");

    const auto all = listed("*");
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all.at("index.dat").size, 5u);
    EXPECT_TRUE(all.at("index.dat").isRegular);
    EXPECT_TRUE(all.at("index.dat").ownedByUser);
    // A link to a folder is a link, not a folder: a walk cannot loop through it.
    EXPECT_TRUE(all.at("loop").isLink());
    EXPECT_FALSE(all.at("loop").isDirectory());
    EXPECT_FALSE(all.at("linked.dat").isRegular);

    const auto dats = listed("*.dat");
    EXPECT_EQ(dats.size(), 2u);
    EXPECT_TRUE(dats.count("index.dat") && dats.count("linked.dat"));
    EXPECT_FALSE(files.list((dir.path() / "missing").string(), "*", [](auto&) { return true; }));
    EXPECT_FALSE(files.list((dir.path() / "loop").string(), "*", [](auto&) { return true; }));
}

TEST_F(FileSystemTest, AFileHeldOpenOrBackingALoopDeviceIsInUseByWhicheverNameReachesIt) {
    const fs::path image = dir.write("backing.img", std::string(1 << 20, '\0'));
    EXPECT_FALSE(files.isInUse(image.string()));
    {
        std::ifstream holder(image);
        EXPECT_TRUE(files.isInUse(image.string()));
    }
    testsupport::LoopDevice loop(image);
    if (!loop.attached())
        GTEST_SKIP() << loop.reason();
    EXPECT_TRUE(files.isInUse(image.string()));

    // The file itself, not the path the device was given: another name of it is in use, and a
    // new file under its old name is not.
    const fs::path other = dir.path() / "other-name.img", moved = dir.path() / "moved.img";
    fs::create_hard_link(image, other);
    fs::rename(image, moved);
    dir.write("backing.img", "a new file");
    EXPECT_TRUE(files.isInUse(other.string()));
    EXPECT_TRUE(files.isInUse(moved.string()));
    EXPECT_FALSE(files.isInUse(image.string()));

    // A user who cannot open the device nodes is told the same.
    EXPECT_EQ(inUseWithoutDeviceNodes(files, moved), std::optional<bool>(true));
    EXPECT_EQ(inUseWithoutDeviceNodes(files, image), std::optional<bool>(false));

    ASSERT_TRUE(loop.detach());
    EXPECT_FALSE(files.isInUse(moved.string()));
}
