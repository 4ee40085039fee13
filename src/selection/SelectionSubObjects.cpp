// The selection model: points and polygons of the current group, points of the current track; their
// pivots, select all and invert in each mode, and the overlays that show them.
#include "SelectionModel.h"

#include "base/VexilError.h"

#include "WeldedPoints.h"
#include "document/WorkspaceTrees.h"
#include "view/frmPicWins.h"
#include "ActionSubSelect.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

double distance(const double a[3], const Vec3& b) {
    return std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) +
                     (a[2] - b[2]) * (a[2] - b[2]));
}

// A degenerate axis of a point or track point click widens to five pixels.
PixelRect widened(PixelRect r) {
    if (r.lowX == r.highX) {
        r.lowX -= 2;
        r.highX += 2;
    }
    if (r.lowY == r.highY) {
        r.lowY -= 2;
        r.highY += 2;
    }
    return r;
}

} // namespace

// ---- the scans ----------------------------------------------------------------------------------

void SelectionModel::scanPoints(const PixelRect& r, bool backFaceTest,
                                const std::function<void(int, int)>& hit) {
    makeActiveCameraCurrent();
    double eye[3] = {0, 0, 0};
    ZELMAR_camera_get_location(ZELMAR_camera_get_current(), eye);
    const int group = Sel().CurrSelEntity;
    for (int pol = ZELMAR_group_get_first_polygon(group); pol != 0;
         pol = ZELMAR_group_get_next_polygon(pol)) {
        if (backFaceTest) {
            double plane[4];
            ZELMAR_polygon_get_plane(pol, plane);
            if (ZELMAR_math_get_plane_point_relations(plane, eye, 0.0) == 2) continue;
        }
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            double xyz[3];
            int px[2] = {0, 0};
            ZELMAR_point_get_xyz(pt, xyz);
            if (ZELMAR_engine_3D_point_to_2D(xyz, px) != 0) continue;
            if (r.Contains(px[0], px[1])) hit(pt, pol);
        }
    }
}

// A polygon is hit by its first point inside the rectangle; its points come one after another.
void SelectionModel::scanPolygons(const PixelRect& r, bool backFaceTest,
                                  const std::function<void(int)>& hit) {
    int last = 0;
    scanPoints(r, backFaceTest, [&](int, int pol) {
        if (pol == last) return;
        last = pol;
        hit(pol);
    });
}

std::vector<int> SelectionModel::scanTrackPoints(const PixelRect& r) {
    makeActiveCameraCurrent();
    std::vector<int> hits;
    const int track = Sel().CurrSelEntity;
    const int n = ZELMAR_track_get_number_of_points(track);
    for (int i = 0; i < n; ++i) {
        double xyz[3] = {0, 0, 0};
        int px[2] = {0, 0};
        ZELMAR_track_get_point(track, i, xyz);
        if (ZELMAR_engine_3D_point_to_2D(xyz, px) != 0) continue;
        if (r.Contains(px[0], px[1])) hits.push_back(i);
    }
    return hits;
}

// ---- points -------------------------------------------------------------------------------------

void SelectionModel::SelectMultiplePoints() {
    propagate("Form1", "SelectMultiplePoints", [&] {
        frmPicWins* v = Views();
        SelectionState& s = Sel();
        if (!v || v->ToolMode() != ToolSelect || m_host.CurrentSelectMode() != SelectMode::Point ||
            s.CurrSelEntityType != 1)
            return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionSelectPts);
        auto* a = env->As<ActionSelectPts>();
        if (a) a->SetOldSelPts(s.SelPts.Slots(), s.SelPts.Count());
        const PixelRect r = widened(SetUpperAndLowerCorners());
        switch (keyMode()) {
        case 1:
            AddToSelection(r);
            UpdateSelPtsPolArray();
            break;
        case 2:
            RemoveFromSelection(r);
            UpdateSelPtsPolArray();
            break;
        default: {
            // A fresh scan meets the points in the order of the group's walk, each once: the owner of each
            // hit, in the order of the hits, is what UpdateSelPtsPolArray would find by walking the group
            // again.
            std::vector<int> owners;
            freshSelection(r, &owners);
            s.SelPtsPols.Assign(owners);
            break;
        }
        }
        ComputeSelPtsAvgCenter();
        if (a) a->SetNewSelPts(s.SelPts.Slots(), s.SelPts.Count());
        m_host.UndoStack().Push(env);
    });
}

