// What the undo layer needs of the editor (implemented by Form1). GUI-free, so that src/undo and its tests
// need no Qt. Every method has a harmless default so that a test host overrides only what it watches.
#pragma once
#include <string>

namespace vexil {

class UndoHost {
public:
    virtual ~UndoHost() = default;

    // Menu enabling (the action stack: "a notification to the user-interface layer").
    virtual void SetUndoMenuEnabled(bool /*enabled*/) {}
    virtual void SetRedoMenuEnabled(bool /*enabled*/) {}
    // Form1.SetCaption, after each Push and each undo or redo.
    virtual void SetCaption() {}
    // Form1.SetMousePtrToHourGlass(bRestore): false shows the hourglass, true restores.
    virtual void SetMousePtrToHourGlass(bool /*bRestore*/) {}
    // UpdateCameras: repaint all viewports.
    virtual void UpdateCameras() {}

    // Tree node text by key ("Group" + handle, "Pol" + handle, "Camera" + handle, ...), in whichever
    // workspace tree holds that key. Used by ActionRenameEntity.
    virtual void SetTreeNodeText(const std::string& /*key*/, const std::string& /*text*/) {}
    // txtSelectedGrpName of the group tab shows the current group's name.
    virtual void SetSelectedGroupNameText(const std::string& /*text*/) {}
};

// The host that actions reach (the program has one editor). Never null: a do-nothing host until one is set.
UndoHost& undoHost();
// Installs h (not owned); nullptr restores the do-nothing host.
void setUndoHost(UndoHost* h);

} // namespace vexil
