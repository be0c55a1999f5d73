// wipe-free-space, shred and shred-dir: the secure-deletion windows on the terminal. Questions are
// asked on the terminal (or answered by --yes), a progress bar shows the pass, the bytes and the
// rate, and Ctrl-C, SIGTERM, SIGHUP or SIGQUIT stops the work at the next block: the free-space wipe's temporary file
// is removed, the file being shredded is cut and deleted, and files not reached are left alone.

#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/Interrupt.h"
#include "cli/ProgressBar.h"
#include "core/NumberFormat.h"
#include "wipe/Engine.h"
#include "wipe/FileError.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/Gutmann.h"
#include "wipe/SecureDelete.h"
#include "wipe/WipeTexts.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace cli {
namespace {

const char* const VerifyHelp = "After the last pass, read each file back from the device (past the system's cache) "
                                "and compare it with what the pass wrote; a difference is named with its offset";

std::string passLabel(int pass) {
    return "pass " + std::to_string(pass) + "/" + std::to_string(wipe::Gutmann::PassCount);
}

class TerminalFreeSpaceView final : public wipe::FreeSpaceView {
public:
    explicit TerminalFreeSpaceView(Context& ctx) : m_ctx(ctx) {}

    core::Prompts& prompts() override { return m_ctx.prompts; }
    bool interrupted() override { return cli::interrupted(); }
    // The terminal has no exit check box: Ctrl-C is the exit request, and it needs no confirmation.
    bool exitRequested() override { return false; }
    void progress(const wipe::FreeSpaceProgress& now) override {
        // Every pass covers the same increments; the bar counts all 35 of them.
        const double perPass = static_cast<double>(now.increment.rounded()) * static_cast<double>(now.count);
        const double inPass = std::min(static_cast<double>(now.wiped.rounded()), perPass);
        m_bar.update((now.pass - 1) * perPass + inPass, wipe::Gutmann::PassCount * perPass, ProgressBar::Unit::Bytes,
                     passLabel(now.pass));
    }
    void finish() { m_bar.finish(); }

private:
    Context& m_ctx;
    ProgressBar m_bar;
};

class TerminalSecureDeleteView final : public wipe::SecureDeleteView {
public:
    explicit TerminalSecureDeleteView(Context& ctx) : m_ctx(ctx) {}

