// The history of a Firefox profile. Visits and places live in places.sqlite, the icons pages showed
// in favicons.sqlite, and the open tabs with their back-and-forward lists in the session files. A
// place that a bookmark, a keyword or a tag refers to stays, with its visit data reset.
// No address is added here: a place needs the browser's own URL hash and origin bookkeeping,
// which only its own SQL functions compute, and a row without them would mislead its lookups.

#include "browsers/ProfileHistory.h"

namespace browsers {
namespace {


class FirefoxHistory final : public ProfileHistory {
public:
    using ProfileHistory::ProfileHistory;

    StoreResult read(std::vector<StatUrl>& out) override {
        // Firefox counts from 1970 and keeps history by amount, not by age: no entry expires.
        std::vector<StoreProblem> problems;
        const StoreResult r = readStatUrls(files(), file("places.sqlite"),
                                           "SELECT url, title, last_visit_date + " + std::to_string(kUnixEpochMicros) +
                                               ", hidden FROM moz_places WHERE last_visit_date IS NOT NULL ORDER BY id",
                                           0, out, problems);
        noteProblems(problems);
        return r;
    }

    StoreResult add(const std::string&, const std::string&) override { return StoreResult::Failed; }

    StoreResult forgetVisits(const std::optional<std::string>& url) override {
        const std::string places = file("places.sqlite"), favicons = file("favicons.sqlite");
        ProfileDatabases dbs(files());
        const StoreResult r = dbs.lockForWriting({places, favicons});
        if (r == StoreResult::InUse)
            return r;
        bool held = true;
        if (r == StoreResult::Done) {
            std::vector<std::string> kept;
            SqliteDb* db = dbs.get(places);
            if (db && !forgetInPlaces(*db, url, kept)) {
                dbs.giveUp(places, "its tables could not be cleaned");
                db = nullptr;
            }
            if (db)
                held = !url || anyTargets(*db);
            // Without places nothing tells which icons belong to bookmarks: the icons wait.
            if (SqliteDb* icons = dbs.get(favicons)) {
                if (!db)
                    dbs.giveUp(favicons, "its icons wait until places.sqlite can be cleaned");
                else if (!forgetInFavicons(*icons, url, kept))
                    dbs.giveUp(favicons, "its tables could not be cleaned");
            }
            dbs.commit(true);
        }
        noteProblems(dbs.problems());
        bool ok = !dbs.failures();
        if (held) {
            ok = removeSessionFile("sessionstore.jsonlz4") && ok;
            ok = removeSessionFilesIn("sessionstore-backups") && ok;
        }
        return ok ? StoreResult::Done : StoreResult::Failed;
    }

private:
    static bool forgetInPlaces(SqliteDb& db, const std::optional<std::string>& url, std::vector<std::string>& keptUrls) {
        if (!db.hasTable("moz_places"))
            return false;
        const std::string targets = " IN (SELECT id FROM temp.targets)";
        const std::string kept = " IN (SELECT id FROM temp.kept)";
        // Older schemas have no foreign_count: the bookmarks and keywords then tell on their own.
        std::string keepers = "SELECT id FROM temp.targets WHERE 0";
        if (db.hasColumn("moz_places", "foreign_count"))
            keepers += " OR id IN (SELECT id FROM moz_places WHERE foreign_count > 0)";
        if (db.hasTable("moz_bookmarks"))
            keepers += " OR id IN (SELECT fk FROM moz_bookmarks WHERE fk NOT NULL)";
        if (db.hasTable("moz_keywords") && db.hasColumn("moz_keywords", "place_id"))
            keepers += " OR id IN (SELECT place_id FROM moz_keywords WHERE place_id NOT NULL)";
        bool ok = db.exec("CREATE TEMP TABLE targets(id INTEGER PRIMARY KEY)") &&
                  runWhereTables(db, {}, "INSERT INTO temp.targets SELECT id FROM moz_places" +
                                             std::string(url ? " WHERE url = ?1" : ""), url) &&
                  db.exec("CREATE TEMP TABLE kept(id INTEGER PRIMARY KEY)") && db.exec("INSERT INTO temp.kept " + keepers);
        ok = ok &&
             runWhereTables(db, {"moz_historyvisits_extra", "moz_historyvisits"},
                            "DELETE FROM moz_historyvisits_extra WHERE visit_id IN (SELECT id FROM moz_historyvisits "
                            "WHERE place_id" + targets + ")") &&
             runWhereTables(db, {"moz_historyvisits"}, "DELETE FROM moz_historyvisits WHERE place_id" + targets) &&
             runWhereTables(db, {"moz_inputhistory"}, "DELETE FROM moz_inputhistory WHERE place_id" + targets) &&
             runWhereTables(db, {"moz_places_metadata"},
                            "DELETE FROM moz_places_metadata WHERE place_id" + targets +
                                (db.hasColumn("moz_places_metadata", "referrer_place_id") ? " OR referrer_place_id" + targets
                                                                                          : std::string())) &&
             (!db.hasColumn("moz_places_metadata", "search_query_id") ||
              runWhereTables(db, {"moz_places_metadata_search_queries", "moz_places_metadata"},
                            "DELETE FROM moz_places_metadata_search_queries WHERE id NOT IN (SELECT search_query_id "
                            "FROM moz_places_metadata WHERE search_query_id NOT NULL)")) &&
             runWhereTables(db, {"moz_newtab_shortcuts_interaction"},
                            "DELETE FROM moz_newtab_shortcuts_interaction WHERE place_id" + targets) &&
             runWhereTables(db, {"moz_annos"}, "DELETE FROM moz_annos WHERE place_id" + targets + " AND place_id NOT" + kept) &&
             runWhereTables(db, {"moz_places_extra"},
                            "DELETE FROM moz_places_extra WHERE place_id" + targets + " AND place_id NOT" + kept) &&
             db.exec("DELETE FROM moz_places WHERE id" + targets + " AND id NOT" + kept) &&
             db.exec("UPDATE moz_places SET visit_count = 0, last_visit_date = NULL, typed = 0 WHERE id" + kept) &&
             (!db.hasColumn("moz_places", "recalc_frecency") ||
              db.exec("UPDATE moz_places SET recalc_frecency = 1 WHERE id" + kept)) &&
             (!db.hasColumn("moz_places", "origin_id") ||
              runWhereTables(db, {"moz_origins"},
                             "DELETE FROM moz_origins WHERE id NOT IN (SELECT origin_id FROM moz_places WHERE origin_id NOT NULL)"));
        if (!url)
            ok = runWhereTables(db, {"moz_previews_tombstones"}, "DELETE FROM moz_previews_tombstones") && ok;
        SqliteStatement urls = db.prepare("SELECT url FROM moz_places WHERE id" + kept);
        while (urls.step())
            keptUrls.push_back(urls.text(0));
        return ok && !urls.failed();
    }

