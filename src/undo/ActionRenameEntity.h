// ActionRenameEntity (type 27, the entity actions): kind, handle, old and new name. Undo sets the engine name and the
// tree node's text to the old name, Redo to the new one.
#pragma once
#include "Action.h"

#include <string>

namespace vexil {

// Entity kinds of the selection model, and the polygon, which the group tree can rename too (its own kind here).
enum EntityKind : int {
    EntityNone = 0,
    EntityGroup = 1,
    EntityCamera = 2,
    EntityTrack = 3,
    EntityLight = 4,
    EntityBackground = 5,
    EntityMultiple = 6,
    EntityPolygon = 7,  // not a selection kind: only ActionRenameEntity and the group tree use it
};

// The tree node key of an entity: "Group" + handle, "Pol" + handle, "Camera" + handle, "Track" + handle,
// "Light" + handle, "Background" + handle; "" for other kinds.
std::string EntityNodeKey(int kind, int handle);
// Sets the engine's name of an entity of that kind (group, polygon, camera, track, light, background).
void SetEngineEntityName(int kind, int handle, const std::string& name);

class ActionRenameEntity : public Action {
public:
    void SetEntityRenamed(int kind, int handle) { m_kind = kind; m_handle = handle; }
    void SetPrevName(const std::string& name) { m_prevName = name; }
    void SetNewName(const std::string& name) { m_newName = name; }

    void Undo() override;
    void Redo() override;

    int Kind() const { return m_kind; }
    int Handle() const { return m_handle; }
    const std::string& PrevName() const { return m_prevName; }
    const std::string& NewName() const { return m_newName; }

private:
    void Apply(const std::string& name);
    int m_kind = EntityNone;
    int m_handle = 0;
    std::string m_prevName;
    std::string m_newName;
};

} // namespace vexil
