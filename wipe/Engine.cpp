#include "wipe/Engine.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <filesystem>
#include <map>

namespace wipe {
namespace {

using platform::FileInfo;
using platform::Folder;
using platform::RawFile;
using Ranges = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

/// The digest a written range is compared by after its read-back: eight bytes a step, so that it
/// keeps pace with the writes and reads it watches. Each step is a bijection of the state, so a
/// range that differs in one word never digests the same. Bytes may come in pieces of any size.
class Digest {
public:
    void add(const unsigned char* bytes, std::size_t count) {
        while (m_carried > 0 && m_carried < sizeof m_carry && count > 0) {
            m_carry[m_carried++] = *bytes++;
            --count;
        }
        if (m_carried == sizeof m_carry) {
            step(m_carry);
            m_carried = 0;
        }
        for (; count >= sizeof m_carry; bytes += sizeof m_carry, count -= sizeof m_carry)
            step(bytes);
        if (count > 0) { // nothing is carried now: the carry was either filled up or never begun
            std::memcpy(m_carry, bytes, count);
            m_carried = count;
        }
    }
    std::uint64_t value() const {
        std::uint64_t hash = m_hash;
        for (std::size_t i = 0; i < m_carried; ++i)
            hash = (hash ^ m_carry[i]) * Prime;
        return (hash ^ m_carried) * Prime;
    }

private:
    static constexpr std::uint64_t Prime = 0x100000001b3ULL;
    void step(const unsigned char* word) {
        std::uint64_t w;
        std::memcpy(&w, word, sizeof w);
        m_hash = (m_hash ^ w) * Prime;
    }

    std::uint64_t m_hash = 0xcbf29ce484222325ULL;
    unsigned char m_carry[8] = {};
    std::size_t m_carried = 0;
};

std::uint64_t digestOf(const unsigned char* bytes, std::size_t count) {
    Digest digest;
    digest.add(bytes, count);
    return digest.value();
}

/// The data ranges of `file` inside its first `length` bytes.
Ranges dataWithin(const RawFile& file, std::uint64_t length) {
    Ranges inside;
    for (auto [start, size] : file.dataRanges())
        if (start < length)
            inside.emplace_back(start, std::min(size, length - start));
    return inside;
}

std::string errorText(platform::RawFiles& raw, int code) {
    const std::string text = raw.errorText(code);
    return text.empty() ? "error " + std::to_string(code) : text;
}

} // namespace

/// The pass writer over one open file: writes land only where the file holds data (or past its
/// first length, where a scheme lets the file grow), and the last pass's writes are remembered for
/// the read-back.
class Engine::FileWriter final : public PassWriter {
public:
    FileWriter(RawFile& file, platform::RawFiles& raw, std::uint64_t length, Ranges data)
        : m_file(file), m_raw(raw), m_length(length), m_end(length), m_data(std::move(data)) {}

    std::uint64_t length() const override { return m_end; }

    bool write(std::uint64_t offset, const void* data, std::size_t count) override {
        const auto* bytes = static_cast<const unsigned char*>(data);
        const std::uint64_t end = offset + count;
        // The pieces of [offset, end) that hold data, then whatever lies past the first length.
        for (auto range = firstEndingAfter(offset); range != m_data.end() && range->first < end; ++range) {
            const auto [start, size] = *range;
            const std::uint64_t from = std::max(offset, start), to = std::min(end, start + size);
            if (from < to && !put(from, bytes + (from - offset), to - from))
                return false;
        }
        if (end > m_length) {
            const std::uint64_t from = std::max(offset, m_length);
            return put(from, bytes + (from - offset), end - from);
        }
        return true;
    }

    std::uint64_t nextData(std::uint64_t offset) const override {
        const auto range = firstEndingAfter(offset);
        return range != m_data.end() ? std::max(offset, range->first) : std::max(offset, m_length);
    }

