// Form1: the create panel's Create button and the Create menu's Standard Groups entries.
#include "builders/CreatePanel.h"
#include "frame/Dialogs.h"
#include "Form1.h"
#include "frame/Locale.h"
#include "Form1_Selection.h"
#include "selection/SelectionModel.h"
#include "view/frmPicWins.h"

#include <QComboBox>
#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>
#include <QTabWidget>

namespace vexil {

void Form1::cmdCreate_Click() {
    if (!WorldOpen() || !frmCreate) return;
    SetMousePtrToHourGlass(false);
    struct Restore {
        Form1& f;
        ~Restore() { f.SetMousePtrToHourGlass(true); }
    } restore{*this};

    CreateParams p = frmCreate->Parameters();
    const int kind = PrimitiveKindFromText(frmCreate->cmbNewObjType->currentText());
    if (kind < 0) return;
    p.kind = static_cast<PrimitiveKind>(kind);
    const QString why = ValidateCreateParams(p);
    if (!why.isEmpty()) {
        dialogs().msgBox(why, MsgOKOnly, MsgExclamation);
        return;
    }
    const int root = RootGrp();
    const std::array<double, 3> at = NewObjectPlace();
    const int group = CreatePrimitive(p, {0, 0, 0}, root);
    if (group == 0) return; // refused with its own message
    // It stands on the ground where the active view looks: its lowest point on the plane, its middle over
    // the place (a primitive is made around its centre, and would stand half below the ground).
    double box[6] = {0, 0, 0, 0, 0, 0}, loc[3] = {0, 0, 0};
    ZELMAR_group_get_bounding_box(group, box);
    ZELMAR_group_get_location(group, loc);
    const double place[3] = {at[0], at[1], at[2] + (loc[2] - box[2])};
    ZELMAR_group_set_location(group, place);
    // Its node in the group tree, then it becomes the current entity with one ActionCreate on the stack.
    if (SelectionModel* m = FormSelection()) {
        m->UnDeleteGroup(group, root);
        m->SelectCreatedGroup(group);
    }
    UpdateCameras();
}

std::array<double, 3> Form1::NewObjectPlace() {
    std::array<double, 3> at{0, 0, 0};
    if (!frmPicWins) return at;
    SyncViewState();
    const int cam = frmPicWins->ViewCams(std::clamp(ActiveWin, 0, 3)).CamHandle;
    if (cam == 0) return at;
    double loc[3] = {0, 0, 0}, dir[3] = {0, 0, 0};
    ZELMAR_camera_get_location(cam, loc);
    ZELMAR_camera_get_direction(cam, dir);
    double t = -1;
    if (dir[2] < -0.05) {
        // A view that looks down: where its line of sight meets the ground, z = 0.
        t = -loc[2] / dir[2];
    } else {
        // A side view (or one looking up): where its line of sight meets the grid plane through the origin
        // that faces it, then down (or up) to the ground.
        int axis = 0;
        for (int i = 1; i < 3; ++i)
            if (std::abs(dir[i]) > std::abs(dir[axis])) axis = i;
        if (std::abs(dir[axis]) > 1e-12) t = -loc[axis] / dir[axis];
    }
    if (!(t > 0) || !std::isfinite(t)) return at;
    for (int i = 0; i < 3; ++i) at[size_t(i)] = loc[i] + t * dir[i];
    at[2] = 0;
    for (double& v : at)
        if (!std::isfinite(v)) v = 0;
    return at;
}

void Form1::mnuStandardGroups_Click(int kind) {
    if (!frmCreate || kind < 0 || kind >= PrimitiveKindCount) return;
    // The entry shows the panel with its kind and makes one object from the values the panel holds.
    tabWorkspace->setCurrentIndex(TabEditGroup);
    frmCreate->SetKind(static_cast<PrimitiveKind>(kind));
    cmdCreate_Click();
}

} // namespace vexil
