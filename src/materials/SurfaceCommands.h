// The surface edits of the materials as commands: each changes the engine, records one action and pushes
// it on the host's undo stack, exactly as the panel, the texture list and the dialogs do when the user acts.
// The panels call these; tests and the random-edit property test call them directly.
#pragma once
#include <QString>

namespace vexil {

// cmbPolFilter_Change: the filter value on every selected polygon (kind 34). False (nothing pushed) with no
// polygon selected.
bool ChangeSelectedPolygonsFilter(int value);
// chkPolRotated_Click: the rotated flag on every selected polygon (kind 32).
bool ChangeSelectedPolygonsRotated(bool rotated);
// spnLightDimu_MouseUp: the light diminution of every selected polygon (kind 33); nothing is pushed when the
// first selected polygon already has that value.
bool ChangeSelectedPolygonsLightDimu(double value);

// SetTransColor of formTrnsClrPcr: the colour (a colour value, kButtonFace for none) becomes the transparent
// colour of the polygon's bitmap, through a bitmap loaded with that index; on every polygon of the group with
// the same bitmap when `allWithSameBitmap` (kind 35). False when the polygon has no bitmap or its file is gone.
bool ChangeTransparentColour(int polygon, int group, long colour, bool allWithSameBitmap);

// cmdTextureApplyToSel_Click: a bitmap (or, with isAnimation, an animation) to the selected polygons, or
// (toGroup) to the current group or the groups of a multiple selection (kind 23). Answers the message shown
// when refused ("No group selected", "No polygon/s selected"), else an empty text.
QString ApplyFillToSelection(int handle, bool isAnimation, bool toGroup);
// cmdGrpClr_Click after the colour was chosen: the colour to the selected polygons at polygon level, else to
// the current group (kind 23, fill type 2). False without a current group.
bool ApplyColourToSelection(int r, int g, int b, bool polygonLevel);

// cmdPlanarMap_Click: planar mapping of the selected polygons with option 0..3 (kind 24, pushed even when
// no polygon is selected). A division failure (all points on one spot) is raised after the push.
void PlanarMapSelection(int option);

} // namespace vexil
