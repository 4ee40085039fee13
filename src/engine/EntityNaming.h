// Entity names: the naming of new entities, name reading through the engine, and name lookups.
// GUI-free.
#pragma once
#include <string>

namespace vexil {

// The engine's name of any named handle, through ZELMAR_entity_get_name with a 255-character buffer, cut at
// the first zero character.
std::string EntityName(int handle);

// The padding routine: at least two digits ("01", "100").
std::string PadCounter(int counter);

// Lookups by name; 0 when none.
int GroupUsingName(const std::string& name);
int CameraUsingName(const std::string& name);
int LightUsingName(const std::string& name);
int TrackUsingName(const std::string& name);
int BackgroundUsingName(const std::string& name);
int PolygonUsingName(const std::string& name);

// "Camera01", "Background01", "Track01", "Light01": the first free name with the counter from 1.
std::string GetNewCamName();
std::string GetNewBkName();
std::string GetNewTrkName();
std::string GetNewLightName();
// name itself if no group has it, else name + "01", name + "02", ... the first that is free.
std::string GetNewGrpNameFrmGivenStr(const std::string& name);

} // namespace vexil
