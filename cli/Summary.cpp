#include "cli/Summary.h"

#include "cli/ProgressBar.h"
#include "cli/Terminal.h"

#include <ostream>

namespace cli {
namespace {

std::string counted(std::uint64_t n, const char* one, const char* many, const char* done) {
    return std::to_string(n) + " " + (n == 1 ? one : many) + " " + done;
}

std::string commandPath(const CLI::App& command) {
    std::string path = command.get_name();
    for (const CLI::App* parent = command.get_parent(); parent && parent->get_parent(); parent = parent->get_parent())
        path = parent->get_name() + " " + path;
    return path;
}

} // namespace

std::string describeChanges(const ChangeCounts& c, const std::vector<std::string>& notes) {
    struct Part {
        std::uint64_t n;
        const char* one;
        const char* many;
        const char* done;
    };
    const Part parts[] = {
        {c.filesOverwrittenAndDeleted, "file", "files", "overwritten and deleted"},
        {c.filesOverwritten, "file", "files", "overwritten"},
        {c.streamsOverwritten, "alternate data stream", "alternate data streams", "overwritten with them"},
        {c.filesDeleted, "file", "files", "deleted"},
        {c.foldersDeleted, "folder", "folders", "deleted"},
        {c.filesVerified, "file", "files", "verified"},
        {c.registryValuesRemoved, "registry value", "registry values", "removed"},
        {c.registryValuesWritten, "registry value", "registry values", "written"},
        {c.cacheEntriesDeleted, "cache entry", "cache entries", "deleted"},
        {c.otherCacheItemsDeleted, "other cache item", "other cache items", "deleted"},
        {c.historyEntriesDeleted, "history entry", "history entries", "deleted"},
        {c.historyEntriesAdded, "history entry", "history entries", "added"},
        {c.trashItemsRemoved, "trash item", "trash items", "removed"},
        {c.recentDocumentsRemoved, "recent document", "recent documents", "removed"},
    };
    std::string text;
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
    for (const Part& part : parts)
        if (part.n > 0)
            add(counted(part.n, part.one, part.many, part.done));
    for (const std::string& note : notes)
        add(note);
    if (c.bytesWritten > 0)
        add(ProgressBar::humanBytes(static_cast<double>(c.bytesWritten)) + " written");
    return text.empty() ? "nothing changed" : text;
}

void Summary::print(std::ostream& out, const CLI::App& ran, const ChangeCounts& counts) const {
    if (quiet())
        return;
    if (!m_changing.count(&ran) && counts == ChangeCounts{} && m_notes.empty())
        return;
    out << "scourmill-cli: " << commandPath(ran) << ": " << describeChanges(counts, m_notes) << "\n";
}

} // namespace cli
