// Form1: the commands whose feature has not landed yet. Each tells the user that it is not available yet
// (NotAvailableYet), rather than doing nothing; whoever builds one replaces its body here by a call into
// the subsystem's controller (or moves it to the subsystem's own file of Form1) and takes its menu items
// out of ConnectPendingCommands.
#include "Form1.h"

#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/NotAvailable.h"
#include "frame/Preferences.h"
#include "Form1_Gizmo.h"
#include "Form1_Lighting.h"
#include "Form1_Materials.h"
#include "Form1_Selection.h"
#include "Form1_Tracks.h"
#include "modelling/ModellingActions.h"
#include "view/frmPicWins.h"

#include <QAction>
#include <QLabel>
#include <QMenu>

namespace vexil {

// The model gallery.
void Form1::trwModel_InitialSetup() {}

// Plug-ins.
void Form1::LoadPlugins() {}
void Form1::UnloadPlugins() {}
void Form1::PluginsKeyDown(int, Qt::KeyboardModifiers) {}

// Menu items of features that have not landed: each says so when used.
void Form1::ConnectPendingCommands() {
    for (QAction* a : {mnuModelGalleryAdd, mnuModelGalleryAddFolder, mnuModelGalleryDeleteFolder,
                       mnuModelGalleryRemove})
        ConnectNotAvailableYet(a);
    // The view commands of the window menu act on the active viewport.
    const std::pair<QAction*, int> views[] = {{mnuWinViewTop, ViewTop},         {mnuWinViewBottom, ViewBottom},
                                              {mnuWinViewLeft, ViewLeft},       {mnuWinViewRight, ViewRight},
                                              {mnuWinViewFront, ViewFront},     {mnuWinViewBack, ViewBack},
                                              {mnuWinViewPerspective, ViewPerspective},
                                              {mnuWinViewCam, ViewCamera}};
    for (const auto& [a, view] : views)
        connect(a, &QAction::triggered, this, [this, view] {
            handleEvent("Form1", "mnuWinView_Click", [&] {
                SyncViewState();
                if (frmPicWins) frmPicWins->ApplyViewCommand(ActiveWin, view);
            });
        });
}

// Form_Load 14, 17, 18 and Form_Unload 6 to 8: the shared objects (MultiSel, PrevMultiSel, LightMarkers,
// CameraMarkers, the six makers, LineDrawer, WireframeDrawer, the four TransformGizmo, SelectionBox, the four
// camera, the four Grid). Created and released in the documented orders by their owners.
void Form1::CreateSharedObjects() {
    // A density that is not a number is said, and the grid keeps its 40 cells.
    QString problem;
    SetGridDensity(ReadGridDensity(40.0, &problem));
    if (!problem.isEmpty()) {
        AppLog().LogEvent(problem, LogWarning);
        dialogs().msgBox(problem, MsgOKOnly, MsgExclamation);
    }
    InstallSelection(*this);
    InstallTracks(*this);
    InstallLighting(*this);
    InstallGizmos(*this);
    InstallModellingActions();
    InstallWorkbench(*this);
    InstallMaterials(*this);
}
void Form1::ReleaseSharedObjects() {
    ReleaseMaterials();
    ReleaseWorkbench();
    ReleaseGizmos();
    ReleaseTracks();
    ReleaseLighting();
    ReleaseSelection();
}

} // namespace vexil
