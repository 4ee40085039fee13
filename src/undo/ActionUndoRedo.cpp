#include "ActionUndoRedo.h"

#include "ActionRenameEntity.h"

#include <array>

namespace vexil {
namespace {

template <class T> std::unique_ptr<Action> make() { return std::make_unique<T>(); }

// Index = type number. Classes arrive with the issues that push them: add one line here.
std::array<ActionFactory, AT_Max + 1>& factories() {
    static std::array<ActionFactory, AT_Max + 1> table = [] {
        std::array<ActionFactory, AT_Max + 1> t{};
        t[AT_ActionRenameEntity] = &make<ActionRenameEntity>;
        return t;
    }();
    return table;
}

bool isUnused(int type) { return type == 9 || type == 25 || type == 45; }

} // namespace

const char* ActionClassName(int t) {
    static const char* const names[AT_Max + 1] = {
        "",
        "ActionSelect", "ActionMove", "ActionRotate", "ActionScale", "ActionDelete", "ActionMoveGrpPoints",
        "ActionRotateGrpPoints", "ActionScaleGrpPoints", "", "ActionMoveGrpPols", "ActionRotateGrpPols",
        "ActionScaleGrpPols", "ActionDeleteGrpPols", "ActionChangeFatherGrp", "ActionGroupTogather",
        "ActionUnGroup", "ActionExtrude", "ActionBevel", "ActionSelectPols", "ActionCreate", "ActionSelectPts",
        "ActionReplaceGrp", "ActionApplyTextureToGrp", "ActionChngTextureCoords", "", "ActionSelectCoords",
        "ActionRenameEntity", "ActionCutPol", "ActionHide", "ActionUnhide", "ActionChngFog",
        "ActionChngPolRotatedProp", "ActionChngPolLightDimu", "ActionChngPolTranslucency",
        "ActionChngPolTrnsIndx", "ActionPolsFlip", "ActionAlign", "ActionSelectTrkPts", "ActionMoveTrkPts",
        "ActionRotateTrkPts", "ActionScaleTrkPts", "ActionDetachPols", "ActionMirror", "ActionWeldSelPts", "",
        "ActionPlugin",
    };
    if (t < 1 || t > AT_Max) return "";
    return names[t];
}

void RegisterActionClass(int actionType, ActionFactory factory) {
    if (actionType < 1 || actionType > AT_Max || isUnused(actionType)) return;
    factories()[actionType] = factory;
}

bool IsActionClassRegistered(int actionType) {
    return actionType >= 1 && actionType <= AT_Max && factories()[actionType] != nullptr;
}

ActionUndoRedo::~ActionUndoRedo() = default;

void ActionUndoRedo::SetActionObjects() {
    m_object.reset();
    if (IsActionClassRegistered(ActionType)) m_object = factories()[ActionType]();
}

void ActionUndoRedo::Undo() {
    if (isUnused(ActionType) || !m_object) return;
    m_object->Undo();
}

void ActionUndoRedo::Redo() {
    if (isUnused(ActionType) || !m_object) return;
    m_object->Redo();
}

} // namespace vexil
