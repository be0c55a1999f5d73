// The history of a Chromium-family profile. Visits live in "History"; the same addresses are kept
// in "Favicons" (which icon a page showed), "Top Sites", "Shortcuts" (omnibox), "Network Action
// Predictor", the user-data folder's segmentation_platform/ukm_db, the session files and
// "Visited Links", and each visited site in the per-site records of "Preferences". Bookmarks live
// in the JSON file "Bookmarks", which is only read: a bookmarked address keeps its row in History
// and its icon, as the browser itself keeps them when it clears.

#include "browsers/ChromiumPreferences.h"
#include "browsers/ProfileHistory.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

namespace browsers {
namespace {

// Chromium keeps 90 days of history; an entry is due to go then.
constexpr std::int64_t kKeptMicros = 90LL * 24 * 3600 * 1000000;
// PAGE_TRANSITION_LINK, as the first and last visit of its own redirect chain.
constexpr std::int64_t kLinkTransition = 0x30000000;

/// Bookmarks far larger than any browser writes are no bookmarks file.
constexpr std::size_t BookmarksLimit = 256 * 1024 * 1024;

/// Collects the value of every "url" member, at any depth, as the parser meets it: a file cut
/// short still gives the bookmarks written before the cut.
class BookmarkUrls final : public nlohmann::json_sax<nlohmann::json> {
public:
    std::vector<std::string> urls;

    bool key(string_t& name) override {
        m_urlNext = name == "url";
        return true;
    }
    bool string(string_t& value) override {
        if (std::exchange(m_urlNext, false))
            urls.push_back(value);
        return true;
    }
    bool null() override { return value(); }
    bool boolean(bool) override { return value(); }
    bool number_integer(number_integer_t) override { return value(); }
    bool number_unsigned(number_unsigned_t) override { return value(); }
    bool number_float(number_float_t, const string_t&) override { return value(); }
    bool binary(binary_t&) override { return value(); }
    bool start_object(std::size_t) override { return value(); }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return value(); }
    bool end_array() override { return true; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

private:
    bool value() {
        m_urlNext = false;
        return true;
    }
    bool m_urlNext = false;
};

class ChromiumHistory final : public ProfileHistory {
public:
    using ProfileHistory::ProfileHistory;

    StoreResult read(std::vector<StatUrl>& out) override {
        std::vector<StoreProblem> problems;
        const StoreResult r = readStatUrls(
            files(), file("History"), "SELECT url, title, last_visit_time, hidden FROM urls WHERE last_visit_time > 0 ORDER BY id",
            kKeptMicros, out, problems);
        noteProblems(problems);
        return r;
    }

    StoreResult add(const std::string& url, const std::string& title) override {
        ProfileDatabases dbs(files());
        if (const StoreResult r = dbs.lockForWriting({file("History")}); r != StoreResult::Done)
            return r;
        SqliteDb& db = *dbs.get(file("History"));
        if (!db.hasTable("urls") || !db.hasTable("visits"))
            return StoreResult::Failed;
        const std::int64_t now =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch()).count() +
            kUnixEpochMicros;
        bool ok = recordVisit(db, url, title, now);
        if (!ok) {
            dbs.rollback();
            return StoreResult::Failed;
        }
        return dbs.commit(false) ? StoreResult::Done : StoreResult::Failed;
    }

