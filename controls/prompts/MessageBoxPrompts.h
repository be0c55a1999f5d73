#pragma once
// The core's questions and messages as real message boxes: every window of the desktop program
// hands one of these to the core code it runs. The message-box style numbers pick the icon.

#include "core/Prompts.h"


class QWidget;

namespace prompts {

class MessageBoxPrompts final : public core::Prompts {
public:
    /// Boxes are parented to `owner` (may be null: the active window is used).
    explicit MessageBoxPrompts(QWidget* owner = nullptr) : m_owner(owner) {}

    /// With nobody at the screen (the program saving screenshots), messages go to stderr and every
    /// question is answered No, so that nothing waits and nothing is destroyed.
    static void setUnattended(bool unattended);

    bool askYesNo(const std::string& text, const std::string& title, int style) override;
    void tell(const std::string& text, const std::string& title, int style) override;

private:
    QWidget* m_owner;
};

} // namespace prompts
