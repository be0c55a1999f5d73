// The registry on Linux: real user.reg files in temporary prefixes, read and rewritten through the
// advapi32-style interface, and a wineserver's lock held by a real child process.

#include "platform/linux/LinuxRegistry.h"
#include "tests/support/Hive.h"
#include "tests/support/Process.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <regex>

namespace fs = std::filesystem;
using namespace platform;
using platform::linux::LinuxRegistry;
using winehive::HiveValue;
using winehive::WineHive;

namespace {

// Every value form Wine writes, each line exactly as Wine writes it.
const std::string FormsSection = R"HIVE(
[Software\\Tavi\\Forms] 1700000000
#time=1da16a0b0c0d0e0
@="default text"
"Plain"="C:\\Users\\tavi\\Desktop"
"Escapes"="q\"b\\ \a\b\t\n\v\f\r\e end"
"Octal"="\1x\0012"
"Unicode"="caf\xe9 \x4e2d\x00e9a"
"Expand"=str(2):"%SystemRoot%\\system32"
"Multi"=str(7):"one\0two\0"
"Number"=dword:0000002a
"Settings"=hex:30,00,00,00,fe,ff,ff,ff,02,00,00,00,03,00,00,00,3e,00,00,00,28,\
  00,00,00,00,00,00,00,d8,01,00,00,00,05,00,00,00,03,00,00,60,00,00,00,01,00,\
  00,00
"Quad"=hex(b):01,00,00,00,00,00,00,00
"WideSz"=hex(1):41,00,42,00
)HIVE";

const std::string TypedSection = R"HIVE(
[Software\\Microsoft\\Internet Explorer\\TypedURLs] 1700000001
#time=1da16a0b0c0d0e1
"url1"="http://a.example/"
"url2"="http://b.example/"
)HIVE";

struct Prefix {
    testsupport::ScratchDir dir;
    testsupport::ScratchDir servers;
    fs::path hive;
    LinuxRegistry registry;

    explicit Prefix(const std::string& sections = FormsSection + TypedSection)
        : hive(testsupport::writeUserReg(dir.path(), sections)), registry(environment(), servers.str()) {}

    platform::linux::Environment environment() const {
        platform::linux::Environment env;
        env.winePrefix = dir.str();
        return env;
    }
    std::string text() const { return testsupport::readFile(hive); }
};

/// The data of `name` below `key`, read as RegQueryValueExA is called: first for its size.
std::string queryString(Registry& reg, const std::string& key, const std::string& name, long* rc = nullptr,
                        std::uint32_t* type = nullptr) {
    RegKey k = 0;
    long r = reg.openKey(CurrentUserRoot, key, k);
    std::string out;
    if (r == RegResult::Success) {
        std::uint32_t size = 0;
        r = reg.queryValue(k, name, type, nullptr, &size);
        if (r == RegResult::Success) {
            out.resize(size);
            r = reg.queryValue(k, name, type, reinterpret_cast<std::uint8_t*>(out.data()), &size);
        }
        reg.closeKey(k);
    }
    if (rc)
        *rc = r;
    return out;
}

} // namespace

TEST(WineHive, EveryValueFormEscapeAndStrayByteRoundTripsByteForByte) {
    const std::string original = testsupport::HiveHeader + FormsSection + TypedSection + "\n[Last] 1\nno line end";
    WineHive hive;
    ASSERT_TRUE(hive.parse(original));
    EXPECT_EQ(hive.text(), original);

    // Each value written back by the writer gives Wine's own line again.
    std::istringstream lines(FormsSection);
    std::string line, logical;
    int checked = 0;
    while (std::getline(lines, line)) {
        logical += line + "\n";
        if (!line.empty() && line.back() == '\\')
            continue;
        if (logical[0] == '"' || logical[0] == '@') {
            const std::string name = logical[0] == '@' ? "" : logical.substr(1, logical.find('"', 1) - 1);
            const HiveValue* value = hive.value("Software\\Tavi\\Forms", name);
            ASSERT_NE(value, nullptr) << logical;
            EXPECT_EQ(WineHive::formatValue(name, *value) + "\n", logical);
            ++checked;
        }
        logical.clear();
    }
    EXPECT_EQ(checked, 11);
    EXPECT_FALSE(hive.parse("REGEDIT4\n"));

    // Hand-edited UTF-8 is read as such; a byte that starts no sequence stands for itself.
    using namespace std::string_literals;
    ASSERT_TRUE(hive.parse(testsupport::HiveHeader + "\n[Software\\\\Tavi] 1\n\"Raw\"=\"caf\xc3\xa9 \xff!\"\n"));
    const HiveValue* raw = hive.value("SOFTWARE\\tavi", "raw");
    ASSERT_NE(raw, nullptr);
    EXPECT_EQ(std::string(raw->data.begin(), raw->data.end()), "caf\xc3\xa9 \xc3\xbf!\0"s);
    EXPECT_EQ(WineHive::formatValue("Raw", *raw), "\"Raw\"=\"caf\\xe9 \\xff!\"");
}

