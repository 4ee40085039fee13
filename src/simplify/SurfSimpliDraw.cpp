// Diagnostic drawing of the model on the paintable area of the workbench,
// and the rectangle selection of mesh points. The pens are chosen here (the design leaves it):
// points and single records in the pen given; a record's associations in contrasting pens.
#include "simplify/SurfSimpli.h"

#include <algorithm>

namespace simplify {

void SurfSimpli::project(int point, double& x, double& y, bool& ok) const {
    ok = canvas_ && point >= 0 && point <= PointCount() &&
         canvas_->project(pts_[static_cast<std::size_t>(point)].xyz, x, y);
}

void SurfSimpli::DisplayPoint(int point, SimpPen pen) {
    double x, y;
    bool ok;
    project(inPt(point), x, y, ok);
    if (ok) canvas_->drawCircle(pen, x, y, 4.0);
}

void SurfSimpli::DisplayEdge(int edge, SimpPen pen) {
    if (!canvas_ || edge < 1 || edge > EdgeCount()) return;
    const EdgeHot& E = edges_[static_cast<std::size_t>(inEdge(edge))];
    double x1, y1, x2, y2;
    bool ok1, ok2;
    project(E.a, x1, y1, ok1);
    project(E.b, x2, y2, ok2);
    if (ok1 && ok2) canvas_->drawLine(pen, x1, y1, x2, y2);
}

void SurfSimpli::DisplayTri(int tri, SimpPen pen) {
    if (!canvas_ || tri < 1 || tri > TriCount()) return;
    const TriHot& T = tris_[static_cast<std::size_t>(inTri(tri))];
    double x[3], y[3];
    bool ok[3];
    for (int k = 0; k < 3; ++k) project(T.pts[k], x[k], y[k], ok[k]);
    for (int k = 0; k < 3; ++k) {
        const int n = (k + 1) % 3;
        if (ok[k] && ok[n]) canvas_->drawLine(pen, x[k], y[k], x[n], y[n]);
    }
}

void SurfSimpli::DisplayTriAndAssEdges(int tri) {
    if (tri < 1 || tri > TriCount()) return;
    DisplayTri(tri, SimpPen::White1);
    for (const int e : tris_[static_cast<std::size_t>(inTri(tri))].edges) DisplayEdge(exEdge(e), SimpPen::Red2);
}

void SurfSimpli::DisplayEdgeAndAssTris(int edge) {
    if (edge < 1 || edge > EdgeCount()) return;
    for (const int t : eTris_.copy(static_cast<std::size_t>(inEdge(edge)))) DisplayTri(exTri(t), SimpPen::Blue1);
    DisplayEdge(edge, SimpPen::Red2);
}

void SurfSimpli::Pt_DisplayAssociatedEdges(int point) {
    if (point < 1 || point > PointCount()) return;
    for (const int e : pEdges_.copy(static_cast<std::size_t>(inPt(point)))) DisplayEdge(exEdge(e), SimpPen::Green2);
}

void SurfSimpli::Pt_DisplayAssociatedTris(int point) {
    if (point < 1 || point > PointCount()) return;
    for (const int t : pTris_.copy(static_cast<std::size_t>(inPt(point)))) DisplayTri(exTri(t), SimpPen::Blue1);
}

void SurfSimpli::DisplayPtAssEdgsAndAssTris(int point) {
    Pt_DisplayAssociatedTris(point);
    Pt_DisplayAssociatedEdges(point);
    DisplayPoint(point, SimpPen::Yellow2);
}

void SurfSimpli::DisplayMinCostEdge() { DisplayEdge(exEdge(minEdge_), SimpPen::Yellow2); }

void SurfSimpli::DrawAllBorderEdges() {
    for (int e = 1; e <= EdgeCount(); ++e) {
        const EdgeHot& E = edges_[static_cast<std::size_t>(inEdge(e))];
        if (E.valid && E.border) DisplayEdge(e, SimpPen::Red1);
    }
}

void SurfSimpli::DisplayAffectedEdges() {
    for (const int e : affectedEdges_) DisplayEdge(exEdge(e), SimpPen::Blue2);
}

void SurfSimpli::DrawSelectedPts() {
    for (const int p : selectedPts_)
        if (p >= 1 && p <= PointCount() && pValid_[static_cast<std::size_t>(inPt(p))]) DisplayPoint(p, SimpPen::Red2);
}

void SurfSimpli::SelectMultiplePoints(double x1, double y1, double x2, double y2, bool ignoreBackFaced,
                                      SelectMode mode, const double cameraLocation[3]) {
    const double left = std::min(x1, x2), right = std::max(x1, x2);
    const double top = std::min(y1, y2), bottom = std::max(y1, y2);
    selectedMark_.clear();
    if (mode == SelectMode::Replace) selectedPts_.clear();
    for (int p = 1; p <= PointCount(); ++p) {
        const std::size_t pi = static_cast<std::size_t>(inPt(p));
        if (!pValid_[pi]) continue;
        double x, y;
        bool ok;
        project(static_cast<int>(pi), x, y, ok);
        if (!ok || x < left || x > right || y < top || y > bottom) continue;
        if (ignoreBackFaced && cameraLocation) {
            // faces away: the vertex normal points away from the camera
            const Vec3& n = pNormal_[pi];
            const double* c = pts_[pi].xyz;
            const double d = n[0] * (cameraLocation[0] - c[0]) + n[1] * (cameraLocation[1] - c[1]) +
                             n[2] * (cameraLocation[2] - c[2]);
            if (d < 0) continue;
        }
        if (mode == SelectMode::Remove) RemoveSelectedPt(p);
        else if (!IsPtSelected(p)) selectedPts_.push_back(p);
    }
}

} // namespace simplify
