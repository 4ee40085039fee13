#include "FrameRate.h"

namespace vexil::viewer {

void FrameRate::frame(double seconds) {
    m_times.push_back(seconds);
    while (m_times.size() > 2 && m_times.back() - m_times.front() > 1.0)
        m_times.pop_front();
}

double FrameRate::perSecond() const {
    if (m_times.size() < 2) return 0;
    const double span = m_times.back() - m_times.front();
    return span > 0 ? (m_times.size() - 1) / span : 0;
}

} // namespace vexil::viewer
