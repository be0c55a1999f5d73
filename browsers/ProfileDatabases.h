#pragma once
// The history databases of one browser profile, held together for one change: every database is
// opened and write-locked before any is changed, so that a profile whose browser holds one of them
// is left whole. Deleted rows are overwritten (secure_delete), and after the commit each database
// is rebuilt (VACUUM) and its journal or write-ahead log emptied, so that no deleted byte stays in
// any of its files.

#include "browsers/ProfileFiles.h"
#include "browsers/Sqlite.h"
#include "platform/UrlCache.h" // StoreProblem

#include <memory>
#include <string>
#include <vector>

namespace browsers {

using platform::StoreProblem;

enum class StoreResult { Done, Failed, InUse };

class ProfileDatabases {
public:
    /// `files` reaches the databases' files; it outlives the object.
    explicit ProfileDatabases(ProfileFiles& files) : m_files(files) {}
    ~ProfileDatabases();
    ProfileDatabases(const ProfileDatabases&) = delete;
    ProfileDatabases& operator=(const ProfileDatabases&) = delete;

    /// Opens each of `paths` that exists and takes its write lock. InUse when one stays locked by
    /// another process (nothing is then held); Failed when none could be opened; otherwise Done,
    /// also when a damaged one had to be left out (problems() names it). A database that fails its
    /// integrity check is left out whole: rewriting part of a damaged file could lose the rest.
    StoreResult lockForWriting(const std::vector<std::string>& paths);
    /// Opens each of `paths` that exists for reading only, through connections that cannot change
    /// any file of the profile; InUse when one is locked.
    StoreResult openForReading(const std::vector<std::string>& paths);
    /// The open database at `path`, or null when it is not there.
    SqliteDb* get(const std::string& path) const;
    /// Commits every database, then, when `compact`, rebuilds it and empties its journal. True when
    /// all of it worked.
    bool commit(bool compact);
    /// Gives up every change.
    void rollback();
    /// Gives up the change of the database at `path` alone, leaving it as it was, and names it
    /// with `reason`.
    void giveUp(const std::string& path, const std::string& reason);
    /// Whether a database had to be left out or a step failed.
    bool failures() const { return m_failures; }
    /// Notes that `file` was not (fully) cleaned, for `reason`.
    void noteFailure(const std::string& file, const std::string& reason);
    /// Each database left out or whose change failed, with the reason.
    const std::vector<StoreProblem>& problems() const { return m_problems; }

private:
    struct Open {
        std::string path;
        std::unique_ptr<SqliteDb> db;
        bool wal = false;
        bool inTransaction = false;
    };
    StoreResult open(const std::vector<std::string>& paths, bool write);

    ProfileFiles& m_files;
    std::vector<Open> m_open;
    bool m_failures = false;
    std::vector<StoreProblem> m_problems;
};

} // namespace browsers
