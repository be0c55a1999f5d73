// show-cache, wipe-cache, clean-all, autoclean and preview: the main window's Internet buttons and
// AutoClean on the terminal. Commands that destroy ask first (or take --yes), saying how much they
// will remove; a browser profile left alone because its browser runs is named on stderr and makes
// the exit code 1. Ctrl-C stops a clean at the next block: the file being overwritten is deleted
// and nothing further is touched.

#include "autoclean/WatchStep.h"
#include "cleaning/CURLHistory.h"
#include "cleaning/CleanAllPreview.h"
#include "cleaning/CleanIT.h"
#include "cleaning/TraceCleaner.h"
#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/Interrupt.h"
#include "cli/TerminalTraceView.h"

#include <chrono>
#include <ctime>
#include <iostream>
#include <thread>

namespace cli {
namespace {

using cleaning::TraceStep;

std::string counted(std::size_t n, const std::string& what) {
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

void reportInterrupted(Context& ctx) {
    std::cerr << "scourmill-cli: interrupted; the file being overwritten was deleted, nothing further was touched\n";
    ctx.exitCode = 1;
}

void printLines(const std::vector<std::string>& lines, const char* label = nullptr) {
    for (const auto& line : lines)
        std::cout << (label ? std::string(label) + ": " : std::string()) << line << "\n";
}

void showCache(Context& ctx) {
    TerminalTraceView view;
    cleaning::TraceCleaner cleaner(ctx.platform, view, &ctx.problems, &ctx.verdicts);
    cleaner.ShowCache();
    printLines(view.lines());
}

void wipeCache(Context& ctx) {
    TerminalTraceView view;
    cleaning::TraceCleaner cleaner(ctx.platform, view, &ctx.problems, &ctx.verdicts);
    cleaner.ShowCache();
    printLines(view.lines());
    if (view.lineCount() == 0)
        return;
    if (!ctx.prompts.askYesNo("Delete the " + counted(view.lineCount(), "listed cache entry") + "?",
                              core::MessageTitle, core::MsgStyle::YesNo | core::MsgStyle::Question)) {
        ctx.exitCode = 1;
        return;
    }
    watchInterrupts();
    view.setTotal(view.lineCount());
    cleaner.DeleteListedCacheEntries();
    view.finish();
}

std::string cleanAllQuestion(const cleaning::CleanAllPreview& found) {
    const std::string temp = found.tempFolder.empty() ? std::string("no temp files")
                                                       : counted(found.tempFiles.size(), "temp file") + " and " +
                                                             counted(found.tempFolders.size(), "folder") + " in " +
                                                             found.tempFolder;
    return "Overwrite and delete " + temp + ", and delete " +
           std::to_string(found.cacheEntries.size()) + (found.cacheEntries.size() == 1 ? " cache entry, " : " cache entries, ") +
           std::to_string(found.historyEntries.size()) +
           (found.historyEntries.size() == 1 ? " history entry and " : " history entries and ") +
           counted(found.cookieFiles.size(), "cookie record file") + "?";
}

void cleanAll(Context& ctx) {
    // Counted by the very routines that will do the work, over a platform that only records.
    const cleaning::CleanAllPreview found = cleaning::PreviewCleanAll(ctx.platform);
    if (!found.tempRefusal.empty()) {
        // Nothing at all is done: the user meant the whole clean, and its first part cannot run.
        ctx.problems.skipped(found.tempFolder, found.tempRefusal);
        ctx.exitCode = 1;
        return;
    }
    if (!ctx.prompts.askYesNo(cleanAllQuestion(found), core::MessageTitle,
                              core::MsgStyle::YesNo | core::MsgStyle::Exclamation)) {
        ctx.exitCode = 1;
        return;
    }
    watchInterrupts();
    TerminalTraceView view(found.tempFiles.size() + found.cacheEntries.size() + found.cookieFiles.size() +
                           found.historyEntries.size());
    cleaning::CURLHistory history(ctx.platform);
    cleaning::TraceCleaner cleaner(ctx.platform, view, &ctx.problems, &ctx.verdicts);
    cleaner.SetHistory(history);
    cleaner.ReadFolderPaths();
    cleaner.CleanTempFolder();
    if (!interrupted())
        cleaner.CleanAll();
    view.finish();
    if (interrupted())
        reportInterrupted(ctx);
}

std::string now() {
    const std::time_t t = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&t));
    return text;
}

/// Waits `milliseconds`, or less when Ctrl-C comes.
void pause(int milliseconds) {
    for (int waited = 0; waited < milliseconds && !interrupted(); waited += 50)
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(50, milliseconds - waited)));
}

