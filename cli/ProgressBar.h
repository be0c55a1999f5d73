#pragma once
// A one-line progress bar on stderr for long commands, drawn only when stderr is a terminal:
// "[#######.............]  35%  pass 3/35  1.2 GiB  85.0 MiB/s". Redraws at most ten times a second.

#include <chrono>
#include <cstdint>
#include <string>

namespace cli {

class ProgressBar {
public:
    /// `enabled` false draws nothing (stderr is not a terminal, or output must stay clean).
    explicit ProgressBar(bool enabled);
    /// A bar that draws when stderr is a terminal.
    ProgressBar();
    ~ProgressBar();

    /// Shows `fraction` (0..1) done, a free label ("pass 3/35") and the bytes handled so far, whose
    /// rate is measured from the last reset().
    void update(double fraction, const std::string& label, std::uint64_t bytes = 0);
    /// Starts measuring the rate anew (at the start of a pass).
    void reset();
    /// Clears the line so that ordinary output can follow.
    void finish();

    /// "1.2 GiB", "512 B".
    static std::string humanBytes(double bytes);

private:
    bool m_enabled;
    bool m_drawn = false;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_lastDraw;
};

} // namespace cli
