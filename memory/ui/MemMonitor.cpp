#include "memory/ui/MemMonitor.h"

#include "controls/widgets/Placed.h"
#include "memory/MemoryFigures.h"
#include "platform/Platform.h"

#include <QLabel>
#include <QTimer>

namespace memory::ui {
namespace {

struct LabelPlace {
    const char* name;
    int topTwips;
};

// All at the left margin, 3735 x 375 twips, stacked.
constexpr LabelPlace Places[] = {{"Label1", 480},  {"Label2", 840},  {"Label3", 1200},
                                 {"Label4", 1560}, {"Label5", 1920}, {"Label6", 2280},
                                 {"Label7", 2640}, {"Label9", 3240}, {"Label8", 3720}};

} // namespace

MemMonitor::MemMonitor(platform::Platform& platform, QWidget* parent)
    : QWidget(parent, Qt::Tool), m_platform(platform), m_timer1(new QTimer(this)) {
    setObjectName("MemMonitor");
    setWindowTitle("Tavi MemMonitor");
    // Docked beside the memory wipe: the same font as that window.
    setFont(widgets::designedFont(font()));
    for (const LabelPlace& place : Places) {
        // The design-time caption is the label's name.
        widgets::placed<QLabel>(this, place.name,
                                {widgets::pixels(120), widgets::pixels(place.topTwips), widgets::pixels(3735),
                                 widgets::pixels(375)},
                                QString::fromLatin1(place.name));
    }
    setFixedSize(widgets::pixels(120 + 3735 + 120), widgets::pixels(3720 + 375 + 240));
    m_timer1->setObjectName("Timer1");
    m_timer1->setInterval(100);
    connect(m_timer1, &QTimer::timeout, this, &MemMonitor::Timer1_Timer);
    Form_Load();
}

void MemMonitor::Form_Load() {
    // Load shows seven figures at once; the load and usage lines wait for the first tick.
    refresh(false);
}

void MemMonitor::Timer1_Timer() {
    refresh(true);
}

void MemMonitor::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_timer1->start();
}

void MemMonitor::hideEvent(QHideEvent* event) {
    // Nobody sees the figures: reading /proc ten times a second would be for nothing.
    m_timer1->stop();
    QWidget::hideEvent(event);
}

void MemMonitor::refresh(bool all) {
    const auto record = memory::readMemoryStatus(m_platform.memoryStatus());
    for (const auto& line : memory::memoryLines(record)) {
        if (!all && (line.label == "Label8" || line.label == "Label9"))
            continue;
        if (auto* label = findChild<QLabel*>(QString::fromStdString(line.label)))
            label->setText(QString::fromStdString(line.caption));
    }
}

} // namespace memory::ui
