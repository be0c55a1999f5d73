// The recent-item lists cleaned in the system's own registry through advapi32: the lists are
// written with the system's calls, cleaned by each scheme, and read back with the system's calls.
// Only under Wine, in the scratch prefix the test run makes: on Windows itself these are the
// user's own lists.

#include "cleaning/CleanIT.h"
#include "platform/Platform.h"
#include "tests/support/Recorders.h"
#include "tests/support/Wine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

const std::wstring Explorer = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::wstring Applets = L"Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\";
const std::wstring TypedUrls = L"Software\\Microsoft\\Internet Explorer\\TypedURLs";
const std::wstring MediaPlayer = L"Software\\Microsoft\\MediaPlayer\\Player\\RecentFileList";
const std::wstring WinZip = L"Software\\Nico Mak Computing\\WinZip\\";

using Names = std::vector<std::wstring>;

struct Value {
    std::wstring key, name, text; ///< a REG_SZ value, or a REG_DWORD 1 when text is empty
};

/// Every list, each with what its scheme must leave, and a value of a key no scheme names.
const std::vector<Value>& everyList() {
    static const std::vector<Value> values = {
        {Explorer + L"RecentDocs", L"MRUList", L"ba"},   {Explorer + L"RecentDocs", L"a", L"a.txt"},
        {Explorer + L"RecentDocs", L"b", L"b.txt"},
        {TypedUrls, L"url1", L"http://a/"},              {TypedUrls, L"url2", L"http://b/"},
        {TypedUrls, L"url4", L"http://d/"},              {MediaPlayer, L"File1", L"C:\\song.mp3"},
        {Explorer + L"Doc Find Spec MRU", L"MRUList", L"a"}, {Explorer + L"Doc Find Spec MRU", L"a", L"*.doc"},
        {Explorer + L"FindComputerMRU", L"MRUList", L"a"}, {Explorer + L"FindComputerMRU", L"a", L"SERVER"},
        {Applets + L"Paint\\Recent File List", L"File1", L"C:\\a.bmp"},
        {Applets + L"Paint\\Recent File List", L"File3", L"C:\\c.bmp"},
        {Explorer + L"RunMRU", L"MRUList", L"ba"},       {Explorer + L"RunMRU", L"a", L"cmd\\1"},
        {Explorer + L"RunMRU", L"b", L"regedit\\1"},     {Explorer + L"RunMRU", L"c", L"notepad\\1"},
        {Applets + L"Wordpad\\Recent File List", L"File2", L"C:\\b.doc"},
        {WinZip + L"filemenu", L"filemenu1", L"C:\\a.zip"}, {WinZip + L"extract", L"extract1", L"C:\\out"},
        {WinZip + L"extract", L"extract2", L""},         {WinZip + L"extract", L"extract3", L"C:\\kept"},
        {L"Software\\Tavi Scourmill Tests\\Untouched", L"keep", L"me"},
    };
    return values;
}

void writeAll() {
    for (const Value& v : everyList()) {
        const DWORD one = 1;
        const LSTATUS r = v.text.empty()
                              ? ::RegSetKeyValueW(HKEY_CURRENT_USER, v.key.c_str(), v.name.c_str(), REG_DWORD, &one, sizeof one)
                              : ::RegSetKeyValueW(HKEY_CURRENT_USER, v.key.c_str(), v.name.c_str(), REG_SZ, v.text.c_str(),
                                                  static_cast<DWORD>((v.text.size() + 1) * sizeof(wchar_t)));
        ASSERT_EQ(r, ERROR_SUCCESS);
    }
}

void removeAll() {
    for (const Value& v : everyList())
        ::RegDeleteTreeW(HKEY_CURRENT_USER, v.key.c_str());
}

Names names(const std::wstring& key) {
    return testsupport::registryValueNames(key);
}

class WindowsCleanITTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> platform = platform::createNative();
    testsupport::RecordingPrompts prompts; // answers No: the prefix's recycle bin is not what this is about
    testsupport::RecordingSink problems;
    cleaning::CleanIT clean{*platform, prompts, &problems};

    void SetUp() override {
        if (!testsupport::underWine())
            GTEST_SKIP() << "changes the user's own recent-item lists; runs under Wine in a scratch prefix";
        prompts.answers.assign(8, false);
        removeAll();
        writeAll();
    }
    void TearDown() override {
        if (testsupport::underWine())
            removeAll();
    }
};

} // namespace

TEST_F(WindowsCleanITTest, DoEmAllEmptiesEveryListAndLeavesOtherValues) {
    const cleaning::CleanPreview preview = cleaning::CleanIT::Preview(*platform);
    EXPECT_EQ(names(Explorer + L"RunMRU").size(), 4u); // the preview changes nothing
    clean.CleanMruItem("Do Em All");
    for (const std::wstring& key : {Explorer + L"Doc Find Spec MRU", Explorer + L"FindComputerMRU",
                                    Applets + L"Paint\\Recent File List", WinZip + L"filemenu"})
        EXPECT_EQ(names(key), Names{});
    EXPECT_EQ(names(Explorer + L"RecentDocs"), Names{}); // the shell clears its own list whole
    EXPECT_EQ(names(Explorer + L"RunMRU"), Names{L"c"});
    EXPECT_EQ(names(L"Software\\Tavi Scourmill Tests\\Untouched"), Names{L"keep"});
    // What the preview listed is what went: every value that is gone was listed, and only those.
    std::size_t gone = 0;
    for (const Value& v : everyList()) {
        const Names left = names(v.key);
        gone += std::find(left.begin(), left.end(), v.name) == left.end();
    }
    EXPECT_EQ(preview.values.size(), gone);
}
