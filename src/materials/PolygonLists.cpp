#include "PolygonLists.h"

#include "selection/SelectionState.h"

#include <zelmar/zelmar.h>

namespace vexil {

std::vector<int> GroupPolygons(int group) {
    std::vector<int> out;
    if (!ZELMAR_group_is_group(group)) return out;
    out.reserve(std::size_t(std::max(0, ZELMAR_group_get_number_of_polygons(group))));
    for (int p = ZELMAR_group_get_first_polygon(group); p; p = ZELMAR_group_get_next_polygon(p)) out.push_back(p);
    return out;
}

std::vector<int> SelectedPolygons() {
    return Sel().SelPols.ToVector();
}

std::vector<int> SelectedGroups() {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType == 1) return {s.CurrSelEntity};
    std::vector<int> out;
    if (s.CurrSelEntityType == 6)
        for (int i = 1; i <= s.MultiSel.GrpCount; ++i) out.push_back(s.MultiSel.GetGrp(i));
    return out;
}

std::vector<PointOfPolygon> PolygonPointPairs(const std::vector<int>& polygons) {
    std::vector<PointOfPolygon> out;
    out.reserve(polygons.size() * 4);
    for (int p : polygons)
        for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
            out.push_back({pt, p});
    return out;
}

} // namespace vexil