void SelectionModel::FreshSelection(const PixelRect& r) {
    freshSelection(r, nullptr);
}

void SelectionModel::freshSelection(const PixelRect& r, std::vector<int>* owners) {
    HandleArray& pts = Sel().SelPts;
    pts.Clear();
    scanPoints(r, m_host.IgnoreBackFacedForPtSel(), [&](int pt, int pol) {
        pts.Append(pt);
        if (owners) owners->push_back(pol);
    });
}

void SelectionModel::AddToSelection(const PixelRect& r) {
    HandleArray& pts = Sel().SelPts;
    scanPoints(r, m_host.IgnoreBackFacedForPtSel(), [&](int pt, int) {
        if (!PtAlreadyPartOfSelPtsArray(pt)) pts.Append(pt);
    });
}

void SelectionModel::RemoveFromSelection(const PixelRect& r) {
    std::vector<int> hits;
    scanPoints(r, m_host.IgnoreBackFacedForPtSel(), [&](int pt, int) { hits.push_back(pt); });
    Sel().SelPts.RemoveFirstOfEach(hits);
}

bool SelectionModel::PtAlreadyPartOfSelPtsArray(int point) const {
    return Sel().SelPts.Contains(point);
}

void SelectionModel::RemoveFromSelPtsArray(int point) {
    Sel().SelPts.RemoveFirst(point);
}

void SelectionModel::UpdateSelPtsPolArray() {
    SelectionState& s = Sel();
    s.SelPtsPols.Clear();
    if (s.SelPts.Count() == 0) return;
    const int group = s.CurrSelEntity;
    // One entry per occurrence of a selected point: a polygon with two selected points stands twice.
    for (int pol = ZELMAR_group_get_first_polygon(group); pol != 0; pol = ZELMAR_group_get_next_polygon(pol))
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt))
            for (int k = s.SelPts.Occurrences(pt); k > 0; --k)
                s.SelPtsPols.Append(pol);
}

void SelectionModel::ComputeSelPtsAvgCenter() {
    SelectionState& s = Sel();
    const int n = s.SelPts.Count();
    if (n == 0) return;
    // Each location is read once: the sum and the nearest search share it.
    std::vector<double> xyz(static_cast<size_t>(n) * 3);
    Vec3 sum{0, 0, 0};
    for (int i = 1; i <= n; ++i) {
        double* p = &xyz[static_cast<size_t>(i - 1) * 3];
        ZELMAR_point_get_xyz(s.SelPts[i], p);
        for (int k = 0; k < 3; ++k)
            sum[k] += p[k];
    }
    for (int k = 0; k < 3; ++k)
        s.SelPtsAvgCenter[k] = sum[k] / n;
    nearestPoint(xyz);
}

void SelectionModel::SetPtNearestToAvgCenter() {
    SelectionState& s = Sel();
    std::vector<double> xyz(static_cast<size_t>(s.SelPts.Count()) * 3);
    for (int i = 1; i <= s.SelPts.Count(); ++i)
        ZELMAR_point_get_xyz(s.SelPts[i], &xyz[static_cast<size_t>(i - 1) * 3]);
    nearestPoint(xyz);
}

void SelectionModel::nearestPoint(const std::vector<double>& xyz) {
    SelectionState& s = Sel();
    double best = SelectionState::FarAway;
    for (int i = 1; i <= s.SelPts.Count(); ++i) {
        const double d = distance(&xyz[static_cast<size_t>(i - 1) * 3], s.SelPtsAvgCenter);
        if (d < best) {
            best = d;
            s.PtNearestToAvgCenter = s.SelPts[i];
        }
    }
}

