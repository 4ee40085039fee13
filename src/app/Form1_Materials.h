// The materials in the main window: Form1 makes their host with its shared objects and releases it with them.
#pragma once

namespace vexil {

class Form1;

// Installs Form1 as the materials' host, registers their undo actions, gives the Texture tab the popup menu
// mnuTexture, and connects Group > Properties to formGrpProperties.
void InstallMaterials(Form1& form);
void ReleaseMaterials();

} // namespace vexil
