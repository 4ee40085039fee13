// The envelope of one action: ActionType, and the one action object that matches it.
#pragma once
#include "Action.h"

#include <memory>

namespace vexil {

// Action type numbers (ActionType). 9, 25 and 45 are unused: SetActionObjects and both dispatches treat
// them as nothing. ActionAddPols has no number: it lives inside ActionExtrude and ActionCutPol.
enum ActionTypeNo : int {
    AT_ActionSelect = 1,
    AT_ActionMove = 2,
    AT_ActionRotate = 3,
    AT_ActionScale = 4,
    AT_ActionDelete = 5,
    AT_ActionMoveGrpPoints = 6,
    AT_ActionRotateGrpPoints = 7,
    AT_ActionScaleGrpPoints = 8,
    AT_ActionMoveGrpPols = 10,
    AT_ActionRotateGrpPols = 11,
    AT_ActionScaleGrpPols = 12,
    AT_ActionDeleteGrpPols = 13,
    AT_ActionChangeFatherGrp = 14,
    AT_ActionGroupTogather = 15,
    AT_ActionUnGroup = 16,
    AT_ActionExtrude = 17,
    AT_ActionBevel = 18,
    AT_ActionSelectPols = 19,
    AT_ActionCreate = 20,
    AT_ActionSelectPts = 21,
    AT_ActionReplaceGrp = 22,
    AT_ActionApplyTextureToGrp = 23,
    AT_ActionChngTextureCoords = 24,
    AT_ActionSelectCoords = 26,
    AT_ActionRenameEntity = 27,
    AT_ActionCutPol = 28,
    AT_ActionHide = 29,
    AT_ActionUnhide = 30,
    AT_ActionChngFog = 31,
    AT_ActionChngPolRotatedProp = 32,
    AT_ActionChngPolLightDimu = 33,
    AT_ActionChngPolTranslucency = 34,
    AT_ActionChngPolTrnsIndx = 35,
    AT_ActionPolsFlip = 36,
    AT_ActionAlign = 37,
    AT_ActionSelectTrkPts = 38,
    AT_ActionMoveTrkPts = 39,
    AT_ActionRotateTrkPts = 40,
    AT_ActionScaleTrkPts = 41,
    AT_ActionDetachPols = 42,
    AT_ActionMirror = 43,
    AT_ActionWeldSelPts = 44,
    AT_ActionPlugin = 46,
};
constexpr int AT_Max = 46;

// The class name of a type number ("ActionMove"), or "" for 9, 25, 45 and numbers outside 1..46.
const char* ActionClassName(int actionType);

// Factory of one action class.
using ActionFactory = std::unique_ptr<Action> (*)();
// Registers (or replaces) the class of a type number; for classes that live outside src/undo because they
// need the GUI. Built-in classes are listed in ActionUndoRedo.cpp.
void RegisterActionClass(int actionType, ActionFactory factory);
// True if SetActionObjects can make an object for this number.
bool IsActionClassRegistered(int actionType);

class ActionUndoRedo {
public:
    ActionUndoRedo() = default;
    explicit ActionUndoRedo(int actionType) : ActionType(actionType) {}
    ~ActionUndoRedo();  // destroys the action object: its destructor finishes deferred deletions
    ActionUndoRedo(const ActionUndoRedo&) = delete;
    ActionUndoRedo& operator=(const ActionUndoRedo&) = delete;

    int ActionType = 0;

    // Makes the one action object that matches ActionType (and drops any other). Unused numbers (9, 25,
    // 45) and numbers of classes not yet built make nothing.
    void SetActionObjects();

    // The property of the matching class: As<ActionMove>() is the ActionMove property; null when the
    // envelope carries another class (only the one matching ActionType is ever set).
    template <class T> T* As() const { return dynamic_cast<T*>(m_object.get()); }
    Action* Object() const { return m_object.get(); }
    // Puts an object made by the caller (tests, classes outside the registry).
    void SetObject(std::unique_ptr<Action> object) { m_object = std::move(object); }

    // Dispatch of mnuUndo_Click / mnuRedo_Click: Undo or Redo of the matching property; nothing for
    // unused numbers or an empty envelope.
    void Undo();
    void Redo();

private:
    std::unique_ptr<Action> m_object;
};

} // namespace vexil