    core::Prompts& prompts() override { return m_ctx.prompts; }
    bool interrupted() override { return cli::interrupted(); }
    bool stopRequested() override { return false; }
    void passStarted(const std::string&, int pass) override {
        watchInterrupts(); // from the first pass on; at the question Ctrl-C simply ends the program
        if (pass == 1)
            m_bar.restart(); // a new file: its own figures and rate
    }
    void progress(const wipe::FileWipeProgress& now) override {
        const auto slash = now.path.find_last_of(m_ctx.platform.fileSystem().separator());
        const std::string name = slash == std::string::npos ? now.path : now.path.substr(slash + 1);
        const double perPass = static_cast<double>(now.total);
        m_bar.update((now.pass - 1) * perPass + static_cast<double>(now.written), wipe::Gutmann::PassCount * perPass,
                     ProgressBar::Unit::Bytes, name + "  " + passLabel(now.pass));
    }
    void finish() { m_bar.finish(); }

private:
    Context& m_ctx;
    ProgressBar m_bar;
};

/// Invalid input unless `path` is a folder itself (not a link to one).
void requireFolder(platform::FileSystem& files, const std::string& path) {
    const auto info = files.info(path);
    if (!info)
        throw UsageError(path + ": no such folder");
    if (info->isLink())
        throw UsageError(path + ": is a symbolic link; links are never followed");
    if (!info->isDirectory())
        throw UsageError(path + ": not a folder");
}

/// Says on stderr, before anything is overwritten, where overwriting cannot reach `path`'s data.
void warnOfLimits(const std::string& path, const platform::Storage& storage) {
    const std::string note = wipe::texts::overwriteLimits(path, storage);
    if (!note.empty())
        std::cerr << "scourmill-cli: " << note << "\n";
}

void warnOfLimits(Context& ctx, const std::string& path) {
    warnOfLimits(path, ctx.platform.drives().storage(path));
}

void reportInterrupted(Context& ctx, const std::string& what) {
    std::cerr << "scourmill-cli: interrupted; " << what << "\n";
    ctx.exitCode = 1;
}

void wipeFreeSpace(Context& ctx, const std::string& dir, bool removable, bool verify) {
    requireFolder(ctx.platform.fileSystem(), dir);
    TerminalFreeSpaceView view(ctx);
    wipe::FreeSpaceWipe wipe(ctx.platform, view, ctx.problems);
    wipe.setVerify(verify);
    wipe.offerStaleRemoval(dir);
    // Judged, measured and written in this one open folder, however long the question below waits.
    const auto folder = ctx.platform.fileSystem().openFolder(dir);
    if (!wipe.accepts(dir, folder.get(), removable)) {
        ctx.exitCode = 2;
        return;
    }
    if (!wipe.tempNameFree(folder.get(), dir)) {
        ctx.exitCode = 1;
        return;
    }
    const core::Currency free = folder ? wipe.freeSpace(*folder) : core::Currency{};
    warnOfLimits(ctx, dir);
    if (!ctx.prompts.askYesNo(wipe::texts::confirmFreeSpace(dir, core::formatGrouped(free)), core::MessageTitle,
                              core::MsgStyle::YesNo | core::MsgStyle::Question)) {
        ctx.exitCode = 1;
        return;
    }
    watchInterrupts(); // only now: at the questions Ctrl-C simply ends the program
    try {
        const auto outcome = wipe.run(folder.get(), dir, free,
                                      removable ? wipe::FreeSpaceWipe::removableIncrement()
                                                : wipe::FreeSpaceWipe::fixedIncrement());
        view.finish();
        if (outcome == wipe::FreeSpaceWipe::Outcome::Exited)
            reportInterrupted(ctx, "the temporary file was removed");
        else if (outcome == wipe::FreeSpaceWipe::Outcome::Completed && wipe.verified())
            ctx.summary.note("the last pass verified on the device");
        else if (outcome == wipe::FreeSpaceWipe::Outcome::Refused)
            ctx.exitCode = 1;
    } catch (const wipe::FileError& e) {
        view.finish();
        std::cerr << "scourmill-cli: " << e.source() << " error " << e.number() << ": " << e.description() << "\n";
        ctx.exitCode = 1;
    }
}

void shredFiles(Context& ctx, const std::vector<std::string>& paths, bool verify) {
    auto& files = ctx.platform.fileSystem();
    for (const auto& path : paths) {
        const auto info = files.info(path);
        if (!info)
            throw UsageError(path + ": no such file");
        if (!info->isRegular)
            throw UsageError(path + ": not a plain file (links, folders and devices are never shredded)");
    }
    // One note per kind of place, not one per file.
    std::vector<std::tuple<std::string, bool, bool>> seen;
    for (const auto& path : paths) {
        const platform::Storage storage = ctx.platform.drives().storage(path);
        const auto kind = std::make_tuple(storage.fileSystem, storage.copyOnWrite, storage.flash);
        if (std::find(seen.begin(), seen.end(), kind) == seen.end()) {
            seen.push_back(kind);
            warnOfLimits(path, storage);
        }
    }
    TerminalSecureDeleteView view(ctx);
    wipe::SecureDelete shred(ctx.platform, view, ctx.problems, &ctx.verdicts);
    shred.setVerify(verify);
    const bool ran = shred.WipeSelectedFiles(paths.front(), paths);
    view.finish();
    if (!ran)
        ctx.exitCode = 1;
    else if (interrupted())
        reportInterrupted(ctx, "the file being shredded was deleted; files not reached were left untouched");
}

void shredFolder(Context& ctx, const std::string& dir, bool verify) {
    requireFolder(ctx.platform.fileSystem(), dir);
    // A filesystem's root ("/", "C:\") is refused before anything is asked or written.
    std::string why;
    if (!wipe::Engine(ctx.platform, nullptr, nullptr).locate(dir, why))
        throw UsageError(dir + ": " + why);
    warnOfLimits(ctx, dir);
    TerminalSecureDeleteView view(ctx);
    wipe::SecureDelete shred(ctx.platform, view, ctx.problems, &ctx.verdicts);
    shred.setVerify(verify);
    const bool ran = shred.WipeFolder(dir);
    view.finish();
    if (!ran)
        ctx.exitCode = 1;
    else if (interrupted())
        reportInterrupted(ctx, "files not reached and the folder were left in place");
}

} // namespace

