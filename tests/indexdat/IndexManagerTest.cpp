// The window's actions through a recording view: how the window opens, the selection check, the
// questions of the overwrite and what the view shows after them.

#include "core/NumberFormat.h"
#include "core/Prompts.h"
#include "indexdat/ActivityWipe.h"
#include "indexdat/IndexManager.h"
#include "indexdat/IndexTexts.h"
#include "platform/Platform.h"
#include "tests/indexdat/RecordFile.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <fstream>

using testsupport::readFile;
using testsupport::ScratchDir;

namespace {

class RecorderView final : public indexdat::IndexView, public core::Prompts {
public:
    std::vector<std::string> files;
    int selected = -1;
    std::vector<std::string> activity;
    std::string sizeText, raw, counts, total;
    std::string folder, pattern = "index.dat";
    std::deque<bool> answers; ///< answers to the questions, in order
    std::vector<std::string> asked, told;
    bool busy = false;

    void clearFiles() override { files.clear(), selected = -1; }
    void addFile(const std::string& path) override { files.push_back(path); }
    int fileCount() const override { return static_cast<int>(files.size()); }
    std::string fileAt(int i) const override { return i >= 0 && i < fileCount() ? files[i] : std::string(); }
    int selectedFile() const override { return selected; }
    void selectFile(int i) override {
        if (i < fileCount())
            selected = i;
    }
    void clearActivity() override { activity.clear(); }
    void addActivity(const std::string& e) override { activity.push_back(e); }
    void setFileSizeText(const std::string& t) override { sizeText = t; }
    void setRawBytes(const std::string& b) override { raw = b; }
    void setCountsText(const std::string& t) override { counts = t; }
    void setTotalText(const std::string& t) override { total = t; }
    std::string searchFolder() const override { return folder; }
    std::string searchPattern() const override { return pattern; }
    void setBusy(bool b) override { busy = b; }
    void pumpEvents() override {}
    core::Prompts& prompts() override { return *this; }
    bool askYesNo(const std::string& text, const std::string&, int style) override {
        EXPECT_EQ(style, 36);
        asked.push_back(text);
        const bool answer = !answers.empty() && answers.front();
        if (!answers.empty())
            answers.pop_front();
        return answer;
    }
    void tell(const std::string& text, const std::string& title, int) override {
        EXPECT_EQ(title, "Tavi Message");
        told.push_back(text);
    }
};

class IndexManagerTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    ScratchDir dir;
    RecorderView view;
    indexdat::IndexManager manager{*p, view};
    std::string marked = testsupport::RecordFile().url("Visited: tavi@http://a.example/").bytes();
};

} // namespace

TEST_F(IndexManagerTest, OpensOnTheWinePrefixUsersFolderWithTheFirstFileShown) {
    const std::string users = std::string(std::getenv("WINEPREFIX")) + "/drive_c/users";
    EXPECT_EQ(indexdat::defaultSearchFolder(*p), std::getenv("HOME")); // no users folder yet
    std::filesystem::create_directories(users + "/tavi/Local Settings/History/History.IE5");
    std::ofstream(users + "/tavi/Local Settings/History/History.IE5/index.dat", std::ios::binary) << marked;
    view.folder = indexdat::defaultSearchFolder(*p);
    EXPECT_EQ(view.folder, users);

    manager.load();
    ASSERT_EQ(view.files.size(), 1u);
    EXPECT_EQ(view.selected, 0);
    EXPECT_EQ(view.counts, "1/5");
    EXPECT_EQ(view.total, "=" + core::formatGrouped(static_cast<std::int64_t>(marked.size())) + " Bytes");
    EXPECT_EQ(view.activity, std::vector<std::string>{"http://a.example/"});
    EXPECT_EQ(view.sizeText, "File Size in bytes = " + std::to_string(marked.size()));
    EXPECT_EQ(view.raw, marked);
    EXPECT_FALSE(view.busy);
    std::filesystem::remove_all(std::string(std::getenv("WINEPREFIX")) + "/drive_c");
}

