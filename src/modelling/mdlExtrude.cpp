#include "mdlExtrude.h"

#include "ExtrudeActions.h"
#include "ModellingRefresh.h"
#include "PolygonNodes.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "selection/ActionTransformSubObject.h"
#include "selection/SelectionModel.h"
#include "selection/WeldedPoints.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"

#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

std::vector<int> selectedPols() {
    return Sel().SelPols.ToVector();
}

Vec3d polsCentre() {
    return Sel().SelPolsAvgCenter;
}

double distance(const Vec3d& a, const Vec3d& b) {
    return std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) + (a[2] - b[2]) * (a[2] - b[2]));
}

} // namespace

mdlExtrude& mdlExtrude::Instance() {
    static mdlExtrude m;
    return m;
}

// ---- the live step ----------------------------------------------------------------------------------
//
// A step moves every weld set of the selection and then asks which touched polygons went bad and where the
// pivot is. Done point by point through the table that is tens of thousands of scattered engine reads per
// step; instead the sets are laid out once per gesture (their points in handle order, so that the engine
// is written in the order it keeps them) and each set's location is kept here: after a step every point of
// a set lies exactly where the step put it, which is what reading its first point back would answer.

void mdlExtrude::buildLive() {
    LiveSets& l = m_live;
    l = LiveSets();
    const HandleArray& idx = Sel().SelPolsWeldedPts;
    const WeldTableT& table = WeldTable();
    std::vector<std::pair<int, int>> pairs; // point, set
    for (int i = 1; i <= idx.Count(); ++i) {
        const WeldedPoints* w = table.At(idx[i]);
        if (!w || w->Count() == 0) continue;
        const int set = static_cast<int>(l.firstPoint.size());
        l.firstPoint.push_back(w->Point(1));
        for (int j = 1; j <= w->Count(); ++j) {
            pairs.emplace_back(w->Point(j), set);
            l.touched.push_back(w->CorrsPol(j));
        }
    }
    std::sort(pairs.begin(), pairs.end());
    l.points.reserve(pairs.size());
    l.setOf.reserve(pairs.size());
    for (const auto& [pt, set] : pairs) {
        l.points.push_back(pt);
        l.setOf.push_back(set);
    }
    std::sort(l.touched.begin(), l.touched.end());
    l.touched.erase(std::unique(l.touched.begin(), l.touched.end()), l.touched.end());
    // Where the sets are: each first point's location; uniform when every other point is exactly there.
    l.loc.assign(l.firstPoint.size(), Vec3d{0, 0, 0});
    if (!l.firstPoint.empty())
        ZELMAR_points_get_values(l.firstPoint.data(), static_cast<int>(l.firstPoint.size()), 1, l.loc.front().data());
    l.xyz.assign(3 * l.points.size(), 0.0);
    if (!l.points.empty())
        ZELMAR_points_get_values(l.points.data(), static_cast<int>(l.points.size()), 1, l.xyz.data());
    l.uniform = true;
    for (size_t i = 0; i < l.points.size() && l.uniform; ++i)
        for (size_t k = 0; k < 3; ++k)
            if (l.xyz[3 * i + k] != l.loc[size_t(l.setOf[i])][k]) l.uniform = false;
    l.polygons = selectedPols();
    l.valid = true;
}

mdlExtrude::LiveSets& mdlExtrude::live() {
    // Outside a gesture (an action replaying a bevel) nothing is kept from one call to the next.
    if (!m_pressed || !m_live.valid) buildLive();
    return m_live;
}

void mdlExtrude::moveSets(const std::function<Vec3d(const Vec3d&)>& to) {
    LiveSets& l = live();
    for (Vec3d& p : l.loc)
        p = to(p);
    for (size_t i = 0; i < l.points.size(); ++i) {
        const Vec3d& p = l.loc[size_t(l.setOf[i])];
        l.xyz[3 * i] = p[0];
        l.xyz[3 * i + 1] = p[1];
        l.xyz[3 * i + 2] = p[2];
    }
    if (!l.points.empty())
        ZELMAR_points_set_values(l.points.data(), static_cast<int>(l.points.size()), 1, l.xyz.data());
    l.uniform = true;
    l.centred = false;
    if (!m_pressed) m_live.valid = false;
}

