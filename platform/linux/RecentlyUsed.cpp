#include "platform/linux/RecentlyUsed.h"

#include "platform/linux/Descriptors.h"
#include "platform/linux/LinuxFolder.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>

namespace platform::linux {
namespace {

// The addresses in `file` when it was loaded; `file` is freed either way.
std::vector<std::string> takeUris(GBookmarkFile* file, bool loaded) {
    std::vector<std::string> uris;
    if (loaded) {
        gsize count = 0;
        gchar** list = g_bookmark_file_get_uris(file, &count);
        for (gsize i = 0; i < count; ++i)
            uris.emplace_back(list[i]);
        g_strfreev(list);
    }
    g_bookmark_file_free(file);
    return uris;
}

/// A list far larger than any desktop keeps is not one to parse.
constexpr std::size_t ListLimit = 64 * 1024 * 1024;

const std::string LinkKept = "is a symbolic link (the usual way to switch recording off); left as it is";

} // namespace

RecentlyUsedRead readRecentlyUsed(const std::string& path) {
    RecentlyUsedRead read;
    const FileText file = readRegularFile(AT_FDCWD, path, ListLimit);
    if (file.result == ReadResult::Read)
        read.uris = recentlyUsedUrisIn(file.text);
    else if (file.result == ReadResult::Link)
        read.problem = LinkKept;
    else if (file.result != ReadResult::Missing)
        read.problem = readProblem(file.result, file.st.st_mode) + "; left as it is";
    return read;
}

std::vector<std::string> recentlyUsedUrisIn(const std::string& text) {
    GBookmarkFile* file = g_bookmark_file_new();
    return takeUris(file, g_bookmark_file_load_from_data(file, text.data(), text.size(), nullptr));
}

bool clearRecentlyUsed(const std::string& path, Remover& remover, std::string* problem) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        return true; // nothing recorded
    if (!S_ISREG(st.st_mode)) {
        if (problem)
            *problem = S_ISLNK(st.st_mode) ? LinkKept : readProblem(ReadResult::NotRegular, st.st_mode) + "; left as it is";
        return false;
    }
    GBookmarkFile* empty = g_bookmark_file_new();
    gsize length = 0;
    gchar* data = g_bookmark_file_to_data(empty, &length, nullptr);
    g_bookmark_file_free(empty);
    if (!data)
        return false;
    const std::string content(data, length);
    g_free(data);
    // Written in place, over the old list: a new file renamed over it would leave the old one's
    // addresses in free blocks of the drive.
    const std::size_t slash = path.rfind('/');
    const std::string folderPath = slash == 0 ? "/" : path.substr(0, slash);
    const UniqueFd at(::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto folder = at ? LinuxFolder::open(at.get(), "", folderPath) : nullptr;
    return folder && remover.rewrite(*folder, path.substr(slash + 1), content);
}

} // namespace platform::linux
