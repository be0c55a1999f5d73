#pragma once
// The history of one browser profile, whatever the browser: its visited addresses read as STATURL
// records, one address added, one address or all of them forgotten. Forgetting takes every record
// of a visit out of the profile's databases (bookmarked addresses stay, their visit data reset)
// and removes the files that only record visits (sessions, visited-link tables).

#include "browsers/BrowserProfiles.h"
#include "browsers/ProfileDatabases.h"
#include "browsers/ProfileFiles.h"
#include "platform/UrlHistory.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace browsers {

using platform::FileTime;
using platform::Remover;
using platform::StatUrl;

/// Microseconds between 1601-01-01 (where FILETIMEs and Chromium count from) and 1970-01-01.
constexpr std::int64_t kUnixEpochMicros = 11644473600LL * 1000000;

/// STATURLFLAG_ISTOPLEVEL: the address was shown as a page, not only inside one.
constexpr std::uint32_t kStatUrlTopLevel = 0x2;

class ProfileHistory {
public:
    /// `files` reaches the profile's files; it outlives the object.
    ProfileHistory(BrowserProfile profile, ProfileFiles& files) : m_profile(std::move(profile)), m_files(files) {}
    virtual ~ProfileHistory() = default;

    const BrowserProfile& profile() const { return m_profile; }
    /// Appends the profile's visited addresses, oldest entry first.
    virtual StoreResult read(std::vector<StatUrl>& out) = 0;
    /// Records a visit of `url` now; Failed where the store cannot take it safely.
    virtual StoreResult add(const std::string& url, const std::string& title) = 0;
    /// Removes every record of visiting `url`, or of every address when `url` is empty. The
    /// session files go too, through `remover` (for one address, where the profile's history held
    /// it): they keep the addresses of open tabs and their back-and-forward lists.
    StoreResult forget(const std::optional<std::string>& url, Remover& remover);
    /// Each file the last call could not read or clean, with the reason.
    const std::vector<StoreProblem>& problems() const { return m_problems; }

protected:
    /// What forget() does, with the remover in place for the session files.
    virtual StoreResult forgetVisits(const std::optional<std::string>& url) = 0;
    std::string file(const std::string& name) const { return m_profile.folder + "/" + name; }
    ProfileFiles& files() const { return m_files; }
    void noteProblems(const std::vector<StoreProblem>& problems) {
        m_problems.insert(m_problems.end(), problems.begin(), problems.end());
    }
    void noteProblem(const std::string& file, const std::string& reason) { m_problems.push_back({file, reason}); }
    /// Removes the file `name` of the profile folder when it is there, naming it when it stays;
    /// true when it is gone.
    bool removeSessionFile(const std::string& name);
    /// The same for every file directly in the profile's folder `name`.
    bool removeSessionFilesIn(const std::string& name);

private:
    /// Removes the file `name` of the open folder `folder`, naming it when it stays.
    bool removeIn(platform::Folder& folder, const std::string& name);

    BrowserProfile m_profile;
    ProfileFiles& m_files;
    Remover* m_remover = nullptr;
    std::vector<StoreProblem> m_problems;
};

/// The history of `profile`, by its browser family.
std::unique_ptr<ProfileHistory> profileHistory(const BrowserProfile& profile, ProfileFiles& files);

/// Runs `sql` on `db` when it has every table in `tables`, binding `url` (when given) as ?1;
/// Fills the temporary table kept_urls with `urls`: the addresses a clean leaves (bookmarks).
bool fillKeptUrls(SqliteDb& db, const std::vector<std::string>& urls);
/// true when it ran or the tables are not there.
bool runWhereTables(SqliteDb& db, std::initializer_list<const char*> tables, const std::string& sql,
                    const std::optional<std::string>& url = std::nullopt);

/// Appends the STATURL records that `sql` selects from the database at `path`: the address, the
/// title, the last visit in microseconds since 1601-01-01 UTC, and whether the page is hidden.
/// Each expires `keptMicros` after its last visit; with 0 it has no expiry.
StoreResult readStatUrls(ProfileFiles& files, const std::string& path, const std::string& sql, std::int64_t keptMicros,
                         std::vector<StatUrl>& out, std::vector<StoreProblem>& problems);
/// Whether `db`'s temp.targets (the places or urls being forgotten) holds any row.
bool anyTargets(SqliteDb& db);

/// A FILETIME from microseconds since 1601-01-01 UTC.
FileTime fileTimeFromMicros1601(std::int64_t micros);

std::unique_ptr<ProfileHistory> makeChromiumHistory(const BrowserProfile& profile, ProfileFiles& files);
std::unique_ptr<ProfileHistory> makeFirefoxHistory(const BrowserProfile& profile, ProfileFiles& files);

} // namespace browsers
