#include "indexdat/ActivityWipe.h"

#include "core/ProblemSink.h"
#include "core/Rounding.h"
#include "platform/Platform.h"

#include <array>
#include <vector>

namespace indexdat {
namespace {

constexpr std::size_t BlockSize = 1024;
constexpr int Rounds = 11;
constexpr int PassesPerRound = 3;

/// One pass's block as it is written: for the tagged passes, type 8 and length 1024 (both
/// little-endian) before the bytes.
std::vector<unsigned char> passBlock(unsigned char value, bool tagged) {
    std::vector<unsigned char> block(BlockSize + (tagged ? 4 : 0), value);
    if (tagged) {
        block[0] = 0x08;
        block[1] = 0x00;
        block[2] = 0x00;
        block[3] = 0x04;
    }
    return block;
}

void tell(core::ProblemSink* problems, const std::string& path, const std::string& reason) {
    if (problems)
        problems->skipped(path, reason);
}

std::string lastErrorText(platform::RawFiles& raw) {
    const std::string text = raw.errorText(raw.lastError());
    return text.empty() ? "cannot be opened" : text;
}

} // namespace

std::int64_t blockCount(std::uint64_t length) {
    return core::roundHalfEven(static_cast<double>(length) / BlockSize);
}

std::uint64_t lengthAfterWipe(std::uint64_t length) {
    const std::int64_t blocks = blockCount(length);
    return blocks == 0 ? length : BlockSize * (blocks + 1) + 4;
}

void WipeFileContents(platform::Platform& platform, const std::string& path, const WipeProgress& progress,
                      core::ProblemSink* problems) {
    platform::FileSystem& files = platform.fileSystem();
    const auto info = files.info(path);
    if (!info) {
        tell(problems, path, "not found");
        return;
    }
    if (!info->isRegular) {
        tell(problems, path, "not a regular file; left alone");
        return;
    }
    // A file another program holds (the browser, running) keeps everything it has, as it always
    // did where the browser's open locks the file: asked once before anything changes, and again
    // each round, through this program's own handle.
    if (const auto probe = platform.rawFiles().openForReading(path); probe && probe->openElsewhere()) {
        tell(problems, path, "is open in another program; left unchanged");
        return;
    }
    const std::int64_t blocks = blockCount(info->size);
    if (!files.makeNormal(path))
        tell(problems, path, "attributes could not be cleared");
    if (blocks == 0)
        return; // shorter than 513 bytes: nothing behind the kept header to overwrite

    const std::array<std::vector<unsigned char>, PassesPerRound> passes = {
        passBlock(0x55, true), passBlock(0x20, true), passBlock(0x20, false)};
    const double steps = static_cast<double>(Rounds) * PassesPerRound * blocks;
    double done = 0;
    bool failed = false;
    for (int round = 0; round < Rounds; ++round) {
        auto file = platform.rawFiles().open(path);
        if (!file) {
            if (!failed)
                tell(problems, path, lastErrorText(platform.rawFiles()));
            failed = true;
        } else if (const auto held = file->info(); !held || !held->sameFileAs(*info)) {
            tell(problems, path, "was replaced by another file during the overwrite; left alone");
            return;
        } else if (file->openElsewhere()) {
            tell(problems, path, "was opened by another program during the overwrite; stopped");
            return;
        }
        for (const auto& block : passes) {
            for (std::int64_t k = 1; file && k <= blocks; ++k) {
                const auto at = static_cast<std::int64_t>(BlockSize) * k;
                if ((file->seek(at, platform::RawFile::From::Begin) != at ||
                     file->write(block.data(), block.size()) != block.size()) &&
                    !failed) {
                    tell(problems, path, "write failed: " + lastErrorText(platform.rawFiles()));
                    failed = true;
                }
                progress(++done / steps);
            }
            if (file && !file->flush() && !failed) {
                tell(problems, path, "could not be flushed to the device");
                failed = true;
            }
        }
        file.reset();
        done = static_cast<double>(round + 1) * PassesPerRound * blocks;
        progress(done / steps);
    }
}

} // namespace indexdat
