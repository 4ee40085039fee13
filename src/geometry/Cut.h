// The geometry of the polygon cut (mdlCutPols): a straight line on the screen cuts the polygons whose
// projected edges it crosses; each crossing is carried back to its edge in 3D by proportion, and the
// polygon's ring, with the crossings in place, is divided into two halves.
#pragma once
#include <functional>
#include <vector>

namespace vexil {

// One entry of the cut point list: x, y, z, u, v.
struct CutPoint {
    double xyz[3] = {0, 0, 0};
    double uv[2] = {0, 0};
};

// The screen ends of a 3D edge in the view being cut (ZELMAR_engine_3D_edge_to_2D with that view's camera
// current); false when the edge is not wholly in view.
using EdgeToScreen = std::function<bool(const double a[3], const double b[3], double s[2], double e[2])>;

struct CutLine {
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

// The ring's n points (in order, each with its location and bitmap coordinates) into `list`, with the
// crossings inserted after the point they follow. Answers 0, 1 or 2 crossings; first and second are 1-based
// positions in `list`. A crossing exactly on a point adds no point (the point serves); a third crossing
// replaces the second, so a concave polygon is cut at its first and last crossing. toScreen is asked about
// each edge in ring order, the closing edge last.
int FindCutCrossingsOnRing(const CutPoint* ring, size_t n, const CutLine& line, const EdgeToScreen& toScreen,
                           std::vector<CutPoint>& list, int& first, int& second);
// The rings of many polygons in a few engine calls: ring i is points[starts[i]] to points[starts[i + 1] - 1].
void ReadCutRings(const std::vector<int>& polygons, std::vector<CutPoint>& points, std::vector<size_t>& starts);

// The two halves of polygons with two crossings: points 1..first then second..end, and first..second, each
// a vertex with brightness 100, with the polygon's animation, else bitmap, else colour, named "Cut_Poly", in
// the group and added to the world. Collected first and made together in one engine call: a cut makes
// tens of thousands of halves, and one call per point and attribute cost more than the cut itself.
struct CutHalves {
    int first = 0, second = 0;
};
class CutHalvesBatch {
  public:
    // The halves of `polygon`; false (and nothing added) when a half would have fewer than three points.
    bool Add(int polygon, const std::vector<CutPoint>& list, int first, int second);
    // Makes the halves added so far in `group`, in the order they were added; one CutHalves per Add that
    // answered true (zeros where the engine refused a ring).
    std::vector<CutHalves> Make(int group);
    // Room for about this many polygons with this many ring points in all (a cut knows it before it starts).
    void Reserve(size_t polygons, size_t points);

  private:
    std::vector<int> m_polygons, m_sizes;
    std::vector<double> m_vertices;
};

} // namespace vexil
