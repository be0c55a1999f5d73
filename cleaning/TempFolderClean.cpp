// Everything happens inside open folders (platform::Folder), so a folder renamed or replaced by a
// link while the clean runs cannot lead it anywhere else, and no walk crosses into another mount.

#include "cleaning/TempFolderClean.h"

#include "cleaning/TempFolderGuard.h"
#include "core/Rounding.h"
#include "wipe/Engine.h"

#include <algorithm>

namespace cleaning {
namespace {

using platform::FileInfo;
using platform::Folder;
using platform::RawFile;

constexpr std::int64_t BlockBytes = 1024;
constexpr int Passes = 11;
/// Blocks written per call between two chances for the window to run its events: small enough to
/// keep it live, large enough to write at the device's pace.
constexpr std::int64_t GroupBlocks = 256;
constexpr std::uint8_t Pattern = 0x55; // "U"

std::vector<FileInfo> entriesOf(Folder& folder, bool& listed) {
    std::vector<FileInfo> entries;
    // Collected first: removing entries while the folder is being read may skip some.
    listed = folder.list([&](const FileInfo& fi) {
        entries.push_back(fi);
        return true;
    });
    return entries;
}

bool isSubfolder(const FileInfo& fi) {
    return fi.isDirectory() && !fi.isLink();
}

/// The subfolder `entry` of `parent`, only while it is still the folder that was listed.
std::unique_ptr<Folder> openListed(Folder& parent, const FileInfo& entry) {
    auto dir = parent.openFolder(entry.name);
    return dir && dir->self().sameFileAs(entry) ? std::move(dir) : nullptr;
}

} // namespace

TempFolderClean::TempFolderClean(platform::Platform& platform, wipe::Engine& engine, TraceView& view,
                                 core::ProblemSink* problems)
    : m_platform(platform), m_engine(engine), m_view(view), m_problems(problems) {}

void TempFolderClean::skipped(const std::string& item, const std::string& reason) {
    if (m_problems)
        m_problems->skipped(item, reason);
}

TempFolderClean::Kept TempFolderClean::kept(Folder& folder, const FileInfo& entry, bool askInUse) {
    if (!entry.isRegular || entry.isLink() || wipe::isMountPoint(folder, entry))
        return Kept::NotAFile;
    if (!entry.ownedByUser)
        return Kept::OtherOwner;
    if (askInUse && folder.isInUse(entry.name))
        return Kept::InUse;
    return Kept::No;
}

void TempFolderClean::wipeIfAllowed(Folder& folder, const FileInfo& entry, TraceStep step) {
    const std::string path = m_platform.fileSystem().join(folder.path(), entry.name);
    // The overwrite names a file in use itself.
    switch (kept(folder, entry, false)) {
    case Kept::No:
        if (wipeEntry(folder, entry.name))
            m_view.itemDone(step, path);
        return;
    case Kept::InUse:
        skipped(path, "is open in a running program; left alone");
        return;
    case Kept::NotAFile: // links, sockets, pipes, devices, files mounted over
    case Kept::OtherOwner:
        return; // never this user's to clean: not a skip
    }
}

void TempFolderClean::Clean(const std::string& temp) {
    if (temp.empty())
        return; // never the current folder
    auto top = m_platform.fileSystem().openFolder(temp);
    if (!top) {
        skipped(temp, "is not a folder");
        return;
    }
    // Decided on the folder just opened, the one the clean then works in.
    if (const std::string refusal = TempFolderRefusal(m_platform, *top); !refusal.empty()) {
        skipped(temp, refusal);
        return;
    }
    bool listed = false;
    auto entries = entriesOf(*top, listed);
    if (!listed)
        skipped(temp, "cannot be listed");
    // The X server's locks and sockets and the services' private folders stay, whoever owns them.
    std::erase_if(entries, [](const FileInfo& fi) { return IsServiceEntry(fi.name); });
    for (const FileInfo& fi : entries) {
        if (m_view.interrupted())
            return;
        if (!isSubfolder(fi))
            wipeIfAllowed(*top, fi, TraceStep::TempFiles);
    }
    for (const FileInfo& fi : entries) {
        if (m_view.interrupted())
            return;
        if (isSubfolder(fi))
            cleanSubfolder(*top, fi);
    }
}

void TempFolderClean::cleanSubfolder(Folder& parent, const FileInfo& entry) {
    // Another user's folder, or another filesystem mounted here, is not this user's to empty.
    if (!entry.ownedByUser || wipe::isMountPoint(parent, entry))
        return;
    const std::string path = m_platform.fileSystem().join(parent.path(), entry.name);
    auto dir = openListed(parent, entry);
    if (!dir) {
        skipped(path, "cannot be opened");
        return;
    }
    bool listed = false;
    for (const FileInfo& fi : entriesOf(*dir, listed)) {
        if (m_view.interrupted())
            return;
        if (!isSubfolder(fi))
            wipeIfAllowed(*dir, fi, TraceStep::TempFiles);
    }
    if (!listed) {
        skipped(path, "cannot be listed");
        return;
    }
    // Removed whole or not at all, and without force: a read-only folder stays, and so does one
    // that still holds anything the rules keep.
    if (entry.attributes & platform::Attr::ReadOnly || !clearBelow(*dir, false))
        return;
    const bool emptied = clearBelow(*dir, true);
    dir.reset(); // an open folder cannot be removed everywhere
    if (!emptied)
        skipped(path, "could not be removed completely");
    else
        m_engine.removeEmptyFolder(parent, entry.name);
}

bool TempFolderClean::clearBelow(Folder& dir, bool remove) {
    bool listed = false;
    const auto entries = entriesOf(dir, listed);
    bool all = listed;
    for (const FileInfo& fi : entries) {
        bool goes = false;
        if (!fi.ownedByUser || fi.isLink() || (fi.attributes & platform::Attr::ReadOnly) ||
            wipe::isMountPoint(dir, fi))
            goes = false;
        else if (fi.isDirectory()) {
            auto sub = openListed(dir, fi);
            goes = sub && clearBelow(*sub, remove);
            sub.reset();
            if (remove && goes)
                goes = m_engine.removeEmptyFolder(dir, fi.name);
        } else if (fi.isRegular) {
            // The scan asked about open files moments ago; the removal does not ask again.
            const std::string path = m_platform.fileSystem().join(dir.path(), fi.name);
            goes = remove ? m_engine.remove(dir, fi.name).removed : !dir.isInUse(fi.name);
            if (remove && goes)
                m_view.itemDone(TraceStep::TempFiles, path);
            // The one file that keeps its folder tree is told, as one held at the top would be.
            if (!remove && !goes)
                skipped(path, "is open in a running program; left alone");
        }
        all = goes && all;
        if (!all && !remove)
            return false; // the first item kept decides
    }
    return all;
}

/// The eleven passes of 0x55 bytes over blocks 0 to round(length / 1024) of 1024 bytes each, one run
/// of bytes from the start written a group of blocks at a time.
class TempFolderClean::Scheme final : public wipe::OverwriteScheme {
public:
    explicit Scheme(TempFolderClean& owner) : m_owner(owner) {}

