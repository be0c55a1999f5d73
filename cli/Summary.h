#pragma once
// The one line a command that changes something ends with, on stderr, so that a clean run can be
// told from one that found nothing: "scourmill-cli: shred: 2 files overwritten and deleted,
// 100.0 MiB written", or "... nothing changed". The counts come from the platform the command ran
// on (CountingPlatform); a command adds what the platform cannot see (memory filled). Read-only
// commands print no summary unless something changed after all; --quiet prints none.

#include "cli/CountingPlatform.h"

#include <CLI/CLI.hpp>

#include <iosfwd>
#include <set>
#include <string>
#include <vector>

namespace cli {

/// The counts as the summary says them: "2 files overwritten and deleted, 100.0 MiB written";
/// `notes` follow the counts; "nothing changed" when there is nothing to say.
std::string describeChanges(const ChangeCounts& counts, const std::vector<std::string>& notes = {});

class Summary {
public:
    /// `command` changes the machine: it always ends with a summary, even when nothing changed.
    void changes(const CLI::App* command) { m_changing.insert(command); }
    /// A part of the summary the platform cannot see ("1.2 GiB of memory filled").
    void note(const std::string& text) { m_notes.push_back(text); }

    /// Writes the summary line of the command `ran` (the subcommand that ran, nested ones
    /// included), when one is due, to `out`.
    void print(std::ostream& out, const CLI::App& ran, const ChangeCounts& counts) const;

private:
    std::set<const CLI::App*> m_changing;
    std::vector<std::string> m_notes;
};

} // namespace cli
