// What the cameras, tracks and backgrounds need of the main window. Form1 implements it; tests implement it
// over real viewports and trees. Every hook but the first few has a harmless default.
#pragma once
#include <QString>

class QWidget;

namespace vexil {

class ActionUndoRedo_Stack;
class SelectionModel;
class frmPicWins;
class trwCamTrackBK;

class TracksHost {
  public:
    virtual ~TracksHost() = default;

    virtual ActionUndoRedo_Stack& UndoStack() = 0;
    virtual SelectionModel* Selection() = 0;
    virtual frmPicWins* Views() = 0;
    virtual trwCamTrackBK* CamTrackBkTree() = 0;
    virtual bool WorldOpen() = 0;
    virtual int RootGrp() = 0;
    // The world's size as the document keeps it (GetWorldSize at load, 1000 for a new world).
    virtual double WorldSize() { return 1000.0; }

    // Workspace tab 2 ("Background/Camera/Track"): whether it shows, and show it.
    virtual bool CamTabShowing() { return false; }
    virtual void ShowCamTab() {}
    // The toolbar's "Select" button is pressed (custom tracks are laid only then).
    virtual bool SelectToolPressed() { return true; }
    virtual void SetToolMode(int /*mode*/) {}
    // A named pointer of the four viewports ("Cross hair", "Select", "Pointer").
    virtual void SetMousePointer(const QString& /*key*/) {}
    // Panel 3 of the status bar.
    virtual void SetStatusText(const QString& /*text*/) {}
    // The preference "CamLightObjRelativeSize" (1 to 50).
    virtual double RelativeMarkerSize() { return 35.0; }
    // The owner of modal dialogs.
    virtual QWidget* DialogParent() { return nullptr; }
    // After a chase was applied to a group: the group panel's dynamic flag follows the engine.
    virtual void GroupDynamicChanged(int /*group*/) {}
};

} // namespace vexil
