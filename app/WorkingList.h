#pragma once
// The main window's cache list List1 as the working list of the trace-cleaning routines, and the
// window's way of letting pending events run while they work.

#include "cleaning/TraceView.h"

class QListWidget;

namespace app {

class WorkingList final : public cleaning::TraceView {
public:
    explicit WorkingList(QListWidget& list) : m_list(list) {}

    void clearList() override;
    void addLine(const std::string& line) override;
    std::size_t lineCount() const override;
    std::string line(std::size_t index) const override;
    /// Lets pending window events and timers run.
    void pumpEvents() override;

private:
    QListWidget& m_list;
};

} // namespace app
