// mdlExtrude: extrude and bevel, live from the two spinners updwnExtBvl(0) (Extrude) and updwnExtBvl(1)
// (Bevel) of the polygon panel. One press, any number of changes, one release: one undo step. The value
// of a spinner is absolute: the distance from the press position, or the scale about the selection's centre.
#pragma once
#include "engine/PointsSnapshot.h"
#include "geometry/Extrude.h"

#include <functional>
#include <vector>

namespace vexil {

class mdlExtrude {
  public:
    static mdlExtrude& Instance();

    void updwnExtBvl_MouseDown(int index);
    void updwnExtBvl_Change(int index, double value);
    void updwnExtBvl_MouseUp(int index, double value);

    void ExtrudeBegin();
    void ExtrudeChange(double amount);
    void BevelChange(double value);
    void BevelReset() { BevelFactor = 1.0; }

    // What the spinners are told: their step, and their value after a release (0 for Extrude, 1.0 for
    // Bevel). The panel installs them; programmatic changes of the value arrive while IgnoreExtBvlChange
    // is true and do nothing.
    std::function<void(int index, double step)> SetStep;
    std::function<void(int index, double value)> SetValue;

    Vec3d ExtrudeNormal{}, ExtrudeNormalCopy{}, ExtrudeSeedOffset{}, ExtrudeOffset{};
    std::vector<PointEdge> BoundaryEdges;
    std::vector<int> ExtrudedPols;
    double BevelFactor = 1.0;
    Vec3d ExtrudeInitialLoc{}, ExtrudeFinalLoc{};
    bool IgnoreExtBvlChange = true;

  private:
    void afterStep();
    PointsSnapshot m_before;
    int m_group = 0;
    bool m_pressed = false;
};

} // namespace vexil
