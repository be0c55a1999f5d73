#include "wipe/FreeSpaceWipe.h"

#include "core/NumberFormat.h"
#include "core/Rounding.h"
#include "wipe/Gutmann.h"
#include "wipe/Random.h"
#include "wipe/Engine.h"
#include "wipe/WipeTexts.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <thread>
#include <algorithm>
#include <span>

namespace wipe {
namespace {

constexpr std::int64_t TwoTo31 = std::int64_t{1} << 31;
constexpr std::int64_t TwoTo32 = std::int64_t{1} << 32;

core::Currency bytes(std::int64_t whole) {
    return core::Currency::fromWhole(whole);
}

/// Seconds with at most two decimals and no trailing zeros: "3", "2.5", "0.01".
std::string secondsText(double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", seconds);
    std::string s = text;
    while (s.back() == '0')
        s.pop_back();
    if (s.back() == '.')
        s.pop_back();
    return s;
}

/// Writes `bytes` at `position` of the file. False when the file took fewer of them (a full drive).
bool writeAt(Random& file, std::int64_t position, std::span<const std::uint8_t> bytes) {
    file.SeekAbsolute(static_cast<std::int32_t>(position >> 32),
                      static_cast<std::int32_t>(static_cast<std::uint32_t>(position)));
    return file.Raw().write(bytes.data(), bytes.size()) == bytes.size();
}

} // namespace

core::Currency FreeSpaceWipe::fixedIncrement() {
    return bytes(2147483648LL / 1024);
}

core::Currency FreeSpaceWipe::removableIncrement() {
    return core::Currency::fromRaw(1457664LL * core::Currency::Scale / 1024);
}

FreeSpaceWipe::FreeSpaceWipe(platform::Platform& platform, FreeSpaceView& view, core::ProblemSink& problems)
    : m_platform(platform), m_view(view), m_problems(problems) {}

std::string FreeSpaceWipe::tempPath(const std::string& dir) const {
    return m_platform.fileSystem().join(dir, texts::TempFileName);
}

core::Currency FreeSpaceWipe::freeSpace(const std::string& dir) {
    platform::DiskSpace space;
    if (!m_platform.drives().space(dir, space))
        return {};
    return core::Currency::fromCount(space.freeToCaller);
}

core::Currency FreeSpaceWipe::freeSpace(const platform::Folder& folder) {
    platform::DiskSpace space;
    if (!m_platform.drives().spaceOf(folder, space))
        return {};
    return core::Currency::fromCount(space.freeToCaller);
}

FreeSpaceWipe::Outcome FreeSpaceWipe::wipeFixed(const std::string& dir) {
    return start(dir, false);
}

FreeSpaceWipe::Outcome FreeSpaceWipe::wipeRemovable(const std::string& dir) {
    return start(dir, true);
}

bool FreeSpaceWipe::accepts(const std::string& dir, const platform::Folder* folder, bool removable) {
    auto& drives = m_platform.drives();
    // Without an open folder the path only chooses the message: nothing is written then, and a
    // removable drive whose folder cannot be opened has no medium in it.
    const platform::DriveType type = folder ? drives.typeOf(*folder) : drives.type(dir);
    if (folder && type != platform::DriveType::Fixed && type != platform::DriveType::Removable &&
        type != platform::DriveType::NoRootDir) {
        // Neither kind of drive: the filesystem's type says more than the drive kind asked for.
        const std::string fileSystem = drives.fileSystemOf(*folder);
        if (!fileSystem.empty()) {
            m_view.prompts().tell(texts::driveNotWritten(dir, fileSystem), core::MessageTitle, core::MsgStyle::OkOnly);
            return false;
        }
    }
    if (!removable && type != platform::DriveType::Fixed) {
        m_view.prompts().tell(texts::NotFixed, core::MessageTitle, core::MsgStyle::OkOnly);
        return false;
    }
    if (removable && type != platform::DriveType::Removable) {
        m_view.prompts().tell(texts::NotRemovable, core::MessageTitle, core::MsgStyle::OkOnly);
        return false;
    }
    if (removable && !folder) {
        m_view.prompts().tell(texts::InsertDisk, core::MessageTitle, core::MsgStyle::OkOnly);
        return false;
    }
    return true;
}

bool FreeSpaceWipe::tempNameFree(platform::Folder* folder, const std::string& dir) {
    if (!folder || !folder->entry(texts::TempFileName))
        return true;
    m_view.prompts().tell(texts::tempNameTaken(tempPath(dir)), core::MessageTitle, core::MsgStyle::OkOnly);
    return false;
}

FreeSpaceWipe::Outcome FreeSpaceWipe::start(const std::string& dir, bool removable) {
    const auto folder = m_platform.fileSystem().openFolder(dir);
    if (!accepts(dir, folder.get(), removable) || !tempNameFree(folder.get(), dir))
        return Outcome::Refused;
    m_view.setWipeEnabled(false);
    const core::Currency free = folder ? freeSpace(*folder) : core::Currency{};
    m_view.freeSpaceMeasured(free);
    return run(folder.get(), dir, free, removable ? removableIncrement() : fixedIncrement());
}

FreeSpaceWipe::Outcome FreeSpaceWipe::run(const std::string& dir, core::Currency freeBytes, core::Currency increment) {
    const auto folder = m_platform.fileSystem().openFolder(dir);
    return run(folder.get(), dir, freeBytes, increment);
}

FreeSpaceWipe::Outcome FreeSpaceWipe::run(platform::Folder* folder, const std::string& dir, core::Currency freeBytes,
                                          core::Currency increment) {
    const std::string path = tempPath(dir);
    Engine engine(m_platform, nullptr, &m_problems);
    Random file(m_platform.rawFiles());
    std::optional<platform::FileInfo> made; // the temporary file of this pass, the only one to remove
    const auto removeTemp = [&] {
        if (folder && made)
            engine.removeOwnFile(*folder, texts::TempFileName, *made);
        made.reset();
    };
    const auto flushPass = [&](int pass) {
        if (!file.Flush())
            m_problems.skipped(path, "pass " + std::to_string(pass) + " did not reach the device");
    };
    // A file of that name is someone's: the user kept it when asked, or it came since. Every pass
    // creates its file exclusively, so it could never be written anyway; say why now.
    if (!tempNameFree(folder, dir)) {
        m_view.setWipeEnabled(true);
        return Outcome::Refused;
    }
    m_running = true;
    m_verified = false;
    m_view.setWipeEnabled(false);
    try {
        const double quotient = static_cast<double>(freeBytes.raw()) / static_cast<double>(increment.raw());
        const std::int64_t count = core::Currency::fromRaw(core::roundHalfEven(quotient * core::Currency::Scale)).rounded();
        const std::int64_t steps = core::roundHalfEven(quotient);
        const auto chars = static_cast<std::size_t>(core::roundHalfEven(increment.toDouble()));

        for (int pass = 1; pass <= Gutmann::PassCount; ++pass) {
            m_view.passStarted(pass, increment);
            file.OpenFile(path, folder, texts::TempFileName);
            made = file.Info();
            if (Gutmann::isRandom(pass)) {
                // The two halves of the table are seeded differently on purpose.
                const double t = PatternRandom::secondsSinceMidnight();
                m_random.reseed(pass <= 4 ? std::sin(t) : std::tan(t));
            }
            const Gutmann::Values values = Gutmann::values(pass, m_random);
            // Block 2 is always covered again before it is sent to the device (see below): only
            // blocks 1 and 3 are ever written.
            const auto block1 = Gutmann::wideBlock(values[0], chars);
            const auto block3 = Gutmann::wideBlock(values[2], chars);

            FreeSpaceProgress now{pass, increment, 0, count, {}, {}, 0};
            std::vector<Write> writes; // the last pass's writes, in order, for its read-back
            std::int64_t at = 0;       // where the increment before this one began
            bool full = false;         // whether the drive has taken all it can
            for (std::int64_t i = 1; i <= steps; ++i) {
                // The seek halves come from the 64-bit position itself; for the fixed increment that
                // is exactly what the offset and high-half bookkeeping below amounts to, and it stays
                // right for the removable increment past 2 GiB, where the offset no longer fits.
                const std::int64_t position = core::roundHalfEven(now.wiped.toDouble());
                // An increment lays block 1 where the one before began and blocks 2 and 3 at its own
                // start, where the next increment's block 1 lands again before any of it is sent to
                // the device. So of block 1 only the part before this increment's start stays, and
                // of block 3 only what the last increment lays: those alone are written, each byte
                // of the pass once, rather than three blocks twice the increment wide.
                const auto kept = static_cast<std::size_t>(
                    std::min<std::int64_t>(position - at, static_cast<std::int64_t>(block1.size())));
                const auto write = [&](std::int64_t start, std::size_t length, const std::vector<std::uint8_t>& block) {
                    // A write that comes back short has met the end of the free space: the ones
                    // after it in the pass would only fail, each after the filesystem has looked
                    // for room once more.
                    if (length == 0 || full)
                        return;
                    full = !writeAt(file, start, std::span(block).first(length));
                    if (m_verify && pass == Gutmann::PassCount)
                        writes.push_back({start, length, &block});
                };
                write(at, kept, block1);
                if (i == steps)
                    write(position, block3.size(), block3);
                // Nothing later in the pass writes before this increment's start again: what lies
                // before it can go to the device while the run goes on.
                if (position > at)
                    file.StartFlush(at, position - at);
                at = position;
                m_view.pumpEvents();

                now.offset = now.offset + increment;
                now.wiped = now.wiped + increment;
                now.index = i;
                m_view.progress(now);
                if (now.offset == bytes(TwoTo31))
                    now.offset = bytes(-TwoTo31);
                if (now.wiped == bytes(TwoTo32))
                    now.high = 1;
                else if (now.wiped == bytes((std::int64_t{now.high} + 1) * TwoTo32))
                    ++now.high;

                const bool interrupted = m_view.interrupted();
                if (interrupted || (m_view.exitRequested() && exitConfirmed())) {
                    flushPass(pass);
                    file.CloseFile();
                    removeTemp();
                    m_view.setWipeEnabled(true);
                    m_view.setExitRequested(false);
                    m_running = false;
                    if (!interrupted) // whoever interrupted is leaving, not waiting for a message
                        m_view.prompts().tell(texts::MayExit, core::MessageTitle, core::MsgStyle::OkOnly);
                    return Outcome::Exited;
                }
                if (m_view.pauseRequested())
                    pause();
            }
            flushPass(pass); // the pass must be on the device before its file is released
            if (m_verify && pass == Gutmann::PassCount)
                verifyLastPass(file.Raw(), path, writes);
            file.CloseFile();
            removeTemp();
        }
    } catch (...) {
        if (file.IsOpen())
            file.CloseFile();
        removeTemp();
        m_view.setWipeEnabled(true);
        m_running = false;
        throw;
    }
    m_running = false;
    return Outcome::Completed;
}

void FreeSpaceWipe::verifyLastPass(platform::RawFile& file, const std::string& path, const std::vector<Write>& pieces) {
    // What the file holds: the pass's writes, which follow each other without overlapping, with
    // nothing (zeros) in any gap between two of them.
    // A full drive cuts the last writes short: what the pass wrote is what the file came to hold.
    const auto held = file.info();
    const auto length = std::min<std::uint64_t>(static_cast<std::uint64_t>(pieces.empty() ? 0 : pieces.back().end()),
                                                held ? held->size : 0);
    const Expected expected = [&pieces](std::uint64_t offset, unsigned char* out, std::size_t count) {
        auto piece = std::upper_bound(pieces.begin(), pieces.end(), static_cast<std::int64_t>(offset),
                                      [](std::int64_t at, const Write& p) { return at < p.start; });
        // Each piece's stretch of the chunk is one run of its block's bytes.
        for (std::size_t i = 0; i < count;) {
            const auto at = static_cast<std::int64_t>(offset + i);
            while (piece != pieces.end() && at >= piece->start)
                ++piece;
            const Write& p = *(piece - 1);
            const bool inside = at < p.end();
            // Up to the piece's end, or across a gap no write reached up to the next piece.
            const std::int64_t until = inside ? p.end() : piece != pieces.end() ? piece->start : at + 1;
            const auto run = static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(count - i), until - at));
            if (inside)
                std::memcpy(out + i, p.block->data() + (at - p.start), run);
            else
                std::memset(out + i, 0, run);
            i += run;
        }
    };
    const std::int64_t differs = readBackDifference(file, length, expected);
    m_verified = differs == -1;
    if (m_verified) {
        m_verifyOutcome = "The last pass was read back from the drive: all " + core::formatGrouped(static_cast<std::int64_t>(length)) +
                          " bytes are as written.";
        return;
    }
    m_verifyOutcome = differs == -2 ? "could not be read back past the system's cache to verify"
                                    : "verify: the device holds other bytes than the last pass wrote at offset " +
                                          std::to_string(differs);
    m_problems.skipped(path, m_verifyOutcome);
    m_verifyOutcome = path + ": " + m_verifyOutcome;
}

