#pragma once
// The button's own tip window: a plain rectangle or a balloon with a stem, an optional bold title
// with an information, warning or error icon, and the tip text, in the button's tooltip colours.
// The button creates one when the pointer enters it and destroys it when the pointer leaves; the
// tip shows after the usual resting delay, at the pointer or centred below the button, and goes
// away on a press or after a while. It never takes the focus or the mouse.

#include <QColor>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

namespace ggcommand {

struct ToolTipLook {
    QString text;
    QString title;
    int icon = 0;         // 0 none, 1 information, 2 warning, 3 error
    bool balloon = false; // otherwise a plain rectangle
    bool centered = false; // centred below the button, otherwise at the pointer
    QColor foreground;
    QColor background;
};

class ToolTipWindow : public QWidget {
    Q_OBJECT
public:
    /// A hidden tip for `owner` (which also owns this window).
    ToolTipWindow(QWidget* owner, const ToolTipLook& look);

    /// Changes the text, also while the tip is showing.
    void setText(const QString& text);
    /// Shows the tip after `delayMs` (the platform's resting delay when negative).
    void arm(int delayMs = -1);
    /// Hides the tip until the next arm.
    void dismiss();

    const ToolTipLook& look() const { return m_look; }
    /// Whether the title line (and its icon) is drawn: a title or an icon was given.
    bool hasTitle() const { return !m_look.title.isEmpty() || m_look.icon != 0; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void popUp();
    void relayout();
    QRect bodyRect() const;
    int inset() const;

    ToolTipLook m_look;
    QPointer<QWidget> m_owner;
    QTimer m_wakeUp;
    QTimer m_fallAsleep;
    int m_stemX = 0;
};

} // namespace ggcommand
