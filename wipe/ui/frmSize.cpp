#include "wipe/ui/frmSize.h"

#include "controls/prompts/MessageBoxPrompts.h"
#include "controls/widgets/Centre.h"
#include "controls/folderlist/FolderList.h"
#include "platform/Platform.h"
#include "wipe/WipeTexts.h"
#include "wipe/ui/BusyCursor.h"
#include "wipe/ui/GaugeLines.h"
#include "wipe/ui/OverwriteLimits.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <algorithm>

namespace wipe::ui {
namespace {

struct FileType {
    const char* item;
    const char* pattern;
};
constexpr FileType FileTypes[] = {
    {"All Files (*.*)", "*.*"}, {"Text Files (*.TXT)", "*.TXT"}, {"Doc Files (*.DOC)", "*.DOC"}};

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

template <class T>
T* named(T* widget, const char* name) {
    widget->setObjectName(name);
    return widget;
}

QStringList sortedNames(QStringList names) {
    std::sort(names.begin(), names.end(),
              [](const QString& a, const QString& b) { return QString::compare(a, b, Qt::CaseInsensitive) < 0; });
    return names;
}

} // namespace

frmSize::frmSize(platform::Platform& platform, QWidget* parent, core::Prompts* prompts, const QString& startFolder)
    : QWidget(parent, Qt::Window), m_platform(platform),
      m_ownPrompts(prompts ? nullptr : std::make_unique<prompts::MessageBoxPrompts>(this)),
      m_prompts(prompts ? prompts : m_ownPrompts.get()), m_engine(platform, *this, m_quiet, &m_verified) {
    setObjectName("frmSize");
    setWindowTitle("Tavi SecureDelete");
    buildControls();
    setFixedSize(600, 392);
    widgets::centreOnScreen(*this);
    Form_Load(startFolder);
}

void frmSize::Form_Load(const QString& startFolder) {
    for (const FileType& type : FileTypes)
        m_cboFileType->addItem(type.item);
    m_cboFileType->setCurrentIndex(0);
    for (const auto& root : m_platform.drives().roots())
        m_drvDrive->addItem(text(root));
    setPath(startFolder.isEmpty() ? QDir::homePath() : startFolder);
    const int drive = m_drvDrive->findText(text(m_platform.drives().rootOf(m_path.toStdString())));
    m_drvDrive->setCurrentIndex(drive);

    connect(m_drvDrive, &QComboBox::currentTextChanged, this, &frmSize::drvDrive_Change);
    connect(m_cboFileType, &QComboBox::currentIndexChanged, this, &frmSize::cboFileType_Click);
    connect(m_dirDirectory, &QListWidget::itemActivated, this, &frmSize::DirDirectory_Change);
    connect(m_filFiles, &QListWidget::itemClicked, this, &frmSize::filFiles_Click);
    connect(m_filFiles, &QListWidget::itemDoubleClicked, this, &frmSize::filFiles_DblClick);
}

void frmSize::drvDrive_Change(const QString& root) {
    setPath(root);
}

void frmSize::DirDirectory_Change(QListWidgetItem* item) {
    setPath(item->data(Qt::UserRole).toString());
}

void frmSize::cboFileType_Click(int index) {
    if (index < 0 || index >= static_cast<int>(std::size(FileTypes)))
        return;
    m_pattern = FileTypes[index].pattern;
    fillFiles();
}

void frmSize::filFiles_Click(QListWidgetItem* item) {
    m_txtFileName->setText(item->text());
}

void frmSize::filFiles_DblClick(QListWidgetItem* item) {
    m_txtFileName->setText(item->text());
}

frmSize::~frmSize() = default;

void frmSize::buildControls() {
    named(new QLabel("File Name:", this), "Label1")->setGeometry(8, 6, 220, 18);
    m_txtFileName = named(new QLineEdit(this), "txtFileName");
    m_txtFileName->setGeometry(8, 26, 220, 24);
    m_filFiles = named(new QListWidget(this), "filFiles");
    m_filFiles->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_filFiles->setGeometry(8, 54, 220, 180);

    named(new QLabel("Directories:", this), "lblDirectories")->setGeometry(240, 6, 200, 18);
    m_lblDirName = named(new QLabel(this), "lblDirName");
    m_lblDirName->setGeometry(240, 26, 200, 20);
    m_dirDirectory = named(new QListWidget(this), "DirDirectory");
    m_dirDirectory->setGeometry(240, 54, 200, 180);

    auto* ok = named(new QPushButton("&SecureWipeFiles", this), "CmdOK");
    ok->setGeometry(452, 26, 140, 30);
    auto* cancel = named(new QPushButton("&Cancel", this), "cmdCancel");
    cancel->setGeometry(452, 62, 140, 30);
    auto* wipeDir = named(new QPushButton("SecureWipeDirectory", this), "Command1");
    wipeDir->setGeometry(452, 120, 140, 30);
    auto* endWipe = named(new QPushButton("End wipe", this), "Command2");
    endWipe->setGeometry(452, 156, 140, 30);
    m_label2 = named(new QLabel(text(texts::StopFlagRun), this), "Label2");
    m_label2->setGeometry(452, 196, 140, 18);
    m_text2 = named(new QLineEdit(this), "Text2");
    m_text2->setReadOnly(true);
    m_text2->setGeometry(452, 216, 60, 24);
    // Read each file back from the device after its last pass and compare, before it is deleted.
    m_chkVerify = named(new QCheckBox("Verify", this), "chkVerify");
    m_chkVerify->setGeometry(520, 216, 72, 24);

    named(new QLabel("File Type:", this), "lblFileType")->setGeometry(8, 242, 220, 18);
    m_cboFileType = named(new QComboBox(this), "cboFileType");
    m_cboFileType->setGeometry(8, 262, 220, 26);
    named(new QLabel("Drive:", this), "lblDrive")->setGeometry(240, 242, 200, 18);
    m_drvDrive = named(new QComboBox(this), "drvDrive");
    m_drvDrive->setGeometry(240, 262, 200, 26);

    m_text1 = named(new QLineEdit(this), "Text1");
    m_text1->setReadOnly(true);
    m_text1->setGeometry(8, 298, 584, 24);
    m_gauge = new GaugeLines(this, 8, 330, 584, false);
    m_limits = overwriteLimitsLabel(this, {8, 338, 584, 48});

    // While a wipe runs only "End wipe" and "&Cancel" stay live: another wipe or another folder
    // started from inside the running one would pull the ground from under it.
    m_lockedWhileRunning = {ok,           wipeDir,        m_filFiles,   m_dirDirectory,
                            m_drvDrive,   m_cboFileType,  m_txtFileName, m_chkVerify};

    connect(ok, &QPushButton::clicked, this, &frmSize::CmdOK_Click);
    connect(cancel, &QPushButton::clicked, this, &frmSize::cmdCancel_Click);
    connect(wipeDir, &QPushButton::clicked, this, &frmSize::Command1_Click);
    connect(endWipe, &QPushButton::clicked, this, &frmSize::Command2_Click);
}

void frmSize::setPath(const QString& folder) {
    m_path = folder;
    m_lblDirName->setText(folder);
    showOverwriteLimits(*m_limits, m_platform, folder.toStdString());
    fillDirectories();
    fillFiles();
}

void frmSize::fillDirectories() {
    m_dirDirectory->clear();
    const std::string path = m_path.toStdString();
    QListWidgetItem* current = nullptr;
    for (const controls::FolderLine& line :
         controls::folderLines(m_platform.fileSystem(), m_platform.drives().rootOf(path), path)) {
        auto* item = new QListWidgetItem(QString(line.depth * 2, ' ') + text(line.label), m_dirDirectory);
        item->setData(Qt::UserRole, text(line.path));
        if (line.open)
            current = item;
    }
    m_dirDirectory->setCurrentItem(current);
}

void frmSize::fillFiles() {
    m_filFiles->clear();
    QStringList names;
    m_platform.fileSystem().list(m_path.toStdString(), m_pattern.toStdString(), [&](const platform::FileInfo& fi) {
        if (fi.isRegular)
            names << text(fi.name);
        return true;
    });
    m_filFiles->addItems(sortedNames(names));
}

QString frmSize::fullName(const QString& item) const {
    return QString::fromStdString(m_platform.fileSystem().join(m_path.toStdString(), item.toStdString()));
}

void frmSize::CmdOK_Click() {
    std::vector<std::string> paths;
    for (int i = 0; i < m_filFiles->count(); ++i)
        if (m_filFiles->item(i)->isSelected())
            paths.push_back(fullName(m_filFiles->item(i)->text()).toStdString());
    runWipe([&] { m_engine.WipeSelectedFiles(m_txtFileName->text().toStdString(), paths); });
    fillFiles();
}

void frmSize::Command1_Click() {
    runWipe([&] { m_engine.WipeFolder(m_path.toStdString()); });
    // The folder is gone: show the nearest folder that is still there.
    QString folder = m_path;
    while (!m_platform.fileSystem().info(folder.toStdString()) && folder.contains(m_platform.fileSystem().separator())) {
        folder.truncate(folder.lastIndexOf(m_platform.fileSystem().separator()));
        if (folder.isEmpty())
            folder = QString(QChar::fromLatin1(m_platform.fileSystem().separator()));
    }
    setPath(folder);
}

void frmSize::runWipe(const std::function<void()>& wipe) {
    if (m_busy)
        return;
    BusyCursor busy;
    m_busy = true;
    for (QWidget* control : m_lockedWhileRunning)
        control->setEnabled(false);
    m_verified.clear();
    m_engine.setVerify(m_chkVerify->isChecked());
    widgets::guarded(wipe);
    if (m_chkVerify->isChecked())
        m_text1->setText(text(m_verified.text()));
    for (QWidget* control : m_lockedWhileRunning)
        control->setEnabled(true);
    m_busy = false;
    m_closing = false;
}

void frmSize::Command2_Click() {
    if (m_label2->text() == text(texts::StopFlagRun))
        m_label2->setText(text(texts::StopFlagEnd));
    else if (m_label2->text() == text(texts::StopFlagEnd))
        m_label2->setText(text(texts::StopFlagRun));
    m_gauge->fill();
}

void frmSize::cmdCancel_Click() {
    close();
}

void frmSize::closeEvent(QCloseEvent* event) {
    // Closed in the middle of a wipe: the file at hand is finished off, the rest left alone.
    if (m_busy)
        m_closing = true;
    event->accept();
}

void frmSize::pumpEvents() {
    QCoreApplication::processEvents();
}

void frmSize::passStarted(const std::string&, int pass) {
    if (pass == 1)
        m_gauge->reset();
    m_gauge->advance();
    m_text2->setText(QString::number(pass));
}

void frmSize::passValues(const std::string& line) {
    m_text1->setText(text(line));
}

bool frmSize::stopRequested() {
    return m_label2->text() == text(texts::StopFlagEnd);
}

} // namespace wipe::ui
