// The button widget driven like a user would: real mouse events on the offscreen platform,
// events checked in the order the holding window sees them, the face checked by its pixels.

#include "controls/ggcommand/Design.h"
#include "controls/ggcommand/GGCommand.h"
#include "controls/ggcommand/ToolTipWindow.h"
#include "tests/support/QtTestMain.h"
#include "tests/support/Scratch.h"

#include <QDialog>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>
#include <QTimer>

using ggcommand::GGCommand;

namespace {

// Records the button's events by name, in the order they are raised.
class EventLog : public QObject {
public:
    explicit EventLog(GGCommand& button) {
        connect(&button, &GGCommand::Click, this, [this] { m_names << "Click"; });
        connect(&button, &GGCommand::DblClick, this, [this] { m_names << "DblClick"; });
        connect(&button, &GGCommand::MouseEnter, this, [this] { m_names << "MouseEnter"; });
        connect(&button, &GGCommand::MouseExit, this, [this] { m_names << "MouseExit"; });
        connect(&button, &GGCommand::MouseDown, this, [this](int, int, float, float) { m_names << "MouseDown"; });
        connect(&button, &GGCommand::MouseUp, this, [this](int, int, float, float) { m_names << "MouseUp"; });
    }
    const QStringList& names() const { return m_names; }

private:
    QStringList m_names;
};

} // namespace

class GGCommandWidgetTest : public QObject {
    Q_OBJECT

    QWidget* m_window = nullptr;
    GGCommand* m_button = nullptr;

private slots:
    void init() {
        m_window = new QWidget;
        m_window->setObjectName("TestWindow");
        m_window->resize(300, 200);
        m_button = new GGCommand(m_window);
        m_button->setObjectName("GGCommand3");
        m_button->setGeometry(20, 20, 160, 30);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        QTest::mouseMove(m_window, QPoint(5, 190)); // start away from the button
    }

    void cleanup() {
        delete m_window;
        m_window = nullptr;
    }

    void onlyALeftClickInsideOrATrueValueRaisesClick() {
        EventLog log(*m_button);
        QTest::mouseMove(m_button, QPoint(80, 15));
        QTest::mouseClick(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QCOMPARE(log.names().join(" "), QString("MouseEnter MouseDown Click MouseUp"));
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QTest::mouseMove(m_button, QPoint(80, 80));
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(80, 80));
        QCOMPARE(log.names().mid(4).join(" "), QString("MouseDown MouseExit MouseUp"));
        QTest::mouseMove(m_button, QPoint(80, 15));
        QTest::mouseDClick(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        // QTest leaves the button down after a double click; let it go before the next test.
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QCOMPARE(log.names().mid(7).count("DblClick"), 1);
        QVERIFY(!log.names().mid(7).contains("Click"));
        // Nor does any button but the left one click.
        QTest::mouseClick(m_button, Qt::RightButton, {}, QPoint(80, 15));
        QVERIFY(!log.names().mid(7).contains("Click"));
        // Nor do keys; a true Value does, a false one does not.
        QSignalSpy clicks(m_button, &GGCommand::Click);
        m_button->setFocus();
        QTest::keyClick(m_button, Qt::Key_Space);
        QTest::keyClick(m_button, Qt::Key_Return);
        m_button->setValue(false);
        QCOMPARE(clicks.count(), 0);
        QVERIFY(m_button->setProperty("Value", true));
        QCOMPARE(clicks.count(), 1);
    }

    void clickMayDeleteTheButton() {
        QPointer<GGCommand> button = m_button;
        connect(m_button, &GGCommand::Click, m_window, [this] {
            delete m_window;
            m_window = nullptr;
        });
        QTest::mouseMove(m_button, QPoint(80, 15));
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QVERIFY(!button);
    }

    void theGradientSwapsWhilePressedAndLooksTheSameDisabled() {
        m_button->setGradientFromColor(0xFFFFFF);
        m_button->setGradientToColor(0x000000);
        m_button->setCaption("");
        const QImage normal = m_button->grab().toImage();
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        const QImage pressed = m_button->grab().toImage();
        QVERIFY(pressed.pixelColor(80, 3).lightness() < normal.pixelColor(80, 3).lightness());
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        const QImage enabled = m_button->grab().toImage();
        m_button->setButtonEnabled(false);
        QCOMPARE(m_button->grab().toImage(), enabled);
    }

    // The box takes the pointer, so once it has closed the face is the one of a pointer away
    // (caption colour and frame).
    void aMessageBoxOpenedByAClickLeavesTheFaceOfAPointerAway() {
        const QImage away = m_button->grab().toImage();
        connect(m_button, &GGCommand::Click, m_window, [this] {
            QDialog box(m_window);
            QTimer::singleShot(0, &box, &QDialog::accept);
            box.exec();
        });
        QTest::mouseMove(m_button, QPoint(80, 15));
        QTest::mouseClick(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QCOMPARE(m_button->grab().toImage(), away);
    }

    void tooltipLivesFromEnterToExit() {
        m_button->setToolTipText("Wipes the cache");
        m_button->setToolTipIcon(2);
        QTest::mouseMove(m_button, QPoint(80, 15));
        QVERIFY(m_button->toolTipWindow()->hasTitle()); // an icon without a title still makes one
        QTest::mouseMove(m_button, QPoint(80, 80));
        QVERIFY(!m_button->toolTipWindow());
    }

    // What the file holds and leaves out is the design file's own test; here, who it applies to.
    void designFileAppliesByObjectName() {
        m_button->setCaption("Wipe Cache");
        m_button->setGradientFromColor(0x00FFFFFF);
        testsupport::ScratchDir dir;
        const auto file = dir.write("Test.design", ggcommand::designText(*m_window).toStdString());
        QWidget other;
        auto* copy = new GGCommand(&other);
        copy->setObjectName("GGCommand3");
        auto* untouched = new GGCommand(&other);
        untouched->setObjectName("GGCommand4");
        QCOMPARE(ggcommand::applyDesign(other, QString::fromStdString(file.string())), 1);
        QCOMPARE(copy->caption(), QString("Wipe Cache"));
        QCOMPARE(copy->gradientFromColor(), 0x00FFFFFFu);
        QCOMPARE(untouched->caption(), QString("GGCommand4"));
    }
};

SCOURMILL_QTEST_MAIN(GGCommandWidgetTest)
#include "GGCommandWidgetTest.moc"
