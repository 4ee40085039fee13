#include "ReducePolys.h"

#include "formSurfaceSimplification.h"
#include "frame/Dialogs.h"

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

} // namespace vexil