    void startFlush(std::uint64_t offset, std::uint64_t length) override {
        m_file.startFlush(static_cast<std::int64_t>(offset), static_cast<std::int64_t>(length));
    }

    void remember(bool on) {
        m_remember = on;
        m_last.clear();
    }
    std::uint64_t bytes() const { return m_bytes; }
    int error() const { return m_error; }
    /// The last pass's writes, each as {offset, length} with its digest; a later write at the same
    /// offset replaced an earlier one.
    void lastPass(Ranges& ranges, std::vector<std::uint64_t>& digests) const {
        for (const auto& [offset, written] : m_last) {
            ranges.emplace_back(offset, written.first);
            digests.push_back(written.second);
        }
    }

private:
    /// The first data range that ends after `offset`: a file of many extents is written in many
    /// pieces, and each finds its ranges without walking all that lie before it.
    Ranges::const_iterator firstEndingAfter(std::uint64_t offset) const {
        return std::upper_bound(m_data.begin(), m_data.end(), offset,
                                [](std::uint64_t at, const auto& range) { return at < range.first + range.second; });
    }

    bool put(std::uint64_t at, const unsigned char* bytes, std::uint64_t count) {
        if (m_file.seek(static_cast<std::int64_t>(at), RawFile::From::Begin) != static_cast<std::int64_t>(at) ||
            m_file.write(bytes, count) != count) {
            m_error = m_raw.lastError();
            return false;
        }
        m_bytes += count;
        m_end = std::max(m_end, at + count);
        if (m_remember)
            m_last[at] = {count, digestOf(bytes, count)};
        return true;
    }

