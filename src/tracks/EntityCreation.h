// The steps every new camera, track and background ends with: its node under its folder of the camera
// tree, the entity made current, the views redrawn, and one ActionCreate on the stack.
#pragma once
#include <QString>

namespace vexil {

class TracksHost;

// kind 2 camera ("CAMERA", "Camera" + handle, image "Cam"), 3 track, 5 background.
void AnnounceCreatedEntity(TracksHost& host, int kind, int handle);
// The tree node of an entity of kind 2, 3 or 5 ("" for other kinds).
QString CamTrackBkKey(int kind, int handle);
// Adds (or re-adds) the node of an entity under its folder; its text is the entity's name.
void AddCamTrackBkNode(TracksHost& host, int kind, int handle);
void RemoveCamTrackBkNode(TracksHost& host, int kind, int handle);

} // namespace vexil
