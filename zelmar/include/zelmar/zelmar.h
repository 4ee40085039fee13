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

#define ZELMAR_OP(ret, name, params) ZELMAR_API ret ZELMAR_##name params;
#include "zelmar_ops.def"
#include "zelmar_ext.def"
#undef ZELMAR_OP

#ifdef __cplusplus
}
#endif

#endif