void addWipeCommands(CLI::App& app, Context& ctx) {
    {
        auto* cmd = app.add_subcommand(
            "wipe-free-space",
            "Overwrite the free space of DIR's drive in 35 passes (Gutmann), through the temporary file "
            "DIR/" + wipe::texts::TempFileName + ", which is removed after every pass and on every way out");
        auto dir = std::make_shared<std::string>();
        auto yes = std::make_shared<bool>(false);
        auto removable = std::make_shared<bool>(false);
        auto verify = std::make_shared<bool>(false);
        cmd->add_option("DIR", *dir, "A folder on the drive to wipe (the drive's root or any folder on it)")->required();
        cmd->add_flag("--yes,-y", *yes, "Do not ask before starting (and remove a stale temporary file)");
        cmd->add_flag("--removable", *removable,
                      "The drive is removable (USB stick, card): small increments; refused on fixed drives");
        cmd->add_flag("--verify", *verify,
                      "After the last pass, read the temporary file back from the device (past the system's "
                      "cache) and compare it with what the pass wrote; a difference is named with its offset");
#ifdef _WIN32
        cmd->footer("Ctrl-C stops after the current increment and removes the temporary file. A file of "
                    "that name that is kept makes the wipe refuse.\n"
                    "Overwriting cannot reach SSD spare blocks, Volume Shadow Copies and System Restore "
                    "points, or the NTFS log: see the README.");
#else
        cmd->footer("Ctrl-C, SIGTERM, SIGHUP or SIGQUIT stops after the current increment and removes the "
                    "temporary file. A file of that name that is kept makes the wipe refuse.\n"
                    "Overwriting cannot reach copy-on-write or journaled copies, SSD spare blocks, or the "
                    "blocks reserved for root when run as a user: see the README.");
#endif
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, dir, yes, removable, verify] {
            ctx.prompts.setAssumeYes(*yes);
            wipeFreeSpace(ctx, *dir, *removable, *verify);
        });
    }
    {
        auto* cmd = app.add_subcommand("shred", "Overwrite FILEs in place in 35 passes (Gutmann), then cut and delete them");
        auto paths = std::make_shared<std::vector<std::string>>();
        auto yes = std::make_shared<bool>(false);
        auto verify = std::make_shared<bool>(false);
        cmd->add_option("FILE", *paths, "Plain files to destroy (links and folders are refused)")->required();
        cmd->add_flag("--yes,-y", *yes, "Do not ask for confirmation");
        cmd->add_flag("--verify", *verify, VerifyHelp);
        cmd->footer("Ctrl-C stops: the file being shredded is deleted, files not reached are left untouched.");
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, paths, yes, verify] {
            ctx.prompts.setAssumeYes(*yes);
            shredFiles(ctx, *paths, *verify);
        });
    }
    {
        auto* cmd = app.add_subcommand(
            "shred-dir", "Shred every file directly inside DIR (35 passes), then delete DIR with everything below it");
        auto dir = std::make_shared<std::string>();
        auto yes = std::make_shared<bool>(false);
        auto verify = std::make_shared<bool>(false);
        cmd->add_option("DIR", *dir, "The folder to destroy")->required();
        cmd->add_flag("--yes,-y", *yes, "Do not ask for confirmation");
        cmd->add_flag("--verify", *verify, VerifyHelp);
        cmd->footer("Files in subfolders are deleted without being overwritten. Links are removed, never "
                    "followed, and nothing on another filesystem mounted below DIR is touched.");
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, dir, yes, verify] {
            ctx.prompts.setAssumeYes(*yes);
            shredFolder(ctx, *dir, *verify);
        });
    }
}

} // namespace cli