// ---- polygons -----------------------------------------------------------------------------------

void SelectionModel::SelectMultiplePols() {
    propagate("Form1", "SelectMultiplePols", [&] {
        frmPicWins* v = Views();
        SelectionState& s = Sel();
        if (!v || v->ToolMode() != ToolSelect || m_host.WorkspaceTab() != 1 ||
            m_host.CurrentSelectMode() != SelectMode::Polygon || s.CurrSelEntityType != 1)
            return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionSelectPols);
        auto* a = env->As<ActionSelectPols>();
        if (a) a->SetOldSelPols(s.SelPols.Slots(), s.SelPols.Count());
        const PixelRect r = SetUpperAndLowerCorners();
        switch (keyMode()) {
        case 1:
            AddToPolSelection(r);
            break;
        case 2:
            RemoveFromPolSelection(r);
            break;
        default:
            FreshPolSelection(r);
            break;
        }
        m_host.UpdateEditGeomTabBasedOnPolsSelected();
        UpdateSelPolsRelatedPtsArray();
        ComputeSelPolsAvgCenter();
        if (a) a->SetNewSelPols(s.SelPols.Slots(), s.SelPols.Count());
        m_host.UndoStack().Push(env);
    });
}

int SelectionModel::GetClickedPolOfGrp(int group, int x, int y) {
    makeActiveCameraCurrent();
    double hit[3] = {0, 0, 0};
    int g = 0, polygon = 0;
    ZELMAR_engine_2D_point_to_3D(x, y, hit, &g, &polygon);
    if (polygon != 0 && ZELMAR_polygon_is_in_group(polygon, group) == 1) return polygon;
    return 0;
}

void SelectionModel::FreshPolSelection(const PixelRect& r) {
    SelectionState& s = Sel();
    s.SelPols.Clear();
    if (r.IsClick()) {
        if (const int pol = GetClickedPolOfGrp(s.CurrSelEntity, r.lowX, r.lowY)) s.SelPols.Append(pol);
        return;
    }
    scanPolygons(r, m_host.IgnoreBackFacedForPolSel(), [&](int pol) { s.SelPols.Append(pol); });
}

void SelectionModel::AddToPolSelection(const PixelRect& r) {
    SelectionState& s = Sel();
    if (r.IsClick()) {
        const int pol = GetClickedPolOfGrp(s.CurrSelEntity, r.lowX, r.lowY);
        if (pol != 0 && !s.SelPols.Contains(pol)) s.SelPols.Append(pol);
        return;
    }
    scanPolygons(r, m_host.IgnoreBackFacedForPolSel(), [&](int pol) {
        if (!s.SelPols.Contains(pol)) s.SelPols.Append(pol);
    });
}

void SelectionModel::RemoveFromPolSelection(const PixelRect& r) {
    SelectionState& s = Sel();
    if (r.IsClick()) {
        if (const int pol = GetClickedPolOfGrp(s.CurrSelEntity, r.lowX, r.lowY)) s.SelPols.RemoveFirst(pol);
        return;
    }
    std::vector<int> hits;
    scanPolygons(r, m_host.IgnoreBackFacedForPolSel(), [&](int pol) { hits.push_back(pol); });
    s.SelPols.RemoveFirstOfEach(hits);
}

void SelectionModel::UpdateSelPolsRelatedPtsArray() {
    SelectionState& s = Sel();
    s.SelPolsWeldedPts.Clear();
    const WeldTableT& table = WeldTable();
    // Each welded set once, in the order its first point is met among the selected polygons' points (read
    // in one bulk call: a cut selects tens of thousands of halves at once).
    const std::vector<int> pols = s.SelPols.ToVector();
    if (pols.empty()) return;
    const int count = static_cast<int>(pols.size());
    const int total = ZELMAR_polygons_get_points(pols.data(), count, nullptr, nullptr, nullptr, 0);
    if (total <= 0) return;
    std::vector<int> pts(static_cast<size_t>(total));
    ZELMAR_polygons_get_points(pols.data(), count, pts.data(), nullptr, nullptr, total);
    std::vector<bool> taken(static_cast<size_t>(table.Count()) + 1, false); // sets are numbered 1..Count
    for (int pt : pts) {
        const int set = table.IndexOf(pt);
        if (set <= 0 || set >= static_cast<int>(taken.size()) || taken[static_cast<size_t>(set)]) continue;
        taken[static_cast<size_t>(set)] = true;
        s.SelPolsWeldedPts.Append(set);
    }
}

