#include "Grid.h"

#include "Overlays.h"
#include "frame/Preferences.h"

#include <QLine>
#include <QPainter>
#include <cmath>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil {

double FitCellSize(double rawStep) {
    double c = 0.1;
    do {
        c *= 10;
    } while (!(c > rawStep || c > 1000000000.0));
    return c;
}

double SnapToCell(double w, double origin, double cell) {
    if (cell == 0) return w;
    return origin + std::nearbyint((w - origin) / cell) * cell;
}

QString FormatRounded(double v, int decimals) {
    if (decimals < 0) decimals = 0;
    if (decimals > 15) decimals = 15;
    const double scale = std::pow(10.0, decimals);
    double r = std::nearbyint(v * scale) / scale; // half to even, as the status bar always rounded
    if (!std::isfinite(r)) r = v;
    if (r == 0) r = 0; // no "-0"
    return QString::number(r, 'g', 15);
}

Grid::Grid(GridContext& ctx) : m_ctx(ctx) {
    // A stored value that is not a density is reported once, by the main window; here it leaves 40.
    Density = static_cast<int>(std::lround(ReadGridDensity()));
}

int Grid::NormalIndex() const {
    return GridAxis == 1 ? 0 : GridAxis == 2 ? 1 : 2;
}

void Grid::InPlaneIndices(int& first, int& second) const {
    switch (GridAxis) {
    case 2:
        first = 0, second = 2;
        break;
    case 1:
        first = 2, second = 1;
        break;
    default:
        first = 0, second = 1;
        break;
    }
}

bool Grid::Draw(QPainter* p) {
    const int cam = ZELMAR_camera_get_current();
    double dir[3] = {0, 0, 0}, loc[3] = {0, 0, 0};
    ZELMAR_camera_get_direction1(cam, dir);
    ZELMAR_camera_get_location1(cam, loc);

    int axis = -1;
    for (int i = 0; i < 3 && axis < 0; ++i) {
        const double r = std::nearbyint(dir[i] * 100000.0) / 100000.0;
        if (r == 1.0 || r == -1.0) axis = i;
    }
    if (axis < 0) return false; // perspective or free view: no grid, CellSize kept
    GridAxis = axis == 0 ? 1 : axis == 1 ? 2 : 0;

    const int n = NormalIndex();
    for (double& e : GridPlane)
        e = 0;
    GridPlane[n] = 1.0;
    GridPlane[3] = -GridOrigin[n];

    // Centre of the view on the grid plane.
    Maths::Vector centre{loc[0], loc[1], loc[2]};
    const Maths::Vector start{loc[0], loc[1], loc[2]};
    const Maths::Vector end{loc[0] + dir[0], loc[1] + dir[1], loc[2] + dir[2]};
    const Maths::Vector normal{GridPlane[0], GridPlane[1], GridPlane[2]};
    Maths::LineMeetsPlane(start, end, GridOrigin, normal, centre);

    const double E = std::abs(ZELMAR_camera_get_zoom(cam) * loc[n] * 1.2 * 3.14159265358979 / 180);
    CellSize = FitCellSize(Density > 0 ? E / Density : 0.0);
    if (!p) return true;

    int a = 0, b = 1;
    InPlaneIndices(a, b);
    const double half = E / 2;
    const double loA = std::floor((centre[a] - half) / CellSize),
                 hiA = std::ceil((centre[a] + half) / CellSize);
    const double loB = std::floor((centre[b] - half) / CellSize),
                 hiB = std::ceil((centre[b] + half) / CellSize);
    // Lines are projected one by one and drawn in two batches, cells then axes.
    std::vector<QLine> cells, axes;
    auto edge = [&](std::vector<QLine>& out, double ca0, double cb0, double ca1, double cb1) {
        double p0[3], p1[3];
        p0[n] = p1[n] = GridOrigin[n];
        p0[a] = ca0, p0[b] = cb0, p1[a] = ca1, p1[b] = cb1;
        int r1[2], r2[2];
        if (ZELMAR_engine_3D_edge_to_2D(p0, p1, r1, r2) != 0) out.emplace_back(r1[0], r1[1], r2[0], r2[1]);
    };
    for (double i = loA; i <= hiA; ++i)
        edge(cells, i * CellSize, loB * CellSize, i * CellSize, hiB * CellSize);
    for (double j = loB; j <= hiB; ++j)
        edge(cells, loA * CellSize, j * CellSize, hiA * CellSize, j * CellSize);
    if (loA <= 0 && hiA >= 0) edge(axes, 0, loB * CellSize, 0, hiB * CellSize);
    if (loB <= 0 && hiB >= 0) edge(axes, loA * CellSize, 0, hiA * CellSize, 0);
    p->save();
    p->setPen(Pens().gridThin());
    p->drawLines(cells.data(), static_cast<int>(cells.size()));
    p->setPen(Pens().gridStrong());
    p->drawLines(axes.data(), static_cast<int>(axes.size()));
    p->restore();
    return true;
}

void Grid::DrawSnapMark(QPainter& p) const {
    if (!SnapMarkVisible) return;
    p.save();
    p.setPen(Pens().gridStrong());
    const double s[3] = {SnapPoint[0], SnapPoint[1], SnapPoint[2]};
    DrawPointMark(p, s, 4);
    int a = 0, b = 1;
    InPlaneIndices(a, b);
    for (int k : {a, b}) {
        double p0[3] = {s[0], s[1], s[2]}, p1[3] = {s[0], s[1], s[2]};
        p0[k] -= CellSize;
        p1[k] += CellSize;
        DrawEdge3D(p, p0, p1);
    }
    p.restore();
}

void Grid::ToggleVisibility() {
    GridVisible = !GridVisible;
    m_ctx.RepaintView(WindowIndex);
}

double Grid::GetGridSize() {
    Draw(nullptr);
    return CellSize;
}

void Grid::Snap(int x, int y, Maths::Vector& coordinates) {
    double w[3] = {0, 0, 0};
    if (ZELMAR_engine_2D_point_to_3D_point_on_plane(x, y, GridPlane, w) != 1) {
        SnapMarkVisible = false;
        return;
    }
    const Maths::Vector W{w[0], w[1], w[2]};
    Maths::Vector S = W;
    int a = 0, b = 1;
    InPlaneIndices(a, b);
    for (int k : {a, b})
        S[k] = SnapToCell(W[k], GridOrigin[k], CellSize);
    const int n = NormalIndex();
    S[n] = -GridPlane[3];

    Maths::Vector answer;
    if (Maths::Distance(W, S) < CellSize / 3.0 && GridVisible && GridSnapOn) {
        SnapMarkVisible = true;
        SnapPoint = S;
        answer = S;
    } else {
        SnapMarkVisible = false;
        answer = W;
    }
    const int d = m_ctx.SignificantDecimals();
    m_ctx.SetStatusText("[ " + FormatRounded(answer[0], d) + ", " + FormatRounded(answer[1], d) + ", " +
                        FormatRounded(answer[2], d) + " ]");
    if (coordinates.size() < 3) coordinates.resize(3);
    for (int i = 0; i < 3; ++i)
        coordinates[i] = answer[i];
}

} // namespace vexil
