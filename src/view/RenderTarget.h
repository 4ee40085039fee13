// A render target that follows the size of the window that shows it.
#pragma once

namespace vexil {

// `target` resized to w x h, or a new one of that size when it is 0 or gone; unchanged for an empty size.
int TargetOfSize(int target, int w, int h);

} // namespace vexil
