#include "app/TaviMain.h"

#include "app/MainWindowHelp.h"
#include "app/Icons.h"
#include "app/RecycleProgress.h"
#include "app/WindowSet.h"
#include "app/WorkingList.h"
#include "app/tray/SysTray.h"
#include "autoclean/WatchStep.h"
#include "cleaning/CURLHistory.h"
#include "cleaning/CleanIT.h"
#include "cleaning/TempFolderGuard.h"
#include "cleaning/TraceCleaner.h"
#include "controls/ggcommand/GGCommand.h"
#include "controls/hoverhelp/HoverHelp.h"
#include "controls/ggcommand/Design.h"
#include "controls/widgets/Centre.h"
#include "memory/ui/CleanMemory.h"
#include "platform/Platform.h"
#include "wipe/ui/BusyCursor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QCursor>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QThread>
#include <QTimer>

#include <cstdlib>
#include <ctime>

namespace app {
namespace {

void pumpEvents() {
    QCoreApplication::processEvents();
}

/// The catch-all of every handler: whatever fails ends the handler without a message.
template <class F>
void quietly(F&& handler) {
    try {
        handler();
    } catch (...) {
    }
}

} // namespace

TaviMain::TaviMain(platform::Platform& platform, WindowSet& windows, QWidget* parent)
    : QWidget(parent), m_platform(platform), m_windows(windows), m_prompts(this) {
    setObjectName("TaviMain");
    setWindowTitle("Tavi Scourmill");
    setWindowIcon(programIcon());
    buildControls();
    m_workingList = std::make_unique<WorkingList>(*m_list1, m_outcome);
    m_cleaner = std::make_unique<cleaning::TraceCleaner>(m_platform, *m_workingList, &m_outcome);
    buildMenus();
    ggcommand::applyDesign(*this, ":/design/TaviMain.design");
    connectCommands();
    Form_Load();
}

TaviMain::~TaviMain() = default;

ggcommand::GGCommand* TaviMain::button(int number) const {
    return findChild<ggcommand::GGCommand*>(QString("GGCommand%1").arg(number));
}

void TaviMain::buildControls() {
    // Created in the window's own order, which is also the tab order.
    m_timer1 = new QTimer(this);
    m_timer1->setObjectName("Timer1");
    m_timer1->setInterval(5000);

    const auto makeButton = [](QWidget* parent, int number) {
        auto* b = new ggcommand::GGCommand(parent);
        b->setObjectName(QString("GGCommand%1").arg(number));
        b->setMinimumWidth(215);
        b->setFixedHeight(36);
        return b;
    };

    // Both groups stack their buttons from the top at one pitch, so that the rows line up across
    // the window; the spare height of the shorter group stays below its last row.
    const auto buttonGroup = [&](const char* name, const char* title, std::initializer_list<int> numbers, int rows) {
        auto* frame = new QGroupBox(title, this);
        frame->setObjectName(name);
        auto* grid = new QGridLayout(frame);
        grid->setVerticalSpacing(6);
        int i = 0;
        for (int n : numbers) {
            grid->addWidget(makeButton(frame, n), i % rows, i / rows);
            ++i;
        }
        grid->setRowStretch(rows, 1);
        return frame;
    };
    QGroupBox* frame4 = buttonGroup("Frame4", "Internet Controls", {5, 4, 3, 2, 1}, 5);
    QGroupBox* frame3 = buttonGroup("Frame3", "Scourmill Controls", {14, 12, 11, 10, 9, 8, 6, 7}, 4);

    m_combo1 = new QComboBox(this);
    m_combo1->setObjectName("Combo1");
    m_combo1->setEditable(true);
    m_combo1->setEditText(QString::fromStdString(cleaning::ChooserPrompt));
    m_combo1->setInsertPolicy(QComboBox::NoInsert);

    m_tClosed = new QTimer(this);
    m_tClosed->setObjectName("TClosed");
    m_tClosed->setInterval(2000);
    m_tCheck = new QTimer(this);
    m_tCheck->setObjectName("TCheck");
    m_tCheck->setInterval(2000);

    m_list1 = new QListWidget(this);
    m_list1->setObjectName("List1");

    m_picture1 = new QLabel(this);
    m_picture1->setObjectName("Picture1");
    m_picture1->setPixmap(cleaningIcon().pixmap(32, 32));
    m_picture1->hide();

    m_lblConnected = new QLabel(this);
    m_lblConnected->setObjectName("lblconnected");
    // The status line: the program's purpose until the first action, then what each action did.
    m_status = new QLabel("Tavi Scourmill: erases what the browser and your programs leave behind.", this);
    m_status->setObjectName("Label1");
    m_status->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_status->setWordWrap(true);
    // Room for two lines across the window: an outcome with something left takes both.
    m_status->setMinimumHeight(2 * m_status->fontMetrics().lineSpacing());

    // Warnings the user must see in the window itself: running as root, a temporary folder that
    // cannot be cleaned. Hidden while there is none.
    m_lblWarning = new QLabel(this);
    m_lblWarning->setObjectName("lblWarning");
    m_lblWarning->setWordWrap(true);
    m_lblWarning->setStyleSheet("color: #b00000;");
    m_lblWarning->hide();

    auto* grid = new QGridLayout(this);
    grid->addWidget(frame4, 0, 0);
    grid->addWidget(frame3, 0, 1);
    grid->addWidget(m_combo1, 1, 0, 1, 2);
    grid->addWidget(m_list1, 2, 0, 1, 2);
    grid->addWidget(m_lblWarning, 3, 0, 1, 2);
    grid->addWidget(m_status, 4, 0, 1, 2);
    grid->addWidget(m_lblConnected, 5, 0);
    grid->setRowStretch(2, 1);
}

void TaviMain::buildMenus() {
    // The menu bar is never shown: its first menu is the tray's pop-up menu, the others the help.
    m_menuBar = new QMenuBar(this);
    m_menuBar->setObjectName("MenuBar");
    // Kept in the window, where it stays hidden: a desktop's global menu bar would show it.
    m_menuBar->setNativeMenuBar(false);
    m_menuBar->hide();

    m_mnuFile = m_menuBar->addMenu("File");
    m_mnuFile->setObjectName("Mnu_File");
    const auto entry = [this](const char* name, const QString& caption, auto slot) {
        QAction* a = m_mnuFile->addAction(caption);
        a->setObjectName(name);
        connect(a, &QAction::triggered, this, slot);
    };
    entry("Mnu_Show", "I'm Done HIDING!", [this] { Mnu_Show_Click(); });
    entry("Mnu_All", "Temp/Hist/Cookies", [this] { Mnu_All_Click(); });
    entry("Mnu_dat", "Manage Dat Files", [this] { Mnu_dat_Click(); });
    entry("Mnu_WipeFreeSpace", "WipeFreeSpace", [this] { Mnu_WipeFreeSpace_Click(); });
    entry("Mnu_FilesFolders", "Secure Delete", [this] { Mnu_FilesFolders_Click(); });
    entry("Mnu_AutoClean", "Enable/Disable Auto Clean", [this] { Mnu_AutoClean_Click(); });
    m_mnuFile->addSeparator()->setObjectName("Mnu_Bar");
    entry("Mnu_Exit", "Exit", [this] { Mnu_Exit_Click(); });

    m_help = new hoverhelp::HoverHelp(this, m_menuBar);
    m_help->addMenus(mainWindowHelp());
}

void TaviMain::connectCommands() {
    const std::pair<int, void (TaviMain::*)()> clicks[] = {
        {1, &TaviMain::GGCommand1_Click},   {2, &TaviMain::GGCommand2_Click},   {3, &TaviMain::GGCommand3_Click},
        {4, &TaviMain::GGCommand4_Click},   {5, &TaviMain::GGCommand5_Click},   {6, &TaviMain::GGCommand6_Click},
        {7, &TaviMain::GGCommand7_Click},   {8, &TaviMain::GGCommand8_Click},   {9, &TaviMain::GGCommand9_Click},
        {10, &TaviMain::GGCommand10_Click}, {11, &TaviMain::GGCommand11_Click}, {12, &TaviMain::GGCommand12_Click},
        {14, &TaviMain::GGCommand14_Click},
    };
    for (const auto& [number, handler] : clicks)
        connect(button(number), &ggcommand::GGCommand::Click, this, handler);

    connect(m_list1, &QListWidget::itemDoubleClicked, this, &TaviMain::List1_DblClick);

    connect(m_timer1, &QTimer::timeout, this, &TaviMain::Timer1_Timer);
    connect(m_tCheck, &QTimer::timeout, this, &TaviMain::TCheck_Timer);
    connect(m_tClosed, &QTimer::timeout, this, &TaviMain::TClosed_Timer);

    m_tray = new tray::SysTray(m_mnuFile, tray::detectClickReports(), this);
    connect(m_tray, &tray::SysTray::mouseMessage, this, &TaviMain::Form_MouseMove);
}

void TaviMain::Form_MouseMove(tray::TrayMessage message) {
    if (message == tray::TrayMessage::LeftDoubleClick)
        showFromTray();
    else if (message == tray::TrayMessage::RightButtonDown)
        m_mnuFile->popup(QCursor::pos());
}

void TaviMain::showWarning(const std::string& text) {
    m_lblWarning->setText(QString::fromStdString(text));
    m_lblWarning->setVisible(!text.empty());
}

void TaviMain::Form_Load() {
    showWarning(cleaning::RunAsWarning(m_platform.knownFolders().runAs()));
    adjustSize();
    widgets::centreOnScreen(*this);
    for (const std::string& item : cleaning::ChooserItems)
        m_combo1->addItem(QString::fromStdString(item));
    m_combo1->setEditText(QString::fromStdString(cleaning::ChooserPrompt));
    m_tray->AddTrayIcon(windowTitle(), windowIcon());
    quietly([this] { ShowCache(); });
    quietly([this] {
        m_urlHistory = std::make_unique<cleaning::CURLHistory>(m_platform);
        m_cleaner->SetHistory(*m_urlHistory);
    });
    m_cleaner->ReadFolderPaths(); // the Shell Folders paths, then the temporary folder
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    m_timer1->start();
}

QString TaviMain::historyPath() const {
    return QString::fromStdString(m_cleaner->Paths().HistoryPath);
}

QString TaviMain::cachePath() const {
    return QString::fromStdString(m_cleaner->Paths().CachePath);
}

QString TaviMain::cookiesPath() const {
    return QString::fromStdString(m_cleaner->Paths().CookiesPath);
}

QString TaviMain::tempPath() const {
    return QString::fromStdString(m_cleaner->Paths().TempPath);
}

void TaviMain::ShowCache() {
    m_cleaner->ShowCache();
}

void TaviMain::CleanAll() {
    m_cleaner->CleanAll();
}

void TaviMain::CleanTempFolder() {
    m_cleaner->CleanTempFolder();
}

void TaviMain::reported(const std::function<void()>& action) {
    m_outcome.Start();
    quietly(action);
    m_status->setText(QString::fromStdString(m_outcome.Text()));
}

void TaviMain::GGCommand1_Click() {
    wipe::ui::BusyCursor hourglass;
    reported([this] {
        ShowCache();
        m_outcome.Note(cleaning::Counted(m_workingList->lineCount(), "cache entry", "cache entries") + " listed");
    });
}

void TaviMain::GGCommand2_Click() {
    // Only what the list shows now is deleted: an empty list erases nothing, on purpose.
    wipe::ui::BusyCursor hourglass;
    reported([this] { m_cleaner->DeleteListedCacheEntries(); });
}

void TaviMain::GGCommand3_Click() {
    // A temporary folder that may not be cleaned stops the whole clean, as on the command line,
    // and the window says why.
    const std::string temp = m_cleaner->Paths().TempPath;
    if (const std::string refusal = cleaning::TempFolderRefusal(m_platform, temp); !temp.empty() && !refusal.empty()) {
        showWarning(cleaning::TempFolderRefusedLine(temp, refusal));
        return;
    }
    showWarning(cleaning::RunAsWarning(m_platform.knownFolders().runAs()));
    wipe::ui::BusyCursor hourglass;
    reported([this] {
        CleanTempFolder();
        CleanAll();
    });
}

void TaviMain::Mnu_Show_Click() {
    quietly([this] { ShowCache(); });
    showFromTray();
}

void TaviMain::GGCommand4_Click() {
    m_windows.show("TaviIndex");
}

void TaviMain::GGCommand5_Click() {
    if (!m_platform.shell().startProgram(m_platform.shell().executableName("tavipop")))
        reported([this] { m_outcome.Note("No pop-up stopper program was found"); });
}

void TaviMain::GGCommand6_Click() {
    // The wipe window, with the monitor flush against its right edge.
    if (auto* wipe = qobject_cast<memory::ui::CleanMemory*>(m_windows.show("CleanMemory")))
        wipe->dockMonitor();
}

void TaviMain::GGCommand7_Click() {
    m_windows.show("MemMonitor");
}

void TaviMain::GGCommand8_Click() {
    m_windows.show("TaviSecureWipe");
}

void TaviMain::GGCommand9_Click() {
    m_windows.show("frmSize");
}

void TaviMain::GGCommand11_Click() {
    RecycleProgress progress(this);
    const std::string item = m_combo1->currentText().toStdString();
    reported([&] {
        cleaning::CleanIT(m_platform, m_prompts, &m_outcome, &progress).CleanMruItem(item);
        m_outcome.Note(cleaning::CleanIT::IsChooserItem(item) ? "Cleaned: " + item : "Nothing cleaned");
    });
}

void TaviMain::GGCommand14_Click() {
    m_help->toggle(*button(14));
}

void TaviMain::GGCommand12_Click() {
    m_help->hideAll();
    // Without a notification area a hidden window could never come back: minimize instead.
    if (tray::SysTray::available())
        hide();
    else
        showMinimized();
}

void TaviMain::showFromTray() {
    showNormal();
    raise();
    activateWindow();
}

void TaviMain::List1_DblClick() {
    const QListWidgetItem* item = m_list1->currentItem();
    if (item)
        m_platform.shell().open(item->text().toStdString());
}

void TaviMain::Timer1_Timer() {
    // Set once, never cleared: the label stays after the connection drops.
    if (m_platform.connectivity().connected())
        m_lblConnected->setText("Connected to the Internet");
}

namespace {

autoclean::AutoCleanState readState(const ggcommand::GGCommand* toggle, const QTimer* check, const QTimer* closed) {
    return {toggle->caption().toStdString(), check->isActive(), closed->isActive()};
}

void writeState(const autoclean::AutoCleanState& s, ggcommand::GGCommand* toggle, QTimer* check, QTimer* closed) {
    toggle->setCaption(QString::fromStdString(s.caption));
    if (s.checkEnabled != check->isActive())
        s.checkEnabled ? check->start() : check->stop();
    if (s.closedEnabled != closed->isActive())
        s.closedEnabled ? closed->start() : closed->stop();
}

} // namespace

void TaviMain::GGCommand10_Click() {
    writeState(autoclean::toggled(readState(button(10), m_tCheck, m_tClosed)), button(10), m_tCheck, m_tClosed);
}

void TaviMain::TCheck_Timer() {
    autoclean::AutoCleanState state = readState(button(10), m_tCheck, m_tClosed);
    autoclean::watchStep(state, autoclean::Timer::Check, m_platform.processes(), pumpEvents);
    writeState(state, button(10), m_tCheck, m_tClosed);
}

void TaviMain::TClosed_Timer() {
    autoclean::AutoCleanState state = readState(button(10), m_tCheck, m_tClosed);
    if (autoclean::watchStep(state, autoclean::Timer::Closed, m_platform.processes(), pumpEvents) !=
        autoclean::Tick::CleanDue)
        return;
    m_tray->ShowIcon(QIcon(m_picture1->pixmap()));
    QThread::msleep(500);
    reported([this] { CleanAll(); });
    m_tray->ShowIcon(windowIcon());
    writeState(autoclean::afterClean(readState(button(10), m_tCheck, m_tClosed)), button(10), m_tCheck, m_tClosed);
    emit autoCleaned();
}

// The tray menu's entries other than Show and Exit do what their buttons do.
void TaviMain::Mnu_All_Click() {
    emit button(3)->Click();
}

void TaviMain::Mnu_dat_Click() {
    emit button(4)->Click();
}

void TaviMain::Mnu_WipeFreeSpace_Click() {
    emit button(8)->Click();
}

void TaviMain::Mnu_FilesFolders_Click() {
    emit button(9)->Click();
}

void TaviMain::Mnu_AutoClean_Click() {
    emit button(10)->Click();
}

void TaviMain::Mnu_Exit_Click() {
    m_tray->RemoveTrayIcon();
    // A wipe running inside a tool window's handler would keep the program alive: stop it first.
    m_windows.stopAll();
    emit exitRequested();
}

void TaviMain::closeEvent(QCloseEvent* event) {
    event->accept();
    Form_Unload();
}

void TaviMain::Form_Unload() {
    Mnu_Exit_Click();
}

void endEventLoopOnExit(TaviMain& main) {
    // Queued: Exit is often chosen while a run lets events through from inside a handler, and the
    // loop must end only once that run has returned.
    QObject::connect(&main, &TaviMain::exitRequested, qApp, [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
}

} // namespace app
