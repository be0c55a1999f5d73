#pragma once
// What the index.dat manager needs from whoever shows it: the window implements it with its lists,
// text boxes and message boxes, a test with a recorder. The names in the comments are the window's
// controls.

#include <string>

namespace core {
class Prompts;
}

namespace indexdat {

class IndexView {
public:
    virtual ~IndexView() = default;

    // The found files (List1, "top screen").
    virtual void clearFiles() = 0;
    virtual void addFile(const std::string& path) = 0;
    virtual int fileCount() const = 0;
    /// The entry at `index`; empty when there is none.
    virtual std::string fileAt(int index) const = 0;
    /// The selected entry's index, -1 when none is selected.
    virtual int selectedFile() const = 0;
    /// Selects entry `index`; -1 clears the selection. Ignored when there is no such entry.
    virtual void selectFile(int index) = 0;

    // The activity entries (List2, "middle screen").
    virtual void clearActivity() = 0;
    virtual void addActivity(const std::string& entry) = 0;

    /// The size line of the raw view (Text1).
    virtual void setFileSizeText(const std::string& text) = 0;
    /// The raw view (RichTextBox1): the file's bytes as stored; the view decides how control and
    /// zero bytes are made visible.
    virtual void setRawBytes(const std::string& bytes) = 0;
    /// The counts (Text3) and total size (Text4) of the search.
    virtual void setCountsText(const std::string& text) = 0;
    virtual void setTotalText(const std::string& text) = 0;

    /// The folder to search in (Dir1) and the pattern as typed (Text2).
    virtual std::string searchFolder() const = 0;
    virtual std::string searchPattern() const = 0;

    /// Shows the hourglass pointer while `busy`, the default pointer otherwise.
    virtual void setBusy(bool busy) = 0;
    /// Lets pending window events run (the overwrite calls it after every block).
    virtual void pumpEvents() = 0;
    virtual core::Prompts& prompts() = 0;
};

} // namespace indexdat