void SelectionModel::ComputeSelPolsAvgCenter() {
    SelectionState& s = Sel();
    const int n = s.SelPols.Count();
    if (n == 0) return;
    const std::vector<int> pols = s.SelPols.ToVector();
    std::vector<double> centres(3 * pols.size(), 0.0);
    ZELMAR_polygons_get_centers(pols.data(), n, centres.data());
    Vec3 sum{0, 0, 0};
    for (size_t i = 0; i < pols.size(); ++i)
        for (size_t k = 0; k < 3; ++k)
            sum[k] += centres[3 * i + k];
    for (int k = 0; k < 3; ++k)
        s.SelPolsAvgCenter[k] = sum[k] / n;
    SetPtNearestToPolsAvgCenter();
}

void SelectionModel::SetPtNearestToPolsAvgCenter() {
    SelectionState& s = Sel();
    const WeldTableT& table = WeldTable();
    std::vector<int> pts;
    for (int i = 1; i <= s.SelPolsWeldedPts.Count(); ++i)
        if (const WeldedPoints* set = table.At(s.SelPolsWeldedPts[i]))
            for (int k = 1; k <= set->Count(); ++k)
                pts.push_back(set->Point(k));
    if (pts.empty()) return;
    // A point that is gone keeps NaN and is never the nearest.
    std::vector<double> xyz(3 * pts.size(), std::nan(""));
    ZELMAR_points_get_values(pts.data(), static_cast<int>(pts.size()), 1, xyz.data());
    double best = SelectionState::FarAway;
    for (size_t i = 0; i < pts.size(); ++i) {
        const double d = distance(&xyz[3 * i], s.SelPolsAvgCenter);
        if (d < best) {
            best = d;
            s.PtNearestToAvgCenter = pts[i];
        }
    }
}

// ---- track points -------------------------------------------------------------------------------

void SelectionModel::SelectMultipleTrackPts() {
    propagate("Form1", "SelectMultipleTrackPts", [&] {
        frmPicWins* v = Views();
        SelectionState& s = Sel();
        if (!v || v->ToolMode() != ToolSelect) return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionSelectTrkPts);
        auto* a = env->As<ActionSelectTrkPts>();
        if (a) a->SetOldSelTrkPts(s.SelTrackPts, s.SelTrackPtsCount());
        const PixelRect r = widened(SetUpperAndLowerCorners());
        switch (keyMode()) {
        case 1:
            AddToTrackPtSelection(r);
            break;
        case 2:
            RemoveFromTrackPtSelection(r);
            break;
        default:
            FreshTrackPtSelection(r);
            break;
        }
        ComputeSelTrackPtsAvgCenter();
        if (a) a->SetNewSelTrkPts(s.SelTrackPts, s.SelTrackPtsCount());
        m_host.UndoStack().Push(env);
    });
}

void SelectionModel::FreshTrackPtSelection(const PixelRect& r) {
    Sel().SelTrackPts.assign(1, 0);
    AddToTrackPtSelection(r);
}

void SelectionModel::AddToTrackPtSelection(const PixelRect& r) {
    std::vector<int>& sel = Sel().SelTrackPts;
    for (int i : scanTrackPoints(r))
        if (std::find(sel.begin() + 1, sel.end(), i) == sel.end()) sel.push_back(i);
}