    RawFile& m_file;
    platform::RawFiles& m_raw;
    std::uint64_t m_length; ///< at the start: holes are looked for only below it
    std::uint64_t m_end;    ///< now, the scheme's own writes past the start's end included
    Ranges m_data;
    std::uint64_t m_bytes = 0;
    int m_error = 0;
    bool m_remember = false;
    std::map<std::uint64_t, std::pair<std::uint64_t, std::uint64_t>> m_last;
};

Engine::Engine(platform::Platform& platform, core::VerdictSink* verdicts, core::ProblemSink* problems)
    : m_platform(platform), m_verdicts(verdicts), m_problems(problems) {}

std::string Engine::shown(const Folder& folder, const std::string& name) const {
    return m_platform.fileSystem().join(folder.path(), name);
}

void Engine::report(const core::Verdict& verdict) {
    if (m_verdicts)
        m_verdicts->record(verdict);
    if (verdict.problem && m_problems)
        m_problems->skipped(verdict.item, verdict.why);
}

std::optional<Engine::Target> Engine::locate(const std::string& path, std::string& why) {
    auto& files = m_platform.fileSystem();
    const char sep = files.separator();
    const auto isSep = [sep](char c) { return c == sep || c == '/'; };
    std::string text = path;
    while (text.size() > 1 && isSep(text.back()))
        text.pop_back();
    if (text.empty()) {
        why = "is empty";
        return std::nullopt;
    }
    // The root the walk starts from: "/", "C:\", "\\server\share\", or the working folder.
    std::string root;
    std::string rest = text;
    if (sep == '/' && text[0] == '/') {
        root = "/";
    } else if (sep == '\\' && text.size() >= 2 && text[1] == ':') {
        root = text.substr(0, 2) + "\\";
    } else if (sep == '\\' && text.size() >= 2 && isSep(text[0]) && isSep(text[1])) {
        std::size_t parts = 0, i = 2;
        for (; i < text.size() && parts < 2; ++i)
            if (isSep(text[i]))
                ++parts;
        root = text.substr(0, parts == 2 ? i : text.size());
        if (!root.empty() && !isSep(root.back()))
            root += '\\';
    }
    if (root.empty()) {
        std::error_code ec;
        const std::u8string current = std::filesystem::current_path(ec).u8string(); // UTF-8 on every system
        root.assign(current.begin(), current.end());
        if (ec) {
            why = "the working folder cannot be read";
            return std::nullopt;
        }
        rest = files.join(root, text);
        root = sep == '/' ? "/" : rest.substr(0, 3);
    }
    // The names after the root, "." dropped and ".." taking its folder away, as written.
    std::vector<std::string> names;
    for (std::size_t i = root.size(); i <= rest.size();) {
        std::size_t end = i;
        while (end < rest.size() && !isSep(rest[end]))
            ++end;
        const std::string name = rest.substr(i, end - i);
        if (name == "..") {
            if (!names.empty())
                names.pop_back();
        } else if (!name.empty() && name != ".") {
            names.push_back(name);
        }
        i = end + 1;
    }
    if (names.empty()) {
        why = "is the root of a filesystem";
        return std::nullopt;
    }
    auto folder = files.openFolder(root);
    std::string walked = root;
    for (std::size_t i = 0; folder && i + 1 < names.size(); ++i) {
        const auto entry = folder->entry(names[i]);
        walked = m_platform.fileSystem().join(walked, names[i]);
        if (entry && entry->isLink()) {
            why = "leads through the link " + walked + "; name the folder it points to instead";
            return std::nullopt;
        }
        folder = entry && entry->isDirectory() ? folder->openFolder(names[i]) : nullptr;
    }
    if (!folder) {
        why = "no such file or folder";
        return std::nullopt;
    }
    return Target{std::move(folder), names.back(), text};
}

core::Verdict Engine::remove(Folder& folder, const std::string& name, const std::string& whyNotOverwritten) {
    auto v = core::Verdict::about(shown(folder, name));
    const auto entry = folder.entry(name);
    if (entry && isMountPoint(folder, *entry)) {
        v.why = "is a mount point; left in place";
        v.problem = true;
    } else if (entry && entry->isDirectory() && !entry->isLink()) {
        v.why = "is a folder; left in place";
        v.problem = true;
    } else {
        v.removed = folder.removeFile(name);
        if (!v.removed && entry && entry->links == 1) {
            // Windows refuses to delete a read-only file; a file of one name may be made normal.
            folder.makeNormal(name);
            v.removed = folder.removeFile(name);
        }
        v.why = v.removed ? whyNotOverwritten : "cannot be deleted";
        v.problem = !v.removed || !whyNotOverwritten.empty();
    }
    report(v);
    return v;
}

bool Engine::removeEntry(Folder& folder, const std::string& name) {
    const auto entry = folder.entry(name);
    if (entry && entry->isDirectory() && !entry->isLink())
        return removeTree(folder, name);
    return remove(folder, name).removed;
}

namespace {

/// One pass of zeros: enough that the old bytes of a file about to be written anew are gone.
class ZeroPass final : public OverwriteScheme {
public:
    int passes() const override { return 1; }
    Pass writePass(int, PassWriter& out) override {
        static const std::vector<unsigned char> zeros(1 << 16);
        for (std::uint64_t at = out.nextData(0); at < out.length(); at = out.nextData(at)) {
            const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(out.length() - at, zeros.size()));
            if (!out.write(at, zeros.data(), n))
                return Pass::Failed;
            at += n;
        }
        return Pass::Written;
    }
};

} // namespace

bool Engine::rewrite(Folder& folder, const std::string& name, const std::string& content) {
    ZeroPass zeros;
    OverwriteOptions options;
    options.remove = false;
    options.replaceWith = content;
    return !overwrite(folder, name, zeros, options).problem;
}

