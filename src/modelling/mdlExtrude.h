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
    // One live step without the repaint: the change, the polygons checked, the pivot, the group's box.
    void LiveStep(int index, double value);
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
    // What a live step needs, taken at the press (the weld table and the selection stay as they are until
    // the release): the selection's weld sets, where their points are, and the polygons they touch.
    struct LiveSets {
        bool valid = false;
        bool uniform = false;           // every point of each set lies exactly at the set's location
        std::vector<int> firstPoint;    // per set
        std::vector<Vec3d> loc;         // per set: the location of its first point
        std::vector<int> points, setOf; // every point of the sets, in handle order, and its set
        std::vector<double> xyz;        // scratch, three per entry of points
        std::vector<int> touched;       // the polygons of the sets' points, each once, in handle order
        // The validity check of a step. A polygon whose every point is in the sets (rigid) only moves with
        // them or scales about the pivot, which keeps its validity while its size stays at or above 1 (the
        // planarity tolerance is relative from there); the rest are checked at every step.
        std::vector<int> loose;         // touched polygons that are not rigid
        std::vector<int> rigid;         // rigid polygons by growing size at the press
        std::vector<double> rigidSize;  // their sizes at the press
        std::vector<int> rigidInvalid;  // invalid ones among rigid[0..i) at the press, per i (one more entry)
        std::vector<int> check;         // scratch
        double scale = 1.0;             // how much the rigid polygons were scaled since the press
        // The group's box: its axes and the bounds along them of the subtree's points outside the sets.
        bool boxed = false;
        double axis[3][3] = {};
        double lo[3] = {}, hi[3] = {};
        std::vector<int> polygons;      // the selected polygons
        std::vector<double> centres;    // scratch, three per selected polygon
        // What computeCentre last answered, while no set moved since (a bevel step asks before it moves).
        bool centred = false;
        Vec3d centre{0, 0, 0};
        int nearest = 0;
    };
    LiveSets& live();
    void buildLive();
    void moveSets(const std::function<Vec3d(const Vec3d&)>& to);
    void computeCentre();
    void splitRigid();
    void takeStaticBox();
    void initializeBox();
    void validate();
    void afterStep();
    LiveSets m_live;
    PointsSnapshot m_before;
    int m_group = 0;
    bool m_pressed = false;
};

} // namespace vexil