void SelectionModel::RemoveFromTrackPtSelection(const PixelRect& r) {
    std::vector<int>& sel = Sel().SelTrackPts;
    for (int i : scanTrackPoints(r)) {
        auto it = std::find(sel.begin() + 1, sel.end(), i);
        if (it != sel.end()) sel.erase(it);
    }
}

void SelectionModel::ComputeSelTrackPtsAvgCenter() {
    SelectionState& s = Sel();
    const int n = s.SelTrackPtsCount();
    if (n == 0) return;
    Vec3 sum{0, 0, 0};
    for (int i = 1; i <= n; ++i) {
        double p[3] = {0, 0, 0};
        ZELMAR_track_get_point(s.CurrSelEntity, s.SelTrackPts[static_cast<size_t>(i)], p);
        for (int k = 0; k < 3; ++k)
            sum[k] += p[k];
    }
    for (int k = 0; k < 3; ++k)
        s.SelTrackPtsAvgCenter[k] = sum[k] / n;
}

// ---- select all and invert ----------------------------------------------------------------------

void SelectionModel::SelectAllPoints() {
    SelectionState& s = Sel();
    const std::vector<int> old = s.SelPts.Slots();
    const int oldCount = s.SelPts.Count();
    s.SelPts.Clear();
    for (int pol = ZELMAR_group_get_first_polygon(s.CurrSelEntity); pol != 0;
         pol = ZELMAR_group_get_next_polygon(pol))
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt))
            s.SelPts.Append(pt);
    UpdateSelPtsPolArray();
    pushSubSelection(AT_ActionSelectPts, old, oldCount);
    ComputeSelPtsAvgCenter();
}

void SelectionModel::SelectAllPols() {
    SelectionState& s = Sel();
    const std::vector<int> old = s.SelPols.Slots();
    const int oldCount = s.SelPols.Count();
    s.SelPols.Clear();
    for (int pol = ZELMAR_group_get_first_polygon(s.CurrSelEntity); pol != 0;
         pol = ZELMAR_group_get_next_polygon(pol))
        s.SelPols.Append(pol);
    pushSubSelection(AT_ActionSelectPols, old, oldCount);
    UpdateSelPolsRelatedPtsArray();
    ComputeSelPolsAvgCenter();
    m_host.UpdateEditGeomTabBasedOnPolsSelected();
}

void SelectionModel::mnuSelectAll_Click() {
    propagate("Form1", "mnuSelectAll_Click", [&] {
        if (!m_host.WorldOpen()) return;
        SelectionState& s = Sel();
        const SelectMode mode = m_host.CurrentSelectMode();
        if (mode == SelectMode::Point) {
            if (s.CurrSelEntityType == 1) SelectAllPoints();
        } else if (mode == SelectMode::Polygon) {
            if (s.CurrSelEntityType == 1) SelectAllPols();
        } else {
            SelectAllObjects();
            SettleCurrentEntity();
            ThingsToDoOnSelectedEntityChange();
            PushSelectIfChanged();
        }
    });
}

