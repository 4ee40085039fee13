#include "ActionApplyTextureToGrp.h"

#include "MaterialsUi.h"
#include "PolygonLists.h"
#include "PolygonSurfacePanel.h"

#include <zelmar/zelmar.h>

namespace vexil {

void ActionApplyTextureToGrp::SetSelToCurrSel(bool wholeGroup) {
    m_forGroup = wholeGroup;
    std::vector<int> polygons;
    if (wholeGroup) {
        for (int g : SelectedGroups()) {
            std::vector<int> more = GroupPolygons(g);
            polygons.insert(polygons.end(), more.begin(), more.end());
        }
    } else {
        polygons = SelectedPolygons();
    }
    SetPolygons(polygons);
}

void ActionApplyTextureToGrp::SetPolygons(const std::vector<int>& polygons) {
    m_polygons = polygons;
    m_old.clear();
    m_old.reserve(polygons.size());
    for (int p : polygons) {
        OldFill f{};
        ZELMAR_polygon_get_color(p, f.colour.data());
        f.bitmap = ZELMAR_polygon_get_bitmap_handle(p);
        f.animation = ZELMAR_polygon_get_animation(p);
        f.frame = ZELMAR_polygon_get_animation_frame(p);
        m_old.push_back(f);
    }
}

void ActionApplyTextureToGrp::Undo() {
    // Colour first (it clears bitmap and animation), then the bitmap, then the animation over it.
    for (std::size_t i = 0; i < m_polygons.size(); ++i) {
        const int p = m_polygons[i];
        const OldFill& f = m_old[i];
        ZELMAR_polygon_set_color_fill(p, f.colour[0], f.colour[1], f.colour[2]);
        if (f.bitmap && ZELMAR_bitmap_is_bitmap(f.bitmap)) ZELMAR_polygon_set_bitmap_fill(p, f.bitmap);
        if (f.animation) ZELMAR_polygon_set_animation(p, f.animation);
        if (ZELMAR_polygon_get_animation_frame(p) != f.frame) ZELMAR_polygon_set_animation_frame(p, f.frame);
    }
    refreshPanel();
}

void ActionApplyTextureToGrp::Redo() {
    for (int p : m_polygons) {
        switch (m_type) {
        case FillBitmap: ZELMAR_polygon_set_bitmap_fill(p, m_bitmap); break;
        case FillAnimation: ZELMAR_polygon_set_animation(p, m_animation); break;
        default: ZELMAR_polygon_set_color_fill(p, m_colour[0], m_colour[1], m_colour[2]); break;
        }
    }
    refreshPanel();
}

void ActionApplyTextureToGrp::refreshPanel() const {
    if (PolygonSurfacePanel* panel = materialsUi().panel) panel->ShowGroupColour();
}

} // namespace vexil
