#include "indexdat/ActivityWipe.h"

#include "core/ProblemSink.h"
#include "core/Rounding.h"
#include "platform/Platform.h"
#include "wipe/Engine.h"

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

/// Eleven rounds of the three passes, each pass one of the engine's, so that each reaches the
/// device before the next.
class ActivityScheme final : public wipe::OverwriteScheme {
public:
    ActivityScheme(std::int64_t blocks, const WipeProgress& progress)
        : m_blocks(blocks), m_progress(progress),
          m_passes{passBlock(0x55, true), passBlock(0x20, true), passBlock(0x20, false)} {}

    int passes() const override { return Rounds * PassesPerRound; }

    Pass writePass(int pass, wipe::PassWriter& out) override {
        const auto& block = m_passes[static_cast<std::size_t>((pass - 1) % PassesPerRound)];
        const double steps = static_cast<double>(Rounds) * PassesPerRound * static_cast<double>(m_blocks);
        const double before = static_cast<double>(pass - 1) * static_cast<double>(m_blocks);
        for (std::int64_t k = 1; k <= m_blocks; ++k) {
            // A block lying wholly in a hole of a sparse file is passed over: nothing is there.
            const std::uint64_t at = BlockSize * static_cast<std::uint64_t>(k);
            const std::uint64_t next = out.nextData(at);
            if (next >= at + block.size()) {
                k = std::max(k, static_cast<std::int64_t>(next / BlockSize)) - 1;
                continue;
            }
            if (!out.write(at, block.data(), block.size()))
                return Pass::Failed;
            if (!m_progress((before + static_cast<double>(k)) / steps))
                return Pass::Stopped;
        }
        return m_progress(static_cast<double>(pass) * static_cast<double>(m_blocks) / steps) ? Pass::Written
                                                                                            : Pass::Stopped;
    }

private:
    std::int64_t m_blocks;
    const WipeProgress& m_progress;
    std::array<std::vector<unsigned char>, PassesPerRound> m_passes;
};

} // namespace

std::int64_t blockCount(std::uint64_t length) {
    return core::roundHalfEven(static_cast<double>(length) / BlockSize);
}

std::uint64_t lengthAfterWipe(std::uint64_t length) {
    const std::int64_t blocks = blockCount(length);
    return blocks == 0 ? length : BlockSize * (blocks + 1) + 4;
}

void WipeFileContents(platform::Platform& platform, const std::string& path, const WipeProgress& progress,
                      core::ProblemSink* problems, core::VerdictSink* verdicts) {
    wipe::Engine engine(platform, verdicts, problems);
    std::string why;
    auto target = engine.locate(path, why);
    const auto info = target ? target->parent->entry(target->name) : std::nullopt;
    if (!info) {
        engine.report(core::Verdict::left(path, target ? "not found" : why));
        return;
    }
    // Shorter than 513 bytes: nothing behind the kept header to overwrite.
    const std::int64_t blocks = info->isRegular ? blockCount(info->size) : 1;
    if (blocks == 0) {
        engine.report(core::Verdict::left(path, "holds nothing behind its header to overwrite", false, false));
        return;
    }
    ActivityScheme scheme(blocks, progress);
    wipe::OverwriteOptions options;
    options.remove = false; // the browser looks for the file and its header: both stay
    engine.overwrite(*target->parent, target->name, scheme, options);
}

} // namespace indexdat
