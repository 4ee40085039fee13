#include "ModellingRefresh.h"

#include "selection/SelectionModel.h"
#include "selection/WeldedPoints.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {
int g_weldGroup = 0;

bool heldByTable(int polygon) {
    if (g_weldGroup == 0) return false;
    return ZELMAR_polygon_is_in_group(polygon, g_weldGroup) == 1;
}
} // namespace

int WeldTableGroup() {
    if (g_weldGroup != 0 && ZELMAR_group_is_group(g_weldGroup) != 1) g_weldGroup = 0;
    return g_weldGroup;
}

void FillWeldTable(int group) {
    WeldTable().Clear();
    g_weldGroup = ZELMAR_group_is_group(group) == 1 ? group : 0;
    if (g_weldGroup) WeldTable().EnterGroup(g_weldGroup);
}

void WeldTableLeave(const std::vector<int>& polygons) {
    if (WeldTableGroup() == 0) return;
    WeldTable().LeavePolygons(polygons);
}

void WeldTableEnter(const std::vector<int>& polygons) {
    if (WeldTableGroup() == 0) return;
    WeldTable().Rekey();
    std::vector<int> held;
    held.reserve(polygons.size());
    for (int p : polygons)
        if (heldByTable(p)) held.push_back(p);
    WeldTable().EnterPolygons(held);
}

void RefreshAfterPointsMoved(int group) {
    SelectionModel* m = selectionModel();
    if (!m) return;
    if (Sel().SelPols.Count() > 0) {
        m->UpdateSelPolsRelatedPtsArray();
        m->ComputeSelPolsAvgCenter();
    }
    if (Sel().SelPts.Count() > 0) m->ComputeSelPtsAvgCenter();
    m->Host().RefreshGroup(group);
    if (frmPicWins* v = m->Views())
        if (ZELMAR_group_is_group(group) == 1) v->SelectionBox().Initialize(group);
}

void SelectPolygons(const std::vector<int>& polygons) {
    SelectionState& s = Sel();
    s.SelPts.Clear();
    s.SelPtsPols.Clear();
    s.SelPols.Assign(polygons);
    if (SelectionModel* m = selectionModel()) {
        m->UpdateSelPolsRelatedPtsArray();
        m->ComputeSelPolsAvgCenter();
        m->Host().UpdateEditGeomTabBasedOnPolsSelected();
    }
}

void ClearSubSelection() {
    SelectionState& s = Sel();
    s.SelPts.Clear();
    s.SelPtsPols.Clear();
    s.SelPols.Clear();
    s.SelPolsWeldedPts.Clear();
    if (SelectionModel* m = selectionModel()) m->Host().UpdateEditGeomTabBasedOnPolsSelected();
}

void UpdateStatusBar() {
    if (SelectionModel* m = selectionModel()) m->Host().UpdateStatusBar();
}

void UpdateCameras() {
    if (SelectionModel* m = selectionModel())
        if (frmPicWins* v = m->Views()) v->UpdateCameras();
}

} // namespace vexil
