#include "ActionRenameEntity.h"

#include "UndoHost.h"

#include <zelmar/zelmar.h>

namespace vexil {

std::string EntityNodeKey(int kind, int handle) {
    const std::string h = std::to_string(handle);
    switch (kind) {
    case EntityGroup: return "Group" + h;
    case EntityPolygon: return "Pol" + h;
    case EntityCamera: return "Camera" + h;
    case EntityTrack: return "Track" + h;
    case EntityLight: return "Light" + h;
    case EntityBackground: return "Background" + h;
    default: return {};
    }
}

void SetEngineEntityName(int kind, int handle, const std::string& name) {
    const char* n = name.c_str();
    switch (kind) {
    case EntityGroup: ZELMAR_group_set_name(handle, n); break;
    case EntityPolygon: ZELMAR_polygon_set_name(handle, n); break;
    case EntityCamera: ZELMAR_camera_set_name(handle, n); break;
    case EntityTrack: ZELMAR_track_set_name(handle, n); break;
    case EntityLight: ZELMAR_light_set_name(handle, n); break;
    case EntityBackground: ZELMAR_background_set_name(handle, n); break;
    default: break;
    }
}

void ActionRenameEntity::Apply(const std::string& name) {
    SetEngineEntityName(m_kind, m_handle, name);
    const std::string key = EntityNodeKey(m_kind, m_handle);
    if (!key.empty()) undoHost().SetTreeNodeText(key, name);
}

void ActionRenameEntity::Undo() { Apply(m_prevName); }
void ActionRenameEntity::Redo() { Apply(m_newName); }

} // namespace vexil
