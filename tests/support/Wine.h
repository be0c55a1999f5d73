#pragma once
// For the Windows tests, which run under Wine here: whether they do, the Windows path of a file
// of the host, the few things Wine 8 cannot do through Win32 that a test needs all the same (a
// link to a folder is made on the host's side, where Wine shows it as a reparse point), and
// entries put into the browser cache with WinINet's own calls.

#include <string>
#include <vector>

namespace testsupport {

/// Whether the program runs under Wine rather than on Windows itself.
bool underWine();
/// The Windows path of the host path `path` under Wine ("/work/x" -> "Z:\work\x"); elsewhere `path`.
std::string windowsPathOf(const std::string& path);
/// Makes `link` a link to the folder `target` that every call sees as a reparse point: a junction
/// where the system makes them, under Wine a host symbolic link. False when neither works.
bool makeFolderLink(const std::string& link, const std::string& target);
/// Runs the host program `program` (a host path such as "/bin/sync") with `arguments` under Wine
/// and waits up to 30 seconds for it; false elsewhere or when it cannot be started.
bool runHost(const std::string& program, const std::string& arguments);

/// Adds `url` to the browser cache as WinINet's own callers do (CreateUrlCacheEntryW, the body
/// written to the file it names, CommitUrlCacheEntryW). False when the cache refuses.
bool commitCacheEntry(const std::wstring& url, const std::string& body);
/// Whether the browser cache holds an entry for `url`.
bool inUrlCache(const std::wstring& url);

/// The value names of `key` below HKEY_CURRENT_USER as the system lists them, in its order; none
/// when the key is missing.
std::vector<std::wstring> registryValueNames(const std::wstring& key);

} // namespace testsupport
