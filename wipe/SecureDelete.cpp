#include "wipe/SecureDelete.h"

#include "core/Rounding.h"
#include "wipe/Removal.h"
#include "wipe/WipeTexts.h"

#include <algorithm>
#include <cstdio>

namespace wipe {
namespace {

// Blocks are a fifth of the file, so a large file's block is written from this much memory at a
// time; the bytes reaching the file are the same.
constexpr std::size_t ChunkBytes = std::size_t{1} << 20;

std::string hex2(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02X", value);
    return text;
}

} // namespace

SecureDelete::SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems)
    : SecureDelete(platform, view, problems, PatternRandom()) {}

SecureDelete::SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems,
                           PatternRandom random)
    : m_platform(platform), m_view(view), m_problems(problems), m_random(random) {}

std::string SecureDelete::passText(const Gutmann::Values& values) {
    // The first value shows the code of its own first decimal digit: that is how the window has
    // always printed it, and users compare against it.
    const auto firstDigit = static_cast<unsigned char>(std::to_string(values[0])[0]);
    return "Block1: 0x" + hex2(firstDigit) + " , Block2: 0x" + hex2(values[1]) + " , Block3: 0x" + hex2(values[2]);
}

bool SecureDelete::WipeSelectedFiles(const std::string& fileName, const std::vector<std::string>& paths) {
    auto& prompts = m_view.prompts();
    if (fileName.empty()) {
        prompts.tell(texts::SelectFile, core::MessageTitle, core::MsgStyle::OkOnly);
        return false;
    }
    if (!prompts.askYesNo(texts::ConfirmFiles, core::MessageTitle, core::MsgStyle::YesNo))
        return false;
    for (const auto& path : paths) {
        if (m_view.interrupted())
            break;
        WipeFile(path);
    }
    return true;
}

bool SecureDelete::WipeFolder(const std::string& folder) {
    if (!m_view.prompts().askYesNo(texts::WipeFolderPrefix + folder + texts::WipeFolderSuffix, core::MessageTitle,
                                   core::MsgStyle::YesNo | core::MsgStyle::Exclamation))
        return false;
    auto& files = m_platform.fileSystem();
    auto dir = files.openFolder(folder);
    if (!dir) {
        m_problems.skipped(folder, "is not a folder");
        return true;
    }
    std::vector<std::string> own;
    dir->list([&](const platform::FileInfo& fi) {
        if (fi.isRegular)
            own.push_back(fi.name);
        return true;
    });
    for (const auto& name : own) {
        if (m_view.interrupted())
            return true; // the rest, and the folder, stay as they are
        wipeEntry(*dir, name);
    }
    // Subfolders go without being overwritten, and links are removed, never followed. The folder
    // itself is removed from its parent only while the name still means the folder wiped here.
    const auto [parentPath, name] = splitPath(files, folder);
    auto parent = files.openFolder(parentPath);
    const auto entry = parent ? parent->entry(name) : std::nullopt;
    if (!entry || !entry->sameFileAs(dir->self())) {
        m_problems.skipped(folder, "cannot be deleted: it is no longer where it was");
        return true;
    }
    dir.reset();
    removeTree(*parent, name, m_problems);
    return true;
}

bool SecureDelete::WipeFile(const std::string& path) {
    const auto [folderPath, name] = splitPath(m_platform.fileSystem(), path);
    auto folder = m_platform.fileSystem().openFolder(folderPath);
    if (!folder) {
        m_problems.skipped(path, "does not exist");
        return true;
    }
    return wipeEntry(*folder, name);
}

bool SecureDelete::wipeEntry(platform::Folder& folder, const std::string& name) {
    const std::string shown = joinPath(m_platform.fileSystem(), folder.path(), name);
    const auto info = folder.entry(name);
    if (!info) {
        m_problems.skipped(shown, "does not exist");
        return true;
    }
    if (info->isDirectory() && !info->isLink()) {
        m_problems.skipped(shown, "is a folder");
        return false;
    }
    if (isMountPoint(folder, *info)) {
        m_problems.skipped(shown, "is a mount point; left in place");
        return false;
    }
    if (info->isRegular && info->links > 1) {
        m_problems.skipped(shown, "has other hard links: only this name is removed, the contents are not overwritten");
        return truncateAndDelete(folder, name, m_problems);
    }
    if (info->isRegular) {
        folder.makeNormal(name);
        if (info->size > 0 && overwrite(folder, name, *info, shown) == Overwrite::Replaced)
            return false;
    }
    return truncateAndDelete(folder, name, m_problems, *info);
}

