#include "platform/linux/ProfileDatabases.h"

#include <sys/stat.h>

namespace platform::linux {
namespace {

// How long a lock of another process may keep a statement waiting before the profile counts as
// in use: a browser that runs holds its locks far longer, a passing checkpoint much shorter.
constexpr int kBusyMillis = 1500;

bool isRegularFile(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

} // namespace

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
        if (!isRegularFile(path))
            continue;
        Open entry{path, write ? SqliteDb::open(path, kBusyMillis) : SqliteDb::openReadOnly(path, kBusyMillis)};
        if (!entry.db) {
            m_failures = true;
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
        } else if (ready) {
            ready = db.exec("PRAGMA temp_store = MEMORY") && db.value("SELECT count(*) FROM sqlite_master").has_value();
        }
        if (!ready) {
            if (db.lastFailureWasLock()) {
                rollback();
                return StoreResult::InUse;
            }
            m_failures = true; // damaged or not a database: the others are still cleaned
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
            ok = o.db->exec("VACUUM") && ok;
            if (o.wal)
                ok = o.db->value("PRAGMA wal_checkpoint(TRUNCATE)").value_or("1") == "0" && ok;
        }
    }
    m_open.clear();
    return ok;
}

void ProfileDatabases::rollback() {
    for (Open& o : m_open)
        if (o.inTransaction)
            o.db->exec("ROLLBACK");
    m_open.clear();
}

} // namespace platform::linux