    int passes() const override { return Passes; }
    void starting(const std::string& shown) override { m_shown = shown; }

    Pass writePass(int pass, wipe::PassWriter& out) override {
        if (pass == 1)
            m_total = static_cast<std::uint64_t>(
                (core::roundHalfEven(static_cast<double>(out.length()) / BlockBytes) + 1) * BlockBytes);
        auto& pattern = m_owner.m_pattern;
        if (pattern.empty())
            pattern.assign(static_cast<std::size_t>(GroupBlocks * BlockBytes), Pattern);
        auto& view = m_owner.m_view;
        for (std::uint64_t written = 0; written < m_total;) {
            const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(m_total - written, pattern.size()));
            if (!out.write(written, pattern.data(), n))
                return Pass::Failed;
            // These bytes are final for this pass: the device takes them while the rest is written.
            out.startFlush(written, n);
            written += n;
            view.wiping(m_shown, pass, written, m_total);
            view.pumpEvents();
            if (view.interrupted())
                return Pass::Stopped;
        }
        return Pass::Written;
    }

private:
    TempFolderClean& m_owner;
    std::string m_shown;
    std::uint64_t m_total = 0;
};

void TempFolderClean::WipeFile(const std::string& path) {
    const auto [folderPath, name] = wipe::splitPath(m_platform.fileSystem(), path);
    if (auto folder = m_platform.fileSystem().openFolder(folderPath))
        wipeEntry(*folder, name);
}

bool TempFolderClean::wipeEntry(Folder& folder, const std::string& name) {
    Scheme scheme(*this);
    wipe::OverwriteOptions options;
    options.missingIsProblem = false; // already gone: the full clean deletes first on purpose
    return m_engine.overwrite(folder, name, scheme, options).removed;
}

} // namespace cleaning
