// The commands of the Edit Geometry panel: weld, flip, delete, detach, triangulate and reduce, each one
// undo step, and the panel's mode changes that keep the weld table filled with the group under edit.
#pragma once
#include <QString>

namespace vexil {

class EditGeometry {
  public:
    // cmbObj_Change / cmbObjEditGeom_Change: with "Edit Geometry" (or "Edit Texture") open on a group, the
    // weld table holds that group; otherwise it is empty.
    static void EditModeChanged(bool editingGeometry);

    static void cmdWeld_Click(const QString& thresholdText);
    static void cmdFlipPol_Click();
    static void cmdDeletePol_Click();
    // Point mode: the polygons that own the selected points are deleted.
    static void cmdEditPtDelete_Click();
    static void cmdDetachPols_Click();
    static void cmdTriangulate_Click();
    static void cmdReducePols_Click();

    // Puts `replacement` in the place of `group` (tree, father, name from the old one), current, with one
    // ActionReplaceGrp: what triangulate and reduce share.
    static void ReplaceGroup(int group, int replacement);
};

} // namespace vexil
