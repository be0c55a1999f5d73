#pragma once
// For the Windows tests, which run under Wine here: whether they do, the Windows path of a file
// of the host, and the few things Wine 8 cannot do through Win32 that a test needs all the same
// (a link to a folder is made on the host's side, where Wine shows it as a reparse point).

#include <string>

namespace testsupport {

/// Whether the program runs under Wine rather than on Windows itself.
bool underWine();
/// The Windows path of the host path `path` under Wine ("/work/x" -> "Z:\work\x"); elsewhere `path`.
std::string windowsPathOf(const std::string& path);
/// Makes `link` a link to the folder `target` that every call sees as a reparse point: a junction
/// where the system makes them, under Wine a host symbolic link. False when neither works.
bool makeFolderLink(const std::string& link, const std::string& target);

} // namespace testsupport
