#include "MaterialsActions.h"

#include "ActionApplyTextureToGrp.h"
#include "ActionChngTextureCoords.h"
#include "SurfaceActions.h"
#include "undo/ActionUndoRedo.h"

#include <memory>

namespace vexil {
namespace {
template <class T> std::unique_ptr<Action> make() { return std::make_unique<T>(); }
} // namespace

void RegisterMaterialsActions() {
    RegisterActionClass(AT_ActionApplyTextureToGrp, &make<ActionApplyTextureToGrp>);
    RegisterActionClass(AT_ActionChngTextureCoords, &make<ActionChngTextureCoords>);
    RegisterActionClass(AT_ActionChngPolRotatedProp, &make<ActionChngPolRotatedProp>);
    RegisterActionClass(AT_ActionChngPolLightDimu, &make<ActionChngPolLightDimu>);
    RegisterActionClass(AT_ActionChngPolTranslucency, &make<ActionChngPolTranslucency>);
    RegisterActionClass(AT_ActionChngPolTrnsIndx, &make<ActionChngPolTrnsIndx>);
}

} // namespace vexil
