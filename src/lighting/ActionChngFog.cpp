#include "ActionChngFog.h"

#include "undo/ActionUndoRedo.h"

#include <memory>
#include <zelmar/zelmar.h>

namespace vexil {

FogValues ReadFog() {
    return {ZELMAR_engine_get_atmospheric_effect(), ZELMAR_engine_get_atmospheric_effect_intensity()};
}

void ApplyFog(const FogValues& fog) {
    // The colour splits into bytes by division by 2^8 and 2^16.
    const int c = fog.colour;
    ZELMAR_engine_set_atmospheric_effect(c % 256, (c / 256) % 256, (c / 65536) % 256);
    ZELMAR_engine_set_atmospheric_effect_intensity(fog.intensity);
}

void RegisterLightingActions() {
    RegisterActionClass(AT_ActionChngFog, []() -> std::unique_ptr<Action> { return std::make_unique<ActionChngFog>(); });
}

} // namespace vexil
