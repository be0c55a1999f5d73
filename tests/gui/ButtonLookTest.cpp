// The buttons of the two windows made of them, as a user first sees them: every button that keeps
// its border shows it in the very first picture of the window, and captions keep their weight
// while the pointer is over them.

#include "controls/ggcommand/GGCommand.h"
#include "controls/prompts/MessageBoxPrompts.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/QtTestMain.h"

#include <QTest>

#include <algorithm>
#include <cstdlib>

using ggcommand::GGCommand;

namespace {

int distance(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
}

/// How wide the caption is drawn: the columns holding a pixel that stands out from its gradient
/// line (the face's third column). Bold type is 3 to 12 pixels wider for these captions.
int captionWidth(const QImage& face) {
    int left = face.width();
    int right = -1;
    for (int y = 2; y < face.height() - 2; ++y) {
        const QColor line = face.pixelColor(2, y);
        for (int x = 3; x < face.width() - 3; ++x) {
            if (distance(face.pixelColor(x, y), line) > 150) {
                left = std::min(left, x);
                right = std::max(right, x);
            }
        }
    }
    return right - left + 1;
}

} // namespace

class ButtonLookTest : public QObject {
    Q_OBJECT

    std::unique_ptr<testsupport::MainWindowUnderTest> m_app;

    /// The main window and the index.dat window, shown and exposed, nothing hovered yet.
    QList<QWidget*> windows() {
        QWidget* index = m_app->windows.show("TaviIndex");
        if (!QTest::qWaitForWindowExposed(index))
            qFatal("TaviIndex was not exposed");
        return {&m_app->main, index};
    }

private slots:
    void initTestCase() {
        prompts::MessageBoxPrompts::setUnattended(true);
    }

    void init() {
        // Start with the pointer off every window, so that nothing is hovered before the grab.
        QCursor::setPos(QPoint(0, 0));
        m_app = std::make_unique<testsupport::MainWindowUnderTest>();
    }

    void cleanup() {
        m_app.reset();
    }

    void bordersShowInTheFirstPicture() {
        int checked = 0;
        for (QWidget* window : windows()) {
            const QImage shot = window->grab().toImage();
            for (GGCommand* b : window->findChildren<GGCommand*>()) {
                if (!b->alwaysShowBorder())
                    continue;
                const QRect face = b->contentsRect().translated(b->mapTo(window, QPoint(0, 0)));
                const QColor topLeft = shot.pixelColor(face.topLeft());
                const QColor bottomRight = shot.pixelColor(face.bottomRight());
                const QColor inside = shot.pixelColor(face.bottomRight() - QPoint(2, 2));
                QVERIFY2(topLeft == QColor(Qt::white), qPrintable(b->objectName() + " has no raised top edge"));
                QVERIFY2(distance(bottomRight, inside) > 30,
                         qPrintable(b->objectName() + " has no shadowed bottom edge"));
                ++checked;
            }
        }
        QCOMPARE(checked, 13 + 7);
    }

    void captionsKeepTheirWeightUnderThePointer() {
        const QList<QWidget*> all = windows();
        for (QWidget* window : all) {
            // One window at a time: the pointer reaches whichever window lies on top.
            for (QWidget* other : all)
                other->setVisible(other == window);
            for (GGCommand* b : window->findChildren<GGCommand*>()) {
                const int normal = captionWidth(b->grab().toImage());
                QTest::mouseMove(b, b->rect().center());
                const int hovered = captionWidth(b->grab().toImage());
                QTest::mouseMove(window, QPoint(1, 1));
                QVERIFY2(normal > 0 && std::abs(hovered - normal) <= 2,
                         qPrintable(QString("%1: %2 pixels wide, %3 under the pointer")
                                        .arg(b->caption())
                                        .arg(normal)
                                        .arg(hovered)));
            }
        }
    }
};

SCOURMILL_QTEST_MAIN(ButtonLookTest)

#include "ButtonLookTest.moc"
