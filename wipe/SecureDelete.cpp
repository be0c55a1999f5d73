#include "wipe/SecureDelete.h"

#include "core/Rounding.h"
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

/// The 35 Gutmann passes: blocks of a fifth of the file's length, each laid with the pass's three
/// values in turn, the stop flag read before every block position.
class SecureDelete::Scheme final : public OverwriteScheme {
public:
    Scheme(SecureDelete& owner) : m_owner(owner) {}

    int passes() const override { return Gutmann::PassCount; }
    void starting(const std::string& shown) override { m_shown = shown; }

    Pass writePass(int pass, PassWriter& out) override {
        auto& view = m_owner.m_view;
        view.passStarted(m_shown, pass);
        if (pass == 1)
            m_block = core::roundHalfEven(static_cast<double>(out.length()) * 0.2);
        const Gutmann::Values values = Gutmann::values(pass, m_owner.m_random);
        if (m_block > 0)
            view.passValues(passText(values));
        // The length is read again each pass: a pass may have written a little past the old end.
        // A block length of 0 (files of 1 or 2 bytes) leaves nothing to count: nothing is written.
        const std::int64_t count =
            m_block > 0 ? core::roundHalfEven(static_cast<double>(out.length()) / static_cast<double>(m_block)) : 0;
        FileWipeProgress now{m_shown, pass, 0, static_cast<std::uint64_t>(count * m_block)};
        for (std::int64_t i = 0; i < count; ++i) {
            if (view.stopRequested() || view.interrupted())
                return Pass::Stopped;
            // The three values go over the same bytes with no flush in between, so only the third
            // ever reaches the device: it alone is written, which spares each pass two thirds of
            // its copying into the system's cache.
            const auto position = static_cast<std::uint64_t>(i * m_block);
            if (!writeBlock(out, position, values.back(), now))
                return view.interrupted() ? Pass::Stopped : Pass::Failed;
            view.pumpEvents();
        }
        return Pass::Written;
    }

private:
    /// Writes `m_block` bytes of `value` from `position`: the pass's last word on them, so their way
    /// to the device starts at once.
    bool writeBlock(PassWriter& out, std::uint64_t position, std::uint8_t value, FileWipeProgress& now) {
        auto& chunkBuffer = m_owner.m_chunk;
        auto& view = m_owner.m_view;
        const auto length = static_cast<std::uint64_t>(m_block);
        const std::size_t chunk = static_cast<std::size_t>(std::min<std::uint64_t>(length, ChunkBytes));
        if (chunkBuffer.size() < chunk)
            chunkBuffer.resize(chunk);
        std::fill(chunkBuffer.begin(), chunkBuffer.begin() + static_cast<std::ptrdiff_t>(chunk), value);
        for (std::uint64_t done = 0; done < length;) {
            const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(length - done, chunk));
            if (!out.write(position + done, chunkBuffer.data(), n))
                return false;
            out.startFlush(position + done, n);
            done += n;
            now.written += n;
            view.progress(now);
            if (done < length) {
                view.pumpEvents();
                if (view.interrupted())
                    return false;
            }
        }
        return true;
    }

    SecureDelete& m_owner;
    std::string m_shown;
    std::int64_t m_block = 0;
};

SecureDelete::SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems,
                           core::VerdictSink* verdicts)
    : SecureDelete(platform, view, problems, PatternRandom(), verdicts) {}

SecureDelete::SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems,
                           PatternRandom random, core::VerdictSink* verdicts)
    : m_view(view), m_engine(platform, verdicts, &problems),
      m_random(random) {}

std::string SecureDelete::passText(const Gutmann::Values& values) {
    // The first value shows the code of its own first decimal digit: the pass line's documented
    // form, which users compare against the Gutmann table.
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
    // Everything that makes the folder no target of a wipe is settled before the question, and so
    // before anything in it is touched.
    std::string why;
    auto target = m_engine.locate(folder, why);
    if (target)
        why = m_engine.treeRefusal(*target->parent, target->name);
    if (!why.empty()) {
        m_engine.report(core::Verdict::left(folder, why, true));
        return true;
    }
    if (!m_view.prompts().askYesNo(texts::WipeFolderPrefix + folder + texts::WipeFolderSuffix, core::MessageTitle,
                                   core::MsgStyle::YesNo | core::MsgStyle::Exclamation))
        return false;
    auto& parent = *target->parent;
    const auto entry = parent.entry(target->name);
    auto dir = entry ? parent.openFolder(target->name) : nullptr;
    if (!dir || !dir->self().sameFileAs(*entry)) {
        m_engine.report(core::Verdict::left(folder, "is no longer where it was; left alone", true));
        return true;
    }
    std::vector<std::string> own;
    dir->list([&](const platform::FileInfo& fi) {
        if (fi.isRegular)
            own.push_back(fi.name);
        return true;
    });
    std::vector<platform::FileInfo> left; // in use, or otherwise not to be destroyed: they stay
    for (const auto& name : own) {
        if (m_view.interrupted())
            return true; // the rest, and the folder, stay as they are
        const auto before = dir->entry(name);
        if (!wipeEntry(*dir, name) && before)
            left.push_back(*before);
    }
    // Subfolders go without being overwritten, and links are removed, never followed. The folder
    // itself is removed from its parent only while the name still means the folder wiped here.
    const auto now = parent.entry(target->name);
    if (!now || !now->sameFileAs(dir->self())) {
        m_engine.report(core::Verdict::left(folder, "cannot be deleted: it is no longer where it was", true));
        return true;
    }
    dir.reset();
    m_engine.removeTree(parent, target->name, [&left](const platform::FileInfo& fi) {
        return std::any_of(left.begin(), left.end(), [&fi](const platform::FileInfo& l) { return l.sameFileAs(fi); });
    });
    return true;
}

bool SecureDelete::WipeFile(const std::string& path) {
    std::string why;
    auto target = m_engine.locate(path, why);
    if (!target) {
        m_engine.report(core::Verdict::left(path, why));
        return false;
    }
    return wipeEntry(*target->parent, target->name);
}

bool SecureDelete::wipeEntry(platform::Folder& folder, const std::string& name) {
    Scheme scheme(*this);
    OverwriteOptions options;
    options.verify = m_verify;
    options.removeOthers = true; // a link in the list is an item of its own: it goes, its target stays
    return m_engine.overwrite(folder, name, scheme, options).removed;
}

} // namespace wipe
