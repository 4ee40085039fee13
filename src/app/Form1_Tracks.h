// Cameras, tracks and backgrounds in the main window: Form1 makes their controller with its shared objects
// and releases it with them.
#pragma once

class QPoint;
class QTreeWidgetItem;

namespace vexil {

class Form1;
class TracksController;

// Makes the controller with Form1 as its host, places the panels in the Background/Camera/Track tab and
// connects the Create menu's Camera and Track items and the camera tree's popup menu.
void InstallTracks(Form1& form);
void ReleaseTracks();
// The installed controller (null before InstallTracks).
TracksController* FormTracks();
// The camera tree's popup menu for a node: New on a folder, Delete, Save Current and Hide or Unhide on an
// entity, as fits its kind.
void ShowCamTrkBkMenu(Form1& form, QTreeWidgetItem* node, const QPoint& globalPos);

} // namespace vexil
