#pragma once
// The index.dat manager window: the user picks a drive and folder and a file name to find, and the
// window lists the record files found (top screen), the activity recorded in them (middle screen)
// and one file's raw bytes (bottom screen), and overwrites recorded activity on request. All the
// work is done by indexdat::IndexManager; this class lays out the controls, forwards their events
// and shows what the manager hands it.

#include "indexdat/IndexManager.h"
#include "indexdat/IndexView.h"

#include <QWidget>

#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;

namespace ggcommand {
class GGCommand;
}
namespace platform {
class Platform;
}

namespace hoverhelp {
class HoverHelp;
}

namespace indexdat::ui {

using hoverhelp::HoverHelp;

class TaviIndex : public QWidget, public IndexView {
    Q_OBJECT
public:
    /// Builds the window and runs its start: search, report and raw view of the first file found.
    explicit TaviIndex(platform::Platform& platform, QWidget* parent = nullptr);
    ~TaviIndex() override;

    /// The folder the search starts in (Dir1's path).
    QString folder() const;
    /// Makes `path` the folder list's folder.
    void setFolder(const QString& path);
    HoverHelp& hoverHelp() const { return *m_help; }

    // IndexView
    void clearFiles() override;
    void addFile(const std::string& path) override;
    int fileCount() const override;
    std::string fileAt(int index) const override;
    int selectedFile() const override;
    void selectFile(int index) override;
    void clearActivity() override;
    void addActivity(const std::string& entry) override;
    void setFileSizeText(const std::string& text) override;
    void setRawBytes(const std::string& bytes) override;
    void setCountsText(const std::string& text) override;
    void setTotalText(const std::string& text) override;
    std::string searchFolder() const override;
    std::string searchPattern() const override;
    void setBusy(bool busy) override;
    void pumpEvents() override;
    core::Prompts& prompts() override;

private:
    void buildControls();
    void buildHelp();
    void connectEvents();
    void Form_Load();
    void Drive1_Change();
    void Dir1_DblClick();
    void GGCommand1_Click();
    void GGCommand2_Click();
    void GGCommand3_Click();
    void GGCommand4_Click();
    void GGCommand5_Click();
    void GGCommand6_Click();
    void GGCommand7_Click();
    void List1_DblClick();
    void List2_DblClick();

    platform::Platform& m_platform;
    std::unique_ptr<core::Prompts> m_prompts;
    IndexManager m_manager;
    std::string m_folder;
    bool m_busy = false;

    ggcommand::GGCommand* m_buttons[8] = {}; ///< GGCommand1 .. GGCommand7 by number
    QLineEdit* m_text1 = nullptr;
    QPlainTextEdit* m_richTextBox1 = nullptr;
    QListWidget* m_list2 = nullptr;
    QListWidget* m_dir1 = nullptr;
    QComboBox* m_drive1 = nullptr;
    QListWidget* m_list1 = nullptr;
    QLineEdit* m_text4 = nullptr;
    QLineEdit* m_text3 = nullptr;
    QLineEdit* m_text2 = nullptr;
    HoverHelp* m_help = nullptr;
};

} // namespace indexdat::ui
