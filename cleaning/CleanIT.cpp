#include "cleaning/CleanIT.h"

#include "wipe/Engine.h"

#include "cleaning/RegStrings.h"
#include "core/NumberFormat.h"
#include "proxies/PreviewPlatform.h"

#include <algorithm>

namespace cleaning {

using platform::CurrentUserRoot;
using platform::RegKey;
namespace RegResult = platform::RegResult;

const std::vector<std::string> ChooserItems = {
    "Recent Documents", "IE Typed URL's", "MS Media Player", "Find Files or Folders", "Find Computers", "MS Paint",
    "Run Menu",         "Word Pad",       "WinZip File",     "WinZip Extract",        "Recycle Bin",    "Do Em All"};

const std::string ChooserPrompt = "Please Choose Item to Clean";

const std::string NoChoiceMessage = "You must make a choice from the combobox pull down list. If you continue having "
                                    "trouble,please contact Tavi support.";

const std::string RecycleBinTitle = "Empty Recycle Bin";

std::string RecycleBinQuestion(std::size_t items, std::uint64_t bytes) {
    const std::string size = core::formatGrouped(static_cast<std::int64_t>(bytes)) + (bytes == 1 ? " byte" : " bytes");
    if (items == 1)
        return "Are you sure you want to permanently delete this item (" + size + ")?";
    return "Are you sure you want to permanently delete these " + core::formatGrouped(static_cast<std::int64_t>(items)) +
           " items (" + size + ")?";
}

namespace {

const std::string RecentDocsKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RecentDocs";
const std::string TypedUrlsKey = "Software\\Microsoft\\Internet Explorer\\TypedURLs";
const std::string MediaPlayerKey = "Software\\Microsoft\\MediaPlayer\\Player\\RecentFileList";
const std::string FindFilesKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Doc Find Spec MRU";
const std::string FindComputersKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FindComputerMRU";
const std::string PaintKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\Paint\\Recent File List";
const std::string RunMruKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RunMRU";
const std::string WordPadKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\Wordpad\\Recent File List";
const std::string WinZipFileMenuKey = "Software\\Nico Mak Computing\\WinZip\\filemenu";
const std::string WinZipExtractKey = "Software\\Nico Mak Computing\\WinZip\\extract";

// The shell's dialogs for the recycle bin, asked through the program's prompts.
class BinDialogs final : public platform::RecycleBinUi {
public:
    BinDialogs(core::Prompts& prompts, CleanView* view, wipe::Engine& engine)
        : m_prompts(prompts), m_view(view), m_engine(engine) {}
    bool confirmEmpty(std::size_t items, std::uint64_t bytes) override {
        return m_prompts.askYesNo(RecycleBinQuestion(items, bytes), RecycleBinTitle,
                                  core::MsgStyle::YesNo + core::MsgStyle::Exclamation);
    }
    void progress(std::size_t done, std::size_t items) override {
        if (m_view)
            m_view->recycleProgress(done, items);
    }
    platform::Remover& remover() override { return m_engine; }

private:
    core::Prompts& m_prompts;
    CleanView* m_view;
    wipe::Engine& m_engine;
};

} // namespace

CleanIT::CleanIT(platform::Platform& platform, core::Prompts& prompts, core::ProblemSink* problems, CleanView* view)
    : m_platform(platform), m_prompts(prompts), m_problems(problems), m_view(view) {}

bool CleanIT::IsChooserItem(const std::string& itemText) {
    return std::find(ChooserItems.begin(), ChooserItems.end(), itemText) != ChooserItems.end();
}

void CleanIT::CleanMruItem(const std::string& itemText) {
    using Routine = void (CleanIT::*)();
    static const Routine routines[] = {&CleanIT::CleanRecentDocs,    &CleanIT::CleanTypedURLs, &CleanIT::CleanMediaPlayer,
                                       &CleanIT::CleanFindFiles,     &CleanIT::CleanFindComputers, &CleanIT::CleanPaint,
                                       &CleanIT::CleanRunMRU,        &CleanIT::CleanWordPad, &CleanIT::CleanWinZipFileMenu,
                                       &CleanIT::CleanWinZipExtract, nullptr,                   &CleanIT::DoEmAll};
    for (std::size_t i = 0; i < ChooserItems.size(); ++i) {
        if (itemText != ChooserItems[i])
            continue;
        if (routines[i])
            (this->*routines[i])();
        else // "Clean Item" lets the shell ask, show its progress and play its sound, for all drives
            EmptyRecycleBin("", false, false, false);
        return;
    }
    m_prompts.tell(NoChoiceMessage, core::MessageTitle, core::MsgStyle::OkOnly);
}

std::string CleanIT::ReadRegString(RegKey root, const std::string& key, const std::string& name) {
    return GetRegString(m_platform.registry(), root, key, name);
}

void CleanIT::DeleteRegValue(RegKey root, const std::string& key, const std::string& name) {
    auto& registry = m_platform.registry();
    RegKey handle = 0;
    if (const long opened = registry.openKey(root, key, handle); opened != RegResult::Success) {
        // A missing key has nothing to delete; a hive that cannot be read is worth saying.
        if (opened == RegResult::AccessDenied && m_problems)
            m_problems->skipped("HKEY_CURRENT_USER\\" + key,
                                "the registry cannot be read (its file is not a regular file, or not readable); left alone");
        return;
    }
    const long rc = registry.deleteValue(handle, name);
    if (rc != RegResult::Success && rc != RegResult::FileNotFound && m_problems)
        m_problems->skipped("HKEY_CURRENT_USER\\" + key + "\\" + name,
                            rc == RegResult::SharingViolation ? "the registry is in use (is a Wine program running?)"
                                                              : "the value could not be deleted (error " +
                                                                    std::to_string(rc) + ")");
    registry.closeKey(handle);
}

void CleanIT::countedScheme(const std::string& key, const std::string& stem, int first) {
    for (int n = first; n <= 100; ++n) {
        const std::string name = stem + std::to_string(n);
        const std::string text = ReadRegString(CurrentUserRoot, key, name);
        DeleteRegValue(CurrentUserRoot, key, name);
        if (text.empty())
            break;
    }
}

void CleanIT::firstValueScheme(const std::string& key, const std::string& stem) {
    // Only the first value is looked at: with it present the whole range goes, gaps or not.
    const std::string first = ReadRegString(CurrentUserRoot, key, stem + "1");
    for (int n = 1; n <= 100; ++n) {
        DeleteRegValue(CurrentUserRoot, key, stem + std::to_string(n));
        if (first.empty())
            break;
    }
}

void CleanIT::mruListScheme(const std::string& key) {
    const std::string order = ReadRegString(CurrentUserRoot, key, "MRUList");
    for (char letter : order)
        DeleteRegValue(CurrentUserRoot, key, std::string(1, letter));
    DeleteRegValue(CurrentUserRoot, key, "MRUList");
}

void CleanIT::allValuesScheme(const std::string& key) {
    auto& registry = m_platform.registry();
    RegKey handle = 0;
    std::vector<std::string> names;
    if (registry.openKey(CurrentUserRoot, key, handle) != RegResult::Success)
        return;
    const long listed = registry.valueNames(handle, names);
    registry.closeKey(handle);
    if (listed != RegResult::Success)
        return;
    for (const std::string& name : names)
        DeleteRegValue(CurrentUserRoot, key, name);
}

void CleanIT::reportRefusedRecords() {
    for (const platform::RefusedRecord& record : m_platform.recycleBin().takeRefused())
        if (m_problems)
            m_problems->skipped(record.path, record.reason);
}

void CleanIT::CleanRecentDocs() {
#ifdef _WIN32
    // The shell's call removes the RecentDocs key whole, every value whether MRUList names it or
    // not: each is deleted here first, so that a preview lists it and the summary counts it.
    allValuesScheme(RecentDocsKey);
#endif
    wipe::Engine engine(m_platform, nullptr, nullptr); // the bin names what it refuses
    const bool cleared = m_platform.recycleBin().clearRecentDocuments(engine);
    const auto refused = m_platform.recycleBin().takeRefused();
    for (const platform::RefusedRecord& record : refused)
        if (m_problems)
            m_problems->skipped(record.path, record.reason);
    if (!cleared && refused.empty() && m_problems)
        m_problems->skipped("recent documents", "the list could not be cleared");
    mruListScheme(RecentDocsKey);
}

void CleanIT::CleanTypedURLs() { countedScheme(TypedUrlsKey, "url", 1); }
void CleanIT::CleanMediaPlayer() { countedScheme(MediaPlayerKey, "File", 0); }
void CleanIT::CleanFindFiles() { mruListScheme(FindFilesKey); }
void CleanIT::CleanFindComputers() { mruListScheme(FindComputersKey); }
void CleanIT::CleanPaint() { firstValueScheme(PaintKey, "File"); }
void CleanIT::CleanRunMRU() { mruListScheme(RunMruKey); }
void CleanIT::CleanWordPad() { firstValueScheme(WordPadKey, "File"); }
void CleanIT::CleanWinZipFileMenu() { countedScheme(WinZipFileMenuKey, "filemenu", 1); }
void CleanIT::CleanWinZipExtract() { countedScheme(WinZipExtractKey, "extract", 1); }

void CleanIT::EmptyRecycleBin(std::string rootPath, bool noConfirmation, bool noProgress, bool noSound) {
    // A drive given by its letter alone ("C", "C:") becomes its root ("C:\"); a path of this
    // machine's own kind names the filesystem it is on.
    const char separator = m_platform.fileSystem().separator();
    if (!rootPath.empty() && rootPath[0] != separator && rootPath.compare(1, 2, ":\\") != 0)
        rootPath = rootPath.substr(0, 1) + ":\\";
    const unsigned flags = (noConfirmation ? platform::EmptyFlags::NoConfirmation : 0u) |
                           (noProgress ? platform::EmptyFlags::NoProgressUi : 0u) |
                           (noSound ? platform::EmptyFlags::NoSound : 0u);
    // Trashed items are counted as items by the bin; the engine only names what it leaves.
    wipe::Engine engine(m_platform, nullptr, m_problems);
    BinDialogs dialogs(m_prompts, m_view, engine);
    m_platform.recycleBin().empty(rootPath, flags, dialogs);
    reportRefusedRecords();
}

void CleanIT::DoEmAll() {
    CleanRecentDocs();
    CleanTypedURLs();
    CleanMediaPlayer();
    CleanFindFiles();
    CleanFindComputers();
    CleanPaint();
    CleanRunMRU();
    CleanWordPad();
    CleanWinZipFileMenu();
    CleanWinZipExtract();
    EmptyRecycleBin("", false, false, false);
}

CleanPreview CleanIT::Preview(platform::Platform& platform, core::ProblemSink* problems) {
    // The same routines over a platform that only records: nothing here can delete.
    platform::PreviewPlatform dryRun(platform);
    core::SilentPrompts silent;
    CleanIT cleaner(dryRun, silent, problems);
    cleaner.DoEmAll();
    CleanPreview preview;
    using Kind = platform::Change::Kind;
    for (const auto& change : dryRun.changes()) {
        if (change.kind == Kind::DeleteValue)
            preview.values.push_back({change.target, change.detail});
        else if (change.kind == Kind::ClearRecentDocuments)
            preview.recentDocuments = platform.recycleBin().recentDocuments();
        else if (change.kind == Kind::EmptyRecycleBin) {
            const auto items = platform.recycleBin().items(change.target);
            preview.trash.insert(preview.trash.end(), items.begin(), items.end());
        }
    }
    // Reading the lists above is what meets a refused record: each is named here.
    cleaner.reportRefusedRecords();
    return preview;
}

} // namespace cleaning