core::Verdict Engine::overwrite(Folder& folder, const std::string& name, OverwriteScheme& scheme,
                                const OverwriteOptions& options) {
    auto& raw = m_platform.rawFiles();
    auto v = core::Verdict::about(shown(folder, name));
    const auto left = [&](const std::string& why, bool problem = true) {
        v.why = why;
        v.problem = problem;
        report(v);
        return v;
    };
    // Not written, and with `remove` the name goes all the same (the user asked for it gone).
    const auto notWritten = [&](const std::string& why) {
        if (!options.remove)
            return left(why + "; not overwritten");
        const auto gone = remove(folder, name, why + "; not overwritten, deleted all the same");
        return gone;
    };
    const auto entry = folder.entry(name);
    if (!entry)
        return left("does not exist", options.missingIsProblem);
    if (options.ownOnly && !entry->ownedByUser)
        return left("belongs to another user; left alone", false);
    if (entry->isDirectory() && !entry->isLink())
        return left("is a folder");
    if (isMountPoint(folder, *entry))
        return left("is a mount point; left in place");
    if (!entry->isRegular) {
        if (options.remove && options.removeOthers)
            return remove(folder, name);
        return left(entry->isLink() ? "is a link; left alone" : "is not a plain file; left alone");
    }
    if (entry->links > 1)
        return notWritten("has other hard links, which would lose their contents too");

    using Refusal = Folder::Refusal;
    auto why = Refusal::None;
    auto file = folder.openForOverwrite(name, why);
    switch (file ? Refusal::None : why) {
    case Refusal::None:
        break;
    case Refusal::InUse:
        return left("is open or mapped in a running program; left alone");
    case Refusal::OtherNames:
        return notWritten("has other hard links, which would lose their contents too");
    case Refusal::MountPoint:
        return left("is a mount point; left in place");
    case Refusal::NotAFile:
        return left("was replaced during the run; left alone");
    case Refusal::CannotOpen:
        return notWritten("cannot be opened for writing: " + errorText(raw, raw.lastError()));
    }
    const auto held = file->info();
    if (!held || !held->sameFileAs(*entry))
        return left("was replaced during the run; left alone");

    // The file's other streams first, with the same passes: they hold its bytes too, and go with
    // its name.
    std::string streamsVerify;
    if (options.remove) {
        for (const std::string& stream : folder.extraStreams(name)) {
            const auto done = overwriteStream(folder, name, stream, *held, scheme, options.verify);
            v.bytes += done.bytes;
            if (done.outcome == Passes::Outcome::Stopped) {
                cutAndDelete(folder, name, std::move(file), *held);
                v.removed = !folder.entry(name);
                return left("stopped while its stream " + stream + " was overwritten; not overwritten" +
                            (v.removed ? ", deleted all the same" : ""));
            }
            if (done.outcome == Passes::Outcome::Failed) {
                file.reset();
                return notWritten("its stream " + stream + " " + done.why);
            }
            v.streams += done.bytes > 0;
            if (streamsVerify.empty())
                streamsVerify = done.verifyProblem;
        }
    }

    scheme.starting(v.item);
    FileWriter writer(*file, raw, held->size, dataWithin(*file, held->size));
    const std::uint64_t streamBytes = v.bytes;
    const auto passes = writePasses(*file, writer, scheme, options.verify);
    v.bytes = streamBytes + writer.bytes();
    // A file written in place stays its owner's file: the marks cleared to write it come back.
    const auto keepMarks = [&] {
        if (!options.remove && (entry->attributes & (platform::Attr::ReadOnly | platform::Attr::Hidden | platform::Attr::System))) {
            file.reset();
            folder.setMarks(name, entry->attributes);
        }
    };
    if (passes.outcome == Passes::Outcome::Stopped) {
        const std::string stopped = "stopped before pass " + std::to_string(passes.pass) + " was complete";
        if (!options.remove) {
            keepMarks();
            return left(stopped + "; partly overwritten");
        }
        cutAndDelete(folder, name, std::move(file), *held);
        v.removed = !folder.entry(name);
        return left(stopped + "; not overwritten" + (v.removed ? ", deleted all the same" : ""));
    }
    if (passes.outcome == Passes::Outcome::Failed) {
        file.reset();
        keepMarks();
        return notWritten(passes.why);
    }
    v.overwritten = v.bytes > 0;
    if (!v.overwritten)
        v.why = held->size == 0 ? "is empty: nothing to overwrite" : "too short to be overwritten";
    if (options.verify && v.overwritten) {
        Ranges ranges;
        std::vector<std::uint64_t> digests;
        writer.lastPass(ranges, digests);
        v = verify(*file, ranges, digests, v);
    }
    if (!streamsVerify.empty() && v.overwritten) {
        v.verified = false;
        v.why = streamsVerify;
        v.problem = true;
    }
    if (options.replaceWith && !options.remove) {
        const std::string& bytes = *options.replaceWith;
        const bool written = file->seek(0, RawFile::From::Begin) == 0 && file->truncate() &&
                             file->write(bytes.data(), bytes.size()) == bytes.size() && file->flush();
        if (!written) {
            v.why = "was overwritten but its new content could not be written: " + errorText(raw, raw.lastError());
            v.problem = true;
        }
    }
    keepMarks();
    if (options.remove) {
        v.removed = cutAndDelete(folder, name, std::move(file), *held);
        if (!v.removed) {
            v.why = "was overwritten but cannot be deleted";
            v.problem = true;
        }
    }
    report(v);
    return v;
}

