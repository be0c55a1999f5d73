#pragma once
// The free-space wipe window: choose a drive, see its free space, and start the 35-pass wipe for a
// fixed or a removable drive. The Advanced button shows the run's figures; two check boxes pause or
// end a run. The window has no Close item: it is left through "Exit Program". All the work is done
// by wipe::FreeSpaceWipe; this window only shows what the run reports and answers its reads.

#include "controls/widgets/ToolRun.h"
#include "wipe/FreeSpaceView.h"
#include "wipe/FreeSpaceWipe.h"

#include <QWidget>

#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace platform {
class Platform;
}

namespace wipe::ui {

class GaugeLines;

class TaviSecureWipe : public QWidget, public widgets::StoppableWindow, private wipe::FreeSpaceView {
    Q_OBJECT
public:
    /// The window over `platform`. Questions go to `prompts` when given (tests), else to message
    /// boxes owned by the window.
    explicit TaviSecureWipe(platform::Platform& platform, QWidget* parent = nullptr,
                            core::Prompts* prompts = nullptr);
    ~TaviSecureWipe() override;

    /// Window heights with the detail panel hidden and shown, in twips.
    static constexpr int CollapsedTwips = 3870;
    static constexpr int ExpandedTwips = 5940;

    // StoppableWindow: the program is ending; a running wipe removes its file and returns.
    bool running() const override { return m_engine.running(); }
    void requestStop() override { m_quitting = true; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    // FreeSpaceView
    core::Prompts& prompts() override { return *m_prompts; }
    void pumpEvents() override;
    bool interrupted() override { return m_quitting; }
    void passStarted(int pass, core::Currency increment) override;
    void progress(const wipe::FreeSpaceProgress& now) override;
    bool exitRequested() override;
    void setExitRequested(bool on) override;
    bool pauseRequested() override;
    void setWipeEnabled(bool enabled) override;
    void freeSpaceMeasured(core::Currency bytes) override;

    void buildControls();
    QLineEdit* addField(const char* name, const char* labelName, const char* caption, int x, int y, int width);
    QString chosenRoot() const;
    void showFreeSpace();
    void Form_Load();
    void Drive1_Change();
    /// "Exit Program".
    void Command1_Click();
    /// The fixed-drive and the removable-drive wipe.
    void Command2_Click();
    void Command3_Click();
    /// "Advanced Off" / "Advanced On".
    void Command4_Click();
    void wipe(bool removable);

    platform::Platform& m_platform;
    std::unique_ptr<core::Prompts> m_ownPrompts;
    core::Prompts* m_prompts;
    core::QuietSink m_quiet;
    wipe::FreeSpaceWipe m_engine;
    bool m_mayClose = false;
    bool m_quitting = false;
    bool m_staleChecked = false;

    QComboBox* m_drive1 = nullptr;
    QPushButton *m_command1 = nullptr, *m_command2 = nullptr, *m_command3 = nullptr, *m_command4 = nullptr;
    QCheckBox *m_check1 = nullptr, *m_check2 = nullptr, *m_chkVerify = nullptr;
    QLineEdit *m_text1 = nullptr, *m_text2 = nullptr, *m_text3 = nullptr, *m_text4 = nullptr;
    QLineEdit *m_text5 = nullptr, *m_text6 = nullptr, *m_text8 = nullptr;
    GaugeLines* m_gauge = nullptr;
    QLabel* m_limits = nullptr;
};

} // namespace wipe::ui
