// The action classes of the materials and their type numbers.
#pragma once

namespace vexil {

// Lets SetActionObjects make ActionApplyTextureToGrp (23), ActionChngTextureCoords (24),
// ActionChngPolRotatedProp (32), ActionChngPolLightDimu (33), ActionChngPolTranslucency (34) and
// ActionChngPolTrnsIndx (35). ActionSelectCoords (26) is the selection's; the texture map editor gives it
// the coordinates as pairs (point, polygon). Calling it again changes nothing.
void RegisterMaterialsActions();

} // namespace vexil
