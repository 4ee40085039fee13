// The editor's own marks over an engine picture: edges and point marks projected through the current
// camera, the box of a group and the wireframe of a group. All drawing goes to a QPainter open on the
// back buffer of the viewport being painted, whose camera is current.
#pragma once
#include <QPen>
#include <array>

class QPainter;

namespace vexil {

// The twelve pens of the main window, made once: white 1; red 1, 2; green 1, 2; blue 1, 2; yellow 1, 2;
// grey (122,122,122) 1; black 1 twice. The grid uses grey for its cells and yellow 1 for the axes.
struct ViewPens {
    QPen white1, red1, red2, green1, green2, blue1, blue2, yellow1, yellow2, grey1, black1, black1b;
    const QPen& gridThin() const { return grey1; }
    const QPen& gridStrong() const { return yellow1; }
};
const ViewPens& Pens();

// Projects the segment (clipped to the near plane and the picture) and draws it; false when nothing of it
// is in view.
bool DrawEdge3D(QPainter& p, const double a[3], const double b[3]);
// A square of half-width `half` around the projection of `pt`; false (nothing drawn) unless the point
// projects into the picture.
bool DrawPointMark(QPainter& p, const double pt[3], int half);

// A 2D line drawer bound to one painter (the gizmo's handles).
class myLine {
  public:
    void SetDC(QPainter* p) { m_p = p; }
    void Draw(int x1, int y1, int x2, int y2);

  private:
    QPainter* m_p = nullptr;
};

// The box of one group: eight corners in world space that turn with the group.
class BoundingBox {
  public:
    void Initialize(int group);
    // The same box from the bounds of the group's points already taken along its axes (the rows of
    // `axis`, as group_calculate_axis_system answers them), for callers that keep them up to date.
    void InitializeOriented(int group, const double axis[3][3], const double lo[3], const double hi[3]);
    // Twelve edges in white.
    void Draw(QPainter& p) const;
    int Group() const { return m_group; }
    const std::array<std::array<double, 3>, 8>& Corners() const { return m_corners; }

  private:
    int m_group = 0;
    std::array<std::array<double, 3>, 8> m_corners{};
};

// The polygons of a group that face the camera, as one set of lines drawn by a single call.
class Wireframe {
  public:
    // Returns the number of polygons drawn.
    int Draw(QPainter& p, int group, const QPen& pen);
};

} // namespace vexil
