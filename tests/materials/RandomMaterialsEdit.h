// One random edit of the materials, for the random-edit undo property test: fills of bitmaps, animations and
// colours for polygons or groups, blending filters, rotated flags, light diminution, transparent colours, planar
// mapping and texture-coordinate gestures, each through the same command or action the panels and the texture
// map editor use, so that each pushes exactly one undo step.
//
// Needs: a world with groups of polygons, some bitmaps loaded from files (transparent colours reload them),
// optionally animations; a MaterialsHost installed (setMaterialsHost) whose UndoStack() is the stack the test
// undoes and redoes; RegisterMaterialsActions() called. The edit changes the selection (Sel()) as a user would.
#pragma once
#include <random>
#include <string>

namespace vexil::test {

// Applies one edit chosen by `rng` and answers what it did ("" when the world offered nothing to edit, in which
// case nothing was pushed). The same seed on the same world gives the same sequence.
std::string ApplyRandomMaterialsEdit(std::mt19937& rng);

} // namespace vexil::test
