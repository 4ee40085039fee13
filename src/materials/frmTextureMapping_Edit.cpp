// The texture map editor's gestures: selecting coordinates with a rubber band, moving, rotating and scaling
// them with the mouse, mirroring them, and the zoom that fits a selection.
#include "frmTextureMapping.h"

#include "ActionChngTextureCoords.h"
#include "MaterialsHost.h"
#include "TextureMapPicture.h"
#include "frame/InputState.h"
#include "maths/Maths.h"
#include "selection/ActionSubSelect.h"
#include "selection/SelectionState.h"

#include <cmath>
#include <unordered_set>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

bool xHeld() { return keyDown(Qt::Key_X) || keyDown(Qt::Key_1); }
bool yHeld() { return keyDown(Qt::Key_Y) || keyDown(Qt::Key_2); }

ActionRef makeAction(int type) {
    ActionRef ref = ActionUndoRedo_Stack::MakeAction(type);
    if (type == AT_ActionChngTextureCoords && !ref->As<ActionChngTextureCoords>())
        ref->SetObject(std::make_unique<ActionChngTextureCoords>());
    if (type == AT_ActionSelectCoords && !ref->As<ActionSelectCoords>())
        ref->SetObject(std::make_unique<ActionSelectCoords>());
    return ref;
}

void push(const ActionRef& ref) {
    if (ActionUndoRedo_Stack* s = materialsHost().UndoStack()) s->Push(ref);
}

std::vector<int> encode(const std::vector<PointOfPolygon>& points) {
    std::vector<int> items{0};
    items.reserve(points.size() * 2 + 1);
    for (const PointOfPolygon& p : points) items.push_back(p.point), items.push_back(p.polygon);
    return items;
}

} // namespace

const std::vector<PointOfPolygon>& frmTextureMapping::ListedPoints() const {
    return SelectedOnly() ? SelPtsOfSelPols : SelPts;
}

// ---- selection lists -----------------------------------------------------------------------------------

void frmTextureMapping::ResetSelections() {
    SelPts.clear();
    SelPtsOfSelPols.clear();
    OverSelection = false;
}

void frmTextureMapping::SetSelPts_And_OwnerPols(const std::vector<PointOfPolygon>& points) {
    SelPts = points;
}

void frmTextureMapping::SetSelPtsPartOfSelPols_And_OwnerPols(const std::vector<PointOfPolygon>& points) {
    SelPtsOfSelPols = points;
}

void frmTextureMapping::SetSelPtsPartOfSelPols() {
    const HandleArray& pols = Sel().SelPols;
    SelPtsOfSelPols.clear();
    for (const PointOfPolygon& p : SelPts)
        if (pols.Contains(p.polygon)) SelPtsOfSelPols.push_back(p);
}

bool frmTextureMapping::rectSelect(const QRect& r, std::vector<PointOfPolygon>& hits) const {
    if (!m_group || !ZELMAR_group_is_group(m_group)) return false;
    for (int p : GroupPolygons(m_group))
        for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt)) {
            double uv[2];
            ZELMAR_point_get_bitmap_xy(pt, uv);
            const QPointF q = ScreenOf(uv[0], uv[1]);
            if (q.x() >= r.left() && q.x() <= r.right() && q.y() >= r.top() && q.y() <= r.bottom())
                hits.push_back({pt, p});
        }
    return true;
}

void frmTextureMapping::recordSelection(ActionRef& ref, bool old) {
    auto* a = ref->As<ActionSelectCoords>();
    const std::vector<int> items = encode(SelPts);
    if (old) a->SetOldSelCoords(items, int(items.size()) - 1);
    else a->SetNewSelCoords(items, int(items.size()) - 1);
}

void frmTextureMapping::SelectPts(QPoint pos) {
    ActionRef ref = makeAction(AT_ActionSelectCoords);
    recordSelection(ref, true);
    const std::vector<PointOfPolygon> before = SelPts;
    // SetUpperAndLowerCorners: the anchor and the mouse ordered into a rectangle.
    const QRect r(QPoint(std::min(AnchorX, pos.x()), std::min(AnchorY, pos.y())),
                  QPoint(std::max(AnchorX, pos.x()), std::max(AnchorY, pos.y())));
    std::vector<PointOfPolygon> hits;
    rectSelect(r, hits);
    if (keyDown(Qt::Key_Control)) { // AddToSelection
        std::unordered_set<int> listed;
        for (const PointOfPolygon& p : SelPts) listed.insert(p.point);
        for (const PointOfPolygon& h : hits)
            if (listed.insert(h.point).second) SelPts.push_back(h);
    } else if (keyDown(Qt::Key_Shift)) { // RemoveFromSelection
        std::unordered_set<int> gone;
        for (const PointOfPolygon& h : hits) gone.insert(h.point);
        std::erase_if(SelPts, [&](const PointOfPolygon& p) { return gone.count(p.point) != 0; });
    } else { // FreshSelection
        SelPts = hits;
    }
    SetSelPtsPartOfSelPols();
    m_band = QRect();
    PicMain_Paint();
    const bool same = before.size() == SelPts.size() &&
                      std::equal(before.begin(), before.end(), SelPts.begin(), [](const auto& a, const auto& b) {
                          return a.point == b.point && a.polygon == b.polygon;
                      });
    if (same) return;
    recordSelection(ref, false);
    push(ref);
}

