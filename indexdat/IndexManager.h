#pragma once
// The index.dat manager's actions, as the window's buttons and lists start them: the search that
// fills the file list, the activity report of one file or of all, the raw view, and the activity
// overwrite of one file or of every file that holds activity. The window only forwards its events
// here and implements IndexView.

#include "indexdat/IndexView.h"

#include <string>

namespace core {
class ProblemSink;
}
namespace platform {
class Platform;
}

namespace indexdat {

/// The folder searched when the window opens: the Wine prefix's users folder (its "documents and
/// settings") when there is one, else the home folder.
std::string defaultSearchFolder(platform::Platform& platform);

class IndexManager {
public:
    /// `problems` hears about files that could not be read or overwritten; the window passes none.
    IndexManager(platform::Platform& platform, IndexView& view, core::ProblemSink* problems = nullptr);

    /// The window opens: search, then report and raw view of the first file found; with nothing
    /// found the report asks the user to populate and select first.
    void load();
    /// "Show Selected Files": fills the file list, the counts and the total; selects the first
    /// file. Ends quietly, keeping what it listed, when a counter or the total overflows.
    void search();
    /// "Report Internet Activity": the selected file's activity, after the selection check.
    void reportSelected();
    /// "List All Hidden Activity": the activity of every listed file, one after another, up to the
    /// first file that cannot be read.
    void reportAll();
    /// "Show Binary Report": the selected file's size line and bytes; quiet when unreadable.
    void rawReport();
    /// "Delete Activity": asks, overwrites on Yes, then clears the activity and shows the file
    /// again, whatever the answer.
    void deleteActivity();
    /// "Delete All Hidden Activity": "Delete Activity" for each listed file that holds a marker,
    /// in list order, each with its own question; ends at the first file that cannot be read.
    void deleteAll();
    /// A double-click on a found file: its activity, then its raw view.
    void openFile();
    /// A double-click on an activity entry: opens it with the default handler.
    void openEntry(const std::string& entry);

    /// The last answer to the overwrite question.
    bool lastAnswer() const { return m_lastAnswer; }

private:
    /// The selected file, or empty after telling the user to select one.
    std::string checkedSelection();
    /// Adds the activity of `path`; false when it cannot be read.
    bool reportFile(const std::string& path);
    void confirmWipe();

    platform::Platform& m_platform;
    IndexView& m_view;
    core::ProblemSink* m_problems;
    bool m_lastAnswer = false;
};

} // namespace indexdat
