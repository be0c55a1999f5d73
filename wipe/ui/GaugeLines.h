#pragma once
// The progress gauge of both secure-deletion windows: a thin full-length line (`Line1`) and a thick
// bar (`Line2`) over it that grows by one 35th of the gauge per pass. The free-space window's gauge
// runs downwards, the secure delete's to the right.

#include <QObject>

class QFrame;
class QWidget;

namespace wipe::ui {

class GaugeLines : public QObject {
    Q_OBJECT
public:
    /// Creates `Line1` and `Line2` on `parent` over `rect` (in pixels), vertical or horizontal.
    GaugeLines(QWidget* parent, int x, int y, int length, bool vertical);

    /// The bar back to empty.
    void reset();
    /// The bar one 35th of the gauge longer (the step is rounded half to even).
    void advance();
    /// The bar as long as the gauge.
    void fill();
    /// The bar's length in pixels.
    int barLength() const { return m_bar; }

private:
    void place();

    QFrame* m_line1;
    QFrame* m_line2;
    int m_x, m_y, m_length;
    bool m_vertical;
    int m_bar = 0;
};

} // namespace wipe::ui