    StoreResult forgetVisits(const std::optional<std::string>& url) override {
        const std::string ukm = profile().userDataFolder + "/segmentation_platform/ukm_db";
        ProfileDatabases dbs(files());
        const StoreResult r = dbs.lockForWriting({file("History"), file("Favicons"), file("Top Sites"), file("Shortcuts"),
                                                  file("Network Action Predictor"), ukm});
        if (r == StoreResult::InUse)
            return r;
        // Without a readable History nothing tells whether the address was visited here: the
        // session files go in any case.
        bool held = true;
        // A site's records in Preferences go with its last visit: while another page of the site
        // stays in the history, the site still counts as visited.
        const std::optional<std::string> site = url ? siteOrigin(*url) : std::nullopt;
        bool siteGone = !url;
        if (r == StoreResult::Done) {
            const std::vector<std::string> kept = bookmarkedUrls();
            // A database whose tables this program cannot clean is left as it was, not half changed.
            const auto step = [&](const std::string& path, auto&& clean) {
                if (SqliteDb* db = dbs.get(path); db && !clean(*db))
                    dbs.giveUp(path, "its tables could not be cleaned");
            };
            step(file("History"), [&](SqliteDb& db) {
                if (!forgetInHistory(db, url, kept))
                    return false;
                held = !url || anyTargets(db);
                if (site && held)
                    siteGone = !siteStillVisited(db, *site);
                return true;
            });
            step(file("Favicons"), [&](SqliteDb& db) { return forgetInFavicons(db, url, kept); });
            step(file("Top Sites"), [&](SqliteDb& db) {
                return runWhereTables(db, {"top_sites"}, "DELETE FROM top_sites" + where("url", url), url) &&
                       runWhereTables(db, {"thumbnails"}, "DELETE FROM thumbnails" + where("url", url), url);
            });
            step(file("Shortcuts"), [&](SqliteDb& db) {
                return runWhereTables(db, {"omni_box_shortcuts"}, "DELETE FROM omni_box_shortcuts" + where("url", url), url);
            });
            step(file("Network Action Predictor"), [&](SqliteDb& db) { return forgetInPredictor(db, url); });
            step(ukm, [&](SqliteDb& db) {
                return runWhereTables(db, {"metrics", "urls"},
                                      "DELETE FROM metrics WHERE url_id IN (SELECT url_id FROM urls" + where("url", url) + ")", url) &&
                       runWhereTables(db, {"urls"}, "DELETE FROM urls" + where("url", url), url);
            });
            dbs.commit(true);
        }
        noteProblems(dbs.problems());
        bool ok = !dbs.failures();
        // Done while the databases are still locked, so that the profile is cleaned as one change;
        // one site's records only once its pages really left History.
        const bool historyKept = std::any_of(dbs.problems().begin(), dbs.problems().end(),
                                             [&](const StoreProblem& p) { return p.file == file("History"); });
        if (siteGone && !(url && historyKept)) {
            std::vector<StoreProblem> problems;
            ok = forgetSitesInPreferences(files(), file("Preferences"), site, problems) && ok;
            noteProblems(problems);
        }
        if (held)
            ok = removeVisitFiles(!url) && ok;
        return ok ? StoreResult::Done : StoreResult::Failed;
    }

private:
    static std::string where(const char* column, const std::optional<std::string>& url) {
        return url ? std::string(" WHERE ") + column + " = ?1" : std::string();
    }
    static std::string andWhere(const char* column, const std::optional<std::string>& url) {
        return url ? std::string(" AND ") + column + " = ?1" : std::string();
    }
    /// Adds one visit of `url` at `now`, with a row for the address when it has none yet.
    static bool recordVisit(SqliteDb& db, const std::string& url, const std::string& title, std::int64_t now) {
        SqliteStatement find = db.prepare("SELECT id FROM urls WHERE url = ?1");
        find.bind(1, url);
        std::int64_t id = 0;
        bool ok = true;
        if (find.step()) {
            id = find.integer(0);
            SqliteStatement update = db.prepare(
                "UPDATE urls SET title = CASE WHEN ?2 <> '' THEN ?2 ELSE title END, visit_count = visit_count + 1, "
                "last_visit_time = ?3, hidden = 0 WHERE id = ?4");
            ok = update.bind(2, title).bind(3, now).bind(4, id).run();
        } else {
            SqliteStatement insert = db.prepare("INSERT INTO urls (url, title, visit_count, typed_count, last_visit_time, "
                                                "hidden) VALUES (?1, ?2, 1, 0, ?3, 0)");
            ok = insert.bind(1, url).bind(2, title).bind(3, now).run();
            id = std::stoll(db.value("SELECT last_insert_rowid()").value_or("0"));
        }
        SqliteStatement visit = db.prepare(
            "INSERT INTO visits (url, visit_time, from_visit, transition, segment_id) VALUES (?1, ?2, 0, ?3, 0)");
        return ok && visit.bind(1, id).bind(2, now).bind(3, kLinkTransition).run();
    }

    /// Whether History still holds a visited page of the site `origin`.
    static bool siteStillVisited(SqliteDb& db, const std::string& origin) {
        // Only addresses holding the host can be of the site; which are is decided on the whole
        // origin.
        SqliteStatement rows = db.prepare("SELECT url FROM urls WHERE last_visit_time > 0 AND instr(lower(url), ?1) > 0");
        rows.bind(1, origin.substr(origin.find("://") + 3));
        while (rows.step())
            if (siteOrigin(rows.text(0)) == origin)
                return true;
        // Where it cannot be told, the site's records stay.
        return rows.failed();
    }

    /// The addresses of the profile's bookmarks: every "url" member of the Bookmarks file.
    std::vector<std::string> bookmarkedUrls() const {
        const std::string json = files().readText(file("Bookmarks"), BookmarksLimit);
        BookmarkUrls found;
        nlohmann::json::sax_parse(json, &found, nlohmann::json::input_format_t::json, false);
        return std::move(found.urls);
    }

