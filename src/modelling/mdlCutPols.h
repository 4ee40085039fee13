// mdlCutPols: the polygon cut. While the Cut button of the polygon panel is down, a drag with the first
// button in a viewport draws a red rubber line; at the release the selected polygons that the line crosses
// twice are replaced by their two halves, as one undo step (ActionCutPol).
#pragma once
#include "geometry/Cut.h"

#include <vector>

namespace vexil {

class mdlCutPols {
  public:
    static mdlCutPols& Instance();

    void CutMouseDown(int x, int y);
    void CutMouseMove(int x, int y);
    void CutMouseUp(int x, int y);
    // The cut of the selected polygons along the stored line in the active view; fills the two lists.
    void CutSelectedPols();

    bool CutInProgress = false;
    int CutStartX = 0, CutStartY = 0, CutEndX = 0, CutEndY = 0;
    std::vector<int> CutAddedPols, CutDeletedPols;
};

} // namespace vexil
