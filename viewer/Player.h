// What the viewer plays: one world loaded into the engine, its scene cameras, a free camera
// for flying about, the clock of the chase rules, and a render target. No Qt here, so that
// the headless run, the window and the tests share it.
#pragma once
#include "FreeFly.h"

#include <string>
#include <vector>

namespace vexil::viewer {

// Exit codes of vexil-viewer.
enum ExitCode { ExitOk = 0, ExitUsage = 2, ExitMissingFile = 3, ExitBadWorld = 4, ExitWriteFailed = 5, ExitNoDisplay = 6 };

struct LoadResult {
    int code = ExitOk;
    std::string message; // empty when loaded
};

class Player {
  public:
    Player();
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    // Empties the engine and loads the world; bitmaps from the "bitmaps" folder beside it.
    // Lights are switched on, the first scene camera (or the free camera, framing the world,
    // when there is none) is the view.
    LoadResult load(const std::string& path);

    // Scene cameras in the world's order; index -1 is the free camera.
    int cameraCount() const { return static_cast<int>(m_cameras.size()); }
    int activeIndex() const { return m_active; }
    void selectCamera(int index);        // out of range: nothing happens
    void nextCamera();                   // scene cameras in turn, then the free camera
    int viewCamera() const;              // the camera looked through
    std::string viewName() const;        // its name, "Free camera" for the free one
    // Flying starts from the view's place: the free camera takes it over and becomes the view.
    void takeOverView();
    FreeFly& fly() { return m_fly; }

    bool paused() const { return m_paused; }
    void setPaused(bool paused) { m_paused = paused; }
    // Real time passed: the chase rules run whole steps of it (unless paused), the free
    // camera flies by it. Answers the steps run.
    int advance(double seconds);
    // Exactly one step of the chase rules (the headless run's frame), paused or not.
    void step();

    // Renders the view into the player's target of that size; false when the engine refuses.
    bool render(int width, int height);
    int target() const { return m_target; }
    // RGBA bytes of the last render (R, G, B, A), width * height * 4.
    const unsigned char* pixels() const;
    int width() const;
    int height() const;

    double worldSize() const { return m_worldSize; }
    const std::string& path() const { return m_path; }

  private:
    void frameWorld(); // places the free camera so that the whole world is in view
    std::string m_path;
    std::vector<int> m_cameras;
    int m_active = -1;
    int m_free = 0;
    int m_target = 0;
    bool m_paused = false;
    double m_worldSize = 1000;
    FreeFly m_fly;
};

} // namespace vexil::viewer
