// The simplifier as the engine's reducer: the engine's reducing operations
// (ZELMAR_group_create_reduced_copy, ZELMAR_group_reduce_polygons_count,
// ZELMAR_engine_reduce_polygons_count) run SurfSimpli through this callback once the program
// has installed it. The engine stays free of this library; docs/simplify.md, "The engine's
// reducing operations".
#pragma once

namespace simplify {

// Installs ReduceGroupForEngine with ZELMAR_engine_set_reducer. Call once at start.
void InstallEngineReducer();

// The callback: reduces the triangles of `group` with the default options (as a plain Reduce
// with ForceRestart) to `target`, or with ZeroErrorMode when zeroError is not 0; answers the
// new "Simplified_version" group, or 0 when the reduction failed (the engine's last error then
// says so). Nothing is left behind on failure.
int ReduceGroupForEngine(int group, int target, int zeroError, void* context);

} // namespace simplify