bool FreeSpaceWipe::exitConfirmed() {
    if (m_view.prompts().askYesNo(texts::ConfirmExit, core::MessageTitle, core::MsgStyle::YesNo))
        return true;
    m_view.setExitRequested(false);
    return false;
}

void FreeSpaceWipe::pause() {
    const double start = PatternRandom::secondsSinceMidnight();
    double now = start;
    while (now < start + 500000) {
        m_view.pumpEvents();
        if (!m_view.pauseRequested() || m_view.interrupted())
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // no busy loop while paused
        now = PatternRandom::secondsSinceMidnight();
    }
    now = PatternRandom::secondsSinceMidnight();
    m_view.prompts().tell(texts::PausedFor + secondsText(now - start) + texts::Seconds, core::MessageTitle,
                          core::MsgStyle::OkOnly);
}

bool FreeSpaceWipe::requestQuit(bool wipeEnabled) {
    if (wipeEnabled)
        return true;
    if (!m_view.prompts().askYesNo(texts::StillRunning, core::MessageTitle, core::MsgStyle::YesNo))
        return false;
    m_view.setExitRequested(true);
    return !m_running;
}

bool FreeSpaceWipe::offerStaleRemoval(const std::string& dir) {
    const std::string path = tempPath(dir);
    const auto folder = m_platform.fileSystem().openFolder(dir);
    const auto info = folder ? folder->entry(texts::TempFileName) : std::nullopt;
    if (!info)
        return false;
    if (info->isRegular && !folder->openFile(texts::TempFileName, false))
        return false; // held open (a wipe is running on it right now), or not ours to cut
    if (!m_view.prompts().askYesNo(texts::staleTempFile(path, core::formatGrouped(static_cast<std::int64_t>(info->size))),
                                   core::MessageTitle, core::MsgStyle::YesNo | core::MsgStyle::Question))
        return false;
    return Engine(m_platform, nullptr, &m_problems).removeOwnFile(*folder, texts::TempFileName, *info);
}

} // namespace wipe
