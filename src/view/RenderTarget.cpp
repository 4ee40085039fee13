#include "RenderTarget.h"

#include <zelmar/zelmar.h>

namespace vexil {

int TargetOfSize(int target, int w, int h) {
    if (w < 1 || h < 1) return target;
    if (target && ZELMAR_target_is_target(target)) {
        if (ZELMAR_target_get_width(target) != w || ZELMAR_target_get_height(target) != h)
            ZELMAR_target_resize(target, w, h);
        return target;
    }
    return ZELMAR_target_create(w, h);
}

} // namespace vexil
