// Form1: "Reduce Polys", the simplification workbench on the current group.
#include "Form1.h"
#include "Form1_Selection.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "selection/SelectionModel.h"
#include "selection/SelectionState.h"
#include "workbench/ReducePolys.h"

#include <zelmar/zelmar.h>

namespace vexil {

void Form1::cmdReducePols_Click() {
    if (!WorldOpen()) return;
    SelectionModel* m = FormSelection();
    const SelectionState& s = Sel();
    const int group = s.CurrSelEntity;
    if (!m || s.CurrSelEntityType != 1 || group == 0 || ZELMAR_group_is_group(group) != 1) {
        dialogs().msgBox(GetLocaleString(382), MsgOKOnly, MsgExclamation);
        return;
    }
    const int reduced = ShowSurfaceSimplification(group, this);
    if (reduced != 0) ReplaceGroupWithReduced(*m, group, reduced);
    UpdateCameras();
}

} // namespace vexil
