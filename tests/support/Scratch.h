#pragma once
// Scratch folders for tests. Every test program starts by pointing HOME, TMPDIR, the XDG folders and
// WINEPREFIX at a fresh scratch folder (see TestMain.cpp), so no test can reach the real home, temp
// folder, trash, Wine prefix or browser profiles.

#include <filesystem>
#include <map>
#include <string>

namespace testsupport {

/// Points HOME, TMPDIR, the XDG folders and WINEPREFIX at fresh folders below the scratch root,
/// and the platform's mount table at an empty scratch table (see ScratchMount.h).
/// Every test program's main() calls this first, before anything reads the environment.
void enterScratchEnvironment();
/// Removes the scratch root; the last thing main() does.
void leaveScratchEnvironment();

/// The scratch root of this test program.
const std::filesystem::path& scratchRoot();

/// A new empty folder below the scratch root, removed with the object.
class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::string str() const { return m_path.string(); }
    /// Writes `content` to `relative` below this folder, creating parent folders; returns the path.
    std::filesystem::path write(const std::string& relative, const std::string& content) const;

private:
    std::filesystem::path m_path;
};

/// The whole content of a file ("" when missing).
std::string readFile(const std::filesystem::path& path);

/// Every entry below `root` (links not followed), by its path relative to `root`: its owner, kind
/// and permissions, and a file's bytes or a link's target.
std::map<std::filesystem::path, std::string> treeSnapshot(const std::filesystem::path& root);

/// Sets an environment variable for the rest of the test program.
void setEnv(const std::string& name, const std::string& value);

} // namespace testsupport
