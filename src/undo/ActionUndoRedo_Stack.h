// The one undo stack of the program, with the save marker that is the document's dirty
// flag. Slots are 1-based by design: slot 0 is never used; StackTop is the slot the next undo takes.
// References are shared: an envelope returned by Pop stays alive while its caller holds it, as a VB
// reference does; an action leaves for good (its destructor runs) when the stack and every caller drop it.
#pragma once
#include "ActionUndoRedo.h"

#include <memory>
#include <string>
#include <vector>

namespace vexil {

class UndoHost;
using ActionRef = std::shared_ptr<ActionUndoRedo>;

class ActionUndoRedo_Stack {
public:
    // maxUndoRedoSetting is the text of the setting "MaxUndoRedo" of section "Prefrences" (read once, by the
    // caller, with an empty default): non-empty and numeric gives the limit, anything else 20. A value of 0
    // is taken as it stands (Push then fails with error 9). host: menu notices and SetCaption; null means
    // undoHost() at the time of each notice.
    explicit ActionUndoRedo_Stack(const std::string& maxUndoRedoSetting = std::string(), UndoHost* host = nullptr);
    ~ActionUndoRedo_Stack();
    ActionUndoRedo_Stack(const ActionUndoRedo_Stack&) = delete;
    ActionUndoRedo_Stack& operator=(const ActionUndoRedo_Stack&) = delete;

    // The limit that a setting text gives (20 unless non-empty and numeric).
    static int MaxSizeFromSetting(const std::string& text);

    void Push(ActionRef action);
    ActionRef Pop();          // undo side; null when there is nothing to undo
    ActionRef Retrive();      // slot StackTop without moving; null when out of range
    ActionRef GetRedoObj();   // redo side; null at the bottom (StackTop then stays 0)
    void Reset();             // releases every action; keeps ChangesSinceSave, SaveMarker and the menus
    int GetStackSize() const { return MaxSize; }
    // The preference dialog's "size property": stored, in force from the next stack (the next start).
    void SetStackSize(int size) { m_pendingSize = size; }
    int PendingStackSize() const { return m_pendingSize; }
    void SetSaveMarker();
    bool SaveRequired() const { return ChangesSinceSave != 0; }

    // State, readable for tests and the preference dialog.
    int UBound() const { return static_cast<int>(m_actions.size()) - 1; }
    int GetStackTop() const { return StackTop; }
    int GetChangesSinceSave() const { return ChangesSinceSave; }
    int GetSaveMarker() const { return SaveMarker; }
    // Slot i (1..UBound), or null.
    ActionRef Slot(int i) const;

    // Convenience for pushers: a new envelope of this type with its action object made (steps 1 of a pusher).
    static ActionRef MakeAction(int actionType);

private:
    UndoHost& host() const;

    std::vector<ActionRef> m_actions;  // index 0 unused; size = upper bound + 1
    int StackTop = 1;
    int MaxSize = 20;
    int ChangesSinceSave = 0;
    int SaveMarker = 0;
    int m_pendingSize = 20;
    UndoHost* m_host = nullptr;
};

// mnuUndo_Click and mnuRedo_Click: pop (or get the redo object), dispatch on ActionType,
// UpdateCameras, SetCaption. Return false when there was nothing to undo or redo.
bool mnuUndo_Click(ActionUndoRedo_Stack& stack, UndoHost& host);
bool mnuRedo_Click(ActionUndoRedo_Stack& stack, UndoHost& host);

} // namespace vexil