// SelectionModel::ComputeSelPolsAvgCenter on the kept sets: the mean of the polygons' centres, then the
// nearest point of the sets (the first of its set on a tie, as the walk over every point would find it).
void mdlExtrude::computeCentre() {
    SelectionModel* m = selectionModel();
    LiveSets& l = live();
    if (!m) return;
    if (!l.uniform || l.polygons.empty()) {
        m->ComputeSelPolsAvgCenter();
        return;
    }
    SelectionState& s = Sel();
    if (m_pressed && l.centred && s.SelPolsAvgCenter == l.centre && s.PtNearestToAvgCenter == l.nearest) return;
    const int n = static_cast<int>(l.polygons.size());
    l.centres.assign(3 * l.polygons.size(), 0.0);
    ZELMAR_polygons_get_centers(l.polygons.data(), n, l.centres.data());
    Vec3d sum{0, 0, 0};
    for (size_t i = 0; i < l.polygons.size(); ++i)
        for (size_t k = 0; k < 3; ++k)
            sum[k] += l.centres[3 * i + k];
    for (size_t k = 0; k < 3; ++k)
        s.SelPolsAvgCenter[k] = sum[k] / n;
    double best = SelectionState::FarAway;
    for (size_t i = 0; i < l.loc.size(); ++i) {
        const double d = distance(l.loc[i], s.SelPolsAvgCenter);
        if (d < best) {
            best = d;
            s.PtNearestToAvgCenter = l.firstPoint[i];
        }
    }
    l.centred = true;
    l.centre = s.SelPolsAvgCenter;
    l.nearest = s.PtNearestToAvgCenter;
}

// SelectionModel::ValidateChangedPolygons on the kept list of touched polygons.
void mdlExtrude::validate() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    if (m->Host().CurrentSelectMode() == SelectMode::Point) {
        m->ValidateChangedPolygons();
        return;
    }
    const LiveSets& l = live();
    const int invalid = l.touched.empty() ? 0
                                          : ZELMAR_polygons_count_invalid(l.touched.data(), static_cast<int>(l.touched.size()));
    m->Host().ShowInvalidPolygons(invalid);
}

void mdlExtrude::updwnExtBvl_MouseDown(int index) {
    SelectionModel* m = selectionModel();
    IgnoreExtBvlChange = false;
    m_pressed = true;
    m_group = Sel().CurrSelEntity;
    if (index == 0) {
        if (SetStep) SetStep(0, 1.0);
        if (m) m->ComputeSelPolsAvgCenter();
        ExtrudeInitialLoc = polsCentre();
        m_before.Capture(PointsOfPolygons(selectedPols()));
        ExtrudedPols.clear();
        ExtrudeBegin();
        if (m) m->UpdateSelPolsRelatedPtsArray();
        buildLive();
    } else {
        BevelReset();
        if (SetStep) SetStep(1, 0.01);
        std::vector<int> pts = PointsOfSets(SelectedWeldSets());
        const std::vector<int> sides = PointsOfPolygons(ExtrudedPols);
        pts.insert(pts.end(), sides.begin(), sides.end());
        m_before.Capture(pts);
        buildLive();
    }
}

