// Default bodies for every operation: weak symbols, replaced at link time by the real
// implementation wherever one exists. They let every name link before its family is built.
#include <zelmar/zelmar.h>

namespace {
template <class T> T none() {
    return T{};
}
template <> void none<void>() {}
} // namespace

#pragma GCC diagnostic ignored "-Wunused-parameter"
#define ZELMAR_OP(ret, name, params)                                                                         \
    extern "C" __attribute__((weak)) ret ZELMAR_##name params {                                              \
        return none<ret>();                                                                                  \
    }
#include <zelmar/zelmar_ext.def>
#include <zelmar/zelmar_ops.def>
#undef ZELMAR_OP