TEST(LinuxRegistry, ReadsStringsAsTheAnsiCallsDoAndFindsNamesWithoutCase) {
    Prefix p;
    const std::string key = "Software\\Tavi\\Forms";
    using namespace std::string_literals;
    EXPECT_EQ(queryString(p.registry, key, ""), "default text\0"s);
    EXPECT_EQ(queryString(p.registry, key, "Escapes"), "q\"b\\ \a\b\t\n\v\f\r\x1b end\0"s);
    EXPECT_EQ(queryString(p.registry, key, "Octal"), "\x01x\x01" "2\0"s);
    EXPECT_EQ(queryString(p.registry, key, "Unicode"), "caf\xc3\xa9 \xe4\xb8\xad\xc3\xa9" "a\0"s);
    std::uint32_t type = 0;

    // A buffer too small: MoreData with the size needed, as RegQueryValueExA answers.
    RegKey k = 0;
    ASSERT_EQ(p.registry.openKey(CurrentUserRoot, key, k), RegResult::Success);
    std::uint8_t small[4];
    std::uint32_t size = sizeof small;
    EXPECT_EQ(p.registry.queryValue(k, "Plain", &type, small, &size), RegResult::MoreData);
    EXPECT_EQ(size, 22u);
    std::vector<std::string> names;
    EXPECT_EQ(p.registry.valueNames(k, names), RegResult::Success);
    EXPECT_EQ(names.size(), 11u);
    EXPECT_EQ(p.registry.closeKey(k), RegResult::Success);

    // Names compare without case; missing keys and values are not found.
    long rc = -1;
    EXPECT_EQ(queryString(p.registry, "SOFTWARE\\microsoft\\internet explorer\\typedurls", "URL2"),
              std::string("http://b.example/\0", 18));

    EXPECT_EQ(p.registry.openKey(CurrentUserRoot, "Software\\Tavi\\Nowhere", k), RegResult::FileNotFound);
    EXPECT_EQ(p.registry.openKey(CurrentUserRoot, "Software\\Tav", k), RegResult::FileNotFound);
    // A key that holds only subkeys has no section of its own in Wine's file, yet exists.
    ASSERT_EQ(p.registry.openKey(CurrentUserRoot, "software\\TAVI", k), RegResult::Success);
    EXPECT_EQ(p.registry.deleteValue(k, "NoSuchValue"), RegResult::FileNotFound);
    queryString(p.registry, "Software\\Tavi\\Forms", "url1", &rc);
    EXPECT_EQ(rc, RegResult::FileNotFound);

    // No prefix at all: nothing exists, nothing can be created.
    platform::linux::Environment none;
    none.winePrefix = (p.dir.path() / "missing").string();
    LinuxRegistry empty(none, p.servers.str());
    EXPECT_EQ(empty.openKey(CurrentUserRoot, "Software", k), RegResult::FileNotFound);
    EXPECT_EQ(empty.createKey(CurrentUserRoot, "Software\\Tavi", k), RegResult::FileNotFound);
    EXPECT_FALSE(fs::exists(none.winePrefix));
}

TEST(LinuxRegistry, DeletingOneValueChangesOnlyThatLineAndTheKeysStamp) {
    Prefix p;
    const std::string before = p.text();
    RegKey k = 0;
    ASSERT_EQ(p.registry.openKey(CurrentUserRoot, "Software\\Tavi\\Forms", k), RegResult::Success);
    ASSERT_EQ(p.registry.deleteValue(k, "SETTINGS"), RegResult::Success);
    const std::string after = p.text();

    std::string expected = before;
    const std::size_t at = expected.find("\"Settings\"");
    expected.erase(at, expected.find("00,00\n", at) + 6 - at);
    // The key line's time and its #time= line change with the key; the other key keeps its own.
    const auto masked = [](const std::string& text) {
        return std::regex_replace(text, std::regex("\\] [0-9]+\n#time=[0-9a-f]+\n"), "] STAMP\n");
    };
    EXPECT_EQ(masked(after), masked(expected));
    EXPECT_NE(after.find("[Software\\\\Tavi\\\\Forms] " + std::to_string(::time(nullptr)).substr(0, 8)), std::string::npos);
    EXPECT_NE(after.find(TypedSection), std::string::npos);

    // No temporary file is left in the prefix.
    EXPECT_EQ(std::distance(fs::directory_iterator(p.dir.path()), fs::directory_iterator()), 1);
}