void mdlExtrude::ExtrudeBegin() {
    const std::vector<int> pols = selectedPols();
    if (pols.empty()) return;
    ExtrudeOffset = {0, 0, 0};
    BoundaryEdges = CollectBoundaryEdges(pols);
    const ExtrudeFill fill = FillOf(pols.front());
    ExtrudeNormal = AveragedNormal(pols);
    ExtrudeNormalCopy = ExtrudeNormal;
    if (IsZeroNormal(ExtrudeNormal)) {
        dialogs().msgBox(GetLocaleString(613), MsgOKOnly, MsgInformation);
        return;
    }
    for (size_t k = 0; k < 3; ++k)
        ExtrudeSeedOffset[k] = ExtrudeNormal[k] * ExtrudeSeedFactor;
    ExtrudedPols = MakeExtrudeSides(pols, BoundaryEdges, m_group, polsCentre(), ExtrudeSeedOffset, fill);
    AddPolygonNodes(m_group, ExtrudedPols);
    UpdateStatusBar();
    WeldTableLeave(pols);
    WeldTableEnter(pols);
    WeldTableEnter(ExtrudedPols);
}

void mdlExtrude::ExtrudeChange(double amount) {
    if (Sel().SelPols.Count() == 0 || IsZeroNormal(ExtrudeNormal)) return;
    Vec3d delta{};
    for (size_t k = 0; k < 3; ++k)
        delta[k] = ExtrudeNormal[k] * amount - ExtrudeOffset[k];
    moveSets([&](const Vec3d& p) { return Vec3d{p[0] + delta[0], p[1] + delta[1], p[2] + delta[2]}; });
    for (size_t k = 0; k < 3; ++k)
        ExtrudeOffset[k] += delta[k];
}

void mdlExtrude::BevelChange(double value) {
    if (BevelFactor == 0) BevelFactor = 1.0;
    const double f = value / BevelFactor;
    computeCentre();
    const Vec3d c = polsCentre();
    moveSets([&](const Vec3d& p) {
        return Vec3d{c[0] + f * (p[0] - c[0]), c[1] + f * (p[1] - c[1]), c[2] + f * (p[2] - c[2])};
    });
    SetPlaneNormals(ExtrudedPols);
    BevelFactor *= f;
}

void mdlExtrude::afterStep() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    validate();
    computeCentre();
    if (frmPicWins* v = m->Views())
        if (ZELMAR_group_is_group(m_group) == 1) v->SelectionBox().Initialize(m_group);
}

void mdlExtrude::LiveStep(int index, double value) {
    if (index == 0)
        ExtrudeChange(value);
    else
        BevelChange(value);
    afterStep();
}

void mdlExtrude::updwnExtBvl_Change(int index, double value) {
    if (IgnoreExtBvlChange || value == 0) return;
    LiveStep(index, value);
    if (SelectionModel* m = selectionModel())
        if (frmPicWins* v = m->Views()) v->UpdateCameras(); // all four views follow the drag
}

void mdlExtrude::updwnExtBvl_MouseUp(int index, double /*value*/) {
    if (!m_pressed) return;
    m_pressed = false;
    IgnoreExtBvlChange = true;
    SelectionModel* m = selectionModel();
    if (index == 0) {
        ExtrudeFinalLoc = polsCentre();
        if (m && Sel().SelPols.Count() > 0) {
            ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionExtrude);
            if (auto* a = env->As<ActionExtrude>()) {
                a->SetMovedPolsArray(selectedPols());
                a->SetAddedPolsArray(m_group, ExtrudedPols);
                a->SetInitialLoc(ExtrudeInitialLoc);
                a->SetFinalLoc(ExtrudeFinalLoc);
                a->SetPointsBefore(m_before);
                m->Host().UndoStack().Push(env);
            }
        }
        if (SetValue) SetValue(0, 0.0);
    } else {
        // The value applied is the product of the steps taken; back at 1 the points go back exactly.
        if (BevelFactor == 1.0) m_before.Restore();
        if (m && BevelFactor != 1.0) {
            ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionBevel);
            if (auto* a = env->As<ActionBevel>()) {
                a->SetBevelAmount(BevelFactor);
                a->SetPointsBefore(m_before);
                m->Host().UndoStack().Push(env);
            }
        }
        if (SetValue) SetValue(1, 1.0);
        BevelReset();
    }
    m_before = PointsSnapshot();
    m_live = LiveSets();
    UpdateCameras();
}

} // namespace vexil
