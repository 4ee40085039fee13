// The run-time of the chase rules: the clock that steps every chasing group and camera.
#include "api/CoreArgs.h"
#include "scene/ChaseStep.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

extern "C" {

int ZELMAR_engine_advance(double seconds) {
    return chase::advanceTime(seconds);
}

double ZELMAR_engine_get_time_step(void) {
    return chase::kStep;
}

int ZELMAR_group_advance(int group) {
    Group* g = groupArg(group, "group_advance");
    return g && chase::advance(*g) ? 1 : 0;
}

} // extern "C"
