// The two secure-deletion windows on the offscreen platform, driven by object name: their controls
// and captions, the Advanced toggle, the missing Close item, refusals, a real free-space run on a
// loop-mounted image, and the file and folder wipes of the secure delete window on scratch files.

#include "platform/Platform.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/LoopImage.h"
#include "tests/support/QtTestMain.h"
#include "tests/support/Scratch.h"
#include "tests/wipe/Recorders.h"
#include "wipe/ui/TaviSecureWipe.h"
#include "wipe/ui/frmSize.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using testsupport::child;
using testsupport::ScratchDir;

class SecureWipeWindowsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<platform::Platform> m_platform = platform::createNative();

    static void screenshot(QWidget& window, const QString& suffix = {}) {
        const QByteArray dir = qgetenv("SCOURMILL_SCREENSHOTS");
        if (!dir.isEmpty())
            window.grab().save(QString::fromLocal8Bit(dir) + "/" + window.objectName() + suffix + ".png");
    }

private slots:
    void freeSpaceWindowHasItsControlsAndTogglesItsDetailPanel() {
        ScratchDir dir;
        testsupport::ScratchMount drive("-t tmpfs -o size=4m scourmill", dir.path() / "drive");
        testsupport::RecordingPrompts ask;
        wipe::ui::TaviSecureWipe window(*m_platform, nullptr, &ask);
        window.show();
        QCOMPARE(window.windowTitle(), QString("Tavi Secure FreeSpace Wipe"));
        QCOMPARE(child<QPushButton>(window, "Command1")->text(), QString("Exit Program"));
        QCOMPARE(child<QPushButton>(window, "Command2")->text(), QString("Wipe Hard Drive FreeSpace"));
        QCOMPARE(child<QPushButton>(window, "Command3")->text(), QString("Wipe A:\\ or Small Drives"));
        QCOMPARE(child<QCheckBox>(window, "Check1")->text(), QString("Check to Pause Wiping"));
        QCOMPARE(child<QCheckBox>(window, "Check2")->text(), QString("Check to Exit Wiping"));
        if (drive.mounted()) {
            QCOMPARE(child<QComboBox>(window, "Drive1")->currentText().toStdString(), drive.point().string());
            QCOMPARE(child<QLineEdit>(window, "Text3")->text().remove(QRegularExpression("[^0-9]")), QString("4194304"));
        }

        auto* advanced = child<QPushButton>(window, "Command4");
        QCOMPARE(advanced->text(), QString("Advanced Off"));
        QCOMPARE(window.height(), 3870 / 15);
        advanced->click();
        QCOMPARE(advanced->text(), QString("Advanced On"));
        QCOMPARE(window.height(), 5940 / 15);
        screenshot(window);
        advanced->click();
        QCOMPARE(window.height(), 3870 / 15);

        // No Close item: closing from outside is refused; "Exit Program" closes while idle.
        QVERIFY(!(window.windowFlags() & Qt::WindowCloseButtonHint));
        window.close();
        QVERIFY(window.isVisible());
        child<QPushButton>(window, "Command1")->click();
        QVERIFY(!window.isVisible());
        QVERIFY(ask.asked.empty());
    }

    void staleTemporaryFileIsOfferedForRemovalWhenTheDriveIsShown() {
        ScratchDir dir;
        testsupport::LoopImage image(dir.path(), 8);
        if (!image.mounted())
            QSKIP(qPrintable("no loop-mounted drive: " + QString::fromStdString(image.reason())));
        const fs::path stale = image.mountPoint() / "WNXTEMP.000";
        std::ofstream(stale) << "left behind by a crash";
        testsupport::RecordingPrompts ask;
        wipe::ui::TaviSecureWipe window(*m_platform, nullptr, &ask);
        window.show();
        auto* drives = child<QComboBox>(window, "Drive1");
        drives->setCurrentIndex(drives->findText(QString::fromStdString(image.mountPoint().string())));
        QTRY_VERIFY(!ask.asked.empty()); // offered once the window is on screen
        QVERIFY(ask.asked.back().find(stale.string()) != std::string::npos);
        QVERIFY(!fs::exists(stale));
    }

    void wrongDriveKindIsRefused() {
        ScratchDir dir;
        testsupport::ScratchMount ram("-t tmpfs -o size=4m scourmill", dir.path() / "ram");
        if (!ram.mounted())
            QSKIP(qPrintable(QString::fromStdString(ram.reason())));
        testsupport::RecordingPrompts ask;
        wipe::ui::TaviSecureWipe window(*m_platform, nullptr, &ask);
        child<QPushButton>(window, "Command3")->click();
        QCOMPARE(ask.told, std::vector<std::string>{"The drive you chose is not a removable drive"});
        QVERIFY(child<QPushButton>(window, "Command2")->isEnabled());
    }

    void fullRunOnALoopMountedDriveEndsWithTheButtonsDisabled() {
        ScratchDir dir;
        testsupport::LoopImage image(dir.path(), 8);
        if (!image.mounted())
            QSKIP(qPrintable("no loop-mounted drive to wipe: " + QString::fromStdString(image.reason())));
        testsupport::RecordingPrompts ask;
        wipe::ui::TaviSecureWipe window(*m_platform, nullptr, &ask);
        window.show();
        auto* drives = child<QComboBox>(window, "Drive1");
        drives->setCurrentIndex(drives->findText(QString::fromStdString(image.mountPoint().string())));
        QVERIFY(drives->currentIndex() >= 0);
        child<QPushButton>(window, "Command2")->click();
        QCOMPARE(child<QLineEdit>(window, "Text2")->text(), QString("35"));
        QCOMPARE(child<QLineEdit>(window, "Text4")->text(), QString("2097152"));
        QVERIFY(child<QLineEdit>(window, "Text1")->text().contains(" / "));
        QVERIFY(!child<QPushButton>(window, "Command2")->isEnabled()); // the plain ending, as designed
        QVERIFY(!fs::exists(image.mountPoint() / "WNXTEMP.000"));
        QVERIFY(ask.told.empty());
        child<QPushButton>(window, "Command4")->click();
        screenshot(window, "-after-run");
        child<QPushButton>(window, "Command1")->click();
        QCOMPARE(ask.asked, std::vector<std::string>{"Tavi Wipe is still running. Are you sure you wish to quit?"});
        QVERIFY(!window.isVisible());
        QVERIFY(child<QPushButton>(window, "Command2")->isEnabled()); // shown again, it starts afresh
    }

    void exitDuringAFreeSpaceWipeEndsTheProgramWithTheTemporaryFileRemoved() {
        ScratchDir dir;
        testsupport::LoopImage image(dir.path(), 64);
        if (!image.mounted())
            QSKIP(qPrintable("no loop-mounted drive to wipe: " + QString::fromStdString(image.reason())));
        const fs::path temp = image.mountPoint() / "WNXTEMP.000";
        testsupport::MainWindowUnderTest program;
        auto* window = qobject_cast<wipe::ui::TaviSecureWipe*>(program.windows.show("TaviSecureWipe"));
        auto* drives = child<QComboBox>(*window, "Drive1");
        drives->setCurrentIndex(drives->findText(QString::fromStdString(image.mountPoint().string())));
        QVERIFY(drives->currentIndex() >= 0);
        QTimer::singleShot(0, child<QPushButton>(*window, "Command2"), &QPushButton::click);
        QCOMPARE(program.exitWhen([&] { return fs::exists(temp); }), 0);
        QVERIFY(!window->running());
        QVERIFY(!fs::exists(temp));
        QVERIFY(child<QLineEdit>(*window, "Text2")->text().toInt() < 35); // stopped, not run to its end
    }

    void secureDeleteRunsOneWipeAtATimeAndExitEndsIt() {
        ScratchDir dir;
        dir.write("big.bin", std::string(16 << 20, 'b'));
        dir.write("later.txt", "not reached");
        testsupport::MainWindowUnderTest program;
        auto* window = qobject_cast<wipe::ui::frmSize*>(program.windows.window("frmSize"));
        window->setPath(QString::fromStdString(dir.str()));
        window->show();
        auto* files = child<QListWidget>(*window, "filFiles");
        files->selectAll();
        child<QLineEdit>(*window, "txtFileName")->setText("big.bin");
        QTimer::singleShot(0, child<QPushButton>(*window, "CmdOK"), &QPushButton::click);
        bool lockedWhileRunning = false;
        const auto lockedOnceRunning = [&] {
            // The window asks through a real message box here: answer Yes.
            if (auto* box = window->findChild<QMessageBox*>("MessageBox"))
                box->button(QMessageBox::Yes)->click();
            if (!window->running() || child<QLineEdit>(*window, "Text2")->text() != "2")
                return false;
            lockedWhileRunning = !child<QPushButton>(*window, "CmdOK")->isEnabled() &&
                                 !child<QPushButton>(*window, "Command1")->isEnabled() &&
                                 child<QPushButton>(*window, "Command2")->isEnabled();
            return true;
        };
        QCOMPARE(program.exitWhen(lockedOnceRunning), 0);
        QVERIFY(lockedWhileRunning);
        QVERIFY(!window->running());
        QVERIFY(child<QPushButton>(*window, "CmdOK")->isEnabled());
        QVERIFY(!fs::exists(dir.path() / "big.bin")); // the file at hand is finished off
        QCOMPARE(testsupport::readFile(dir.path() / "later.txt"), std::string("not reached"));
    }

    void bothWindowsNoteWhereOverwritingCannotReachWithoutStoppingAnything() {
        ScratchDir dir;
        testsupport::LoopImage cow(dir.path() / "cow", 160, "mkfs.btrfs -q -f");
        if (!cow.mounted())
            QSKIP(qPrintable("no copy-on-write drive: " + QString::fromStdString(cow.reason())));
        testsupport::ScratchMount ram("-t tmpfs -o size=4m scourmill", dir.path() / "ram");
        testsupport::RecordingPrompts ask;
        wipe::ui::TaviSecureWipe freeSpace(*m_platform, nullptr, &ask);
        freeSpace.show();
        auto* drives = child<QComboBox>(freeSpace, "Drive1");
        auto* note = child<QLabel>(freeSpace, "lblOverwriteLimits");
        drives->setCurrentIndex(drives->findText(QString::fromStdString(cow.mountPoint().string())));
        QVERIFY(note->isVisible());
        QVERIFY(note->text().contains("copy-on-write filesystem (btrfs)"));
        QVERIFY(note->text().contains("What overwriting cannot reach"));
        screenshot(freeSpace, "-copy-on-write");
        drives->setCurrentIndex(drives->findText(QString::fromStdString(ram.point().string())));
        QVERIFY(!note->isVisible());

        std::ofstream(cow.mountPoint() / "f.txt") << "data";
        wipe::ui::frmSize files(*m_platform, nullptr, &ask, QString::fromStdString(cow.mountPoint().string()));
        files.show();
        QVERIFY(child<QLabel>(files, "lblOverwriteLimits")->text().startsWith(
            QString::fromStdString("Note: " + cow.mountPoint().string() + " is on a copy-on-write filesystem")));
        screenshot(files, "-copy-on-write");
        child<QListWidget>(files, "filFiles")->selectAll();
        child<QLineEdit>(files, "txtFileName")->setText("f.txt");
        child<QPushButton>(files, "CmdOK")->click(); // the note asks nothing: the wipe runs
        QVERIFY(!fs::exists(cow.mountPoint() / "f.txt"));
        QCOMPARE(ask.asked.size(), std::size_t{1});
    }

    void secureDeleteWindowListsFiltersAndWipesTheSelection() {
        ScratchDir dir;
        dir.write("a.txt", "alpha");
        dir.write("b.TXT", "bravo");
        dir.write("c.DOC", "charlie");
        dir.write("sub/d.txt", "delta");
        testsupport::RecordingPrompts ask;
        wipe::ui::frmSize window(*m_platform, nullptr, &ask, QString::fromStdString(dir.str()));
        window.show();
        QCOMPARE(window.windowTitle(), QString("Tavi SecureDelete"));
        QCOMPARE(child<QLabel>(window, "lblDirName")->text(), QString::fromStdString(dir.str()));
        QCOMPARE(child<QLabel>(window, "Label2")->text(), QString("Wipe Charachter"));
        auto* types = child<QComboBox>(window, "cboFileType");
        QCOMPARE(types->count(), 3);
        QCOMPARE(types->currentText(), QString("All Files (*.*)"));
        auto* files = child<QListWidget>(window, "filFiles");
        QCOMPARE(files->count(), 3);
        types->setCurrentIndex(1);
        QCOMPARE(files->count(), 1);
        QCOMPARE(files->item(0)->text(), QString("b.TXT"));
        types->setCurrentIndex(0);
        auto* folders = child<QListWidget>(window, "DirDirectory");
        QVERIFY(!folders->findItems("sub", Qt::MatchEndsWith).isEmpty());

        child<QPushButton>(window, "CmdOK")->click();
        QCOMPARE(ask.told, std::vector<std::string>{"You must select a file!"});

        files->item(0)->setSelected(true);
        files->item(2)->setSelected(true);
        child<QLineEdit>(window, "txtFileName")->setText(files->item(0)->text());
        screenshot(window);
        child<QPushButton>(window, "CmdOK")->click();
        QCOMPARE(ask.asked.back(),
                 std::string("Are you ABSOLUTELY sure you wish to Delete Selected Files completely and FOREVER?"));
        QVERIFY(!fs::exists(dir.path() / "a.txt"));
        QVERIFY(!fs::exists(dir.path() / "c.DOC"));
        QVERIFY(fs::exists(dir.path() / "b.TXT"));
        QCOMPARE(files->count(), 1);
        QCOMPARE(child<QLineEdit>(window, "Text2")->text(), QString("35"));

        auto* endWipe = child<QPushButton>(window, "Command2");
        endWipe->click();
        QCOMPARE(child<QLabel>(window, "Label2")->text(), QString("EndWipe"));
        endWipe->click();
        QCOMPARE(child<QLabel>(window, "Label2")->text(), QString("Wipe Charachter"));
    }

    void secureDeleteWindowWipesTheCurrentFolder() {
        ScratchDir dir;
        dir.write("victim/own.txt", "own");
        dir.write("victim/deeper/x.txt", "x");
        testsupport::RecordingPrompts ask;
        wipe::ui::frmSize window(*m_platform, nullptr, &ask, QString::fromStdString((dir.path() / "victim").string()));
        ask.answers = {false};
        child<QPushButton>(window, "Command1")->click();
        QCOMPARE(ask.asked.back(), "Wipe " + (dir.path() / "victim").string() + " completely and FOREVER?");
        QVERIFY(fs::exists(dir.path() / "victim" / "own.txt"));
        child<QPushButton>(window, "Command1")->click();
        QVERIFY(!fs::exists(dir.path() / "victim"));
        QCOMPARE(window.path(), QString::fromStdString(dir.str()));
    }
};

SCOURMILL_QTEST_MAIN(SecureWipeWindowsTest)
#include "SecureWipeWindowsTest.moc"
