// memmon: the memory monitor's nine lines, refreshed ten times a second until Ctrl-C, or once.

#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/Interrupt.h"
#include "cli/Terminal.h"
#include "memory/MemoryFigures.h"

#include <chrono>
#include <iostream>
#include <thread>

namespace cli {
namespace {

void printLines(platform::MemoryStatus& source) {
    for (const auto& line : memory::memoryLines(memory::readMemoryStatus(source)))
        std::cout << line.caption << "\n";
    std::cout << std::flush;
}

} // namespace

void addMemMonCommand(CLI::App& app, Context& ctx) {
    auto* cmd = app.add_subcommand("memmon", "Show the nine memory figures of the memory monitor");
    auto once = std::make_shared<bool>(false);
    cmd->add_flag("--once", *once, "Print the figures once and exit (default: refresh every 100 ms until Ctrl-C)");
    cmd->callback([&ctx, once] {
        auto& source = ctx.platform.memoryStatus();
        if (*once) {
            printLines(source);
            return;
        }
        watchInterrupts();
        const bool terminal = escapesWork(Stream::Out);
        bool first = true;
        while (!interrupted()) {
            if (terminal && !first)
                std::cout << "\033[9A"; // back over the nine lines just drawn
            else if (!first)
                std::cout << "\n";
            first = false;
            printLines(source);
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    });
}

} // namespace cli
