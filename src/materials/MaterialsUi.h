// The materials' windows that undo and redo refresh, when they exist: the polygon panel of the Edit Group
// tab, the texture list and the texture map editor. Each registers itself while it lives.
#pragma once

namespace vexil {

class PolygonSurfacePanel;
class TexturePanel;
class frmTextureMapping;

struct MaterialsUi {
    PolygonSurfacePanel* panel = nullptr;
    TexturePanel* textures = nullptr;
    frmTextureMapping* editor = nullptr; // only while it is open
};

MaterialsUi& materialsUi();

} // namespace vexil
