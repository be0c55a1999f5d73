// The index.dat manager window on the offscreen platform, driven by its controls' names: how it
// opens, the help toggle, and the overwrite questions answered in real message boxes.

#include "controls/ggcommand/GGCommand.h"
#include "indexdat/ActivityWipe.h"
#include "controls/hoverhelp/HoverHelp.h"
#include "indexdat/ui/TaviIndex.h"
#include "platform/Platform.h"
#include "tests/support/QtTestMain.h"

#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using ggcommand::GGCommand;
using testsupport::child;

class TaviIndexTest : public QObject {
    Q_OBJECT

    std::unique_ptr<platform::Platform> m_platform;
    std::string m_record;
    fs::path m_file;

    static std::string readAll(const fs::path& p) { return testsupport::readFile(p); }

    /// Answers the coming message boxes with `buttons`, one each, and records their texts.
    static void answerBoxes(QList<QMessageBox::StandardButton> buttons, QStringList* texts) {
        if (buttons.isEmpty())
            return;
        QTimer::singleShot(0, [buttons, texts]() mutable {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box) {
                *texts << box->windowTitle() + "|" + box->text();
                box->button(buttons.takeFirst())->click();
            }
            answerBoxes(buttons, texts);
        });
    }

private slots:
    void initTestCase() {
        const fs::path users = fs::path(qEnvironmentVariable("WINEPREFIX").toStdString()) / "drive_c" / "users";
        fs::create_directories(users / "tavi" / "Cookies");
        // The scan looks for its markers in the raw bytes, wherever they lie: a record file's
        // header, then two records past the first kilobyte, which a wipe keeps.
        m_record = std::string("Client UrlCache MMF Ver 5.2\0", 28) + std::string(2000, '\0') +
                   std::string("Visited: tavi@http://www.example.com/\0Cookie:tavi@shop.example.net/\0", 68) +
                   std::string(2000, '\0');
        m_file = users / "tavi" / "Cookies" / "index.dat";
        std::ofstream(m_file, std::ios::binary) << m_record;
        m_platform = platform::createNative();
    }

    void opensWithTheFirstFileFoundReportedAndShownAndItsListsPopTheirHelpUp() {
        indexdat::ui::TaviIndex window(*m_platform);
        auto* list1 = child<QListWidget>(window, "List1");
        QCOMPARE(list1->count(), 1);
        QCOMPARE(list1->item(0)->text(), QString::fromStdString(m_file.string()));
        auto* list2 = child<QListWidget>(window, "List2");
        QCOMPARE(list2->count(), 2);
        QCOMPARE(list2->item(0)->text(), QString("http://www.example.com/"));
        QCOMPARE(child<QLineEdit>(window, "Text1")->text(),
                 QString("File Size in bytes = %1").arg(m_record.size()));
        const QString raw = child<QPlainTextEdit>(window, "RichTextBox1")->toPlainText();
        QVERIFY(raw.startsWith(QString::fromUtf8("Client UrlCache MMF Ver 5.2\u2219")));
        QCOMPARE(QApplication::overrideCursor(), nullptr);

        window.show();
        QTest::mouseClick(child<GGCommand>(window, "GGCommand7"), Qt::LeftButton);
        // Unlike the buttons, the lists pop their help up on pointer moves.
        auto* top = list1->viewport();
        QTest::mouseMove(top, QPoint(20, 20));
        QVERIFY(window.hoverHelp().menu("hlp2")->isVisible());
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(top, &leave);
        QVERIFY(!window.hoverHelp().menu("hlp2")->isVisible());
    }

    void deleteAllAsksOncePerMarkedFileAndEmptyListsAskForASelection() {
        const fs::path root = m_file.parent_path() / "all";
        for (const char* sub : {"a", "b", "c"})
            fs::create_directories(root / sub);
        std::ofstream(root / "a" / "index.dat", std::ios::binary) << m_record;
        std::ofstream(root / "b" / "index.dat", std::ios::binary) << std::string(4096, 'x'); // no marker
        std::ofstream(root / "c" / "index.dat", std::ios::binary) << m_record;
        indexdat::ui::TaviIndex window(*m_platform);
        window.setFolder(QString::fromStdString(root.string()));
        QTest::mouseClick(child<GGCommand>(window, "GGCommand1"), Qt::LeftButton);
        auto* list1 = child<QListWidget>(window, "List1");
        QCOMPARE(list1->count(), 3);
        QTest::mouseClick(child<GGCommand>(window, "GGCommand6"), Qt::LeftButton);
        QCOMPARE(child<QListWidget>(window, "List2")->count(), 4);

        QStringList asked;
        answerBoxes({QMessageBox::Yes, QMessageBox::No}, &asked);
        QTest::mouseClick(child<GGCommand>(window, "GGCommand5"), Qt::LeftButton);
        QStringList expected;
        for (int i = 0; i < list1->count(); ++i)
            if (!list1->item(i)->text().contains("/b/"))
                expected << "Tavi Manage Index.dat Files|TaviWipe " + list1->item(i)->text() + " ?";
        QCOMPARE(asked, expected);
        const fs::path firstAsked = expected[0].section(' ', 4, -2).toStdString();
        const fs::path secondAsked = expected[1].section(' ', 4, -2).toStdString();
        QCOMPARE(readAll(firstAsked).size(), indexdat::lengthAfterWipe(m_record.size()));
        QCOMPARE(readAll(secondAsked), m_record);
        fs::remove_all(root);
    }
};

SCOURMILL_QTEST_MAIN(TaviIndexTest)
#include "TaviIndexTest.moc"
