#pragma once
// Questions and messages for the user, as message boxes with a text, a title and a style. The core
// defines every text; a window shows them in message boxes, the command line on the terminal, a
// test records them.

#include <string>

namespace core {

/// Message box styles, with the numbers the message-box call gives them (they add up).
namespace MsgStyle {
constexpr int OkOnly = 0;
constexpr int OkCancel = 1;
constexpr int YesNo = 4;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int Exclamation = 48;
constexpr int Information = 64;
} // namespace MsgStyle

class Prompts {
public:
    virtual ~Prompts() = default;

    /// Asks a yes/no question; true for Yes.
    virtual bool askYesNo(const std::string& text, const std::string& title, int style) = 0;
    /// Shows a message with only an OK button.
    virtual void tell(const std::string& text, const std::string& title, int style) = 0;
};

/// Answers no to every question and shows nothing: for routines that must never ask (previews, and
/// steps run from inside another command).
class SilentPrompts final : public Prompts {
public:
    bool askYesNo(const std::string&, const std::string&, int) override { return false; }
    void tell(const std::string&, const std::string&, int) override {}
};

/// The title of most of the program's messages.
inline const std::string MessageTitle = "Tavi Message";
/// The program's own title, which some messages carry.
inline const std::string ApplicationTitle = "Tavi Scourmill";

} // namespace core
