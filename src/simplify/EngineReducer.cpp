#include "simplify/EngineReducer.h"

#include "base/VexilError.h"
#include "simplify/SurfSimpli.h"

#include <zelmar/zelmar.h>

#include <exception>

namespace simplify {

int ReduceGroupForEngine(int group, int target, int zeroError, void*) {
    try {
        SurfSimpli s; // through libzelmar3
        s.ForceRestart = true;
        s.ZeroErrorMode = zeroError != 0;
        return s.Reduce(zeroError != 0 ? 0 : target, group, false, nullptr, nullptr, false, false, false);
    } catch (const std::exception&) { // a floating-point failure of the design (docs/simplify.md): no group
        return 0;
    }
}

void InstallEngineReducer() { ZELMAR_engine_set_reducer(&ReduceGroupForEngine, nullptr); }

} // namespace simplify
