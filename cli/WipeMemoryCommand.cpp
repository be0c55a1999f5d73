// wipe-memory: the memory wipe on the terminal. Asks first (unless --yes) with the number of bytes
// it will fill, draws a bar over the 21 passes, and stops cleanly at the next pass on Ctrl-C or
// SIGTERM. A run that ends early says where and why and exits with 1.

#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/Interrupt.h"
#include "cli/ProgressBar.h"
#include "memory/MemoryFigures.h"
#include "memory/MemoryTexts.h"
#include "memory/MemoryWipe.h"

#include <iostream>
#include <memory>
#include <string>

namespace cli {
namespace {

class TerminalMemoryWipeView final : public memory::MemoryWipeView {
public:
    void setSize(std::int32_t size) { m_size = size; }

    void passDone(int pass) override {
        const double perPass = static_cast<double>(memory::MemoryWipe::BytesPerCharacter) * (m_size > 0 ? m_size : 0);
        m_filled = (pass + 1) * perPass;
        m_bar.update(m_filled, memory::MemoryWipe::Passes * perPass, ProgressBar::Unit::Bytes,
                     "pass " + std::to_string(pass + 1) + "/" + std::to_string(memory::MemoryWipe::Passes));
    }
    /// Bytes of memory filled by the passes done so far.
    double filled() const { return m_filled; }
    bool interrupted() override { return cli::interrupted(); }
    void finish() { m_bar.finish(); }

private:
    std::int32_t m_size = 0;
    double m_filled = 0;
    ProgressBar m_bar;
};

struct Options {
    std::string size;
    bool sizeGiven = false;
    bool yes = false;
    std::uint64_t keepFreeMiB = 0; ///< 0: the machine's default floor
};

void wipeMemory(Context& ctx, const Options& options) {
    TerminalMemoryWipeView view;
    memory::MemoryWipe wipe(ctx.platform, view);
    if (options.keepFreeMiB > 0)
        wipe.setFloor(options.keepFreeMiB << 20);
    std::int32_t size = 0;
    if (!options.sizeGiven) {
        size = memory::suggestedSize(wipe.suggestedArraySize());
    } else {
        const auto parsed = memory::parseArraySize(options.size);
        if (!parsed || *parsed < 0)
            throw UsageError("--size " + options.size +
                             ": not a number of millions of characters from 0 to 2147.483647");
        size = *parsed;
    }
    ctx.prompts.setAssumeYes(options.yes);
    if (!ctx.prompts.askYesNo(memory::texts::confirmWipe(size), core::MessageTitle,
                              core::MsgStyle::YesNo | core::MsgStyle::Question)) {
        ctx.exitCode = 1;
        return;
    }
    watchInterrupts(); // only now: at the question Ctrl-C simply ends the program

    view.setSize(size);
    const memory::WipeResult result = wipe.WipeMemory(size);
    view.finish();
    ctx.summary.note(ProgressBar::humanBytes(view.filled()) + " of memory filled");
    switch (result.end) {
    case memory::WipeEnd::Completed:
        return;
    case memory::WipeEnd::FloorReached:
        std::cerr << "scourmill-cli: " << memory::texts::stoppedAtFloor(result.lastPass, result.floor, result.groupLimit) << "\n";
        break;
    case memory::WipeEnd::OutOfMemory:
        std::cerr << "scourmill-cli: " << memory::texts::stoppedOutOfMemory(result.lastPass) << "\n";
        break;
    case memory::WipeEnd::Interrupted:
        std::cerr << "scourmill-cli: " << memory::texts::stoppedInterrupted(result.lastPass) << "\n";
        break;
    }
    ctx.exitCode = 1;
}

} // namespace

void addWipeMemoryCommand(CLI::App& app, Context& ctx) {
    auto* cmd = app.add_subcommand(
        "wipe-memory", "Fill memory with blanks in 21 passes, so that what other programs left in memory is "
                       "pushed out and overwritten");
    auto options = std::make_shared<Options>();
    auto* size = cmd->add_option("--size", options->size,
                    "Millions of characters a string (2 bytes each, 21 strings; a fraction is allowed). "
                    "Default: the suggested size, the commit limit / 83.33333333 characters, or inside a "
                    "memory-limited group (a container, a slice) what the group leaves above the floor")
                     ->type_name("MILLIONS");
    cmd->add_flag("--yes,-y", options->yes, "Do not ask before starting");
    cmd->add_option("--keep-free", options->keepFreeMiB,
                    "MiB of memory to keep: left to the rest of the system (RAM and swap), or inside a "
                    "memory-limited group, below the group's limit; the run stops before taking more "
                    "(default: a 16th of the RAM or of the group's limit; never less than 256)")
        ->type_name("MIB");
#ifdef _WIN32
    cmd->footer("Ctrl-C stops at the next pass; the memory is given back at once.");
#else
    cmd->footer("While it runs, this process is the first the system ends should memory run out, so no "
                "other program can pay for the wipe. Ctrl-C stops at the next pass; the memory is given "
                "back at once.");
#endif
    ctx.summary.changes(cmd);
    cmd->callback([&ctx, options, size] {
        options->sizeGiven = size->count() > 0;
        wipeMemory(ctx, *options);
    });
}

} // namespace cli
