#include "memory/ui/CleanMemory.h"

#include "controls/prompts/MessageBoxPrompts.h"
#include "controls/widgets/Placed.h"
#include "memory/MemoryFigures.h"
#include "memory/MemoryTexts.h"
#include "memory/ui/Docking.h"
#include "platform/Platform.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSlider>

#include <algorithm>
#include <utility>

namespace memory::ui {
namespace {

using widgets::pixels;

/// A designed position in twips, as pixels.
QRect twips(int left, int top, int width, int height) {
    return {pixels(left), pixels(top), pixels(width), pixels(height)};
}

/// The track's line in twips and its thickness in pixels, as designed.
constexpr int TrackY = 1320;
constexpr int TrackThickness = 8;
constexpr int FillThickness = 4;

/// One of the track's lines: a bar of `colour` and `thickness` pixels centred on the track.
QFrame* trackLine(QWidget* parent, const char* name, const char* colour, int thickness) {
    auto* line = new QFrame(parent);
    line->setObjectName(name);
    line->setStyleSheet(QString("background: %1;").arg(colour));
    line->setGeometry(pixels(MemoryWipe::TrackStart), pixels(TrackY) - thickness / 2,
                      pixels(MemoryWipe::TrackEnd) - pixels(MemoryWipe::TrackStart), thickness);
    return line;
}

} // namespace

CleanMemory::CleanMemory(platform::Platform& platform, MonitorSource monitor, QWidget* parent, core::Prompts* prompts)
    : QWidget(parent, Qt::Window), m_platform(platform), m_monitor(std::move(monitor)),
      m_ownPrompts(prompts ? nullptr : std::make_unique<prompts::MessageBoxPrompts>(this)),
      m_prompts(prompts ? prompts : m_ownPrompts.get()) {
    setObjectName("CleanMemory");
    setWindowTitle("Tavi Wipe Memory");
    setFont(widgets::designedFont(font()));
    buildControls();
    setFixedSize(pixels(WidthTwips), pixels(HeightTwips));
    // Right edge at the screen's centre, so that the monitor docked beside it is in view as well.
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.center().x() - width(), area.center().y() - height() / 2);
    }
    Form_Load();
}

CleanMemory::~CleanMemory() = default;

void CleanMemory::buildControls() {
    auto* command2 = widgets::placed<QPushButton>(this, "Command2", twips(1200, 240, 1575, 375), "Read B4 Using");
    auto* command1 =
        widgets::placed<QPushButton>(this, "Command1", twips(600, 720, 2655, 375), "Clean Physical and Virtual Mem");
    // Blue (0x00C00000 as the designer's BGR colour) under light cyan (0x00FFFF80); both span the
    // whole track as designed, until a run starts the fill again.
    trackLine(this, "Line1", "#0000c0", TrackThickness);
    m_line2 = trackLine(this, "Line2", "#80ffff", FillThickness);
    m_label2 = widgets::placed<QLabel>(this, "Label2", twips(480, 1560, 2895, 375), "Label2");
    widgets::placed<QLabel>(this, "Label3", twips(240, 2280, 855, 255), "Array Size");
    m_text3 = widgets::placed<QLineEdit>(this, "Text3", twips(1080, 2160, 1815, 375), "0");
    auto* label1 = widgets::placed<QLabel>(this, "Label1", twips(3120, 2280, 495, 255), "MB");
    QFont bold = label1->font();
    bold.setBold(true);
    label1->setFont(bold);
    m_slider1 = widgets::placed<QSlider>(this, "Slider1", twips(120, 2640, 3495, 375), Qt::Horizontal);
    m_slider1->setRange(0, 100);
    m_slider1->setSingleStep(1);
    m_slider1->setPageStep(10);
    m_slider1->setTickPosition(QSlider::TicksBelow);
    m_slider1->setTickInterval(10);
    m_label8 = widgets::placed<QLabel>(this, "Label8", twips(3240, 120, 495, 495), "0");
    auto* command3 = widgets::placed<QPushButton>(this, "Command3", twips(1320, 3000, 1335, 255), "Dock Monitor");

    connect(command1, &QPushButton::clicked, this, [this] { widgets::guarded([this] { Command1_Click(); }); });
    connect(command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    connect(command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    // Every move of the slider (mouse, arrow and page keys, wheel) shows in the size it sets.
    connect(m_slider1, &QSlider::valueChanged, this, [this] { Slider1_Change(); });
}

void CleanMemory::Form_Load() {
    const MemoryWipe wipe(m_platform, *this);
    m_label2->setText(QString::fromStdString(suggestedSizeCaption(wipe.suggestedArraySize())));
}

void CleanMemory::Command1_Click() {
    WipeMemory(arraySize(m_text3->text().toStdString()));
}

void CleanMemory::Command2_Click() {
    m_prompts->tell(texts::ReadB4Using, core::ApplicationTitle, core::MsgStyle::OkOnly);
}

void CleanMemory::Command3_Click() {
    dockMonitor();
}

void CleanMemory::Slider1_Change() {
    m_text3->setText(QString::number(m_slider1->value()));
}

void CleanMemory::dockMonitor() {
    QWidget* monitor = m_monitor ? m_monitor() : nullptr;
    if (!monitor)
        return;
    dockBeside(*monitor, *this);
    monitor->show();
    monitor->raise();
}

void CleanMemory::WipeMemory(std::int32_t size) {
    if (m_runs == 0)
        m_stopRequested = false;
    ++m_runs;
    memory::MemoryWipe wipe(m_platform, *this);
    // The window ends quietly however the run ends: early ends show as the counter's last pass.
    wipe.WipeMemory(size);
    --m_runs;
}

void CleanMemory::closeEvent(QCloseEvent* event) {
    if (running())
        requestStop();
    event->accept();
}

void CleanMemory::fillMoved(int x) {
    placeFill(x);
}

void CleanMemory::placeFill(int x) {
    const int from = pixels(std::min(x, MemoryWipe::TrackStart));
    const int to = pixels(std::max(x, MemoryWipe::TrackStart));
    m_line2->setGeometry(from, m_line2->y(), to - from, FillThickness);
    m_line2->setVisible(to > from);
}

void CleanMemory::passDone(int pass) {
    m_label8->setText(QString::number(pass));
}

void CleanMemory::pumpEvents() {
    QCoreApplication::processEvents();
}

} // namespace memory::ui
