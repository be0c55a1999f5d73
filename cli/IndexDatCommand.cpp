// indexdat: the index.dat manager on the command line. find lists the record files below a folder
// with the window's counts and total lines; report prints the activity entries of files as stored
// (one a line, or NUL-separated for scripts); raw prints a file's size line and bytes; wipe
// overwrites the recorded activity of files after asking.

#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/Interrupt.h"
#include "cli/ProgressBar.h"
#include "core/Prompts.h"
#include "indexdat/ActivityScan.h"
#include "indexdat/ActivityWipe.h"
#include "indexdat/FileSearch.h"
#include "indexdat/IndexManager.h"
#include "indexdat/IndexTexts.h"
#include "indexdat/RawReport.h"

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace cli {
namespace {

// Through std::cout, which shows text on a Windows console in any language (cli/Terminal.h) and
// passes the bytes unchanged to a file or pipe.
void put(std::string_view bytes) {
    std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void putLine(const std::string& line) {
    put(line);
    std::cout.put('\n');
}

void find(Context& ctx, std::string folder, const std::string& pattern) {
    if (folder.empty())
        folder = indexdat::defaultSearchFolder(ctx.platform);
    const auto info = ctx.platform.fileSystem().info(folder);
    if (!info || !info->isDirectory())
        throw UsageError("not a folder: " + folder);
    std::int16_t files = 0;
    std::int16_t dirs = 0;
    const std::string start = folder;
    try {
        indexdat::FileSearch search(ctx.platform.fileSystem(), putLine, &ctx.problems);
        const core::Currency total = search.FindFilesAPI(folder, pattern, files, dirs);
        putLine(indexdat::countsText(files, dirs));
        putLine(indexdat::totalText(total));
    } catch (const indexdat::SearchOverflow& e) {
        std::cout.flush();
        ctx.problems.skipped(start, std::string("search ended: ") + e.what());
    }
}

void report(Context& ctx, const std::vector<std::string>& paths, bool nulSeparated) {
    const char separator = nulSeparated ? '\0' : '\n';
    indexdat::ActivityScan scan(ctx.platform.rawFiles());
    for (const std::string& path : paths) {
        const bool read = scan.scan(path, [separator](std::string_view entry) {
            put(entry);
            std::cout.put(separator);
            return true;
        });
        if (!read)
            ctx.problems.skipped(path, "cannot be read");
    }
}

void raw(Context& ctx, const std::string& path) {
    const bool read = indexdat::RawReport(ctx.platform.rawFiles())
                          .read(
                              path, [](std::uint64_t length) { putLine(indexdat::fileSizeText(length)); }, put);
    if (!read)
        ctx.problems.skipped(path, "cannot be read");
}

void wipe(Context& ctx, const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        if (!ctx.prompts.askYesNo(indexdat::confirmWipeText(path), indexdat::WindowCaption,
                                  core::MsgStyle::YesNo | core::MsgStyle::Question)) {
            ctx.exitCode = 1; // declined, as every asking command reports it
            continue;
        }
        ProgressBar bar;
        // Eleven rounds of three passes over every block behind the kept header.
        const auto info = ctx.platform.fileSystem().info(path);
        const double total = info ? static_cast<double>(indexdat::blockCount(info->size)) * 1024.0 * 33.0 : 0.0;
        watchInterrupts(); // from the overwrite on; at the question Ctrl-C simply ends the program
        indexdat::WipeFileContents(
            ctx.platform, path,
            [&](double done) {
                bar.update(done * total, total, ProgressBar::Unit::Bytes, path);
                return !interrupted();
            },
            &ctx.problems, &ctx.verdicts);
        bar.finish();
        if (interrupted()) {
            std::cerr << "scourmill-cli: interrupted; " << path << " was left partly overwritten, files not reached untouched\n";
            ctx.exitCode = 1;
            return;
        }
    }
}

} // namespace

void addIndexDatCommand(CLI::App& app, Context& ctx) {
    auto* group = app.add_subcommand("indexdat", "Find index.dat record files, report and overwrite their activity");
    group->require_subcommand(1);

    struct Options {
        std::string folder;
        std::string file;
        std::string pattern = indexdat::DefaultPattern;
        std::vector<std::string> files;
        bool nul = false;
        bool yes = false;
    };
    auto opt = std::make_shared<Options>();

    auto* findCmd = group->add_subcommand(
        "find", "List the files named like PATTERN in DIR and below, then the counts line (files/folders) "
                "and the total size line");
    findCmd->add_option("DIR", opt->folder,
#ifdef _WIN32
                        "Folder to search in (default: the folder of the users' profiles, else the home folder)");
#else
                        "Folder to search in (default: the Wine prefix's users folder, else the home folder)");
#endif
    findCmd->add_option("--pattern", opt->pattern, "File name or wildcard pattern to find")
        ->type_name("PATTERN")
        ->default_str(indexdat::DefaultPattern);
    findCmd->callback([&ctx, opt] { find(ctx, opt->folder, opt->pattern); });

    auto* reportCmd = group->add_subcommand(
        "report", "Print the web addresses, file-transfer addresses and cookie entries recorded in FILEs, "
                  "in file order, one a line");
    reportCmd->add_flag("-0,--null", opt->nul, "End each entry with a NUL byte instead of a newline");
    reportCmd->add_option("FILE", opt->files, "Record files to scan")->required();
    reportCmd->callback([&ctx, opt] { report(ctx, opt->files, opt->nul); });

    auto* rawCmd = group->add_subcommand("raw", "Print \"File Size in bytes = N\", a newline, then FILE's bytes as stored");
    rawCmd->add_option("FILE", opt->file, "Record file to show")->required();
    rawCmd->callback([&ctx, opt] { raw(ctx, opt->file); });

    auto* wipeCmd = group->add_subcommand(
        "wipe", "Overwrite the activity recorded in FILEs: everything after the first 1024 bytes, 33 times; "
                "the file itself stays. Asks before each file");
    wipeCmd->add_flag("-y,--yes", opt->yes, "Do not ask; overwrite every FILE");
    wipeCmd->add_option("FILE", opt->files, "Record files to overwrite")->required();
    ctx.summary.changes(wipeCmd);
    wipeCmd->callback([&ctx, opt] {
        ctx.prompts.setAssumeYes(opt->yes);
        wipe(ctx, opt->files);
    });
}

} // namespace cli
