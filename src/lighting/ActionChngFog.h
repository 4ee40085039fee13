// ActionChngFog (31): the world's fog before and after the fog dialog, colour and intensity together. Undo
// and Redo put one pair back into the engine.
#pragma once
#include "undo/Action.h"

namespace vexil {

// Fog colour as the engine answers it: red + green * 2^8 + blue * 2^16.
struct FogValues {
    int colour = 0;
    double intensity = 0;
    bool operator==(const FogValues&) const = default;
};

// The engine's fog now.
FogValues ReadFog();
// Puts colour and intensity into the engine.
void ApplyFog(const FogValues& fog);

class ActionChngFog : public Action {
  public:
    void SetOldFogValues(int colour, double intensity) { m_old = {colour, intensity}; }
    void SetNewFogValues(int colour, double intensity) { m_new = {colour, intensity}; }
    const FogValues& OldValues() const { return m_old; }
    const FogValues& NewValues() const { return m_new; }
    void Undo() override { ApplyFog(m_old); }
    void Redo() override { ApplyFog(m_new); }

  private:
    FogValues m_old, m_new;
};

// Lets SetActionObjects make the lighting actions (31). Calling it again changes nothing.
void RegisterLightingActions();

} // namespace vexil
