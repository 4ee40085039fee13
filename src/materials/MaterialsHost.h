// What the materials need of the main window. Form1 implements it (src/app/Form1_Materials.cpp) and installs
// it with setMaterialsHost; tests install their own. Every hook has a harmless default.
#pragma once
#include <QString>

class QWidget;

namespace vexil {

class ActionUndoRedo_Stack;

class MaterialsHost {
  public:
    virtual ~MaterialsHost() = default;

    // The one undo stack; null: nothing is pushed.
    virtual ActionUndoRedo_Stack* UndoStack() { return nullptr; }
    // The owner of the materials' dialogs.
    virtual QWidget* MainWindow() { return nullptr; }
    // UpdateCameras: repaint all viewports.
    virtual void UpdateCameras() {}
    // The folder "bitmaps" beside the open world's file; empty for a world never saved.
    virtual QString BitmapFolder() { return {}; }
    // The Texture tab is the one showing (the animation preview stops otherwise).
    virtual bool TextureTabShowing() { return true; }
    // The edit level of the Edit Group tab reads "Polygon" (cmbObjEditGeom).
    virtual bool PolygonEditLevel() { return false; }
    // The node "Background" + handle of trwCamTrackBK goes (a background deleted with its bitmap).
    virtual void RemoveBackgroundNode(int /*background*/) {}
    // mnuUndo_Click and mnuRedo_Click of the main window (the texture map editor's Ctrl+Z and Ctrl+A).
    virtual void MainUndo() {}
    virtual void MainRedo() {}
    // The selection-changed step (ThingsToDoOnSelectedEntityChange) and the selection box.
    virtual void SelectionChanged() {}
    // Renames a group through the main window's rename step; answers the name that step settled on.
    virtual QString RenameGroup(int /*group*/, const QString& name) { return name; }
    // The chase dialog of a group; false when there is none to open.
    virtual bool EditChase(int /*group*/) { return false; }
};

// The installed host (never null: a do-nothing host until one is set).
MaterialsHost& materialsHost();
void setMaterialsHost(MaterialsHost* host);

} // namespace vexil
