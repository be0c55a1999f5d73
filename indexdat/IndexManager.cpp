#include "indexdat/IndexManager.h"

#include "core/ProblemSink.h"
#include "core/Prompts.h"
#include "indexdat/ActivityScan.h"
#include "indexdat/ActivityWipe.h"
#include "indexdat/FileSearch.h"
#include "indexdat/IndexTexts.h"
#include "indexdat/RawReport.h"
#include "platform/Platform.h"

namespace indexdat {

std::string defaultSearchFolder(platform::Platform& platform) {
    const std::string users = platform.knownFolders().usersPath();
    return users.empty() ? platform.knownFolders().homePath() : users;
}

IndexManager::IndexManager(platform::Platform& platform, IndexView& view, core::ProblemSink* problems)
    : m_platform(platform), m_view(view), m_problems(problems) {}

void IndexManager::load() {
    search();
    // With nothing found, the report's selection check asks the user to populate the list first.
    reportSelected();
    rawReport();
}

void IndexManager::search() {
    m_view.setBusy(true);
    m_view.clearFiles();
    std::string folder = m_view.searchFolder();
    const std::string pattern = m_view.searchPattern();
    std::int16_t files = 0;
    std::int16_t dirs = 0;
    try {
        FileSearch finder(
            m_platform.fileSystem(), [this](const std::string& path) { m_view.addFile(path); }, m_problems);
        const core::Currency total = finder.FindFilesAPI(folder, pattern, files, dirs);
        m_view.setCountsText(countsText(files, dirs));
        m_view.setTotalText(totalText(total));
        m_view.setBusy(false);
        m_view.selectFile(0);
    } catch (const SearchOverflow& e) {
        if (m_problems)
            m_problems->skipped(folder, std::string("search ended: ") + e.what());
        m_view.setBusy(false);
    }
}

std::string IndexManager::checkedSelection() {
    const int index = m_view.selectedFile();
    const std::string path = index < 0 ? std::string() : m_view.fileAt(index);
    if (path.empty())
        m_view.prompts().tell(SelectFileMessage, core::MessageTitle, core::MsgStyle::OkOnly);
    return path;
}

bool IndexManager::reportFile(const std::string& path) {
    m_view.setBusy(true);
    const bool read = ActivityScan(m_platform.rawFiles()).scan(path, [this](std::string_view entry) {
        m_view.addActivity(std::string(entry));
        return true;
    });
    if (!read && m_problems)
        m_problems->skipped(path, "cannot be read");
    m_view.setBusy(false);
    return read;
}

void IndexManager::reportSelected() {
    m_view.clearActivity();
    const std::string path = checkedSelection();
    if (!path.empty())
        reportFile(path);
}

void IndexManager::reportAll() {
    m_view.clearActivity();
    for (int i = 0; i < m_view.fileCount(); ++i) {
        m_view.selectFile(i);
        const std::string path = checkedSelection();
        // An unreadable file ends the whole action: the report would otherwise miss it unnoticed.
        if (path.empty() || !reportFile(path))
            return;
        m_view.selectFile(-1);
    }
}

void IndexManager::rawReport() {
    const int index = m_view.selectedFile();
    if (index < 0)
        return;
    const std::string path = m_view.fileAt(index);
    std::string bytes;
    if (!RawReport(m_platform.rawFiles()).readAll(path, bytes)) {
        if (m_problems)
            m_problems->skipped(path, "cannot be read");
        return;
    }
    m_view.setFileSizeText(fileSizeText(bytes.size()));
    m_view.setRawBytes(bytes);
}

void IndexManager::confirmWipe() {
    m_view.setBusy(true);
    const int index = m_view.selectedFile();
    const std::string path = index < 0 ? std::string() : m_view.fileAt(index);
    m_lastAnswer = m_view.prompts().askYesNo(confirmWipeText(path), WindowCaption,
                                             core::MsgStyle::YesNo | core::MsgStyle::Question);
    if (m_lastAnswer)
        WipeFileContents(
            m_platform, path,
            [this](double) {
                m_view.pumpEvents();
                return true;
            },
            m_problems);
    m_view.setBusy(false);
}

void IndexManager::deleteActivity() {
    confirmWipe();
    m_view.clearActivity();
    rawReport();
}

void IndexManager::deleteAll() {
    for (int i = 0; i < m_view.fileCount(); ++i) {
        m_view.selectFile(i);
        const std::string path = checkedSelection();
        if (path.empty())
            break;
        m_view.setBusy(true);
        bool marked = false;
        const bool read = ActivityScan(m_platform.rawFiles()).scan(path, [&](std::string_view) {
            marked = true;
            return false;
        });
        if (!read) {
            // An unreadable file ends the whole action: the report would otherwise miss it unnoticed.
            if (m_problems)
                m_problems->skipped(path, "cannot be read");
            break;
        }
        if (marked)
            deleteActivity();
        m_view.selectFile(-1);
    }
    m_view.setBusy(false);
}

void IndexManager::openFile() {
    reportSelected();
    rawReport();
}

void IndexManager::openEntry(const std::string& entry) {
    m_platform.shell().open(entry);
}

} // namespace indexdat
