#pragma once
// The main window's cache list List1 as the working list of the trace-cleaning routines, the
// window's way of letting pending events run while they work, and the count of what they finished.

#include "cleaning/Outcome.h"
#include "cleaning/TraceView.h"

class QListWidget;

namespace app {

class WorkingList final : public cleaning::TraceView {
public:
    /// Each finished item is counted in `outcome`, for the status line.
    WorkingList(QListWidget& list, cleaning::Outcome& outcome) : m_list(list), m_outcome(outcome) {}

    void clearList() override;
    void addLine(const std::string& line) override;
    std::size_t lineCount() const override;
    std::string line(std::size_t index) const override;
    /// Lets pending window events and timers run.
    void pumpEvents() override;
    void itemDone(cleaning::TraceStep step, const std::string&) override { m_outcome.Done(step); }

private:
    QListWidget& m_list;
    cleaning::Outcome& m_outcome;
};

} // namespace app
