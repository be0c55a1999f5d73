// The recent-item lists cleaned on real user.reg files in a temporary Wine prefix, through the
// native platform; the recycle bin is the Linux trash confined to scratch folders.

#include "cleaning/CleanIT.h"
#include "platform/Environment.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxRegistry.h"
#include "tests/cleaning/TraceRecorders.h"
#include "tests/support/Hive.h"
#include "tests/support/Process.h"
#include "tests/support/Scratch.h"
#include "tests/support/ScratchMount.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>

namespace fs = std::filesystem;
using namespace cleaning;
using platform::CurrentUserRoot;

namespace {

/// The process's environment with the registry, the trash and the wineservers' folders in scratch
/// folders, and a mount table that puts no real drive's trash in reach.
platform::Environment scratchEnvironment(const fs::path& prefix, const fs::path& dataHome, const fs::path& servers) {
    platform::Environment env = platform::processEnvironment();
    env["WINEPREFIX"] = prefix.string();
    env["XDG_DATA_HOME"] = dataHome.string();
    env["SCOURMILL_WINESERVERS"] = servers.string();
    env["SCOURMILL_MOUNTINFO"] = testsupport::mountTablePath().string();
    return env;
}

std::string section(const std::string& key, const std::vector<std::string>& values) {
    std::string escaped;
    for (char c : key)
        escaped += c == '\\' ? std::string("\\\\") : std::string(1, c);
    std::string out = "\n[" + escaped + "] 1700000000\n#time=1da16a0b0c0d0e0\n";
    for (const std::string& v : values)
        out += v + "\n";
    return out;
}

const std::string Explorer = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::string Applets = "Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\";

// A hive holding every list, each with a value that must stay, and a key nobody touches.
std::string everyList() {
    return section(Explorer + "RecentDocs", {"\"MRUList\"=\"ba\"", "\"a\"=hex:61,00", "\"b\"=hex:62,00", "\"z\"=\"stays\""}) +
           section("Software\\Microsoft\\Internet Explorer\\TypedURLs",
                   {"\"url1\"=\"http://a/\"", "\"url2\"=\"http://b/\"", "\"url4\"=\"http://d/\""}) +
           section("Software\\Microsoft\\MediaPlayer\\Player\\RecentFileList", {"\"File1\"=\"C:\\\\song.mp3\""}) +
           section(Explorer + "Doc Find Spec MRU", {"\"MRUList\"=\"a\"", "\"a\"=\"*.doc\""}) +
           section(Explorer + "FindComputerMRU", {"\"MRUList\"=\"a\"", "\"a\"=\"SERVER\""}) +
           section(Applets + "Paint\\Recent File List", {"\"File1\"=\"C:\\\\a.bmp\"", "\"File3\"=\"C:\\\\c.bmp\""}) +
           section(Explorer + "RunMRU", {"\"MRUList\"=\"ba\"", "\"a\"=\"cmd\\\\1\"", "\"b\"=\"regedit\\\\1\"",
                                         "\"c\"=\"notepad\\\\1\""}) +
           section(Applets + "Wordpad\\Recent File List", {"\"File2\"=\"C:\\\\b.doc\""}) +
           section("Software\\Nico Mak Computing\\WinZip\\filemenu", {"\"filemenu1\"=\"C:\\\\a.zip\""}) +
           section("Software\\Nico Mak Computing\\WinZip\\extract", {"\"extract1\"=\"C:\\\\out\"", "\"extract2\"=dword:00000001",
                                                                    "\"extract3\"=\"C:\\\\kept\""}) +
           section("Software\\Wine\\Fonts", {"\"LogPixels\"=dword:00000060"});
}

struct CleanITTest : ::testing::Test {
    testsupport::ScratchDir prefix, data, servers;
    fs::path hive = testsupport::writeUserReg(prefix.path(), everyList());
    const platform::Environment env = scratchEnvironment(prefix.path(), data.path(), servers.path());
    std::unique_ptr<platform::Platform> native = platform::createNative(env);
    platform::Platform& platform = *native;
    testsupport::RecordingPrompts prompts;
    testsupport::RecordingSink problems;
    CleanIT clean{platform, prompts, &problems};

