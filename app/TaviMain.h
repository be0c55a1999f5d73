#pragma once
// The main window: every command of the program starts at one of its buttons, its tray menu or its
// recent-item chooser. It owns the tray icon, the AutoClean watch and the folder paths the cleaning
// routines use; the work itself is done by the core, and the tool windows come from the WindowSet.

#include "cleaning/Outcome.h"
#include "controls/prompts/MessageBoxPrompts.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>

class QComboBox;
class QLabel;
class QListWidget;
class QMenu;
class QMenuBar;
class QTimer;

namespace ggcommand {
class GGCommand;
}
namespace platform {
class Platform;
}
namespace tray {
class SysTray;
enum class TrayMessage;
}
namespace hoverhelp {
class HoverHelp;
}
namespace cleaning {
class CURLHistory;
class TraceCleaner;
}

namespace app {

class WindowSet;
class WorkingList;

class TaviMain : public QWidget {
    Q_OBJECT
public:
    /// Builds the window and runs its start-up: centred on the screen, chooser filled, tray icon
    /// added, cache list filled, folder paths read.
    TaviMain(platform::Platform& platform, WindowSet& windows, QWidget* parent = nullptr);
    ~TaviMain() override;

    /// Fills List1 with the source address of every entry of the browser cache.
    void ShowCache();
    /// The full clean of cache, typed URLs, the cookie folder's record files and URL history.
    void CleanAll();
    /// Overwrites and deletes the temporary folder's files and its first-level subfolders.
    void CleanTempFolder();

    QString historyPath() const;
    QString cachePath() const;
    QString cookiesPath() const;
    QString tempPath() const;
    tray::SysTray& sysTray() const { return *m_tray; }
    hoverhelp::HoverHelp& hoverHelp() const { return *m_help; }

signals:
    /// The program should end now (Exit from the tray menu, or the window was closed).
    void exitRequested();
    /// An AutoClean clean has just finished.
    void autoCleaned();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    ggcommand::GGCommand* button(int number) const;
    void buildControls();
    void buildMenus();
    void connectCommands();
    void Form_Load();
    void Form_Unload();
    /// The tray icon's mouse messages.
    void Form_MouseMove(tray::TrayMessage message);

    void GGCommand1_Click();
    void GGCommand2_Click();
    void GGCommand3_Click();
    void GGCommand4_Click();
    void GGCommand5_Click();
    void GGCommand6_Click();
    void GGCommand7_Click();
    void GGCommand8_Click();
    void GGCommand9_Click();
    void GGCommand10_Click();
    void GGCommand11_Click();
    void GGCommand12_Click();
    void GGCommand14_Click();
    void List1_DblClick();
    void Timer1_Timer();
    void TCheck_Timer();
    void TClosed_Timer();

    void Mnu_Show_Click();
    void Mnu_All_Click();
    void Mnu_dat_Click();
    void Mnu_WipeFreeSpace_Click();
    void Mnu_FilesFolders_Click();
    void Mnu_AutoClean_Click();
    void Mnu_Exit_Click();

    void showFromTray();
    /// Shows `text` on the window's warning line; an empty text hides the line.
    void showWarning(const std::string& text);
    /// Runs `action` quietly, then shows what it did in the status line.
    void reported(const std::function<void()>& action);

    platform::Platform& m_platform;
    WindowSet& m_windows;
    prompts::MessageBoxPrompts m_prompts;

    QTimer* m_timer1 = nullptr;
    QTimer* m_tCheck = nullptr;
    QTimer* m_tClosed = nullptr;
    QComboBox* m_combo1 = nullptr;
    QListWidget* m_list1 = nullptr;
    QLabel* m_lblWarning = nullptr;
    QLabel* m_lblConnected = nullptr;
    QLabel* m_picture1 = nullptr;
    QMenuBar* m_menuBar = nullptr;
    QMenu* m_mnuFile = nullptr;
    hoverhelp::HoverHelp* m_help = nullptr;
    tray::SysTray* m_tray = nullptr;

    /// What the last action did, shown by the status line m_status.
    cleaning::Outcome m_outcome;
    QLabel* m_status = nullptr;
    std::unique_ptr<WorkingList> m_workingList;
    std::unique_ptr<cleaning::TraceCleaner> m_cleaner; ///< holds the folder paths read at start-up
    std::unique_ptr<cleaning::CURLHistory> m_urlHistory;
};

/// Makes the main window's Exit (the tray menu's entry, or closing the window) end the program's
/// event loop. It ends the loop outright rather than asking every window to close, which a window
/// may refuse; tool windows still running a long operation have been asked to stop by then.
void endEventLoopOnExit(TaviMain& main);

} // namespace app
