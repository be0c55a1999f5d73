// scourmill-cli: every command of the desktop program, for the terminal and for scripts.
// Exit codes: 0 done, 1 some items could not be processed (named on stderr), 2 usage error.

#include "cleaning/CleanIT.h"
#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/CountingPlatform.h"
#include "cli/Docs.h"
#include "cli/Help.h"
#include "cli/Terminal.h"

#include <algorithm>
#include <iostream>

#include <string>
#include <vector>

#ifndef SCOURMILL_VERSION
#define SCOURMILL_VERSION "0"
#endif

int main(int argc, char** argv) {
    cli::setUpStandardStreams();
    // Every path and pattern is UTF-8 from here on, on every system.
    std::vector<std::string> arguments = cli::utf8Arguments(argc, argv);
    std::vector<char*> pointers;
    for (std::string& a : arguments)
        pointers.push_back(a.data());
    pointers.push_back(nullptr);
    argc = static_cast<int>(arguments.size());
    argv = pointers.data();
    CLI::App app{"Tavi Scourmill command line: erases what the browser and common programs leave behind, "
                 "overwrites files, folders, free space and memory, and inspects index.dat record files.",
                 "scourmill-cli"};
    // Help fits the terminal; into a file or a pipe it is kept to 80 columns.
    const std::size_t columns = cli::terminalColumns(cli::Stream::Out);
    app.formatter(std::make_shared<cli::HelpFormatter>(columns >= 40 ? columns : 80));
    app.set_version_flag("--version", "scourmill-cli " SCOURMILL_VERSION);
    app.require_subcommand(1);
    app.fallthrough();

    app.add_flag_callback("-q,--quiet", [] { cli::setQuiet(true); },
                          "No progress bars and no closing line of what changed (questions, problems and errors "
                          "still show)");

    auto native = platform::createNative();
    if (!native) {
        std::cerr << "scourmill-cli: this system is not supported\n";
        return 2;
    }
    // Every change a command makes is counted on its way to the machine, for the closing summary.
    cli::CountingPlatform platform(*native);
    cli::Context ctx{platform, {}, {}, 0, {}, {}};
    cli::addMemMonCommand(app, ctx);
    cli::addCleanItemCommands(app, ctx);
    cli::addIndexDatCommand(app, ctx);
    cli::addWipeCommands(app, ctx);
    cli::addWipeMemoryCommand(app, ctx);
    cli::addTraceCommands(app, ctx);
    cli::addHistoryCommands(app, ctx);

    // At build time: the manual page and the completion, from the definitions just made.
    if (const int generated = cli::generateDocs(app, SCOURMILL_VERSION, {{"clean-item", cleaning::ChooserItems}}, argc, argv); generated >= 0)
        return generated;

    // CLI11 would only say that a command is required, or list the words it did not expect: name
    // the one it did not know, and what was probably meant.
    if (const std::string unknown = cli::unknownUse(app, {argv + std::min(argc, 1), argv + argc});
        !unknown.empty()) {
        std::cerr << "scourmill-cli: " << unknown << "\nRun with --help for more information.\n";
        return 2;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& e) {
        return app.exit(e); // --help, --version
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return 2;
    } catch (const cli::UsageError& e) {
        std::cerr << "scourmill-cli: " << e.what() << "\n";
        return 2;
    }
    const CLI::App* ran = &app;
    while (!ran->get_subcommands().empty())
        ran = ran->get_subcommands().front();
    cli::ChangeCounts counts = platform.counts();
    ctx.verdicts.addTo(counts);
    ctx.summary.print(std::cerr, *ran, counts);
    if (ctx.exitCode == 0 && ctx.problems.count() > 0)
        ctx.exitCode = 1;
    return ctx.exitCode;
}
