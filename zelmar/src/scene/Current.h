// The world's current camera, active background and light settings. Stored as handles and checked on
// every read, so a deleted entity simply reads as none.
#pragma once
#include "scene/Entities.h"

namespace zelmar {

Camera* currentCamera();
void setCurrentCamera(Handle camera); // 0 clears; any other non-camera handle is ignored

Background* activeBackground();
void setActiveBackground(Handle background); // 0 clears

// The value given to light_calcualte_vertices_normals_automatically (0 until called).
int lightNormalsAutomatically();
void setLightNormalsAutomatically(int value);

} // namespace zelmar
