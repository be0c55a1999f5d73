// history list / add / remove / clear: the browser's URL history store through the same collection
// the desktop program uses. A browser profile left alone because its browser runs, and a database
// that cannot be read or cleaned, are named on stderr and make the exit code 1.

#include "cleaning/CURLHistory.h"
#include "cleaning/TraceCleaner.h"
#include "cli/Commands.h"
#include "cli/Context.h"

#include <cmath>
#include <cstdio>
#include <iostream>

namespace cli {
namespace {

/// A date value (days since 1899-12-30, time of day as the fraction) as "YYYY-MM-DD HH:MM:SS".
std::string dateText(double date) {
    const double whole = std::trunc(date);
    // Before 1899-12-30 the fraction still counts forward from midnight.
    auto seconds = static_cast<long long>(std::llround(std::fabs(date - whole) * 86400));
    long long days = static_cast<long long>(whole) - 25569; // to days since 1970-01-01
    if (seconds >= 86400) {
        seconds -= 86400;
        ++days;
    }
    // Civil date from a day count (the proleptic Gregorian calendar).
    const long long z = days + 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const long long doe = z - era * 146097;
    const long long yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const long long doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const long long mp = (5 * doy + 2) / 153;
    const long long day = doy - (153 * mp + 2) / 5 + 1;
    const long long month = mp < 10 ? mp + 3 : mp - 9;
    const long long year = yoe + era * 400 + (month <= 2);
    char text[160];
    std::snprintf(text, sizeof text, "%04lld-%02lld-%02lld %02lld:%02lld:%02lld", year, month, day, seconds / 3600,
                  seconds / 60 % 60, seconds % 60);
    return text;
}

void reportStores(Context& ctx) {
    cleaning::ReportStoresInUse(&ctx.problems, ctx.platform.urlHistory().storesInUse(), "history");
    cleaning::ReportStoreProblems(&ctx.problems, ctx.platform.urlHistory().storeProblems());
}

bool holds(cleaning::CURLHistory& history, const std::string& url) {
    history.Refresh(url, 0);
    for (const auto& item : history.NewEnum())
        if (item->URL() == url)
            return true;
    return false;
}

void list(Context& ctx, const std::string& prefix) {
    cleaning::CURLHistory history(ctx.platform);
    if (!prefix.empty())
        history.Refresh(prefix, 0);
    for (const auto& item : history.NewEnum())
        std::cout << item->URL() << "\t" << item->Title() << "\t" << dateText(item->LastVisited()) << "\n";
    reportStores(ctx);
}

void add(Context& ctx, const std::string& url, const std::string& title) {
    cleaning::CURLHistory history(ctx.platform);
    history.AddURL(url, title, 0);
    reportStores(ctx);
    if (!holds(history, url))
        ctx.problems.skipped(url, "the history store did not take it");
}

void remove(Context& ctx, const std::string& url) {
    cleaning::CURLHistory history(ctx.platform);
    history.Refresh(url, 0);
    int found = 0;
    // From the last entry up, so that removing one does not move those still to be looked at.
    for (std::int32_t i = history.Count(); i >= 1; --i)
        if (history.Item(i)->URL() == url) {
            history.Remove(i);
            ++found;
        }
    reportStores(ctx);
    if (found == 0)
        ctx.problems.skipped(url, "is not in the history");
    else if (holds(history, url))
        ctx.problems.skipped(url, "could not be removed from every profile");
}

void clear(Context& ctx) {
    cleaning::CURLHistory history(ctx.platform);
    const std::int32_t count = history.Count();
    if (!ctx.prompts.askYesNo("Clear the URL history (" + std::to_string(count) + (count == 1 ? " entry" : " entries") +
                                  ")?",
                              core::MessageTitle, core::MsgStyle::YesNo | core::MsgStyle::Question)) {
        ctx.exitCode = 1;
        return;
    }
    history.Clear();
    reportStores(ctx);
}

// One paragraph: the help wraps it to the terminal's width.
const char* const kSessionNote =
    "Clearing the history deletes the session files of every profile, and removing an address those "
    "of each profile whose history held it (Chromium's Sessions/, Current and Last Session and Tabs; "
    "Firefox's sessionstore.jsonlz4 and sessionstore-backups/), since they keep the addresses of open "
    "tabs: the browser then starts with no tabs to restore. A profile whose browser runs is left "
    "alone; a database that cannot be read or cleaned is named and left as it is. Either makes the "
    "exit code 1.";

} // namespace

void addHistoryCommands(CLI::App& app, Context& ctx) {
    auto* history = app.add_subcommand("history", "The browser's URL history store");
    history->require_subcommand(1);
    history->footer(kSessionNote);
    {
        auto* cmd = history->add_subcommand("list", "Each entry as ADDRESS<TAB>TITLE<TAB>LAST VISITED (local time), in "
                                                    "the store's order");
        auto prefix = std::make_shared<std::string>();
        cmd->add_option("--prefix", *prefix, "Only addresses that start with TEXT")->type_name("TEXT");
        cmd->callback([&ctx, prefix] { list(ctx, *prefix); });
    }
    {
        auto* cmd = history->add_subcommand("add", "Add an address with a title to the history");
        auto url = std::make_shared<std::string>();
        auto title = std::make_shared<std::string>();
        cmd->add_option("URL", *url, "The address")->required();
        cmd->add_option("TITLE", *title, "The page title")->required();
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, url, title] { add(ctx, *url, *title); });
    }
    {
        auto* cmd = history->add_subcommand("remove", "Remove every record of an address from the history");
        auto url = std::make_shared<std::string>();
        cmd->add_option("URL", *url, "The address, exactly")->required();
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, url] { remove(ctx, *url); });
    }
    {
        auto* cmd = history->add_subcommand("clear", "Remove every visited address from the history");
        auto yes = std::make_shared<bool>(false);
        cmd->add_flag("--yes,-y", *yes, "Do not ask first");
        ctx.summary.changes(cmd);
        cmd->callback([&ctx, yes] {
            ctx.prompts.setAssumeYes(*yes);
            clear(ctx);
        });
    }
}

} // namespace cli
