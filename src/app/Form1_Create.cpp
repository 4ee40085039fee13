// Form1: the create panel's Create button and the Create menu's Standard Groups entries.
#include "builders/CreatePanel.h"
#include "frame/Dialogs.h"
#include "Form1.h"
#include "frame/Locale.h"
#include "Form1_Selection.h"
#include "selection/SelectionModel.h"

#include <QComboBox>
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
    const int group = CreatePrimitive(p, {0, 0, 0}, root);
    if (group == 0) return; // refused with its own message
    // Its node in the group tree, then it becomes the current entity with one ActionCreate on the stack.
    if (SelectionModel* m = FormSelection()) {
        m->UnDeleteGroup(group, root);
        m->SelectCreatedGroup(group);
    }
    UpdateCameras();
}

void Form1::mnuStandardGroups_Click(int kind) {
    if (!frmCreate || kind < 0 || kind >= PrimitiveKindCount) return;
    // The entry shows the panel with its kind and makes one object from the values the panel holds.
    tabWorkspace->setCurrentIndex(TabEditGroup);
    frmCreate->SetKind(static_cast<PrimitiveKind>(kind));
    cmdCreate_Click();
}

} // namespace vexil