Engine::Passes Engine::writePasses(RawFile& file, FileWriter& writer, OverwriteScheme& scheme, bool verify) {
    auto& raw = m_platform.rawFiles();
    Passes done;
    const int passes = writer.length() == 0 ? 0 : scheme.passes(); // nothing in it to overwrite
    for (int pass = 1; pass <= passes; ++pass) {
        done.pass = pass;
        writer.remember(verify && pass == passes);
        const auto result = scheme.writePass(pass, writer);
        done.bytes = writer.bytes();
        if (result == OverwriteScheme::Pass::Stopped) {
            done.outcome = Passes::Outcome::Stopped;
            return done;
        }
        if (result == OverwriteScheme::Pass::Failed) {
            done.outcome = Passes::Outcome::Failed;
            done.why = "pass " + std::to_string(pass) + " could not be written: " + errorText(raw, writer.error());
            return done;
        }
        // Each pass reaches the device before the next one writes over it.
        if (!file.flush()) {
            done.outcome = Passes::Outcome::Failed;
            done.why = "pass " + std::to_string(pass) + " did not reach the device: " + errorText(raw, raw.lastError());
            return done;
        }
    }
    return done;
}

Engine::Passes Engine::overwriteStream(Folder& folder, const std::string& name, const std::string& stream,
                                       const FileInfo& held, OverwriteScheme& scheme, bool verify) {
    auto& raw = m_platform.rawFiles();
    Passes done;
    auto file = folder.openStream(name, stream);
    const auto facts = file ? file->info() : std::nullopt;
    if (!facts || !facts->sameFileAs(held)) {
        const int code = file ? 0 : raw.lastError();
        done.outcome = Passes::Outcome::Failed;
        done.why = file ? "belongs to another file now" : "cannot be opened for writing: " + errorText(raw, code);
        return done;
    }
    scheme.starting(shown(folder, name) + ":" + stream);
    FileWriter writer(*file, raw, facts->size, dataWithin(*file, facts->size));
    done = writePasses(*file, writer, scheme, verify);
    if (done.outcome != Passes::Outcome::Written)
        return done;
    if (verify && writer.bytes() > 0) {
        Ranges ranges;
        std::vector<std::uint64_t> digests;
        writer.lastPass(ranges, digests);
        const auto checked = this->verify(*file, ranges, digests, core::Verdict{});
        if (!checked.verified)
            done.verifyProblem = "its stream " + stream + " " + checked.why;
    }
    // Cut, so that the stream's blocks are free before the file's name goes.
    file->seek(0, RawFile::From::Begin);
    file->truncate();
    return done;
}

