#pragma once
// The memory-wipe window: the suggested size, the size entry with its slider, the button that runs
// the wipe with its progress line and pass counter, the explanation, and the button that docks the
// memory monitor beside the window. The run itself is memory::MemoryWipe; this window only shows
// what the run reports and answers its stop check.

#include "controls/widgets/ToolRun.h"
#include "core/Prompts.h"
#include "memory/MemoryWipe.h"

#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>

class QFrame;
class QLabel;
class QLineEdit;
class QSlider;

namespace platform {
class Platform;
}

namespace memory::ui {

class CleanMemory : public QWidget, public widgets::StoppableWindow, private memory::MemoryWipeView {
    Q_OBJECT
public:
    /// The memory monitor, created on first use (the program keeps one).
    using MonitorSource = std::function<QWidget*()>;

    /// The window over `platform`; "Dock Monitor" docks the window `monitor` gives. Messages go
    /// to `prompts` when given (tests), else to message boxes owned by the window.
    CleanMemory(platform::Platform& platform, MonitorSource monitor, QWidget* parent = nullptr,
                core::Prompts* prompts = nullptr);
    ~CleanMemory() override;

    /// Window size, in twips.
    static constexpr int WidthTwips = 3855;
    static constexpr int HeightTwips = 3615;

    /// The wipe with strings of `size` characters, its progress shown on Line2 and Label8.
    void WipeMemory(std::int32_t size);
    /// What "Dock Monitor" does: the monitor, created if needed, placed flush against this
    /// window's right edge at the same top, and shown.
    void dockMonitor();

    // StoppableWindow: a run frees its memory and returns at its next check.
    bool running() const override { return m_runs > 0; }
    void requestStop() override { m_stopRequested = true; }

protected:
    /// Closing the window during a run stops the run.
    void closeEvent(QCloseEvent* event) override;

private:
    // MemoryWipeView
    void fillMoved(int x) override;
    void passDone(int pass) override;
    void pumpEvents() override;
    bool interrupted() override { return m_stopRequested; }

    void buildControls();
    void Form_Load();
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
    void Slider1_Change();
    /// Line2 from the track's start to `x` (twips).
    void placeFill(int x);

    platform::Platform& m_platform;
    MonitorSource m_monitor;
    std::unique_ptr<core::Prompts> m_ownPrompts;
    core::Prompts* m_prompts;
    int m_runs = 0; // nested runs: Command1 pressed again while a run lets events through
    bool m_stopRequested = false;

    QLabel* m_label2 = nullptr;
    QLabel* m_label8 = nullptr;
    QLineEdit* m_text3 = nullptr;
    QSlider* m_slider1 = nullptr;
    QFrame* m_line2 = nullptr;
};

} // namespace memory::ui
