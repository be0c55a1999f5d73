#pragma once
// Message boxes on a terminal. A question is asked on the terminal and answered "y" or "n"; with
// --yes (or with no terminal to ask on) the answer is given without asking: yes with --yes, no
// otherwise, so that nothing is destroyed that nobody agreed to.

#include "core/Prompts.h"

namespace cli {

class TerminalPrompts final : public core::Prompts {
public:
    /// Every question answered yes without asking.
    void setAssumeYes(bool yes) { m_assumeYes = yes; }

    bool askYesNo(const std::string& text, const std::string& title, int style) override;
    void tell(const std::string& text, const std::string& title, int style) override;

private:
    bool m_assumeYes = false;
};

} // namespace cli
