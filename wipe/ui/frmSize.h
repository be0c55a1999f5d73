#pragma once
// The secure delete window: a drive list, a folder list and a file list with a file-type filter,
// from which the user picks files to overwrite 35 times and delete, or wipes the whole current
// folder. "End wipe" flips the stop flag (the caption of Label2) that a running wipe reads before
// every block. All the work is done by wipe::SecureDelete; the lists are filled through the
// platform's file system, so nothing here follows a link.

#include "controls/widgets/ToolRun.h"
#include "wipe/SecureDelete.h"
#include "wipe/SecureDeleteView.h"
#include "wipe/VerifyReport.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace platform {
class Platform;
}

namespace wipe::ui {

class GaugeLines;

class frmSize : public QWidget, public widgets::StoppableWindow, private wipe::SecureDeleteView {
    Q_OBJECT
public:
    /// The window over `platform`, showing `startFolder` (the home folder when empty). Questions go
    /// to `prompts` when given (tests), else to message boxes owned by the window.
    explicit frmSize(platform::Platform& platform, QWidget* parent = nullptr, core::Prompts* prompts = nullptr,
                     const QString& startFolder = {});
    ~frmSize() override;

    /// The folder the lists show.
    QString path() const { return m_path; }
    /// Shows `folder` in the folder and file lists (the folder list's Change).
    void setPath(const QString& folder);

    // StoppableWindow: the program is ending; the file at hand is finished off, the rest left alone.
    bool running() const override { return m_busy; }
    void requestStop() override { m_closing = m_busy; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // SecureDeleteView
    core::Prompts& prompts() override { return *m_prompts; }
    void pumpEvents() override;
    bool interrupted() override { return m_closing; }
    void passStarted(const std::string& path, int pass) override;
    void passValues(const std::string& line) override;
    bool stopRequested() override;

    void buildControls();
    void fillDirectories();
    void fillFiles();
    QString fullName(const QString& item) const;
    void Form_Load(const QString& startFolder);
    void drvDrive_Change(const QString& root);
    void DirDirectory_Change(QListWidgetItem* item);
    void cboFileType_Click(int index);
    void filFiles_Click(QListWidgetItem* item);
    void filFiles_DblClick(QListWidgetItem* item);
    /// "&SecureWipeFiles".
    void CmdOK_Click();
    void cmdCancel_Click();
    /// "SecureWipeDirectory".
    void Command1_Click();
    /// "End wipe": arms or disarms the stop flag.
    void Command2_Click();
    /// Runs a wipe with the controls that could start another one disabled, the hourglass shown
    /// and no exception escaping.
    void runWipe(const std::function<void()>& wipe);

    platform::Platform& m_platform;
    std::unique_ptr<core::Prompts> m_ownPrompts;
    core::Prompts* m_prompts;
    core::QuietSink m_quiet;
    wipe::VerifyReport m_verified;
    wipe::SecureDelete m_engine;
    QString m_path;
    QString m_pattern = "*.*";
    bool m_busy = false;
    bool m_closing = false;

    std::vector<QWidget*> m_lockedWhileRunning;
    QComboBox *m_drvDrive = nullptr, *m_cboFileType = nullptr;
    QListWidget *m_dirDirectory = nullptr, *m_filFiles = nullptr;
    QLineEdit *m_txtFileName = nullptr, *m_text1 = nullptr, *m_text2 = nullptr;
    QCheckBox* m_chkVerify = nullptr;
    QLabel *m_lblDirName = nullptr, *m_label2 = nullptr, *m_limits = nullptr;
    GaugeLines* m_gauge = nullptr;
};

} // namespace wipe::ui
