#include "wipe/ui/TaviSecureWipe.h"

#include "controls/prompts/MessageBoxPrompts.h"
#include "controls/widgets/Centre.h"
#include "controls/widgets/Placed.h"
#include "core/NumberFormat.h"
#include "platform/Platform.h"
#include "wipe/FileError.h"
#include "wipe/ui/BusyCursor.h"
#include "wipe/ui/GaugeLines.h"
#include "wipe/ui/OverwriteLimits.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QAbstractItemView>
#include <QTimer>

namespace wipe::ui {
namespace {

constexpr int WidthPixels = 440;

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

} // namespace

TaviSecureWipe::TaviSecureWipe(platform::Platform& platform, QWidget* parent, core::Prompts* prompts)
    : QWidget(parent, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint),
      m_platform(platform), m_ownPrompts(prompts ? nullptr : std::make_unique<prompts::MessageBoxPrompts>(this)),
      m_prompts(prompts ? prompts : m_ownPrompts.get()), m_engine(platform, *this, m_quiet) {
    setObjectName("TaviSecureWipe");
    setWindowTitle("Tavi Secure FreeSpace Wipe");
    buildControls();
    setFixedSize(WidthPixels, widgets::pixels(CollapsedTwips));
    widgets::centreOnScreen(*this);
    Form_Load();
}

void TaviSecureWipe::Form_Load() {
    for (const auto& root : m_platform.drives().roots())
        m_drive1->addItem(text(root));
    connect(m_drive1, &QComboBox::currentIndexChanged, this, &TaviSecureWipe::Drive1_Change);
    showFreeSpace();
}

void TaviSecureWipe::Drive1_Change() {
    showFreeSpace();
    // A crash may have left a temporary file on the drive the user turns to: offer to remove it.
    m_engine.offerStaleRemoval(chosenRoot().toStdString());
}

TaviSecureWipe::~TaviSecureWipe() = default;

void TaviSecureWipe::buildControls() {
    auto* frame = widgets::placed<QGroupBox>(this, "Frame1", {8, 4, 400, 130}, "Wipe Drives");
    m_drive1 = widgets::placed<QComboBox>(frame, "Drive1", {12, 42, 150, 26});
    m_drive1->view()->setMinimumWidth(320); // mount points are longer than drive letters
    widgets::placed<QLabel>(frame, "Label3", {172, 22, 220, 18}, "Free Space Available for Wiping");
    m_text3 = widgets::placed<QLineEdit>(frame, "Text3", {172, 42, 216, 26});
    m_text3->setReadOnly(true);
    m_text3->setAlignment(Qt::AlignRight);
    m_command2 = widgets::placed<QPushButton>(frame, "Command2", {12, 90, 186, 32}, "Wipe Hard Drive FreeSpace");
    m_command3 = widgets::placed<QPushButton>(frame, "Command3", {204, 90, 184, 32}, "Wipe A:\\ or Small Drives");

    m_check1 = widgets::placed<QCheckBox>(this, "Check1", {20, 135, 190, 22}, "Check to Pause Wiping");
    m_check2 = widgets::placed<QCheckBox>(this, "Check2", {216, 135, 190, 22}, "Check to Exit Wiping");
    m_limits = overwriteLimitsLabel(this, {12, 156, 396, 57});

    m_command4 = widgets::placed<QPushButton>(this, "Command4", {8, 214, 130, 32}, "Advanced Off");
    m_command1 = widgets::placed<QPushButton>(this, "Command1", {278, 214, 130, 32}, "Exit Program");
    // Read the last pass back from the device and compare, before its file is removed.
    m_chkVerify = widgets::placed<QCheckBox>(this, "chkVerify", {160, 219, 100, 22}, "Verify");
    m_gauge = new GaugeLines(this, 420, 12, 232, true);

    // The detail panel, below the collapsed height.
    m_text4 = addField("Text4", "Label4", "Increment in Bytes ", 8, 262, 200);
    m_text5 = addField("Text5", "Label5", "Bytes Currently Wiped", 220, 262, 200);
    m_text1 = addField("Text1", "Label1", "3 writes/Increment", 8, 306, 200);
    m_text2 = addField("Text2", "Label2", "Current Write of 35 ", 220, 306, 200);
    m_text6 = addField("Text6", "Label6", "Actual Offset in file seek ", 8, 350, 200);
    m_text8 = addField("Text8", "Label8", "Actual HighVal", 220, 350, 200);

    connect(m_command2, &QPushButton::clicked, this, &TaviSecureWipe::Command2_Click);
    connect(m_command3, &QPushButton::clicked, this, &TaviSecureWipe::Command3_Click);
    connect(m_command4, &QPushButton::clicked, this, &TaviSecureWipe::Command4_Click);
    connect(m_command1, &QPushButton::clicked, this, &TaviSecureWipe::Command1_Click);
}

QLineEdit* TaviSecureWipe::addField(const char* name, const char* labelName, const char* caption, int x, int y,
                                    int width) {
    widgets::placed<QLabel>(this, labelName, {x, y, width, 16}, caption);
    auto* field = widgets::placed<QLineEdit>(this, name, {x, y + 17, width, 24});
    field->setReadOnly(true);
    return field;
}

QString TaviSecureWipe::chosenRoot() const {
    return m_drive1->currentText();
}

void TaviSecureWipe::showFreeSpace() {
    if (m_drive1->count() == 0)
        return;
    const std::string root = chosenRoot().toStdString();
    m_text3->setText(text(core::formatGrouped(m_engine.freeSpace(root))));
    showOverwriteLimits(*m_limits, m_platform, root);
}

void TaviSecureWipe::Command2_Click() {
    wipe(false);
}

void TaviSecureWipe::Command3_Click() {
    wipe(true);
}

void TaviSecureWipe::wipe(bool removable) {
    if (m_drive1->count() == 0)
        return;
    BusyCursor busy;
    const std::string root = chosenRoot().toStdString();
    m_engine.setVerify(m_chkVerify->isChecked());
    widgets::guarded([&] {
        try {
            const auto outcome = removable ? m_engine.wipeRemovable(root) : m_engine.wipeFixed(root);
            if (outcome == wipe::FreeSpaceWipe::Outcome::Completed && m_chkVerify->isChecked())
                m_prompts->tell(m_engine.verifyOutcome(), core::MessageTitle, core::MsgStyle::OkOnly);
        } catch (const wipe::FileError& e) {
            m_prompts->tell(e.description(), e.source(), core::MsgStyle::Critical);
        }
    });
}

void TaviSecureWipe::Command4_Click() {
    if (m_command4->text() == "Advanced Off") {
        m_command4->setText("Advanced On");
        setFixedSize(WidthPixels, widgets::pixels(ExpandedTwips));
    } else if (m_command4->text() == "Advanced On") {
        m_command4->setText("Advanced Off");
        setFixedSize(WidthPixels, widgets::pixels(CollapsedTwips));
    }
}

void TaviSecureWipe::Command1_Click() {
    if (!m_engine.requestQuit(m_command2->isEnabled()))
        return;
    // Leaving unloads the window: shown again, it starts afresh.
    m_mayClose = true;
    close();
    m_mayClose = false;
    setWipeEnabled(true);
    m_check1->setChecked(false);
    m_check2->setChecked(false);
}

void TaviSecureWipe::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_staleChecked || m_drive1->count() == 0)
        return;
    // Once the window is on screen: a crash may have left a temporary file on the drive shown.
    m_staleChecked = true;
    QTimer::singleShot(0, this, [this] { m_engine.offerStaleRemoval(chosenRoot().toStdString()); });
}

