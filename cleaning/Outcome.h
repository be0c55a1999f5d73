#pragma once
// The outcome of the main window's last action, told in one line for its status line: what went,
// counted item by item as the routines report it, and what was left and why. The window only
// shows the text; the command line tells the same through its summary and stderr.

#include "cleaning/TraceView.h"
#include "core/ProblemSink.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace cleaning {

class Outcome final : public core::ProblemSink {
public:
    /// Forgets the last action.
    void Start();
    /// One item of `step` went.
    void Done(TraceStep step) { ++m_done[static_cast<std::size_t>(step)]; }
    void skipped(const std::string& item, const std::string& reason) override { m_left.emplace_back(item, reason); }
    /// A result the action tells in its own words (what it cleaned, a program not found).
    void Note(std::string text) { m_note = std::move(text); }

    std::size_t DoneCount(TraceStep step) const { return m_done[static_cast<std::size_t>(step)]; }
    /// "8 cache entries, 3 temp files, 14 history entries removed", or the note, followed by the
    /// first thing left and why ("Firefox is running: its history was left alone; close it and
    /// clean again") and how many more were left.
    std::string Text() const;

private:
    std::array<std::size_t, 4> m_done{};
    std::vector<std::pair<std::string, std::string>> m_left;
    std::string m_note;
};

/// "n thing" or "n things".
std::string Counted(std::size_t n, const std::string& one, const std::string& many);

} // namespace cleaning