core::Verdict Engine::verify(RawFile& file, const Ranges& ranges, const std::vector<std::uint64_t>& digests,
                             core::Verdict v) {
    auto reader = file.openUncached();
    if (!reader) {
        v.why = "could not be read back past the system's cache to verify";
        v.problem = true;
        return v;
    }
    const std::size_t align = std::max<std::size_t>(reader->readAlignment(), 1);
    const std::size_t chunk = std::max<std::size_t>(align, std::size_t{1} << 20) / align * align;
    const auto release = [align](unsigned char* p) { ::operator delete(p, std::align_val_t(align)); };
    const std::unique_ptr<unsigned char, decltype(release)> buffer(
        static_cast<unsigned char*>(::operator new(chunk, std::align_val_t(align))), release);
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const auto [offset, length] = ranges[i];
        Digest digest;
        std::uint64_t at = offset / align * align;
        const std::uint64_t end = offset + length;
        bool complete = true;
        while (at < end) {
            const std::size_t want = static_cast<std::size_t>(std::min<std::uint64_t>(chunk, (end - at + align - 1) / align * align));
            if (reader->seek(static_cast<std::int64_t>(at), RawFile::From::Begin) != static_cast<std::int64_t>(at)) {
                complete = false;
                break;
            }
            const std::size_t got = reader->read(buffer.get(), want);
            const std::uint64_t from = std::max(at, offset), to = std::min<std::uint64_t>(end, at + got);
            if (to <= from) {
                complete = false;
                break;
            }
            digest.add(buffer.get() + (from - at), static_cast<std::size_t>(to - from));
            at += got;
            if (got < want && at < end) {
                complete = false;
                break;
            }
        }
        if (!complete || digest.value() != digests[i]) {
            v.why = "verify: the device holds other bytes than the last pass wrote in the block at offset " +
                    std::to_string(offset);
            v.problem = true;
            return v;
        }
    }
    v.verified = true;
    return v;
}

bool Engine::cutAndDelete(Folder& folder, const std::string& name, std::unique_ptr<RawFile> file, const FileInfo& held) {
    // Removed only while the name still means the file written; cut first, so that whatever still
    // holds the name's old blocks finds none.
    const auto now = folder.entry(name);
    if (!now || !now->sameFileAs(held))
        return false;
    file->seek(0, RawFile::From::Begin);
    file->truncate();
    file.reset(); // Windows deletes no file that is still open without delete sharing
    return folder.removeFile(name);
}

bool Engine::removeOwnFile(Folder& folder, const std::string& name, const FileInfo& expected) {
    const auto now = folder.entry(name);
    if (!now)
        return true;
    bool gone = false;
    if (now->sameFileAs(expected) && now->isRegular) {
        if (auto file = folder.openFile(name, false)) {
            if (const auto held = file->info(); held && held->sameFileAs(expected))
                gone = cutAndDelete(folder, name, std::move(file), *held);
        } else {
            gone = folder.removeFile(name); // held by nobody else, yet not to be opened: the name goes
        }
    }
    if (!gone)
        report(core::Verdict::left(shown(folder, name), now->sameFileAs(expected) ? "cannot be deleted" : "is no longer the file this run made; left alone"));
    return gone;
}

std::string Engine::treeRefusal(Folder& parent, const std::string& name) {
    const auto entry = parent.entry(name);
    if (!entry)
        return "does not exist";
    if (entry->isLink())
        return "is a symbolic link; links are never followed";
    if (!entry->isDirectory())
        return "is not a folder";
    if (isMountPoint(parent, *entry))
        return "is a mount point (a filesystem or a bind mount); refused";
    if (parent.self().sameFileAs(*entry))
        return "is the root of a filesystem; refused";
    return {};
}

bool Engine::removeEmptyFolder(Folder& parent, const std::string& name) {
    auto v = core::Verdict::about(shown(parent, name), true);
    v.removed = parent.removeFolder(name);
    if (!v.removed) {
        v.why = "cannot be deleted";
        v.problem = true;
    }
    report(v);
    return v.removed;
}

