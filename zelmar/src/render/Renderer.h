// One picture of the world: gathers the groups to draw, transforms and clips their
// triangles in parallel chunks, bins them by bands of rows and rasterises the bands in
// parallel. Triangles keep the world's order within every band, so the picture is the
// same whatever the number of threads.
#pragma once
#include "render/Target.h"
#include "render/View.h"
#include "scene/Entities.h"
#include <string>
#include <vector>

namespace zelmar::render {

// Draws into the target; `clear` false draws over the last picture and its depth.
// False with a reason when the camera cannot be used.
bool renderFrame(Target& target, const Camera& camera, bool clear, std::string& error);

// The groups a render draws, in drawing order: the subtree of the group to render (or
// every group), without effectively disabled ones.
std::vector<const Group*> drawnGroups();

} // namespace zelmar::render