    static bool forgetInFavicons(SqliteDb& db, const std::optional<std::string>& url, const std::vector<std::string>& keptUrls) {
        if (!fillKeptUrls(db, keptUrls))
            return false;
        // When one address goes, icons for a whole site (root icons, mapped to no page) stay.
        const bool rootColumn = db.hasColumn("moz_icons", "root");
        return runWhereTables(db, {"moz_pages_w_icons"},
                              "DELETE FROM moz_pages_w_icons WHERE page_url NOT IN (SELECT url FROM temp.kept_urls)" +
                                  std::string(url ? " AND page_url = ?1" : ""),
                              url) &&
               runWhereTables(db, {"moz_icons_to_pages", "moz_pages_w_icons"},
                              "DELETE FROM moz_icons_to_pages WHERE page_id NOT IN (SELECT id FROM moz_pages_w_icons)") &&
               runWhereTables(db, {"moz_icons", "moz_icons_to_pages"},
                              "DELETE FROM moz_icons WHERE id NOT IN (SELECT icon_id FROM moz_icons_to_pages)" +
                                  std::string(url && rootColumn ? " AND root = 0" : ""));
    }
};

} // namespace

std::unique_ptr<ProfileHistory> makeFirefoxHistory(const BrowserProfile& profile, ProfileFiles& files) {
    return std::make_unique<FirefoxHistory>(profile, files);
}

} // namespace browsers
