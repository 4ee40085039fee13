#include "MaterialsHost.h"

namespace vexil {
namespace {
MaterialsHost g_default;
MaterialsHost* g_host = nullptr;
} // namespace

MaterialsHost& materialsHost() {
    return g_host ? *g_host : g_default;
}

void setMaterialsHost(MaterialsHost* host) {
    g_host = host;
}

} // namespace vexil
