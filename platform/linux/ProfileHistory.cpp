#include "platform/linux/ProfileHistory.h"

#include <cerrno>
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
    const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return errno == ENOENT;
    DIR* dir = ::fdopendir(fd);
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
