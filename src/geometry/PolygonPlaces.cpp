#include "PolygonPlaces.h"

#include <cstddef>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

std::vector<PolygonPlace> takeOut(const std::vector<int>& polygons, int to, bool disable) {
    std::vector<PolygonPlace> places;
    places.reserve(polygons.size());
    for (int p : polygons) {
        if (ZELMAR_polygon_is_polygon(p) != 1) continue;
        const int g = ZELMAR_polygon_get_group(p);
        if (g == 0 || g == to) continue;
        places.push_back({p, g, ZELMAR_polygon_get_next_in_group(p), ZELMAR_polygon_is_disabled(p) == 1});
        ZELMAR_polygon_set_group(p, to);
        if (disable) ZELMAR_polygon_disable(p);
    }
    return places;
}

// Back in reverse order, each in front of the polygon that followed it; one engine call per run of one group.
void putBack(const std::vector<PolygonPlace>& places, bool enable) {
    std::vector<int> pols, nexts;
    std::size_t i = places.size();
    while (i > 0) {
        const int g = places[i - 1].group;
        pols.clear();
        nexts.clear();
        while (i > 0 && places[i - 1].group == g) {
            const PolygonPlace& pl = places[i - 1];
            if (ZELMAR_polygon_is_polygon(pl.polygon) == 1) {
                pols.push_back(pl.polygon);
                nexts.push_back(pl.next);
                if (enable && !pl.disabled) ZELMAR_polygon_enable(pl.polygon);
            }
            --i;
        }
        ZELMAR_group_insert_polygons(g, pols.data(), nexts.data(), static_cast<int>(pols.size()));
    }
}

} // namespace

std::vector<PolygonPlace> FakeDeletePols(const std::vector<int>& polygons) {
    return takeOut(polygons, 0, true);
}

void UnDeletePols(const std::vector<PolygonPlace>& places) {
    putBack(places, true);
}

std::vector<PolygonPlace> MovePolsToGroup(const std::vector<int>& polygons, int group) {
    return takeOut(polygons, group, false);
}

void ReturnPols(const std::vector<PolygonPlace>& places) {
    putBack(places, false);
}

void DeletePolsPermanently(const std::vector<int>& polygons) {
    for (int p : polygons)
        if (ZELMAR_polygon_is_polygon(p) == 1 && ZELMAR_polygon_get_group(p) == 0) ZELMAR_polygon_delete(p);
}

std::vector<int> PolygonsOf(const std::vector<PolygonPlace>& places) {
    std::vector<int> out;
    out.reserve(places.size());
    for (const PolygonPlace& p : places)
        out.push_back(p.polygon);
    return out;
}

} // namespace vexil