    std::vector<std::string> names(const std::string& key) {
        platform::RegKey k = 0;
        std::vector<std::string> out;
        if (platform.registry().openKey(CurrentUserRoot, key, k) == platform::RegResult::Success)
            platform.registry().valueNames(k, out);
        return out;
    }
    using Names = std::vector<std::string>;
};

} // namespace

TEST_F(CleanITTest, DoEmAllCleansEveryListAndChangesNothingElse) {
    // The trash's own rules are the recycle bin's (a link in it is the destruction matrix's); here,
    // what the user is asked.
    data.write("Trash/files/old.txt", "0123456789");
    data.write("Trash/files/new.txt", "");
    const CleanPreview preview = CleanIT::Preview(platform);
    EXPECT_TRUE(prompts.asked.empty());

    clean.CleanMruItem("Do Em All");
    for (const std::string& key :
         {Explorer + "Doc Find Spec MRU", Explorer + "FindComputerMRU", Applets + "Paint\\Recent File List",
          std::string("Software\\Nico Mak Computing\\WinZip\\filemenu")})
        EXPECT_EQ(names(key), Names{}) << key;
    EXPECT_EQ(names(Explorer + "RecentDocs"), Names{"z"});
    // Each scheme keeps its quirks.
    EXPECT_EQ(names(Explorer + "RunMRU"), Names{"c"}); // only the letters of MRUList
    // Stops at the gap: url4 stays.
    EXPECT_EQ(names("Software\\Microsoft\\Internet Explorer\\TypedURLs"), Names{"url4"});
    // Starts at File0, which is missing: File1 stays.
    EXPECT_EQ(names("Software\\Microsoft\\MediaPlayer\\Player\\RecentFileList"), Names{"File1"});
    // Paint's File1 is there: the whole range goes, gap or not; WordPad's is not: only it is tried.
    EXPECT_EQ(names(Applets + "Wordpad\\Recent File List"), Names{"File2"});
    // extract2 is no string: read as empty, deleted, and the walk stops.
    EXPECT_EQ(names("Software\\Nico Mak Computing\\WinZip\\extract"), Names{"extract3"});
    EXPECT_TRUE(problems.items.empty());
    ASSERT_EQ(prompts.asked.size(), 1u);
    EXPECT_EQ(prompts.asked[0], "Are you sure you want to permanently delete these 2 items (10 bytes)?");
    EXPECT_EQ(prompts.titles, std::vector<std::string>{"Empty Recycle Bin"});
    EXPECT_TRUE(fs::is_empty(data.path() / "Trash/files"));

    // What the preview listed is exactly what went.
    std::string expected = testsupport::HiveHeader + everyList();
    for (const auto& value : preview.values) {
        std::string key;
        for (char c : value.key)
            key += c == '\\' ? std::string("\\\\") : std::string(1, c);
        const std::size_t sectionAt = expected.find("[" + key + "]");
        ASSERT_NE(sectionAt, std::string::npos) << value.key;
        const std::size_t at = expected.find("\n\"" + value.name + "\"=", sectionAt);
        ASSERT_NE(at, std::string::npos) << value.name;
        expected.erase(at, expected.find('\n', at + 1) - at);
    }
    std::string after = testsupport::readFile(hive);
    for (std::string* text : {&expected, &after}) // the changed keys' time stamps
        *text = std::regex_replace(*text, std::regex("\\] [0-9]+\n#time=[0-9a-f]+\n"), "] STAMP\n");
    EXPECT_EQ(after, expected); // the untouched key too
}

TEST_F(CleanITTest, AHiveInUseByARunningWineserverIsLeftAlone) {
    const std::string before = testsupport::readFile(hive);
    const std::string serverDir = platform::linux::LinuxRegistry(platform::linux::Environment::from(env)).serverDirectory();
    {
        const auto server = testsupport::holdWineServerLock(serverDir);
        ASSERT_TRUE(server->ready());
        clean.CleanMruItem("Do Em All");
    }

    EXPECT_EQ(testsupport::readFile(hive), before);
    // Each value that would have gone is named, so the command line can exit with 1.
    EXPECT_TRUE(problems.items.count("HKEY_CURRENT_USER\\Software\\Microsoft\\Internet Explorer\\TypedURLs\\url1"));
}

