#include "platform/linux/ProfileHistory.h"

#include "platform/linux/Descriptors.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {

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

StoreResult readStatUrls(const std::string& path, const std::string& sql, std::int64_t keptMicros,
                         std::vector<StatUrl>& out, std::vector<StoreProblem>& problems) {
    ProfileDatabases dbs;
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

bool ProfileHistory::removeSessionFile(const std::string& path) {
    if (removeFileIfThere(path))
        return true;
    noteProblem(path, std::string("could not be deleted: ") + std::strerror(errno));
    return false;
}

bool ProfileHistory::removeSessionFilesIn(const std::string& path) {
    if (removeFilesIn(path))
        return true;
    noteProblem(path, std::string("not every file in it could be deleted: ") + std::strerror(errno));
    return false;
}

FileTime fileTimeFromMicros1601(std::int64_t micros) {
    const std::uint64_t t = micros > 0 ? std::uint64_t(micros) * 10 : 0;
    return FileTime{static_cast<std::uint32_t>(t), static_cast<std::uint32_t>(t >> 32)};
}

bool removeFileIfThere(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        return errno == ENOENT;
    if (S_ISDIR(st.st_mode))
        return false;
    return ::unlink(path.c_str()) == 0 || errno == ENOENT;
}

bool removeFilesIn(const std::string& path) {
    UniqueFd folder = openFolderAt(AT_FDCWD, path);
    if (!folder)
        return errno == ENOENT;
    const int fd = folder.get();
    DIR* dir = ::fdopendir(folder.release());
    if (!dir) {
        ::close(fd);
        return false;
    }
    bool ok = true;
    while (const dirent* e = ::readdir(dir)) {
        struct stat st {};
        if (::fstatat(fd, e->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0 || S_ISDIR(st.st_mode))
            continue;
        ok = (::unlinkat(fd, e->d_name, 0) == 0 || errno == ENOENT) && ok;
    }
    ::closedir(dir);
    return ok;
}

std::unique_ptr<ProfileHistory> profileHistory(const BrowserProfile& profile) {
    return profile.family == BrowserFamily::Chromium ? makeChromiumHistory(profile) : makeFirefoxHistory(profile);
}

} // namespace platform::linux
