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
    splitRigid();
    if (m_pressed) takeStaticBox();
    l.valid = true;
}

// The bounds of the group's points that a step does not move: a step then bounds only the sets instead of
// every point of the group.
void mdlExtrude::takeStaticBox() {
    LiveSets& l = m_live;
    if (ZELMAR_group_is_group(m_group) != 1 || !l.uniform) return;
    const int count = ZELMAR_group_get_polygons(m_group, nullptr, 0);
    std::vector<int> pols(size_t(std::max(count, 0)));
    if (count > 0) ZELMAR_group_get_polygons(m_group, pols.data(), count);
    const int total = pols.empty() ? 0 : ZELMAR_polygons_get_points(pols.data(), count, nullptr, nullptr, nullptr, 0);
    std::vector<int> pts(size_t(std::max(total, 0)));
    std::vector<double> xyz(3 * pts.size());
    if (total > 0) ZELMAR_polygons_get_points(pols.data(), count, pts.data(), nullptr, xyz.data(), total);
    ZELMAR_group_calculate_axis_system(m_group, l.axis[0], l.axis[1], l.axis[2]);
    const std::vector<int>& inSets = l.points; // in handle order
    for (int k = 0; k < 3; ++k) {
        l.lo[k] = INFINITY;
        l.hi[k] = -INFINITY;
    }
    for (size_t i = 0; i < pts.size(); ++i) {
        if (std::binary_search(inSets.begin(), inSets.end(), pts[i])) continue;
        const double* q = &xyz[3 * i];
        for (int k = 0; k < 3; ++k) {
            const double o = l.axis[k][0] * q[0] + l.axis[k][1] * q[1] + l.axis[k][2] * q[2];
            l.lo[k] = std::min(l.lo[k], o);
            l.hi[k] = std::max(l.hi[k], o);
        }
    }
    l.boxed = true;
}

// SelectionBox().Initialize(m_group) from the kept bounds and the sets' locations.
void mdlExtrude::initializeBox() {
    SelectionModel* m = selectionModel();
    frmPicWins* v = m ? m->Views() : nullptr;
    if (!v || ZELMAR_group_is_group(m_group) != 1) return;
    const LiveSets& l = m_live;
    if (!m_pressed || !l.valid || !l.boxed || !l.uniform) {
        v->SelectionBox().Initialize(m_group);
        return;
    }
    double lo[3] = {l.lo[0], l.lo[1], l.lo[2]}, hi[3] = {l.hi[0], l.hi[1], l.hi[2]};
    for (const Vec3d& q : l.loc)
        for (int k = 0; k < 3; ++k) {
            const double o = l.axis[k][0] * q[0] + l.axis[k][1] * q[1] + l.axis[k][2] * q[2];
            lo[k] = std::min(lo[k], o);
            hi[k] = std::max(hi[k], o);
        }
    if (!(lo[0] <= hi[0])) { // no point at all: the engine's answer for an empty group
        v->SelectionBox().Initialize(m_group);
        return;
    }
    v->SelectionBox().InitializeOriented(m_group, l.axis, lo, hi);
}

// Sorts the touched polygons into rigid (every point in the sets; their size and validity taken now) and
// loose ones.
void mdlExtrude::splitRigid() {
    LiveSets& l = m_live;
    if (l.touched.empty()) return;
    // Outside a gesture the sets are laid out anew for every call: nothing to keep. Within one, the first
    // step snaps sets that were not together, which changes shapes.
    if (!m_pressed || !l.uniform) {
        l.loose = l.touched;
        l.rigidInvalid.push_back(0);
        return;
    }
    const int count = static_cast<int>(l.touched.size());
    const int total = ZELMAR_polygons_get_points(l.touched.data(), count, nullptr, nullptr, nullptr, 0);
    std::vector<int> pts(size_t(std::max(total, 0))), owners(pts.size());
    std::vector<double> xyz(3 * pts.size());
    ZELMAR_polygons_get_points(l.touched.data(), count, pts.data(), owners.data(), xyz.data(), total);
    const std::vector<int>& inSets = l.points; // in handle order
    std::vector<std::pair<double, int>> rigid; // size, polygon
    for (size_t i = 0; i < pts.size();) {
        const int owner = owners[i];
        bool all = true;
        double lo[3] = {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]}, hi[3] = {lo[0], lo[1], lo[2]};
        size_t j = i;
        for (; j < pts.size() && owners[j] == owner; ++j) {
            all = all && std::binary_search(inSets.begin(), inSets.end(), pts[j]);
            for (size_t k = 0; k < 3; ++k) {
                lo[k] = std::min(lo[k], xyz[3 * j + k]);
                hi[k] = std::max(hi[k], xyz[3 * j + k]);
            }
        }
        if (all)
            rigid.emplace_back(std::max({hi[0] - lo[0], hi[1] - lo[1], hi[2] - lo[2]}), owner);
        else
            l.loose.push_back(owner);
        i = j;
    }
    std::sort(rigid.begin(), rigid.end());
    l.rigidInvalid.push_back(0);
    for (const auto& [size, pol] : rigid) {
        l.rigid.push_back(pol);
        l.rigidSize.push_back(size);
        l.rigidInvalid.push_back(l.rigidInvalid.back() + (ZELMAR_polygon_is_valid(pol) == 1 ? 0 : 1));
    }
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
    LiveSets& l = live();
    // Rigid polygons of at least this size at the press kept their validity.
    const double scale = std::fabs(l.scale);
    const double keep = scale >= 1 ? 1.0 : 1.0 / scale;
    const size_t first = static_cast<size_t>(
        std::lower_bound(l.rigidSize.begin(), l.rigidSize.end(), keep) - l.rigidSize.begin());
    l.check = l.loose;
    l.check.insert(l.check.end(), l.rigid.begin(), l.rigid.begin() + static_cast<long>(first));
    int invalid = l.rigidInvalid.empty() ? 0 : l.rigidInvalid.back() - l.rigidInvalid[first];
    if (!l.check.empty()) invalid += ZELMAR_polygons_count_invalid(l.check.data(), static_cast<int>(l.check.size()));
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
    if (m_live.valid) m_live.scale *= f;
    BevelFactor *= f;
}

void mdlExtrude::afterStep() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    validate();
    computeCentre();
    initializeBox();
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