TEST(LinuxRegistry, CreatedKeysAndSetStringsAreWrittenAsWineWritesThem) {
    Prefix p;
    RegKey k = 0;
    ASSERT_EQ(p.registry.createKey(CurrentUserRoot, "Software\\Tavi Scourmill\\Main", k), RegResult::Success);
    const std::string text = "Caf\xc3\xa9 \"1\"\\x";
    ASSERT_EQ(p.registry.setValue(k, "Last Path", RegType::Sz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                                  static_cast<std::uint32_t>(text.size() + 1)),
              RegResult::Success);
    const std::string file = p.text();
    EXPECT_EQ(file.rfind(testsupport::HiveHeader + FormsSection + TypedSection, 0), 0u);
    const std::string added = file.substr(testsupport::HiveHeader.size() + FormsSection.size() + TypedSection.size());
    EXPECT_TRUE(std::regex_match(added, std::regex("\n\\[Software\\\\\\\\Tavi Scourmill\\\\\\\\Main\\] [0-9]+\n"
                                                   "#time=[0-9a-f]+\n"
                                                   "\"Last Path\"=\"Caf\\\\xe9 \\\\\"1\\\\\"\\\\\\\\x\"\n")))
        << added;
    EXPECT_EQ(queryString(p.registry, "software\\tavi scourmill\\main", "last path"), text + '\0');

    // Setting an existing value replaces its line where it stands.
    ASSERT_EQ(p.registry.openKey(CurrentUserRoot, "Software\\Microsoft\\Internet Explorer\\TypedURLs", k),
              RegResult::Success);
    const std::string url = "http://c.example/";
    ASSERT_EQ(p.registry.setValue(k, "URL1", RegType::Sz, reinterpret_cast<const std::uint8_t*>(url.c_str()),
                                  static_cast<std::uint32_t>(url.size() + 1)),
              RegResult::Success);
    EXPECT_NE(p.text().find("\"URL1\"=\"http://c.example/\"\n\"url2\""), std::string::npos);
}

TEST(LinuxRegistry, RefusesEveryWriteWhileTheWineserverOfThePrefixHoldsItsLock) {
    Prefix p;
    // A server folder with a lock file nobody holds is what a crashed server leaves: writable.
    fs::create_directories(p.registry.serverDirectory());
    std::ofstream(p.registry.serverDirectory() + "/lock") << "";
    EXPECT_FALSE(p.registry.serverRunning());

    const std::string before = p.text();
    RegKey k = 0;
    ASSERT_EQ(p.registry.openKey(CurrentUserRoot, "Software\\Tavi\\Forms", k), RegResult::Success);
    {
        const auto server = testsupport::holdWineServerLock(p.registry.serverDirectory());
        ASSERT_TRUE(server->ready());
        EXPECT_TRUE(p.registry.serverRunning());
        EXPECT_EQ(p.registry.deleteValue(k, "Plain"), RegResult::SharingViolation);
        const std::uint8_t one[4] = {1, 0, 0, 0};
        EXPECT_EQ(p.registry.setValue(k, "Number", RegType::Dword, one, 4), RegResult::SharingViolation);
        RegKey created = 0;
        EXPECT_EQ(p.registry.createKey(CurrentUserRoot, "Software\\New", created), RegResult::SharingViolation);
        EXPECT_EQ(p.text(), before);
        // Reading goes on while the server runs.
        EXPECT_EQ(queryString(p.registry, "Software\\Tavi\\Forms", "Plain").size(), 22u);
    }
    EXPECT_FALSE(p.registry.serverRunning());
    EXPECT_EQ(p.registry.deleteValue(k, "Plain"), RegResult::Success);
    EXPECT_EQ(p.text().find("\"Plain\""), std::string::npos);
}
