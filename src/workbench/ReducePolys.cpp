#include "ReducePolys.h"

#include "formSurfaceSimplification.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "selection/ActionGrouping.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <zelmar/zelmar.h>

namespace vexil {

int ShowSurfaceSimplification(int group, QWidget* parent) {
    const int accelerated = ZELMAR_engine_is_3D_accelerator_card_used();
    SurfSimpOutputGroup() = 0;
    {
        formSurfaceSimplification form(group, parent);
        dialogs().exec(form);
        form.Form_Unload(); // when the window was never shown or closed (a scripted run)
    }
    ZELMAR_engine_use_3D_accelerator_card(accelerated);
    ZELMAR_engine_set_group_to_render(0);
    const int reduced = SurfSimpOutputGroup();
    SurfSimpOutputGroup() = 0;
    return ZELMAR_group_is_group(reduced) == 1 ? reduced : 0;
}

void ReplaceGroupWithReduced(SelectionModel& model, int group, int reduced) {
    const std::string name = GetNewGrpNameFrmGivenStr(EntityName(group));
    ZELMAR_group_set_name(reduced, name.c_str());
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionReplaceGrp);
    auto* a = env->As<ActionReplaceGrp>();
    if (!a) return;
    a->SetGrpThatWasReplaced(group);
    a->SetGrpReplacedWith(reduced);
    model.SetPrevSelEntityToCurrSelEntity();
    a->Redo(); // the replacement is the action's redo
    model.Host().UndoStack().Push(env);
    model.ThingsToDoOnSelectedEntityChange();
}

} // namespace vexil
