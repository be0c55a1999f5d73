#include "wipe/ui/GaugeLines.h"

#include "core/Rounding.h"
#include "wipe/Gutmann.h"

#include <QFrame>

#include <algorithm>

namespace wipe::ui {

GaugeLines::GaugeLines(QWidget* parent, int x, int y, int length, bool vertical)
    : QObject(parent), m_line1(new QFrame(parent)), m_line2(new QFrame(parent)), m_x(x), m_y(y), m_length(length),
      m_vertical(vertical) {
    m_line1->setObjectName("Line1");
    m_line2->setObjectName("Line2");
    m_line1->setStyleSheet("background: palette(mid);");
    m_line2->setStyleSheet("background: #1f6fd1;");
    place();
}

void GaugeLines::reset() {
    m_bar = 0;
    place();
}

void GaugeLines::advance() {
    const int step = static_cast<int>(core::roundHalfEven(static_cast<double>(m_length) / Gutmann::PassCount));
    m_bar = std::min(m_length, m_bar + step);
    place();
}

void GaugeLines::fill() {
    m_bar = m_length;
    place();
}

void GaugeLines::place() {
    if (m_vertical) {
        m_line1->setGeometry(m_x + 3, m_y, 1, m_length);
        m_line2->setGeometry(m_x, m_y, 7, m_bar);
    } else {
        m_line1->setGeometry(m_x, m_y + 3, m_length, 1);
        m_line2->setGeometry(m_x, m_y, m_bar, 7);
    }
    m_line2->setVisible(m_bar > 0);
    m_line2->raise();
}

} // namespace wipe::ui
