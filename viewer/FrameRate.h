// Frames per second over the last second of frames.
#pragma once
#include <deque>

namespace vexil::viewer {

class FrameRate {
  public:
    // A frame was shown at `seconds` (any steady clock).
    void frame(double seconds);
    // Frames in the window divided by the time they span; 0 before two frames.
    double perSecond() const;

  private:
    std::deque<double> m_times;
};

} // namespace vexil::viewer
