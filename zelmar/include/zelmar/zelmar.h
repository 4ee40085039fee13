/* zelmar: the scene and rendering engine of Vexil. Plain C interface.
   Handles are 32-bit signed integers, never 0, never reused within a process.
   Booleans are 1 and 0. Points are arrays of three doubles. */
#ifndef ZELMAR_ZELMAR_H
#define ZELMAR_ZELMAR_H

#if defined(__GNUC__)
#define ZELMAR_API __attribute__((visibility("default")))
#else
#define ZELMAR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The reducer behind group_create_reduced_copy, group_reduce_polygons_count and
   engine_reduce_polygons_count, installed by the program that has one (engine_set_reducer):
   reduces the triangles of `group` to `target` (zero_error 1: only while the next contraction
   costs nothing, target ignored) and answers a new group holding the result, or 0. */
typedef int (*ZELMAR_reducer)(int group, int target, int zero_error, void *context);

#define ZELMAR_OP(ret, name, params) ZELMAR_API ret ZELMAR_##name params;
#include "zelmar_ops.def"
#include "zelmar_ext.def"
#undef ZELMAR_OP

#ifdef __cplusplus
}
#endif

#endif
