#include "UndoHost.h"

namespace vexil {
namespace {
UndoHost g_nullHost;
UndoHost* g_host = nullptr;
} // namespace

UndoHost& undoHost() { return g_host ? *g_host : g_nullHost; }
void setUndoHost(UndoHost* h) { g_host = h; }

} // namespace vexil