bool Engine::removeTree(Folder& parent, const std::string& name, const std::function<bool(const FileInfo&)>& keep) {
    const std::string refusal = treeRefusal(parent, name);
    if (!refusal.empty()) {
        report(core::Verdict::left(shown(parent, name), refusal, true));
        return false;
    }
    const auto entry = parent.entry(name);
    parent.makeNormal(name); // a read-only folder would refuse the removal of its entries
    auto dir = parent.openFolder(name);
    if (!dir || !dir->self().sameFileAs(*entry)) {
        report(core::Verdict::left(shown(parent, name), "cannot be opened", true));
        return false;
    }
    const bool emptied = removeBelow(*dir, keep);
    dir.reset();
    if (!emptied)
        return false; // what stays was named; the folders holding it stay with it
    return removeEmptyFolder(parent, name);
}

bool Engine::removeBelow(Folder& dir, const std::function<bool(const FileInfo&)>& keep) {
    std::vector<FileInfo> entries;
    // Collected first: removing entries while the folder is being read may skip some.
    if (!dir.list([&](const FileInfo& fi) {
            entries.push_back(fi);
            return true;
        })) {
        report(core::Verdict::left(dir.path(), "cannot be listed", true));
        return false;
    }
    bool all = true;
    for (const auto& entry : entries) {
        if (isMountPoint(dir, entry)) {
            report(core::Verdict::left(shown(dir, entry.name), "is a mount point; left in place", entry.isDirectory()));
            all = false;
        } else if (entry.isDirectory() && !entry.isLink()) {
            all = removeTree(dir, entry.name, keep) && all;
        } else if (keep && keep(entry)) {
            all = false; // already named by whoever keeps it
        } else {
            all = remove(dir, entry.name).removed && all;
        }
    }
    return all;
}

std::int64_t readBackDifference(RawFile& file, std::uint64_t length, const Expected& expected) {
    auto reader = file.openUncached();
    if (!reader)
        return -2;
    const std::size_t align = std::max<std::size_t>(reader->readAlignment(), 1);
    // Large reads keep the device streaming; the comparison of each stays in memory's pace.
    const std::size_t chunk = std::max<std::size_t>(align, std::size_t{4} << 20) / align * align;
    const auto release = [align](unsigned char* p) { ::operator delete(p, std::align_val_t(align)); };
    const std::unique_ptr<unsigned char, decltype(release)> buffer(
        static_cast<unsigned char*>(::operator new(chunk, std::align_val_t(align))), release);
    std::vector<unsigned char> want(chunk);
    if (reader->seek(0, RawFile::From::Begin) != 0)
        return -2;
    for (std::uint64_t at = 0; at < length;) {
        const std::size_t got = reader->read(buffer.get(), chunk);
        const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(got, length - at));
        if (n == 0)
            return static_cast<std::int64_t>(at); // shorter on the device than it was written
        expected(at, want.data(), n);
        // The whole chunk at memory speed; byte by byte only to name where it differs.
        if (std::memcmp(buffer.get(), want.data(), n) != 0) {
            const auto diff = std::mismatch(buffer.get(), buffer.get() + n, want.begin());
            return static_cast<std::int64_t>(at + static_cast<std::uint64_t>(diff.first - buffer.get()));
        }
        at += n;
    }
    return -1;
}

std::pair<std::string, std::string> splitPath(const platform::FileSystem& files, const std::string& path) {
    std::string p = path;
    const char sep = files.separator();
    while (p.size() > 1 && p.back() == sep)
        p.pop_back();
    const auto cut = p.rfind(sep);
    if (cut == std::string::npos)
        return {".", p};
    return {cut == 0 ? p.substr(0, 1) : p.substr(0, cut), p.substr(cut + 1)};
}

bool isMountPoint(const Folder& folder, const FileInfo& entry) {
    return entry.mount != folder.self().mount;
}

} // namespace wipe
