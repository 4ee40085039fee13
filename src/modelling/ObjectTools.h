// The object tools of the Deform band and the group menu (docs/modelling.md): mirror, duplicate, align,
// bend and displace. Each command is one undo step; the dialogs that ask for their values are in
// ObjectToolDialogs.
#pragma once
#include "geometry/Deformers.h"

#include <array>
#include <vector>

namespace vexil {

// Mirrors the group about its centre: factors -1 on the mirrored axes, +1 on the others. copy: a mirrored
// copy under the same father becomes current, the group stays. Pushes ActionMirror; false when nothing
// was done (no group, no axis).
bool MirrorGroupCommand(int group, const std::array<double, 3>& factors, bool copy);
// `count` copies of each group, copy i moved by i x offset; they become the selection. One ActionCreate.
bool DuplicateGroups(const std::vector<int>& groups, int count, const std::array<double, 3>& offset);
// Bends / displaces the group's points (one ActionWeldSelPts: the points' locations before and after).
bool BendGroupCommand(int group, int along, int direction, double degrees);
bool DisplaceGroupCommand(int group, double strength, const DisplaceSampler& sample);

// Align: the boxes of `groups` go to the target group's box on each chosen axis. mode per axis: 0 leave,
// 1 minimum to minimum, 2 centre to centre, 3 pivot (rotate reference point) to pivot, 4 maximum to
// maximum. One ActionAlign.
bool AlignGroups(const std::vector<int>& groups, int target, const std::array<int, 3>& mode);

} // namespace vexil
