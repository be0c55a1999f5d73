#include "browsers/ProfileHistory.h"

#include <cerrno>
#include <cstring>

namespace browsers {

using platform::EntryKind;

bool fillKeptUrls(SqliteDb& db, const std::vector<std::string>& urls) {
    if (!db.exec("CREATE TEMP TABLE kept_urls(url TEXT PRIMARY KEY)"))
        return false;
    SqliteStatement insert = db.prepare("INSERT OR IGNORE INTO temp.kept_urls VALUES (?1)");
    for (const std::string& url : urls) {
        insert.reset();
        if (!insert.bind(1, url).run())
            return false;
    }
    return true;
}

bool runWhereTables(SqliteDb& db, std::initializer_list<const char*> tables, const std::string& sql,
                    const std::optional<std::string>& url) {
    for (const char* table : tables)
        if (!db.hasTable(table))
            return true;
    SqliteStatement statement = db.prepare(sql);
    if (url)
        statement.bind(1, *url);
    return statement.run();
}

StoreResult readStatUrls(ProfileFiles& files, const std::string& path, const std::string& sql, std::int64_t keptMicros,
                         std::vector<StatUrl>& out, std::vector<StoreProblem>& problems) {
    ProfileDatabases dbs(files);
    const StoreResult r = dbs.openForReading({path});
    problems.insert(problems.end(), dbs.problems().begin(), dbs.problems().end());
    if (r != StoreResult::Done)
        return r;
    SqliteDb& db = *dbs.get(path);
    SqliteStatement rows = db.prepare(sql);
    while (rows.step()) {
        StatUrl record;
        record.cbSize = 40;
        record.pwcsUrl = rows.text(0);
        record.pwcsTitle = rows.text(1);
        record.ftLastVisited = fileTimeFromMicros1601(rows.integer(2));
        record.ftLastUpdated = record.ftLastVisited;
        if (keptMicros > 0)
            record.ftExpires = fileTimeFromMicros1601(rows.integer(2) + keptMicros);
        record.dwFlags = rows.integer(3) == 0 ? kStatUrlTopLevel : 0;
        out.push_back(std::move(record));
    }
    if (!rows.failed())
        return StoreResult::Done;
    problems.push_back({path, "could not be read whole (" + db.lastError() + ")"});
    return StoreResult::Failed;
}

bool anyTargets(SqliteDb& db) {
    return db.value("SELECT count(*) FROM temp.targets").value_or("1") != "0";
}

StoreResult ProfileHistory::forget(const std::optional<std::string>& url, Remover& remover) {
    m_remover = &remover;
    const StoreResult result = forgetVisits(url);
    m_remover = nullptr;
    return result;
}

bool ProfileHistory::removeIn(platform::Folder& folder, const std::string& name) {
    const auto entry = folder.entry(name);
    if (!entry)
        return true;
    // Only files: a folder in a session file's place is not what the browser left.
    if (entry->isDirectory() && !entry->isLink()) {
        noteProblem(folder.path() + "/" + name, "is a folder; left in place");
        return false;
    }
    if (m_remover->removeEntry(folder, name))
        return true;
    noteProblem(folder.path() + "/" + name, "could not be deleted");
    return false;
}

bool ProfileHistory::removeSessionFile(const std::string& name) {
    const auto profile = m_files.openFolder(m_profile.folder, true);
    if (!profile)
        return errno == ENOENT;
    return removeIn(*profile, name);
}

bool ProfileHistory::removeSessionFilesIn(const std::string& name) {
    const std::string folder = file(name);
    const auto open = m_files.openFolder(folder, false);
    if (!open) {
        if (errno == ENOENT)
            return true;
        noteProblem(folder, std::string("could not be opened: ") + std::strerror(errno));
        return false;
    }
    std::vector<std::string> names;
    if (!open->names([&](const std::string& entry, EntryKind kind) {
            if (kind != EntryKind::Directory)
                names.push_back(entry);
            return true;
        }))
        noteProblem(folder, std::string("could not be read: ") + std::strerror(errno));
    bool ok = true;
    for (const std::string& entry : names)
        ok = removeIn(*open, entry) && ok;
    return ok;
}

FileTime fileTimeFromMicros1601(std::int64_t micros) {
    const std::uint64_t t = micros > 0 ? std::uint64_t(micros) * 10 : 0;
    return FileTime{static_cast<std::uint32_t>(t), static_cast<std::uint32_t>(t >> 32)};
}

std::unique_ptr<ProfileHistory> profileHistory(const BrowserProfile& profile, ProfileFiles& files) {
    return profile.family == BrowserFamily::Chromium ? makeChromiumHistory(profile, files)
                                                      : makeFirefoxHistory(profile, files);
}

} // namespace browsers
