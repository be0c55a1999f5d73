#pragma once
// The trace-cleaning routines on a terminal: the working list is a plain list, Ctrl-C is the stop
// request, and a progress bar counts the items done against the total a preview found, moving on
// within each file as its eleven passes are written.

#include "cleaning/TraceView.h"
#include "cli/ProgressBar.h"

#include <array>
#include <cstddef>

namespace cli {

class TerminalTraceView final : public cleaning::ListView {
public:
    /// `total`: the items the routines are expected to finish (0: no bar is drawn).
    explicit TerminalTraceView(std::size_t total = 0);

    /// The items expected from now on.
    void setTotal(std::size_t total) { m_total = total; }

    bool interrupted() override;
    void wiping(const std::string& path, int pass, std::uint64_t written, std::uint64_t total) override;
    void itemDone(cleaning::TraceStep step, const std::string& item) override;
    /// Clears the bar so that ordinary output can follow.
    void finish() { m_bar.finish(); }

    /// Items finished of `step` so far.
    std::size_t done(cleaning::TraceStep step) const { return m_counts[static_cast<std::size_t>(step)]; }

private:
    void draw(double withinItem, const std::string& label);

    ProgressBar m_bar;
    std::size_t m_total;
    std::size_t m_done = 0;
    std::array<std::size_t, 4> m_counts{};
};

} // namespace cli
