#include "ActionChngTextureCoords.h"

#include "MaterialsUi.h"
#include "frmTextureMapping.h"

#include <zelmar/zelmar.h>

namespace vexil {

void ActionChngTextureCoords::SetPtsChangedToCurrSel() {
    m_points = PolygonPointPairs(SelectedPolygons());
}

void ActionChngTextureCoords::SetPtsChangedToGiven(std::vector<PointOfPolygon> points) {
    m_points = std::move(points);
}

void ActionChngTextureCoords::read(std::vector<std::array<double, 2>>& into) const {
    into.resize(m_points.size());
    for (std::size_t i = 0; i < m_points.size(); ++i) ZELMAR_point_get_bitmap_xy(m_points[i].point, into[i].data());
}

void ActionChngTextureCoords::write(const std::vector<std::array<double, 2>>& from) const {
    for (std::size_t i = 0; i < m_points.size() && i < from.size(); ++i)
        ZELMAR_point_set_bitmap_xy(m_points[i].point, from[i].data());
    if (frmTextureMapping* editor = materialsUi().editor) editor->Redraw();
}

} // namespace vexil