void frmTextureMapping::MultipleSelection(QPoint pos) {
    m_band = QRect(QPoint(std::min(AnchorX, pos.x()), std::min(AnchorY, pos.y())),
                   QPoint(std::max(AnchorX, pos.x()), std::max(AnchorY, pos.y())));
    m_bandMode = keyDown(Qt::Key_Control) ? 1 : keyDown(Qt::Key_Shift) ? 2 : 0;
    PicMain_Paint();
}

int frmTextureMapping::PtMouseIsClosestTo(QPoint pos) const {
    const std::vector<PointOfPolygon>& list = ListedPoints();
    for (std::size_t i = 0; i < list.size(); ++i) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(list[i].point, uv);
        const QPointF q = ScreenOf(uv[0], uv[1]);
        const double dx = q.x() - pos.x(), dy = q.y() - pos.y();
        if (dx * dx + dy * dy < 16) return int(i);
    }
    return -1;
}

// ---- the mouse ---------------------------------------------------------------------------------------------

void frmTextureMapping::PicMain_MouseDown(Qt::MouseButton button, QPoint pos) {
    syncGroup();
    AnchorX = pos.x();
    AnchorY = pos.y();
    LastX = float(pos.x());
    LastY = float(pos.y());
    LastCursor = inputState().cursorPos();
    if (button == Qt::LeftButton && OverSelection &&
        (ToolMode == ToolMove || ToolMode == ToolRotate || ToolMode == ToolScale))
        startChange();
}

void frmTextureMapping::PicMain_MouseMove(Qt::MouseButtons buttons, QPoint pos) {
    const bool left = buttons & Qt::LeftButton;
    switch (ToolMode) {
    case ToolZoom:
        if (left) PicMain_Zoom(float(pos.y()));
        break;
    case ToolPan:
        if (left) PicMain_Pan(float(pos.x()), float(pos.y()));
        break;
    case ToolMove:
    case ToolRotate:
    case ToolScale: MonitorMouse(left, pos); break;
    default:
        if (left) MultipleSelection(pos);
        break;
    }
}

void frmTextureMapping::PicMain_MouseUp(Qt::MouseButton button, QPoint pos) {
    if (button != Qt::LeftButton) return;
    if (m_change) {
        finishChange();
    } else if (ToolMode <= ToolScale && !OverSelection) {
        SelectPts(pos);
    }
    if (!m_band.isNull()) {
        m_band = QRect();
        PicMain_Paint();
    }
}

void frmTextureMapping::MonitorMouse(bool leftDown, QPoint pos) {
    if (leftDown && OverSelection) {
        if (!m_change) startChange();
        SetMoveDistances();
        if (ToolMode == ToolMove) MoveCoords();
        else if (ToolMode == ToolRotate) RotateCoords();
        else if (ToolMode == ToolScale) ScaleCoords();
        return;
    }
    bool found = false;
    if (!leftDown) {
        found = PtMouseIsClosestTo(pos) >= 0;
        static const char* const cursors[] = {"Select", "Move", "Rotate", "Scale"};
        SetMousePtr(found ? QString::fromLatin1(cursors[ToolMode]) : QStringLiteral("Pointer"));
        OverSelection = found;
    }
    if (leftDown && !OverSelection) MultipleSelection(pos);
}

void frmTextureMapping::SetMoveDistances() {
    const QPoint now = inputState().cursorPos();
    Dx = now.x() - LastCursor.x();
    Dy = now.y() - LastCursor.y();
    Distance = std::sqrt(Dx * Dx + Dy * Dy);
    LastCursor = now;
}

void frmTextureMapping::startChange() {
    m_change = makeAction(AT_ActionChngTextureCoords);
    auto* a = m_change->As<ActionChngTextureCoords>();
    if (SelectedOnly()) a->SetPtsChangedToCurrSel();
    else a->SetPtsChangedToGiven(SelPts);
    a->ExtractIniCoordsLoc();
}

void frmTextureMapping::finishChange() {
    ActionRef ref = std::move(m_change);
    m_change.reset();
    if (!ref) return;
    auto* a = ref->As<ActionChngTextureCoords>();
    a->ExtractFnlCoordsLoc();
    if (a->Changed()) push(ref); // a click without a drag is no step
}

// ---- moving, rotating, scaling, mirroring -------------------------------------------------------------------

