#pragma once
// CleanIT: erases the recently-used lists that the shell and a few programs keep under
// HKEY_CURRENT_USER, clears the shell's recent documents and empties the recycle bin. The main
// window's chooser offers these as twelve items; "Clean Item" runs CleanMruItem with the chosen
// text. Values are only ever deleted, never keys. Every routine goes on past a failing step and
// reports nothing to the user; steps refused by the system (not merely missing values) go to the
// problem sink. A preview walks the same routines over a platform that only records.

#include "core/ProblemSink.h"
#include "core/Prompts.h"
#include "platform/Platform.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cleaning {

/// The chooser's items, in the order they are listed and compared.
extern const std::vector<std::string> ChooserItems;
/// The chooser text before a choice is made.
extern const std::string ChooserPrompt;
/// Shown (title core::MessageTitle, OK only) when the chooser text names no item.
extern const std::string NoChoiceMessage;
/// The question asked before the recycle bin is emptied, and its title.
std::string RecycleBinQuestion(std::size_t items, std::uint64_t bytes);
extern const std::string RecycleBinTitle;

/// Progress while the recycle bin is emptied, in place of the shell's progress window.
class CleanView {
public:
    virtual ~CleanView() = default;
    virtual void recycleProgress(std::size_t done, std::size_t items) = 0;
};

/// What "Do Em All" would remove.
struct CleanPreview {
    struct Value {
        std::string key;
        std::string name;
    };
    std::vector<Value> values;
    std::vector<platform::TrashItem> trash;
    std::vector<std::string> recentDocuments;
};

class CleanIT {
public:
    /// `problems` and `view` may be null (nothing reported, no progress shown).
    CleanIT(platform::Platform& platform, core::Prompts& prompts, core::ProblemSink* problems = nullptr,
            CleanView* view = nullptr);

    /// Whether `itemText` is exactly (case and blanks included) one of ChooserItems.
    static bool IsChooserItem(const std::string& itemText);
    /// Runs the routine of the chooser item `itemText`, compared exactly; any other text shows
    /// NoChoiceMessage with only an OK button.
    void CleanMruItem(const std::string& itemText);

    void CleanRecentDocs();
    void CleanTypedURLs();
    void CleanMediaPlayer();
    void CleanFindFiles();
    void CleanFindComputers();
    void CleanPaint();
    void CleanRunMRU();
    void CleanWordPad();
    void CleanWinZipFileMenu();
    void CleanWinZipExtract();
    /// Empties the bin of `rootPath` ("" for all drives; "C" and "C:" mean "C:\"). The flags are
    /// the shell's: no question, no progress, no sound.
    void EmptyRecycleBin(std::string rootPath, bool noConfirmation, bool noProgress, bool noSound);
    /// Every routine above, in the fixed order of "Do Em All".
    void DoEmAll();

    /// The REG_SZ value `name` of `key`, cut at its first NUL; empty when missing or not a string.
    /// The key is opened for the read and closed again.
    std::string ReadRegString(platform::RegKey root, const std::string& key, const std::string& name);
    /// Deletes the value `name` of `key`; a missing value is not a problem.
    void DeleteRegValue(platform::RegKey root, const std::string& key, const std::string& name);

    /// What DoEmAll would remove on this machine; nothing is changed. Records the bin would leave
    /// unread or as they are go to `problems` when given.
    static CleanPreview Preview(platform::Platform& platform, core::ProblemSink* problems = nullptr);

private:
    void countedScheme(const std::string& key, const std::string& stem, int first);
    void firstValueScheme(const std::string& key, const std::string& stem);
    void mruListScheme(const std::string& key);
    /// Deletes every value of `key`.
    void allValuesScheme(const std::string& key);
    /// Tells the problem sink about the bin's records refused since last asked.
    void reportRefusedRecords();

    platform::Platform& m_platform;
    core::Prompts& m_prompts;
    core::ProblemSink* m_problems;
    CleanView* m_view;
};

} // namespace cleaning
