#pragma once
// Mounts made by tests, and the scratch mount table the platform reads in tests. The test mains
// point SCOURMILL_MOUNTINFO at an empty table in the scratch folder, so the platform sees no drive
// of the machine (no real trash folder, no real disk is ever within reach); a ScratchMount adds
// the kernel's own line for its mount while it exists. Mounting needs root; where it is not
// allowed the mount reports why and the test skips with that reason.

#include <filesystem>
#include <string>

namespace testsupport {

/// The scratch mount table's path.
std::filesystem::path mountTablePath();
/// Adds `line` (mountinfo format) to the scratch mount table as it is, for tests that need the
/// platform to believe in a mount the kernel does not have.
void addMountTableLine(const std::string& line);
/// Takes the line of the mount with ID `id` (its first field) out of the scratch mount table.
void removeMountTableLine(const std::string& id);

class ScratchMount {
public:
    /// Runs `mount ARGUMENTS 'point'` (for instance "-t tmpfs -o size=4m scourmill" or
    /// "--bind 'SOURCE'") and lists the new mount in the scratch mount table.
    ScratchMount(const std::string& arguments, const std::filesystem::path& point);
    ~ScratchMount();
    ScratchMount(const ScratchMount&) = delete;
    ScratchMount& operator=(const ScratchMount&) = delete;

    bool mounted() const { return m_mounted; }
    /// Why the mount could not be made.
    const std::string& reason() const { return m_reason; }
    const std::filesystem::path& point() const { return m_point; }
    /// Unmounts and takes the mount out of the table; true when that worked.
    bool unmount();

private:
    std::filesystem::path m_point;
    std::string m_id;
    bool m_mounted = false;
    std::string m_reason;
};

} // namespace testsupport
