// "Clean Item" driven as a user drives it: the chooser's text typed or picked, the button clicked,
// the hive of the scratch Wine prefix read back, the no-choice message box answered.

#include "app/TaviMain.h"
#include "app/WindowSet.h"
#include "controls/ggcommand/GGCommand.h"
#include "platform/Platform.h"
#include "tests/support/Hive.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/QtTestMain.h"

#include <QComboBox>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

class CleanItemTest : public QObject {
    Q_OBJECT

    std::unique_ptr<testsupport::MainWindowUnderTest> m_app;
    std::filesystem::path m_hive;

    QComboBox* combo() { return m_app->main.findChild<QComboBox*>("Combo1"); }
    void clickCleanItem() {
        auto* button = m_app->main.findChild<ggcommand::GGCommand*>("GGCommand11");
        QTest::mouseClick(button, Qt::LeftButton, {}, button->rect().center());
    }
    std::string hiveText() { return testsupport::readFile(m_hive); }

private slots:
    void init() {
        m_hive = testsupport::writeUserReg(qEnvironmentVariable("WINEPREFIX").toStdString(),
                                           "\n[Software\\\\Microsoft\\\\Internet Explorer\\\\TypedURLs] 1700000000\n"
                                           "#time=1da16a0b0c0d0e0\n\"url1\"=\"http://a.example/\"\n"
                                           "\"url2\"=\"http://b.example/\"\n\"url4\"=\"http://d.example/\"\n");
        m_app = std::make_unique<testsupport::MainWindowUnderTest>();
        QVERIFY(m_app->main.isVisible());
    }

    void cleanup() {
        m_app.reset();
    }

    void cleansTheChosenListOnly() {
        combo()->setCurrentIndex(1);
        QCOMPARE(combo()->currentText(), QString("IE Typed URL's"));
        clickCleanItem();
        const std::string text = hiveText();
        QVERIFY(text.find("url1") == std::string::npos);
        QVERIFY(text.find("url2") == std::string::npos);
        QVERIFY(text.find("\"url4\"=\"http://d.example/\"") != std::string::npos);
    }

    // The exact comparison and the message's text are checked on CleanIT itself; here, that the
    // window's chooser text reaches it and the message comes up as a real box.
    void anyOtherTextShowsTheNoChoiceMessageAndCleansNothing() {
        const std::string before = hiveText();
        combo()->setEditText("ie typed url's");
        QString title;
        QTimer::singleShot(0, this, [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                title = box->windowTitle();
                box->accept();
            }
        });
        clickCleanItem();
        QCOMPARE(title, QString("Tavi Message"));
        QCOMPARE(hiveText(), before);
    }
};

SCOURMILL_QTEST_MAIN(CleanItemTest)
#include "CleanItemTest.moc"
