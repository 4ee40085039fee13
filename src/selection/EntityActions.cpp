#include "EntityActions.h"

#include "undo/ActionUndoRedo.h"

namespace vexil {

namespace {
template <class T> std::unique_ptr<Action> make() {
    return std::make_unique<T>();
}
} // namespace

void RegisterEntityActions() {
    RegisterActionClass(AT_ActionSelect, &make<ActionSelect>);
    RegisterActionClass(AT_ActionMove, &make<ActionMove>);
    RegisterActionClass(AT_ActionRotate, &make<ActionRotate>);
    RegisterActionClass(AT_ActionScale, &make<ActionScale>);
    RegisterActionClass(AT_ActionDelete, &make<ActionDelete>);
    RegisterActionClass(AT_ActionChangeFatherGrp, &make<ActionChangeFatherGrp>);
    RegisterActionClass(AT_ActionGroupTogather, &make<ActionGroupTogather>);
    RegisterActionClass(AT_ActionUnGroup, &make<ActionUnGroup>);
    RegisterActionClass(AT_ActionSelectPols, &make<ActionSelectPols>);
    RegisterActionClass(AT_ActionCreate, &make<ActionCreate>);
    RegisterActionClass(AT_ActionSelectPts, &make<ActionSelectPts>);
    RegisterActionClass(AT_ActionReplaceGrp, &make<ActionReplaceGrp>);
    RegisterActionClass(AT_ActionSelectCoords, &make<ActionSelectCoords>);
    RegisterActionClass(AT_ActionHide, &make<ActionHide>);
    RegisterActionClass(AT_ActionUnhide, &make<ActionUnhide>);
    RegisterActionClass(AT_ActionAlign, &make<ActionAlign>);
    RegisterActionClass(AT_ActionSelectTrkPts, &make<ActionSelectTrkPts>);
}

} // namespace vexil
