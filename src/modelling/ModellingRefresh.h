// What the editing actions refresh after they changed a group: the weld table of the group under edit, the
// selection's welded sets and pivots, the group's box and status, the views.
#pragma once
#include <vector>

namespace vexil {

class SelectionModel;

// The group whose points the weld table holds (0: none). Opening "Edit Geometry" sets it.
int WeldTableGroup();
// Fills the weld table with the group's polygons (0 empties it).
void FillWeldTable(int group);
// The polygons leave or enter the weld table, when it holds their group.
void WeldTableLeave(const std::vector<int>& polygons);
void WeldTableEnter(const std::vector<int>& polygons);
// After points moved: the welded sets of the selection, the pivots, the group's cached geometry and box.
void RefreshAfterPointsMoved(int group);
// The polygon selection becomes `polygons`: welded sets, pivot, the polygon panel.
void SelectPolygons(const std::vector<int>& polygons);
// No sub-object selection.
void ClearSubSelection();
void UpdateStatusBar();
void UpdateCameras();

} // namespace vexil
