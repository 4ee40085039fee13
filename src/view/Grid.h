// The construction grid of one viewport. It exists only in parallel views that look along a world axis;
// its cell is a power of ten fitted to the zoom, and Snap rounds a mouse position on the grid plane.
#pragma once
#include "maths/Maths.h"

#include <QString>

class QPainter;

namespace vexil {

// What a grid reads of the viewports around it.
class GridContext {
  public:
    virtual ~GridContext() = default;
    // UpdateCamerasSingle(index).
    virtual void RepaintView(int index) = 0;
    virtual void SetStatusText(const QString& text) = 0;
    virtual int SignificantDecimals() = 0;
};

// The cell size for a raw step: 1, 10, 100 ... (at least one decade step from 0.1, at most past 1e9).
double FitCellSize(double rawStep);
// One coordinate snapped to the grid: origin + Round((w - origin) / cell) * cell, rounding half to even.
double SnapToCell(double w, double origin, double cell);
// A number as the status bar shows it: rounded half to even to `decimals` places, shortest form.
QString FormatRounded(double v, int decimals);

class Grid {
  public:
    // Density comes from the setting "GridDensity" (default 40).
    explicit Grid(GridContext& ctx);

    bool GridVisible = false;
    bool GridSnapOn = false;
    int Density = 40;
    double CellSize = 1.0;
    int GridAxis = 0; // 1 view along x, 2 along y, 0 along z
    Maths::Vector GridOrigin{0, 0, 0};
    double GridPlane[4] = {0, 0, 1, 0};
    bool SnapMarkVisible = false;
    Maths::Vector SnapPoint{0, 0, 0};
    int WindowIndex = 0;

    void Initialize(int windowIndex) { WindowIndex = windowIndex; }
    // Works out the axis, plane and cell for the current camera; draws with p when given. False (and
    // nothing drawn, CellSize kept) when the view does not look along an axis.
    bool Draw(QPainter* p);
    // The snap mark at SnapPoint, when SnapMarkVisible.
    void DrawSnapMark(QPainter& p) const;
    void ToggleVisibility();
    void ToggleSnap() { GridSnapOn = !GridSnapOn; }
    double GetGridSize();
    // Window pixel to world location on the grid plane; writes the status text.
    void Snap(int x, int y, Maths::Vector& coordinates);

    // World index (0 x, 1 y, 2 z) of the view axis, and of the two in-plane axes in the order Snap uses.
    int NormalIndex() const;
    void InPlaneIndices(int& first, int& second) const;

  private:
    GridContext& m_ctx;
};

} // namespace vexil