void watch(Context& ctx, int interval) {
    watchInterrupts();
    std::cerr << "Watching for the browser to start and close; each close cleans the cache, the typed URLs,\n"
                 "the cookie folder's record files and the history. Ctrl-C ends.\n";
    cleaning::CURLHistory history(ctx.platform);
    autoclean::AutoCleanState state = autoclean::toggled({});
    while (!interrupted()) {
        pause(interval);
        if (interrupted())
            break;
        // One loop stands for both timers: the start is watched until it happens, then the close.
        const auto timer = state.checkEnabled ? autoclean::Timer::Check : autoclean::Timer::Closed;
        const autoclean::Tick tick = autoclean::watchStep(state, timer, ctx.platform.processes());
        if (tick == autoclean::Tick::BrowserStarted) {
            std::cerr << now() << " the browser runs; cleaning when it closes\n";
        } else if (tick == autoclean::Tick::CleanDue) {
            TerminalTraceView view;
            cleaning::TraceCleaner cleaner(ctx.platform, view, &ctx.problems, &ctx.verdicts);
            cleaner.SetHistory(history);
            cleaner.ReadFolderPaths();
            cleaner.CleanAll();
            // What was left is named on stderr as it happens; the line counts what went.
            const std::size_t entries = view.done(TraceStep::CacheEntries), visits = view.done(TraceStep::History);
            std::cout << now() << " the browser closed; cleaned " << entries
                      << (entries == 1 ? " cache entry, " : " cache entries, ")
                      << counted(view.done(TraceStep::CookieFiles), "cookie record file") << " and " << visits
                      << (visits == 1 ? " history entry" : " history entries") << std::endl;
            state = autoclean::afterClean(state);
        }
    }
}

void preview(Context& ctx) {
    const cleaning::CleanPreview items = cleaning::CleanIT::Preview(ctx.platform, &ctx.problems);
    for (const auto& value : items.values)
        std::cout << "registry: HKEY_CURRENT_USER\\" << value.key << " : " << value.name << "\n";
    std::uint64_t bytes = 0;
    for (const auto& trashed : items.trash) {
        bytes += trashed.bytes;
        std::cout << "trash: " << trashed.path << " (" << trashed.bytes << " bytes"
                  << (trashed.originalPath.empty() ? "" : ", from " + trashed.originalPath) << ")\n";
    }
    printLines(items.recentDocuments, "recent document");
    // The typed URLs are among the registry values above.
    const cleaning::CleanAllPreview found = cleaning::PreviewCleanAll(ctx.platform, &ctx.problems);
    printLines(found.tempFiles, "temp file");
    printLines(found.tempFolders, "temp folder");
    printLines(found.cacheEntries, "cache entry");
    printLines(found.cookieFiles, "cookie record file");
    printLines(found.historyEntries, "history entry");
    std::cout << items.values.size() << " registry values, " << items.trash.size() << " trash items (" << bytes
              << " bytes), " << items.recentDocuments.size() << " recent documents\n"
              << counted(found.tempFiles.size(), "temp file") << ", " << counted(found.tempFolders.size(), "temp folder")
              << ", " << found.cacheEntries.size() << " cache entries, "
              << counted(found.cookieFiles.size(), "cookie record file") << ", " << found.historyEntries.size()
              << " history entries\n";
}

} // namespace

void addTraceCommands(CLI::App& app, Context& ctx) {
    app.add_subcommand("show-cache", "List the browser cache entries' addresses, one per line, in enumeration order")
        ->callback([&ctx] { showCache(ctx); });

    {
        auto* cmd = app.add_subcommand("wipe-cache", "List the browser cache entries, then delete the listed entries");
        auto yes = std::make_shared<bool>(false);
        cmd->add_flag("--yes,-y", *yes, "Do not ask before deleting");
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, yes] {
            ctx.prompts.setAssumeYes(*yes);
            wipeCache(ctx);
        });
    }
    {
        auto* cmd = app.add_subcommand(
            "clean-all", "Clean the temporary folder (11 overwrite passes, then delete), then the browser cache, the "
                         "typed URLs, the cookie folder's index.dat record files and the URL history");
        auto yes = std::make_shared<bool>(false);
        cmd->add_flag("--yes,-y", *yes, "Do not ask first");
        cmd->footer("Only your own plain files that no program has open are touched; links, sockets, pipes and "
                    "devices stay, and a temporary subfolder that still holds any of them stays whole.\n"
                    "A temporary folder that is /, your home or a folder above it, a system folder or another\n"
                    "user's folder is refused, and nothing at all is done (exit code 1). X server locks and\n"
                    "sockets and systemd's private folders always stay. Run as root through sudo, a shared\n"
                    "folder such as /tmp loses only the files of the user who ran sudo; as root without sudo\n"
                    "it is left alone.\n"
                    "A browser profile whose browser runs is left alone and named on stderr (exit code 1).\n"
                    "Ctrl-C stops: the file being overwritten is deleted, nothing further is touched.");
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, yes] {
            ctx.prompts.setAssumeYes(*yes);
            cleanAll(ctx);
        });
    }
    {
        auto* cmd = app.add_subcommand("autoclean", "Watch for the browser; each time it closes, clean the cache, the "
                                                    "typed URLs, the cookie folder's record files and the history");
        auto interval = std::make_shared<int>(2000);
        cmd->add_option("--interval", *interval, "Milliseconds between two looks at the process list")
            ->type_name("MS")
            ->check(CLI::Range(10, 3'600'000))
            ->group(""); // the desktop program watches every 2000 ms; tests look more often
        cmd->footer("Runs until Ctrl-C; prints one line for each clean.");
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, interval] { watch(ctx, *interval); });
    }
    app.add_subcommand("preview", "List what \"Do Em All\" and clean-all would remove (registry values, trash items, "
                                  "recent documents, temp files, cache entries, cookie record files, history entries); "
                                  "changes nothing")
        ->callback([&ctx] { preview(ctx); });
}

} // namespace cli
