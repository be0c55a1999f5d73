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

QColor pixel(const QImage& image, int x, int y) {
    return image.pixelColor(x, y);
}

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

    void aClickInsideRaisesClickAndAPressLeavingTheButtonDoesNot() {
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
    }

    void aWidgetCoveringTheButtonCountsAsOutside() {
        auto* cover = new QWidget(m_window);
        cover->setGeometry(120, 20, 60, 30); // the right part of the button
        cover->show();
        EventLog log(*m_button);
        QTest::mouseMove(m_button, QPoint(20, 15));
        QTest::mouseMove(m_button, QPoint(130, 15)); // over the cover
        QCOMPARE(log.names().join(" "), QString("MouseEnter MouseExit"));

        // Held down, the button still sees the pointer, and the cover still ends the press.
        QTest::mouseMove(m_button, QPoint(20, 15));
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(20, 15));
        QTest::mouseMove(m_button, QPoint(130, 15));
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(130, 15));
        QVERIFY2(!log.names().contains("Click"), qPrintable(log.names().join(' ')));
        QCOMPARE(log.names().mid(2, 3).join(" "), QString("MouseEnter MouseDown MouseExit"));
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

    void onlyTheMouseAndATrueValueClick() {
        QSignalSpy clicks(m_button, &GGCommand::Click);
        m_button->setFocus();
        QTest::keyClick(m_button, Qt::Key_Space);
        QTest::keyClick(m_button, Qt::Key_Return);
        m_button->setValue(false);
        QCOMPARE(clicks.count(), 0);
        QVERIFY(m_button->setProperty("Value", true));
        QCOMPARE(clicks.count(), 1);
    }

    void dontReleaseCaptureKeepsTheHover() {
        EventLog log(*m_button);
        m_button->setDontReleaseCapture(true);
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QTest::mouseMove(m_button, QPoint(80, 80));
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QVERIFY(!log.names().contains("MouseExit"));
        QVERIFY(log.names().contains("Click"));
    }

    void theGradientFollowsItsOrientationSwapsWhilePressedAndLooksTheSameDisabled() {
        m_button->setGradientFromColor(0xFFFFFF);
        m_button->setGradientToColor(0x000000);
        m_button->setGradientOrientation(1);
        m_button->setCaption("");
        QVERIFY(pixel(m_button->grab().toImage(), 5, 15).lightness() >
                pixel(m_button->grab().toImage(), 150, 15).lightness() + 100); // left to right
        m_button->setGradientOrientation(0);
        const QImage normal = m_button->grab().toImage();
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        const QImage pressed = m_button->grab().toImage();
        QVERIFY(pixel(pressed, 80, 3).lightness() < pixel(normal, 80, 3).lightness());
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QCOMPARE(pixel(m_button->grab().toImage(), 80, 3), pixel(normal, 80, 3));

        const QImage enabled = m_button->grab().toImage();
        m_button->setButtonEnabled(false);
        QCOMPARE(m_button->grab().toImage(), enabled);
    }

    void frameFollowsThePointer() {
        m_button->setBackColor(0x0000FF);
        const auto corners = [this] {
            const QImage face = m_button->grab().toImage();
            return std::pair{pixel(face, 0, 0), pixel(face, face.width() - 1, face.height() - 1)};
        };
        const QColor red(255, 0, 0), white(255, 255, 255), shadow(128, 128, 128);
        QTest::mouseMove(m_button, QPoint(80, 15));
        QCOMPARE(corners(), std::pair(white, shadow)); // raised
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QCOMPARE(corners(), std::pair(shadow, white)); // sunken
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(80, 15));
        QCOMPARE(corners(), std::pair(white, shadow));
        QTest::mouseMove(m_button, QPoint(80, 80));
        QCOMPARE(corners(), std::pair(red, red)); // painted over in the background colour
        m_button->setAlwaysShowBorder(true);
        QTest::mouseMove(m_button, QPoint(80, 15));
        QTest::mouseMove(m_button, QPoint(80, 80));
        QCOMPARE(corners(), std::pair(white, shadow));

        // A click that opens a message box: the box takes the pointer, so the face is the one of a
        // pointer away (caption colour and frame) once the box has closed.
        m_button->setAlwaysShowBorder(false);
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
        m_button->setToolTipText("Wipes the cache"); // no tip yet: only stored
        QVERIFY(!m_button->toolTipWindow());
        m_button->setToolTipIcon(2);
        QTest::mouseMove(m_button, QPoint(80, 15));
        QVERIFY(m_button->toolTipWindow());
        QVERIFY(m_button->toolTipWindow()->hasTitle()); // an icon without a title still makes one
        m_button->setToolTipText("Wipes the cache now");
        QCOMPARE(m_button->toolTipWindow()->look().text, QString("Wipes the cache now"));
        QTest::mouseMove(m_button, QPoint(80, 80));
        QVERIFY(!m_button->toolTipWindow());

        // Centred tips hang below the middle of the button.
        m_button->setToolTipCentered(true);
        QTest::mouseMove(m_button, QPoint(10, 15));
        auto* tip = m_button->toolTipWindow();
        tip->arm(0);
        QTRY_VERIFY(tip->isVisible());
        const QPoint bottomMiddle = m_button->mapToGlobal(QPoint(m_button->width() / 2, m_button->height()));
        QCOMPARE(tip->geometry().center().x(), bottomMiddle.x());
        QCOMPARE(tip->y(), bottomMiddle.y());
    }

    void designFileAppliesByObjectNameAndKeepsNoCentring() {
        m_button->setCaption("Wipe Cache");
        m_button->setCaptionAlignment(3);
        m_button->setGradientFromColor(0x00FFFFFF);
        m_button->setToolTipCentered(true);
        testsupport::ScratchDir dir;
        const auto file = dir.write("Test.design", ggcommand::designText(*m_window).toStdString());
        QWidget other;
        auto* copy = new GGCommand(&other);
        copy->setObjectName("GGCommand3");
        copy->setToolTipCentered(true);
        auto* untouched = new GGCommand(&other);
        untouched->setObjectName("GGCommand4");
        QCOMPARE(ggcommand::applyDesign(other, QString::fromStdString(file.string())), 1);
        QCOMPARE(copy->caption(), QString("Wipe Cache"));
        QCOMPARE(copy->captionAlignment(), 3);
        QCOMPARE(copy->gradientFromColor(), 0x00FFFFFFu);
        QVERIFY(!copy->toolTipCentered());
        QCOMPARE(untouched->caption(), QString("GGCommand4"));
    }
};

SCOURMILL_QTEST_MAIN(GGCommandWidgetTest)
#include "GGCommandWidgetTest.moc"
