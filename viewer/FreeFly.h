// Flying a camera about as game-engine viewers do: W/S ahead and back, A/D to the sides,
// E/Q up and down along the world's vertical, Shift four times as fast; the mouse turns
// (head and tilt, kept level, tilt within 89 degrees).
#pragma once

namespace vexil::viewer {

class FreeFly {
  public:
    enum Move { Ahead, Back, Left, Right, Up, Down, Fast, MoveCount };

    void setHeld(Move m, bool held);
    bool held(Move m) const { return m_held[m]; }
    bool moving() const; // any of the six directions held
    void releaseAll();

    // World units per second (without Shift).
    void setSpeed(double unitsPerSecond) { m_speed = unitsPerSecond; }
    double speed() const { return m_speed; }
    static constexpr double kFastFactor = 4.0;
    static constexpr double kDegreesPerPixel = 0.2;
    static constexpr double kMaxTilt = 89.0;

    // Moves the camera by what is held for that time.
    void fly(int camera, double seconds) const;
    // Turns the camera by a mouse movement in pixels (right and down positive).
    static void look(int camera, double dx, double dy);

  private:
    bool m_held[MoveCount] = {};
    double m_speed = 250;
};

} // namespace vexil::viewer