void SelectionModel::mnuSelectInvert_Click() {
    propagate("Form1", "mnuSelectInvert_Click", [&] {
        if (!m_host.WorldOpen()) return;
        SelectionState& s = Sel();
        const SelectMode mode = m_host.CurrentSelectMode();
        if (mode == SelectMode::Point || mode == SelectMode::Polygon) {
            if (s.CurrSelEntityType != 1) return;
            const bool points = mode == SelectMode::Point;
            HandleArray& arr = points ? s.SelPts : s.SelPols;
            const std::vector<int> old = arr.Slots();
            const int oldCount = arr.Count();
            // What was selected, one entry per occurrence; each item of the group met in it is used up once.
            OccurrenceTable was;
            for (int i = 1; i <= oldCount; ++i)
                was.Add(old[static_cast<size_t>(i)], 1);
            arr.Clear();
            auto take = [&](int h) {
                if (was.Get(h) > 0)
                    was.Add(h, -1);
                else
                    arr.Append(h);
            };
            for (int pol = ZELMAR_group_get_first_polygon(s.CurrSelEntity); pol != 0;
                 pol = ZELMAR_group_get_next_polygon(pol)) {
                if (!points) {
                    take(pol);
                    continue;
                }
                for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0;
                     pt = ZELMAR_point_get_next_point(pt))
                    take(pt);
            }
            if (points) {
                UpdateSelPtsPolArray();
                ComputeSelPtsAvgCenter();
                pushSubSelection(AT_ActionSelectPts, old, oldCount);
            } else {
                ComputeSelPolsAvgCenter();
                UpdateSelPolsRelatedPtsArray();
                m_host.UpdateEditGeomTabBasedOnPolsSelected();
                pushSubSelection(AT_ActionSelectPols, old, oldCount);
            }
        } else {
            SelectAllObjects();
            vexil::MultipleSelection& m = s.MultiSel;
            switch (s.PrevSelEntityType) {
            case 1:
                m.RemoveGrp(s.PrevSelEntity);
                break;
            case 2:
                m.RemoveCam(s.PrevSelEntity);
                break;
            case 4:
                m.RemoveLight(s.PrevSelEntity);
                break;
            case 6:
                for (int g : s.PrevMultiSel.Groups())
                    m.RemoveGrp(g);
                for (int c : s.PrevMultiSel.Cams())
                    m.RemoveCam(c);
                for (int l : s.PrevMultiSel.Lights())
                    m.RemoveLight(l);
                break;
            default:
                break;
            }
            SettleCurrentEntity();
            ThingsToDoOnSelectedEntityChange();
            PushSelectIfChanged();
        }
    });
}

void SelectionModel::SelectAllObjects() {
    SetPrevSelEntityToCurrSelEntity();
    Sel().MultiSel.Reset();
    SelectAllGroups();
    SelectAllCams();
    SelectAllLights();
}

void SelectionModel::SelectAllGroups() {
    vexil::MultipleSelection& m = Sel().MultiSel;
    trwGroupView* tree = m_host.GroupTree();
    if (!tree) return;
    // The top-level groups as the tree lists them, hidden ones left out.
    QTreeWidgetItem* world = tree->topLevelItemCount() > 0 ? tree->topLevelItem(0) : nullptr;
    for (int i = 0; world && i < world->childCount(); ++i) {
        QTreeWidgetItem* n = world->child(i);
        const QString key = WorkspaceTree::NodeKey(n);
        if (!key.startsWith(QLatin1String("Group"))) continue;
        if (WorkspaceTree::NodeImage(n) == QLatin1String("Group Invisible")) continue;
        const int g = key.mid(5).toInt();
        if (g != 0) m.AddGrpHandles(g);
    }
}

void SelectionModel::SelectAllCams() {
    vexil::MultipleSelection& m = Sel().MultiSel;
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (ZELMAR_camera_get_save_flag(c) == 1 && !IsCamHidden(c)) m.AddCamHandles(c);
}

void SelectionModel::SelectAllLights() {
    vexil::MultipleSelection& m = Sel().MultiSel;
    for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
        if (ZELMAR_light_get_save_flag(l) == 1 && !IsLightHidden(l)) m.AddLightHandles(l);
}

// ---- overlays -----------------------------------------------------------------------------------

int SelectionModel::ValidateChangedPolygons() {
    const SelectionState& s = Sel();
    std::vector<int> pols;
    if (m_host.CurrentSelectMode() == SelectMode::Point) {
        for (int i = 1; i <= s.SelPtsPols.Count(); ++i)
            pols.push_back(s.SelPtsPols[i]);
    } else {
        for (int i = 1; i <= s.SelPolsWeldedPts.Count(); ++i)
            if (const WeldedPoints* w = WeldTable().At(s.SelPolsWeldedPts[i]))
                for (int j = 1; j <= w->Count(); ++j)
                    pols.push_back(w->CorrsPol(j));
    }
    std::sort(pols.begin(), pols.end());
    pols.erase(std::unique(pols.begin(), pols.end()), pols.end());
    int invalid = 0;
    for (int p : pols)
        if (p != 0 && ZELMAR_polygon_is_polygon(p) == 1 && ZELMAR_polygon_is_valid(p) != 1) ++invalid;
    m_host.ShowInvalidPolygons(invalid);
    return invalid;
}

