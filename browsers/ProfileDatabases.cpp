#include "browsers/ProfileDatabases.h"

namespace browsers {
namespace {

// How long a lock of another process may keep a statement waiting before the profile counts as
// in use: a browser that runs holds its locks far longer, a passing checkpoint much shorter.
constexpr int kBusyMillis = 1500;

/// Why SQLite could not open `path`: the system's words when the file itself cannot be opened.
std::string openFailure(ProfileFiles& files, const std::string& path, bool write) {
    const std::string problem = files.openProblem(path, write);
    return problem.empty() ? "SQLite cannot open it" : "cannot be opened: " + problem;
}

} // namespace

void ProfileDatabases::noteFailure(const std::string& file, const std::string& reason) {
    m_failures = true;
    m_problems.push_back(StoreProblem{file, reason});
}

ProfileDatabases::~ProfileDatabases() {
    rollback();
}

StoreResult ProfileDatabases::lockForWriting(const std::vector<std::string>& paths) {
    return open(paths, true);
}

StoreResult ProfileDatabases::openForReading(const std::vector<std::string>& paths) {
    return open(paths, false);
}

StoreResult ProfileDatabases::open(const std::vector<std::string>& paths, bool write) {
    for (const std::string& path : paths) {
        if (!m_files.isRegularFile(path))
            continue;
        Open entry{path, write ? SqliteDb::open(path, kBusyMillis) : SqliteDb::openReadOnly(path, kBusyMillis, m_files.readOnlySqlite())};
        if (!entry.db) {
            noteFailure(path, openFailure(m_files, path, write));
            continue;
        }
        SqliteDb& db = *entry.db;
        // Reading the journal mode reads the database header: the first point where a lock of
        // another process shows, and where a damaged file shows.
        const auto mode = db.value("PRAGMA journal_mode");
        bool ready = mode.has_value();
        entry.wal = ready && *mode == "wal";
        if (ready && write) {
            // Deleted content is overwritten with zeros; temporary tables stay in memory; a rollback
            // journal is deleted at commit instead of being kept around with old pages in it.
            ready = db.exec("PRAGMA secure_delete = ON") && db.exec("PRAGMA temp_store = MEMORY") &&
                    (entry.wal || db.value("PRAGMA journal_mode = DELETE").has_value()) && db.exec("BEGIN IMMEDIATE");
            entry.inTransaction = ready;
            if (ready) {
                // Checked under the write lock, so that nothing changes the file between the check
                // and the change.
                const auto integrity = db.value("PRAGMA integrity_check(1)");
                if (!integrity && db.lastFailureWasLock()) {
                    rollback();
                    return StoreResult::InUse;
                }
                if (integrity != "ok") {
                    db.exec("ROLLBACK");
                    noteFailure(path, "is damaged (its integrity check fails); left as it is");
                    continue;
                }
            }
        } else if (ready) {
            ready = db.exec("PRAGMA temp_store = MEMORY") && db.value("SELECT count(*) FROM sqlite_master").has_value();
        }
        if (!ready) {
            if (db.lastFailureWasLock()) {
                rollback();
                return StoreResult::InUse;
            }
            // Damaged or not a database: named, and the others are still cleaned.
            const std::string unreadable = m_files.openProblem(path, false);
            noteFailure(path, (!unreadable.empty() ? "cannot be read: " + unreadable
                                                   : "is damaged or is no database (" + db.lastError() + ")") +
                                  "; left as it is");
            continue;
        }
        m_open.push_back(std::move(entry));
    }
    return m_open.empty() ? StoreResult::Failed : StoreResult::Done;
}

SqliteDb* ProfileDatabases::get(const std::string& path) const {
    for (const Open& o : m_open)
        if (o.path == path)
            return o.db.get();
    return nullptr;
}

bool ProfileDatabases::commit(bool compact) {
    bool ok = !m_failures;
    for (Open& o : m_open) {
        if (o.inTransaction) {
            if (!o.db->exec("COMMIT")) {
                noteFailure(o.path, "its change could not be saved (" + o.db->lastError() + ")");
                o.db->exec("ROLLBACK");
                ok = false;
            }
            o.inTransaction = false;
        }
    }
    if (compact) {
        for (Open& o : m_open) {
            // VACUUM writes the database anew without free pages; in WAL mode the new pages go to
            // the log first, so the log is checkpointed into the database and cut to nothing.
            bool compacted = o.db->exec("VACUUM");
            if (o.wal)
                compacted = o.db->value("PRAGMA wal_checkpoint(TRUNCATE)").value_or("1") == "0" && compacted;
            if (!compacted)
                noteFailure(o.path, "its deleted rows may remain in free pages (" + o.db->lastError() + ")");
            ok = compacted && ok;
        }
    }
    m_open.clear();
    return ok;
}

void ProfileDatabases::giveUp(const std::string& path, const std::string& reason) {
    for (auto it = m_open.begin(); it != m_open.end(); ++it) {
        if (it->path != path)
            continue;
        const std::string detail = it->db->lastError();
        if (it->inTransaction)
            it->db->exec("ROLLBACK");
        m_open.erase(it);
        noteFailure(path, reason + (detail == "not an error" ? "" : " (" + detail + ")") + "; left as it was");
        return;
    }
}

void ProfileDatabases::rollback() {
    for (Open& o : m_open)
        if (o.inTransaction)
            o.db->exec("ROLLBACK");
    m_open.clear();
}

} // namespace browsers