    static bool forgetInHistory(SqliteDb& db, const std::optional<std::string>& url, const std::vector<std::string>& kept) {
        if (!db.hasTable("urls") || !fillKeptUrls(db, kept))
            return false;
        bool ok = db.exec("CREATE TEMP TABLE targets(id INTEGER PRIMARY KEY)") &&
                  runWhereTables(db, {"urls"}, "INSERT INTO temp.targets SELECT id FROM urls" + where("url", url), url) &&
                  db.exec("CREATE TEMP TABLE gone_visits(id INTEGER PRIMARY KEY)") &&
                  runWhereTables(db, {"visits"},
                                 "INSERT INTO temp.gone_visits SELECT id FROM visits WHERE url IN (SELECT id FROM temp.targets)");
        const std::string goneVisits = " IN (SELECT id FROM temp.gone_visits)";
        const std::string targets = " IN (SELECT id FROM temp.targets)";
        ok = ok && runWhereTables(db, {"visit_source"}, "DELETE FROM visit_source WHERE id" + goneVisits) &&
             runWhereTables(db, {"content_annotations"}, "DELETE FROM content_annotations WHERE visit_id" + goneVisits) &&
             runWhereTables(db, {"context_annotations"}, "DELETE FROM context_annotations WHERE visit_id" + goneVisits) &&
             runWhereTables(db, {"clusters_and_visits"}, "DELETE FROM clusters_and_visits WHERE visit_id" + goneVisits) &&
             runWhereTables(db, {"cluster_visit_duplicates"},
                            "DELETE FROM cluster_visit_duplicates WHERE visit_id" + goneVisits + " OR duplicate_visit_id" + goneVisits) &&
             runWhereTables(db, {"clusters", "clusters_and_visits"},
                            "DELETE FROM clusters WHERE cluster_id NOT IN (SELECT cluster_id FROM clusters_and_visits)") &&
             runWhereTables(db, {"cluster_keywords", "clusters"},
                            "DELETE FROM cluster_keywords WHERE cluster_id NOT IN (SELECT cluster_id FROM clusters)") &&
             runWhereTables(db, {"visits"}, "DELETE FROM visits WHERE id" + goneVisits) &&
             runWhereTables(db, {"keyword_search_terms"}, "DELETE FROM keyword_search_terms WHERE url_id" + targets) &&
             runWhereTables(db, {"segment_usage", "segments"},
                            "DELETE FROM segment_usage WHERE segment_id IN (SELECT id FROM segments WHERE url_id" + targets + ")") &&
             runWhereTables(db, {"segments"}, "DELETE FROM segments WHERE url_id" + targets) &&
             // A visited link also names the page it was followed from.
             runWhereTables(db, {"visited_links"},
                            "DELETE FROM visited_links WHERE link_url_id" + targets +
                                (url && db.hasColumn("visited_links", "top_level_url") ? " OR top_level_url = ?1" : "") +
                                (url && db.hasColumn("visited_links", "frame_url") ? " OR frame_url = ?1" : ""),
                            url) &&
             db.exec("DELETE FROM urls WHERE id" + targets + " AND url NOT IN (SELECT url FROM temp.kept_urls)") &&
             db.exec("UPDATE urls SET visit_count = 0, typed_count = 0, last_visit_time = 0 WHERE id" + targets);
        if (!url) {
            // Tables that record browsing without naming one address each go whole.
            for (const char* table : {"visit_source", "visited_links", "downloads", "downloads_url_chains", "downloads_slices",
                                      "history_sync_metadata", "journeys", "journey_history_entries",
                                      "journey_continuation_queries", "journey_sync_metadata"})
                ok = runWhereTables(db, {table}, std::string("DELETE FROM ") + table) && ok;
        }
        return ok;
    }

    static bool forgetInFavicons(SqliteDb& db, const std::optional<std::string>& url, const std::vector<std::string>& kept) {
        return fillKeptUrls(db, kept) &&
               runWhereTables(db, {"icon_mapping"},
                              "DELETE FROM icon_mapping WHERE page_url NOT IN (SELECT url FROM temp.kept_urls)" +
                                  andWhere("page_url", url),
                              url) &&
               runWhereTables(db, {"favicons", "icon_mapping"},
                              "DELETE FROM favicons WHERE id NOT IN (SELECT icon_id FROM icon_mapping WHERE icon_id NOT NULL)") &&
               runWhereTables(db, {"favicon_bitmaps", "favicons"},
                              "DELETE FROM favicon_bitmaps WHERE icon_id NOT IN (SELECT id FROM favicons)");
    }

    static bool forgetInPredictor(SqliteDb& db, const std::optional<std::string>& url) {
        if (url)
            return runWhereTables(db, {"network_action_predictor"}, "DELETE FROM network_action_predictor WHERE url = ?1", url);
        // Every table of the predictor but its bookkeeping records addresses or hosts the user went to.
        std::vector<std::string> tables;
        SqliteStatement names = db.prepare("SELECT name FROM sqlite_master WHERE type = 'table' AND name <> 'meta' "
                                           "AND name NOT LIKE '%metadata' AND name NOT LIKE 'sqlite_%'");
        while (names.step())
            tables.push_back(names.text(0));
        bool ok = !names.failed();
        for (const std::string& table : tables)
            ok = db.exec("DELETE FROM \"" + table + "\"") && ok;
        return ok;
    }

    /// Removes the session files the browser restores tabs from and, when every address goes, the
    /// files that only record visits (the visited-link table).
    bool removeVisitFiles(bool all) {
        bool ok = true;
        for (const char* name : {"Current Session", "Current Tabs", "Last Session", "Last Tabs"})
            ok = removeSessionFile(name) && ok;
        if (all)
            for (const char* name : {"Visited Links", "History Provider Cache"})
                ok = removeSessionFile(name) && ok;
        return removeSessionFilesIn("Sessions") && ok;
    }
};

} // namespace

std::unique_ptr<ProfileHistory> makeChromiumHistory(const BrowserProfile& profile, ProfileFiles& files) {
    return std::make_unique<ChromiumHistory>(profile, files);
}

} // namespace browsers
