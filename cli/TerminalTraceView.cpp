#include "cli/TerminalTraceView.h"

#include "cli/Interrupt.h"
#include "cli/Terminal.h"

namespace cli {
namespace {

constexpr int Passes = 11;

std::string lastPart(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

const char* stepName(cleaning::TraceStep step) {
    switch (step) {
    case cleaning::TraceStep::TempFiles:
        return "temp files";
    case cleaning::TraceStep::CacheEntries:
        return "cache entries";
    case cleaning::TraceStep::CookieFiles:
        return "cookie record files";
    case cleaning::TraceStep::History:
        return "history";
    }
    return "";
}

} // namespace

TerminalTraceView::TerminalTraceView(std::size_t total) : m_bar(total > 0 && progressShown()), m_total(total) {}

bool TerminalTraceView::interrupted() {
    return cli::interrupted();
}

void TerminalTraceView::draw(double withinItem, const std::string& label) {
    if (m_total == 0)
        return;
    m_bar.update(static_cast<double>(m_done) + withinItem, static_cast<double>(m_total), ProgressBar::Unit::Items,
                 label);
}

void TerminalTraceView::wiping(const std::string& path, int pass, std::uint64_t written, std::uint64_t total) {
    const double inPass = total > 0 ? static_cast<double>(written) / static_cast<double>(total) : 1.0;
    draw((pass - 1 + inPass) / Passes, lastPart(path) + "  pass " + std::to_string(pass) + "/11");
}

void TerminalTraceView::itemDone(cleaning::TraceStep step, const std::string&) {
    ++m_done;
    const std::size_t count = ++m_counts[static_cast<std::size_t>(step)];
    draw(0, std::string(stepName(step)) + " " + std::to_string(count));
}

} // namespace cli
