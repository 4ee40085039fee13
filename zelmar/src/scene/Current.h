// The world's current camera and active background. Stored as handles and checked on
// every read, so a deleted entity simply reads as none.
#pragma once
#include "scene/Entities.h"

namespace zelmar {

Camera* currentCamera();
void setCurrentCamera(Handle camera); // 0 clears; any other non-camera handle is ignored

Background* activeBackground();
void setActiveBackground(Handle background); // 0 clears

} // namespace zelmar
