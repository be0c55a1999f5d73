// The two secure-deletion windows on the offscreen platform, driven by object name: what the
// windows add to the wipes beneath them (their buttons' wiring, locking while running, refusals,
// Exit or a logout's signal in the middle of a run).

#include "app/StopSignals.h"
#include "platform/Platform.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/LoopImage.h"
#include "tests/support/QtTestMain.h"
#include "tests/support/Recorders.h"
#include "tests/support/Scratch.h"
#include "wipe/ui/TaviSecureWipe.h"
#include "wipe/ui/frmSize.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <csignal>
#include <filesystem>

namespace fs = std::filesystem;
using testsupport::child;
using testsupport::ScratchDir;

class SecureWipeWindowsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<platform::Platform> m_platform = platform::createNative();

    static void chooseDrive(QWidget& window, const fs::path& point) {
        auto* drives = child<QComboBox>(window, "Drive1");
        drives->setCurrentIndex(drives->findText(QString::fromStdString(point.string())));
        QVERIFY(drives->currentIndex() >= 0);
    }

private slots:
    void exitDuringAFreeSpaceWipeEndsTheProgramWithTheTemporaryFileRemoved_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("Exit from the tray menu") << 0;
        QTest::newRow("SIGHUP, a logout") << SIGHUP;
    }

    void exitDuringAFreeSpaceWipeEndsTheProgramWithTheTemporaryFileRemoved() {
        QFETCH(int, signal);
        ScratchDir dir;
        testsupport::LoopImage image(dir.path(), 64);
        if (!image.mounted())
            QSKIP(qPrintable("no loop-mounted drive to wipe: " + QString::fromStdString(image.reason())));
        const fs::path temp = image.mountPoint() / "WNXTEMP.000";
        testsupport::MainWindowUnderTest program;
        auto* window = qobject_cast<wipe::ui::TaviSecureWipe*>(program.windows.show("TaviSecureWipe"));
        chooseDrive(*window, image.mountPoint());
        QTimer::singleShot(0, child<QPushButton>(*window, "Command2"), &QPushButton::click);
        app::exitOnStopSignals(program.main);
        const std::function<void()> end = [signal] { ::raise(signal); };
        QCOMPARE(program.exitWhen([&] { return fs::exists(temp); }, signal ? end : nullptr), 0);
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

    void secureDeleteWindowWipesTheSelectionThenTheFolder() {
        ScratchDir dir;
        dir.write("victim/a.txt", "alpha");
        dir.write("victim/b.TXT", "bravo");
        dir.write("victim/c.DOC", "charlie");
        dir.write("victim/deeper/x.txt", "x");
        const fs::path victim = dir.path() / "victim";
        testsupport::RecordingPrompts ask;
        wipe::ui::frmSize window(*m_platform, nullptr, &ask, QString::fromStdString(victim.string()));
        window.show();
        auto* files = child<QListWidget>(window, "filFiles");
        QCOMPARE(files->count(), 3);

        child<QPushButton>(window, "CmdOK")->click();
        QCOMPARE(ask.told, std::vector<std::string>{"You must select a file!"});
        files->item(0)->setSelected(true);
        files->item(2)->setSelected(true);
        child<QLineEdit>(window, "txtFileName")->setText(files->item(0)->text());
        child<QPushButton>(window, "CmdOK")->click();
        QVERIFY(!fs::exists(victim / "a.txt"));
        QVERIFY(!fs::exists(victim / "c.DOC"));
        QCOMPARE(files->count(), 1);

        // The folder itself: answered No it stays, Yes it goes with all still in it.
        ask.answers = {false};
        child<QPushButton>(window, "Command1")->click();
        QVERIFY(fs::exists(victim / "b.TXT"));
        child<QPushButton>(window, "Command1")->click();
        QVERIFY(!fs::exists(dir.path() / "victim"));
        QCOMPARE(window.path(), QString::fromStdString(dir.str()));
    }
};

SCOURMILL_QTEST_MAIN(SecureWipeWindowsTest)
#include "SecureWipeWindowsTest.moc"
