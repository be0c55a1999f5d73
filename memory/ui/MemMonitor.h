#pragma once
// The memory monitor: the machine's nine memory figures, refreshed ten times a second, so that the
// user can watch memory fill up and page out while memory is being wiped. The figures are read only
// while the window is shown.

#include <QWidget>

class QTimer;

namespace platform {
class Platform;
}

namespace memory::ui {

class MemMonitor : public QWidget {
    Q_OBJECT
public:
    explicit MemMonitor(platform::Platform& platform, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void Form_Load();
    void Timer1_Timer();
    /// Reads the figures and sets the labels; `all` false leaves Label8 and Label9 as they are.
    void refresh(bool all);

    platform::Platform& m_platform;
    QTimer* m_timer1;
};

} // namespace memory::ui