void frmTextureMapping::MoveCoords() {
    if (ImgWidth == 0 || ImgHeight == 0) return;
    const double du = Dx / ImgWidth, dv = Dy / ImgHeight;
    const bool keepU = yHeld(), keepV = xHeld();
    for (const PointOfPolygon& p : ListedPoints()) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(p.point, uv);
        if (!keepU) uv[0] += du;
        if (!keepV) uv[1] += dv;
        ZELMAR_point_set_bitmap_xy(p.point, uv);
    }
    PicMain_Paint();
    materialsHost().UpdateCameras();
}

void frmTextureMapping::RotateCoords() {
    double pu = 0, pv = 0;
    UvOf(AnchorX, AnchorY, pu, pv);
    for (const PointOfPolygon& p : ListedPoints()) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(p.point, uv);
        double ru = 0, rv = 0;
        Maths::RotatePointXY(uv[0] - pu, uv[1] - pv, Dy, ru, rv);
        uv[0] = pu + ru;
        uv[1] = pv + rv;
        ZELMAR_point_set_bitmap_xy(p.point, uv);
    }
    PicMain_Paint();
    materialsHost().UpdateCameras();
}

void frmTextureMapping::ScaleCoords() {
    double pu = 0, pv = 0;
    UvOf(AnchorX, AnchorY, pu, pv);
    // The absolute value: a drag past factor 0 turns back up and never flips (Mirror does that).
    const double f = std::fabs(1 + 0.005 * Dy);
    const bool keepU = yHeld(), keepV = xHeld();
    for (const PointOfPolygon& p : ListedPoints()) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(p.point, uv);
        if (!keepU) uv[0] = pu + f * (uv[0] - pu);
        if (!keepV) uv[1] = pv + f * (uv[1] - pv);
        ZELMAR_point_set_bitmap_xy(p.point, uv);
    }
    PicMain_Paint();
    materialsHost().UpdateCameras();
}

void frmTextureMapping::Mirror() {
    const bool mu = xHeld(), mv = yHeld();
    if (!mu && !mv) return;
    startChange();
    // ComputeSelectedCoordsCtr: the centre of the listed points' bounding box.
    double lo[2] = {1e108, 1e108}, hi[2] = {-1e108, -1e108};
    for (const PointOfPolygon& p : ListedPoints()) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(p.point, uv);
        for (int k = 0; k < 2; ++k) lo[k] = std::min(lo[k], uv[k]), hi[k] = std::max(hi[k], uv[k]);
    }
    const double cu = lo[0] + (hi[0] - lo[0]) / 2, cv = lo[1] + (hi[1] - lo[1]) / 2;
    for (const PointOfPolygon& p : ListedPoints()) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(p.point, uv);
        if (mu) uv[0] = cu - (uv[0] - cu);
        if (mv) uv[1] = cv - (uv[1] - cv);
        ZELMAR_point_set_bitmap_xy(p.point, uv);
    }
    PicMain_Paint();
    materialsHost().UpdateCameras();
    finishChange();
}

// ---- zoom extent -------------------------------------------------------------------------------------------

void frmTextureMapping::ZoomExtent() {
    syncGroup();
    const bool only = SelectedOnly();
    if (only && Sel().SelPols.Count() == 0) return;
    // SetSelectionBoundingCorners.
    std::vector<int> points;
    const bool ctrl = keyDown(Qt::Key_Control);
    const std::vector<PointOfPolygon>& listed = only ? SelPtsOfSelPols : SelPts;
    if (!listed.empty() && !ctrl) {
        for (const PointOfPolygon& p : listed) points.push_back(p.point);
    } else {
        const std::vector<int> pols = only ? SelectedPolygons() : GroupPolygons(m_group);
        for (const PointOfPolygon& p : PolygonPointPairs(pols)) points.push_back(p.point);
    }
    if (points.empty()) {
        PicMain_Paint();
        return;
    }
    double lo[2] = {1e108, 1e108}, hi[2] = {-1e108, -1e108};
    for (int pt : points) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(pt, uv);
        for (int k = 0; k < 2; ++k) lo[k] = std::min(lo[k], uv[k]), hi[k] = std::max(hi[k], uv[k]);
    }
    const double bw = hi[0] - lo[0], bh = hi[1] - lo[1];
    const double boxW = std::max(1, PicMain->width());
    const double boxH = std::max(1, PicMain->height());
    if (bw != 0 && bh != 0) {
        // The tighter side fixes the zoom.
        if (bw / bh * MapAspect > boxW / boxH) Zoom = boxW / (bw * MapWidth * InitialZoom);
        else Zoom = boxH / (bh * MapHeight * InitialZoom);
        Zoom *= 0.9;
    }
    PanX = int(std::nearbyint((1 - (lo[0] + hi[0])) / 2 * Zoom * InitialZoom * MapWidth));
    PanY = int(std::nearbyint((1 - (lo[1] + hi[1])) / 2 * Zoom * InitialZoom * MapHeight));
    PanX1 = PanX / Zoom;
    PanY1 = PanY / Zoom;
    SetupWithNewZoom();
}

} // namespace vexil