void TaviSecureWipe::closeEvent(QCloseEvent* event) {
    // No Close item: only "Exit Program" (or the program ending) closes this window.
    if (m_mayClose || m_quitting)
        event->accept();
    else
        event->ignore();
}

void TaviSecureWipe::pumpEvents() {
    QCoreApplication::processEvents();
}

void TaviSecureWipe::passStarted(int pass, core::Currency increment) {
    if (pass == 1)
        m_gauge->reset();
    m_gauge->advance();
    m_text2->setText(QString::number(pass));
    m_text4->setText(text(increment.toString()));
}

void TaviSecureWipe::progress(const wipe::FreeSpaceProgress& now) {
    m_text8->setText(QString::number(now.high));
    m_text1->setText(QString::number(now.index) + " / " + QString::number(now.count));
    m_text5->setText(text(core::formatGrouped(now.wiped)));
    m_text6->setText(text(core::formatGrouped(now.offset)));
}

bool TaviSecureWipe::exitRequested() {
    return m_check2->isChecked();
}

void TaviSecureWipe::setExitRequested(bool on) {
    m_check2->setChecked(on);
}

bool TaviSecureWipe::pauseRequested() {
    return m_check1->isChecked();
}

void TaviSecureWipe::setWipeEnabled(bool enabled) {
    m_command2->setEnabled(enabled);
    m_command3->setEnabled(enabled);
}

void TaviSecureWipe::freeSpaceMeasured(core::Currency bytes) {
    m_text3->setText(text(core::formatGrouped(bytes)));
}

} // namespace wipe::ui