TEST_F(IndexManagerTest, ActionsWithoutASelectionAskForOne) {
    view.folder = dir.str();
    manager.load(); // nothing found: the selection quietly fails, and no message at start
    EXPECT_TRUE(view.told.empty());
    EXPECT_EQ(view.counts, "0/1");
    EXPECT_EQ(view.total, "=0 Bytes");
    manager.reportAll();
    manager.deleteAll();
    EXPECT_TRUE(view.told.empty());
    manager.reportSelected();
    EXPECT_EQ(view.told, std::vector<std::string>{indexdat::SelectFileMessage});
    manager.rawReport(); // no check here: nothing happens
    EXPECT_EQ(view.told.size(), 1u);
    EXPECT_FALSE(view.busy);
}

TEST_F(IndexManagerTest, AnsweringNoStillClearsTheActivityAndRefreshesTheRawView) {
    const auto path = dir.write("index.dat", marked);
    view.folder = dir.str();
    manager.search();
    manager.reportSelected();
    view.raw = "stale";
    view.answers = {false};
    manager.deleteActivity();
    EXPECT_EQ(view.asked, std::vector<std::string>{"TaviWipe " + path.string() + " ?"});
    EXPECT_FALSE(manager.lastAnswer());
    EXPECT_TRUE(view.activity.empty());
    EXPECT_EQ(view.raw, marked);
    EXPECT_EQ(readFile(path), marked);

    view.answers = {true};
    manager.deleteActivity();
    EXPECT_TRUE(manager.lastAnswer());
    EXPECT_EQ(view.raw.size(), indexdat::lengthAfterWipe(marked.size()));
    EXPECT_EQ(view.sizeText, "File Size in bytes = " + std::to_string(view.raw.size()));
}

TEST_F(IndexManagerTest, DeleteAllAsksOncePerMarkedFileInListOrder) {
    const auto first = dir.write("a/index.dat", marked);
    dir.write("b/index.dat", std::string(4096, 'x')); // holds no marker: not asked about
    const auto third = dir.write("c/index.dat", marked);
    view.folder = dir.str();
    manager.search();
    manager.reportAll();
    EXPECT_EQ(view.activity.size(), 2u);
    view.answers = {true, false};
    manager.deleteAll();
    ASSERT_EQ(view.asked.size(), 2u);
    // Both marked files were asked about, in the order the list shows them.
    std::vector<std::string> expected;
    for (const std::string& f : view.files)
        if (f != (dir.path() / "b" / "index.dat").string())
            expected.push_back("TaviWipe " + f + " ?");
    EXPECT_EQ(view.asked, expected);
    const std::string firstAsked = view.asked[0].substr(9, view.asked[0].size() - 11);
    const auto wiped = firstAsked == first.string() ? first : third;
    const auto kept = firstAsked == first.string() ? third : first;
    EXPECT_EQ(readFile(wiped).size(), indexdat::lengthAfterWipe(marked.size()));
    EXPECT_EQ(readFile(kept), marked);
    EXPECT_EQ(view.selected, -1);
    EXPECT_FALSE(view.busy);
}

TEST(IndexTexts, HelpToggleAndPopUps) {
    EXPECT_EQ(indexdat::toggledHelpCaption("HELP ON"), "HELP OFF");
    EXPECT_EQ(indexdat::toggledHelpCaption("HELP OFF"), "HELP ON");
    EXPECT_EQ(indexdat::toggledHelpCaption("help on"), "help on");
    EXPECT_EQ(indexdat::helpMenus().size(), 11u);
    EXPECT_EQ(indexdat::helpFor("GGCommand6")->items[0].caption, "Shows all activity in every occurence of every ");
    EXPECT_EQ(indexdat::helpFor(""), nullptr);
    EXPECT_EQ(indexdat::helpFor("GGCommand7"), nullptr);
}