SecureDelete::Overwrite SecureDelete::overwrite(platform::Folder& folder, const std::string& name,
                                                const platform::FileInfo& original, const std::string& shown) {
    auto& raw = m_platform.rawFiles();
    const auto failed = [&](const std::string& what) {
        const std::string text = raw.errorText(raw.lastError());
        m_problems.skipped(shown, what + (text.empty() ? "" : ": " + text) + "; it is deleted all the same");
        return Overwrite::Failed;
    };
    const std::int64_t blockLength = core::roundHalfEven(static_cast<double>(original.size) * 0.2);
    for (int pass = 1; pass <= Gutmann::PassCount; ++pass) {
        m_view.passStarted(shown, pass);
        auto file = folder.openFile(name, false);
        if (!file)
            return failed("could not be opened for pass " + std::to_string(pass));
        // The same file as at the start, or nothing more is done to what now bears the name.
        const auto held = file->info();
        if (!held || !held->sameFileAs(original)) {
            m_problems.skipped(shown, "was replaced by another file during the wipe; left alone");
            return Overwrite::Replaced;
        }
        const Gutmann::Values values = Gutmann::values(pass, m_random);
        if (blockLength > 0)
            m_view.passValues(passText(values));
        // The length is read again each pass: a pass may have written a little past the old end.
        const std::int64_t current = file->seek(0, platform::RawFile::From::End);
        file->seek(0, platform::RawFile::From::Begin);
        // A block length of 0 (files of 1 or 2 bytes) leaves nothing to count: nothing is written.
        const std::int64_t count =
            blockLength > 0 && current >= 0 ? core::roundHalfEven(static_cast<double>(current) / blockLength) : 0;
        FileWipeProgress now{shown, pass, 0, static_cast<std::uint64_t>(count * blockLength * 3)};
        for (std::int64_t i = 1; i <= count; ++i) {
            if (m_view.stopRequested() || m_view.interrupted())
                return Overwrite::Stopped;
            const std::int64_t position = file->seek(0, platform::RawFile::From::Current);
            for (std::size_t b = 0; b < values.size(); ++b) {
                file->seek(position, platform::RawFile::From::Begin);
                const bool last = b + 1 == values.size();
                if (!writeBlock(*file, values[b], static_cast<std::uint64_t>(blockLength), now, last ? position : -1))
                    return m_view.interrupted() ? Overwrite::Stopped : failed("pass " + std::to_string(pass) + " could not be written");
                m_view.pumpEvents();
            }
        }
        // This pass reaches the device before the next one overwrites it; if it cannot, the
        // passes are not doing what they claim.
        if (!file->flush())
            return failed("pass " + std::to_string(pass) + " did not reach the device");
    }
    return Overwrite::Done;
}

bool SecureDelete::writeBlock(platform::RawFile& file, std::uint8_t value, std::uint64_t length, FileWipeProgress& now,
                              std::int64_t finalAt) {
    const std::size_t chunk = static_cast<std::size_t>(std::min<std::uint64_t>(length, ChunkBytes));
    if (m_chunk.size() < chunk)
        m_chunk.resize(chunk);
    std::fill(m_chunk.begin(), m_chunk.begin() + static_cast<std::ptrdiff_t>(chunk), value);
    for (std::uint64_t left = length; left > 0;) {
        const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(left, chunk));
        if (file.write(m_chunk.data(), n) != n)
            return false;
        if (finalAt >= 0) {
            // These bytes are final for this pass: the device takes them while the rest is written.
            file.startFlush(finalAt, static_cast<std::int64_t>(n));
            finalAt += static_cast<std::int64_t>(n);
        }
        left -= n;
        now.written += n;
        m_view.progress(now);
        if (left > 0) {
            m_view.pumpEvents();
            if (m_view.interrupted())
                return false;
        }
    }
    return true;
}

} // namespace wipe
