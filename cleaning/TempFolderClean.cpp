// The file side of the trace cleaning: the rules that decide which files of the shared temporary
// and cookie folders may go, the temporary-folder clean, and the eleven-pass overwrite.

#include "cleaning/TraceCleaner.h"

#include "core/Rounding.h"

#include <algorithm>

namespace cleaning {
namespace {

using platform::FileInfo;
using platform::RawFile;

constexpr std::int64_t BlockBytes = 1024;
constexpr int Passes = 11;
/// Blocks written per call between two chances for the window to run its events: small enough to
/// keep it live, large enough to write at the device's pace.
constexpr std::int64_t GroupBlocks = 256;
constexpr std::uint8_t Pattern = 0x55; // "U"

std::vector<FileInfo> entriesOf(platform::FileSystem& files, const std::string& dir, bool& listed) {
    std::vector<FileInfo> entries;
    // Collected first: removing entries while the folder is being read may skip some.
    listed = files.list(dir, "*", [&](const FileInfo& fi) {
        entries.push_back(fi);
        return true;
    });
    return entries;
}

bool isSubfolder(const FileInfo& fi) {
    return fi.isDirectory() && !fi.isLink();
}

} // namespace

TraceCleaner::Kept TraceCleaner::kept(const std::string& path, const FileInfo& entry) {
    if (!entry.isRegular || entry.isLink())
        return Kept::NotAFile;
    if (!entry.ownedByUser)
        return Kept::OtherOwner;
    if (m_platform.fileSystem().isInUse(path))
        return Kept::InUse;
    return Kept::No;
}

void TraceCleaner::wipeIfAllowed(const std::string& path, const FileInfo& entry, TraceStep step) {
    switch (kept(path, entry)) {
    case Kept::No:
        WipeFile(path);
        m_view.itemDone(step, path);
        return;
    case Kept::InUse:
        skipped(path, "is open in a running program; left alone");
        return;
    case Kept::NotAFile: // links, sockets, pipes, devices
    case Kept::OtherOwner:
        return; // never this user's to clean: not a skip
    }
}

void TraceCleaner::CleanTempFolder() {
    const std::string temp = m_paths.TempPath;
    if (temp.empty())
        return; // never the current folder
    auto& files = m_platform.fileSystem();
    const auto top = files.info(temp);
    if (!top || !isSubfolder(*top)) {
        skipped(temp, "is not a folder");
        return;
    }
    bool listed = false;
    const auto entries = entriesOf(files, temp, listed);
    if (!listed)
        skipped(temp, "cannot be listed");
    for (const FileInfo& fi : entries) {
        if (m_view.interrupted())
            return;
        if (!isSubfolder(fi))
            wipeIfAllowed(join(temp, fi.name), fi, TraceStep::TempFiles);
    }
    for (const FileInfo& fi : entries) {
        if (m_view.interrupted())
            return;
        if (isSubfolder(fi))
            cleanSubfolder(join(temp, fi.name), fi, top->device);
    }
}

void TraceCleaner::cleanSubfolder(const std::string& path, const FileInfo& entry, std::uint64_t device) {
    // Another user's folder, or another filesystem mounted here, is not this user's to empty.
    if (!entry.ownedByUser || entry.device != device)
        return;
    auto& files = m_platform.fileSystem();
    bool listed = false;
    for (const FileInfo& fi : entriesOf(files, path, listed)) {
        if (m_view.interrupted())
            return;
        if (!isSubfolder(fi))
            wipeIfAllowed(join(path, fi.name), fi, TraceStep::TempFiles);
    }
    if (!listed) {
        skipped(path, "cannot be listed");
        return;
    }
    // Removed whole or not at all, and without force: a read-only folder stays, and so does one
    // that still holds anything the rules keep.
    if (entry.attributes & platform::Attr::ReadOnly)
        return;
    if (clearBelow(path, device, false) && !clearBelow(path, device, true))
        skipped(path, "could not be removed completely");
}

bool TraceCleaner::clearBelow(const std::string& dir, std::uint64_t device, bool remove) {
    auto& files = m_platform.fileSystem();
    bool listed = false;
    const auto entries = entriesOf(files, dir, listed);
    bool all = listed;
    for (const FileInfo& fi : entries) {
        const std::string child = join(dir, fi.name);
        bool goes = false;
        if (!fi.ownedByUser || fi.isLink() || (fi.attributes & platform::Attr::ReadOnly))
            goes = false;
        else if (fi.isDirectory())
            goes = fi.device == device && clearBelow(child, device, remove);
        else if (fi.isRegular)
            // The scan asked about open files moments ago; the removal does not ask again.
            goes = remove ? files.removeFile(child) : !files.isInUse(child);
        if (remove && goes && !fi.isDirectory())
            m_view.itemDone(TraceStep::TempFiles, child);
        all = goes && all;
        if (!all && !remove)
            return false; // the first item kept decides
    }
    if (remove && all)
        return files.removeDirectory(dir);
    return all;
}

void TraceCleaner::WipeFile(const std::string& path) {
    auto& files = m_platform.fileSystem();
    const auto info = files.info(path);
    if (!info)
        return; // already gone (the full clean deletes first on purpose)
    if (!info->isRegular) {
        skipped(path, "is not a plain file; left alone");
        return;
    }
    if (info->links > 1) {
        // Overwriting would destroy the file under its other names too.
        if (files.removeFile(path))
            skipped(path, "has other names (hard links): only this name was removed, nothing was overwritten");
        else
            skipped(path, "cannot be deleted");
        return;
    }
    std::int64_t length = static_cast<std::int64_t>(info->size);
    if (auto reader = m_platform.rawFiles().openForReading(path))
        length = std::max<std::int64_t>(0, reader->seek(0, RawFile::From::End));
    const std::int64_t blocks = core::roundHalfEven(static_cast<double>(length) / BlockBytes);
    files.makeNormal(path);
    bool overwritten = true;
    for (int pass = 1; pass <= Passes && !m_view.interrupted(); ++pass) {
        // Opening creates a missing file: one that went meanwhile is not brought back.
        if (!files.info(path))
            return;
        auto file = m_platform.rawFiles().open(path);
        if (!file) {
            skipped(path, "is in use (it cannot be opened alone); left alone");
            return;
        }
        overwritten = writePass(*file, path, pass, blocks) && overwritten;
        // The pass reaches the device before the next one overwrites it.
        overwritten = file->flush() && overwritten;
        file.reset();
        m_view.pumpEvents();
    }
    if (!overwritten)
        skipped(path, "could not be overwritten completely; it was deleted all the same");
    if (!files.removeFile(path))
        skipped(path, "cannot be deleted");
}

bool TraceCleaner::writePass(RawFile& file, const std::string& path, int pass, std::int64_t blocks) {
    // Blocks 0 to `blocks` of 1024 bytes each, at offset block x 1024: one run of bytes from the
    // start, written a group of blocks at a time.
    const auto total = static_cast<std::uint64_t>((blocks + 1) * BlockBytes);
    if (m_pattern.empty())
        m_pattern.assign(static_cast<std::size_t>(GroupBlocks * BlockBytes), Pattern);
    if (file.seek(0, RawFile::From::Begin) != 0)
        return false;
    std::uint64_t written = 0;
    while (written < total) {
        const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(total - written, m_pattern.size()));
        if (file.write(m_pattern.data(), n) != n)
            return false;
        // These bytes are final for this pass: the device takes them while the rest is written.
        file.startFlush(static_cast<std::int64_t>(written), static_cast<std::int64_t>(n));
        written += n;
        m_view.wiping(path, pass, written, total);
        m_view.pumpEvents();
        if (m_view.interrupted())
            return true;
    }
    return true;
}

} // namespace cleaning
