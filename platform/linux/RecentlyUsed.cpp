#include "platform/linux/RecentlyUsed.h"

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

} // namespace

std::vector<std::string> recentlyUsedUris(const std::string& path) {
    GBookmarkFile* file = g_bookmark_file_new();
    return takeUris(file, g_bookmark_file_load_from_file(file, path.c_str(), nullptr));
}

std::vector<std::string> recentlyUsedUrisIn(const std::string& text) {
    GBookmarkFile* file = g_bookmark_file_new();
    return takeUris(file, g_bookmark_file_load_from_data(file, text.data(), text.size(), nullptr));
}

bool clearRecentlyUsed(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        return true; // nothing recorded
    GBookmarkFile* empty = g_bookmark_file_new();
    gsize length = 0;
    gchar* data = g_bookmark_file_to_data(empty, &length, nullptr);
    g_bookmark_file_free(empty);
    if (!data)
        return false;
    // Written to a temporary file that is synced and renamed over the old one: a reader sees the
    // old list or the empty one, never half a file. A link is replaced, not written through.
    const bool ok = g_file_set_contents_full(path.c_str(), data, static_cast<gssize>(length),
                                             G_FILE_SET_CONTENTS_CONSISTENT, static_cast<int>(st.st_mode & 0777),
                                             nullptr);
    g_free(data);
    return ok;
}

} // namespace platform::linux