void SelectionModel::DrawPoints(int, QPainter& p) {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1 || m_host.CurrentSelectMode() != SelectMode::Point) return;
    if (ZELMAR_group_is_group(s.CurrSelEntity) != 1) return;
    p.setPen(Pens().blue1);
    p.setBrush(Qt::NoBrush);
    for (int pol = ZELMAR_group_get_first_polygon(s.CurrSelEntity); pol != 0; pol = ZELMAR_group_get_next_polygon(pol))
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            double xyz[3];
            ZELMAR_point_get_xyz(pt, xyz);
            DrawPointMark(p, xyz, 1);
        }
}

void SelectionModel::DrawSelectedPts(int, QPainter& p) {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1 || s.SelPts.Count() == 0) return;
    p.setPen(Pens().red2);
    p.setBrush(Qt::NoBrush);
    for (int i = 1; i <= s.SelPts.Count(); ++i) {
        double xyz[3];
        ZELMAR_point_get_xyz(s.SelPts[i], xyz);
        DrawPointMark(p, xyz, 2);
    }
}

void SelectionModel::DrawSelectedPols(int, QPainter& p) {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1 || s.SelPols.Count() == 0) return;
    p.setPen(Pens().red1);
    for (int i = 1; i <= s.SelPols.Count(); ++i) {
        double first[3], prev[3], cur[3];
        int pt = ZELMAR_polygon_get_first_point(s.SelPols[i]);
        if (pt == 0) continue;
        ZELMAR_point_get_xyz(pt, first);
        std::copy(first, first + 3, prev);
        for (pt = ZELMAR_point_get_next_point(pt); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            ZELMAR_point_get_xyz(pt, cur);
            DrawEdge3D(p, prev, cur);
            std::copy(cur, cur + 3, prev);
        }
        DrawEdge3D(p, prev, first);
    }
}

void SelectionModel::DrawSelectedTrackPts(int, QPainter& p) {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 3 || s.SelTrackPtsCount() == 0) return;
    p.setPen(Pens().red2);
    p.setBrush(Qt::NoBrush);
    for (int i = 1; i <= s.SelTrackPtsCount(); ++i) {
        double xyz[3] = {0, 0, 0};
        ZELMAR_track_get_point(s.CurrSelEntity, s.SelTrackPts[static_cast<size_t>(i)], xyz);
        DrawPointMark(p, xyz, 3);
    }
}

void SelectionModel::DrawMultiSelection(int, QPainter& p, bool wireframe) {
    vexil::MultipleSelection& m = Sel().MultiSel;
    if (wireframe)
        m.DrawGrpsWires(p, Pens().white1);
    else
        m.DrawGrpBndBoxes(p);
}

bool SelectionModel::GetSelObjsBoundingBx(double mn[3], double mx[3]) {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 6 || s.MultiSel.TotalCount == 0) return false;
    bool any = false;
    auto take = [&](const double lo[3], const double hi[3]) {
        for (int k = 0; k < 3; ++k) {
            mn[k] = any ? std::min(mn[k], lo[k]) : lo[k];
            mx[k] = any ? std::max(mx[k], hi[k]) : hi[k];
        }
        any = true;
    };
    for (int g : s.MultiSel.Groups()) {
        double box[6];
        ZELMAR_group_get_bounding_box(g, box);
        take(box, box + 3);
    }
    for (int c : s.MultiSel.Cams()) {
        double l[3];
        ZELMAR_camera_get_location(c, l);
        take(l, l);
    }
    for (int li : s.MultiSel.Lights()) {
        double l[3];
        ZELMAR_light_get_location(li, l);
        take(l, l);
    }
    return any;
}

} // namespace vexil
