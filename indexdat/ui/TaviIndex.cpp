#include "indexdat/ui/TaviIndex.h"

#include "controls/ggcommand/Design.h"
#include "controls/ggcommand/GGCommand.h"
#include "controls/prompts/MessageBoxPrompts.h"
#include "indexdat/IndexTexts.h"
#include "indexdat/RawReport.h"
#include "controls/hoverhelp/HoverHelp.h"
#include "controls/widgets/Centre.h"
#include "controls/widgets/Placed.h"
#include "controls/folderlist/FolderList.h"
#include "platform/Platform.h"

#include <QApplication>
#include <QComboBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

// Resources of a static library must be registered by name, outside any namespace.
static void initIndexDatResources() {
    Q_INIT_RESOURCE(indexdat_ui);
}

namespace indexdat::ui {
namespace {

// Bytes per line of the raw view: lines keep a several-megabyte file quick to show and scroll.
constexpr std::size_t RawLineWidth = 96;

QString fromBytes(const std::string& bytes) {
    return QString::fromUtf8(visibleText(bytes, 0));
}

QLabel* label(QWidget* parent, const char* name, const char* caption, const QRect& place) {
    return widgets::placed<QLabel>(parent, name, place, QString::fromLatin1(caption));
}

QLineEdit* textBox(QWidget* parent, const char* name, const QRect& place, bool readOnly) {
    auto* t = widgets::placed<QLineEdit>(parent, name, place);
    t->setReadOnly(readOnly);
    return t;
}

QListWidget* listBox(QWidget* parent, const char* name, const QRect& place) {
    auto* l = widgets::placed<QListWidget>(parent, name, place);
    l->setUniformItemSizes(true); // keeps long lists quick
    return l;
}

} // namespace

TaviIndex::TaviIndex(platform::Platform& platform, QWidget* parent)
    : QWidget(parent, Qt::Window), m_platform(platform),
      m_prompts(std::make_unique<prompts::MessageBoxPrompts>(this)), m_manager(platform, *this) {
    initIndexDatResources();
    setObjectName("TaviIndex");
    setWindowTitle(QString::fromStdString(WindowCaption));
    buildControls();
    ggcommand::applyDesign(*this, ":/design/TaviIndex.design");
    buildHelp();
    connectEvents();
    Form_Load();
}

TaviIndex::~TaviIndex() {
    setBusy(false);
}

void TaviIndex::buildControls() {
    // Created in the window's declaration order; the commands down the left with the search
    // inputs, the three screens (files, activity, raw bytes) down the right.
    const std::pair<int, QRect> buttons[] = {
        {7, {8, 8, 220, 30}},   {1, {8, 300, 220, 30}}, {2, {8, 426, 220, 30}}, {3, {8, 498, 220, 30}},
        {4, {8, 534, 220, 30}}, {6, {8, 462, 220, 30}}, {5, {8, 570, 220, 30}},
    };
    for (const auto& [number, place] : buttons) {
        auto* b = new ggcommand::GGCommand(this);
        b->setObjectName(QString("GGCommand%1").arg(number));
        b->setGeometry(place);
        m_buttons[number] = b;
    }
    m_text1 = textBox(this, "Text1", {304, 414, 468, 24}, true);
    m_richTextBox1 = new QPlainTextEdit(this);
    m_richTextBox1->setObjectName("RichTextBox1");
    m_richTextBox1->setGeometry(240, 444, 532, 156);
    m_richTextBox1->setReadOnly(true);
    m_richTextBox1->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_richTextBox1->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_list2 = listBox(this, "List2", {240, 206, 532, 200});
    m_dir1 = listBox(this, "Dir1", {8, 130, 220, 164});
    m_drive1 = new QComboBox(this);
    m_drive1->setObjectName("Drive1");
    m_drive1->setGeometry(8, 98, 220, 26);
    m_list1 = listBox(this, "List1", {240, 8, 532, 190});
    m_text4 = textBox(this, "Text4", {8, 390, 220, 24}, true);
    m_text3 = textBox(this, "Text3", {136, 338, 92, 24}, true);
    m_text2 = textBox(this, "Text2", {8, 64, 220, 26}, false);
    m_text2->setText(QString::fromStdString(DefaultPattern));
    label(this, "Label1", "File Size", {240, 414, 60, 24});
    label(this, "Label2", "# of dirs/ # of files", {8, 338, 126, 24});
    label(this, "Label3", "Tot Size of All Files", {8, 364, 220, 24});
    label(this, "Label4", "Type File to Find", {8, 46, 220, 16});
    setFixedSize(780, 608);
}

void TaviIndex::buildHelp() {
    m_help = new HoverHelp(this);
    m_help->addMenus(helpMenus());
}

void TaviIndex::connectEvents() {
    const std::pair<int, void (TaviIndex::*)()> clicks[] = {
        {1, &TaviIndex::GGCommand1_Click}, {2, &TaviIndex::GGCommand2_Click}, {3, &TaviIndex::GGCommand3_Click},
        {4, &TaviIndex::GGCommand4_Click}, {5, &TaviIndex::GGCommand5_Click}, {6, &TaviIndex::GGCommand6_Click},
        {7, &TaviIndex::GGCommand7_Click},
    };
    for (const auto& [number, handler] : clicks)
        connect(m_buttons[number], &ggcommand::GGCommand::Click, this, handler);
    connect(m_list1, &QListWidget::itemDoubleClicked, this, &TaviIndex::List1_DblClick);
    connect(m_list2, &QListWidget::itemDoubleClicked, this, &TaviIndex::List2_DblClick);
    connect(m_dir1, &QListWidget::itemDoubleClicked, this, &TaviIndex::Dir1_DblClick);
    connect(m_drive1, &QComboBox::activated, this, &TaviIndex::Drive1_Change);
}

void TaviIndex::Form_Load() {
    widgets::centreOnScreen(*this);
    const std::string start = defaultSearchFolder(m_platform);
    const std::string drive = m_platform.drives().rootOf(start);
    for (const std::string& root : m_platform.drives().roots())
        m_drive1->addItem(QString::fromStdString(root), QByteArray::fromStdString(root));
    if (m_drive1->findData(QByteArray::fromStdString(drive)) < 0)
        m_drive1->addItem(QString::fromStdString(drive), QByteArray::fromStdString(drive));
    m_drive1->setCurrentIndex(m_drive1->findData(QByteArray::fromStdString(drive)));
    setFolder(QString::fromStdString(start));
    m_manager.load();
}

QString TaviIndex::folder() const {
    return QString::fromStdString(m_folder);
}

void TaviIndex::setFolder(const QString& path) {
    m_folder = path.toStdString();
    const std::string root = m_drive1->currentData().toByteArray().toStdString();
    m_dir1->clear();
    for (const controls::FolderLine& line : controls::folderLines(m_platform.fileSystem(), root, m_folder)) {
        auto* item = new QListWidgetItem(QString(line.depth * 2, ' ') + (line.open ? "[-] " : "[+] ") +
                                         QString::fromStdString(line.label));
        item->setData(Qt::UserRole, QByteArray::fromStdString(line.path));
        m_dir1->addItem(item);
        if (line.path == m_folder)
            m_dir1->setCurrentItem(item);
    }
}

void TaviIndex::Drive1_Change() {
    const std::string root = m_drive1->currentData().toByteArray().toStdString();
    // A drive with no medium cannot be opened: the lists keep what they show.
    if (m_platform.drives().isDirectory(root))
        setFolder(QString::fromStdString(root));
}

void TaviIndex::Dir1_DblClick() {
    if (const QListWidgetItem* item = m_dir1->currentItem())
        setFolder(QString::fromStdString(item->data(Qt::UserRole).toByteArray().toStdString()));
}

// The commands: the search, the reports and the overwrites are the manager's.
void TaviIndex::GGCommand1_Click() {
    m_manager.search();
}

void TaviIndex::GGCommand2_Click() {
    m_manager.reportSelected();
}

void TaviIndex::GGCommand3_Click() {
    m_manager.rawReport();
}

void TaviIndex::GGCommand4_Click() {
    m_manager.deleteActivity();
}

void TaviIndex::GGCommand5_Click() {
    m_manager.deleteAll();
}

void TaviIndex::GGCommand6_Click() {
    m_manager.reportAll();
}

void TaviIndex::GGCommand7_Click() {
    m_help->toggle(*m_buttons[7]);
}

void TaviIndex::List1_DblClick() {
    m_manager.openFile();
}

void TaviIndex::List2_DblClick() {
    if (const QListWidgetItem* item = m_list2->currentItem())
        m_manager.openEntry(item->data(Qt::UserRole).toByteArray().toStdString());
}

void TaviIndex::clearFiles() {
    m_list1->clear();
}

void TaviIndex::addFile(const std::string& path) {
    auto* item = new QListWidgetItem(QString::fromStdString(path));
    item->setData(Qt::UserRole, QByteArray::fromStdString(path));
    m_list1->addItem(item);
}

int TaviIndex::fileCount() const {
    return m_list1->count();
}

std::string TaviIndex::fileAt(int index) const {
    const QListWidgetItem* item = m_list1->item(index);
    return item ? item->data(Qt::UserRole).toByteArray().toStdString() : std::string();
}

int TaviIndex::selectedFile() const {
    const QListWidgetItem* item = m_list1->currentItem();
    return item && item->isSelected() ? m_list1->row(item) : -1;
}

void TaviIndex::selectFile(int index) {
    if (index < 0) {
        m_list1->clearSelection();
        m_list1->setCurrentRow(-1);
    } else if (index < m_list1->count()) {
        m_list1->setCurrentRow(index);
    }
}

void TaviIndex::clearActivity() {
    m_list2->clear();
}

void TaviIndex::addActivity(const std::string& entry) {
    auto* item = new QListWidgetItem(fromBytes(entry));
    item->setData(Qt::UserRole, QByteArray::fromStdString(entry));
    m_list2->addItem(item);
}

void TaviIndex::setFileSizeText(const std::string& text) {
    m_text1->setText(QString::fromStdString(text));
}

void TaviIndex::setRawBytes(const std::string& bytes) {
    m_richTextBox1->setPlainText(QString::fromUtf8(visibleText(bytes, RawLineWidth)));
}

void TaviIndex::setCountsText(const std::string& text) {
    m_text3->setText(QString::fromStdString(text));
}

void TaviIndex::setTotalText(const std::string& text) {
    m_text4->setText(QString::fromStdString(text));
}

std::string TaviIndex::searchFolder() const {
    return m_folder;
}

std::string TaviIndex::searchPattern() const {
    return m_text2->text().toStdString();
}

void TaviIndex::setBusy(bool busy) {
    if (busy == m_busy)
        return;
    m_busy = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void TaviIndex::pumpEvents() {
    QCoreApplication::processEvents();
}

core::Prompts& TaviIndex::prompts() {
    return *m_prompts;
}

} // namespace indexdat::ui
