#include "SurfaceActions.h"

#include "BitmapFiles.h"
#include "MaterialsUi.h"
#include "PolygonSurfacePanel.h"
#include "selection/SelectionState.h"

#include <zelmar/zelmar.h>

namespace vexil {
namespace {

template <class T, class Read> void record(PolygonValues<T>& sel, const std::vector<int>& polygons, Read read) {
    sel.polygons = polygons;
    sel.values.clear();
    sel.values.reserve(sel.polygons.size());
    for (int p : sel.polygons) sel.values.push_back(read(p));
}

PolygonSurfacePanel* panel() { return materialsUi().panel; }

} // namespace

// ---- 32 ---------------------------------------------------------------------------------------------------

void ActionChngPolRotatedProp::SetSelToCurrSel() {
    record(m_sel, Sel().SelPols.ToVector(), [](int p) { return ZELMAR_polygon_is_rotated(p); });
}

void ActionChngPolRotatedProp::apply(bool undo) {
    for (std::size_t i = 0; i < m_sel.polygons.size(); ++i) {
        const int p = m_sel.polygons[i];
        ZELMAR_polygon_set_rotated(p, undo ? m_sel.values[i] : (m_new ? 1 : 0));
        ZELMAR_polygon_is_valid(p);
    }
    if (panel()) panel()->ShowRotatedFlag(undo ? m_prev : m_new);
}

// ---- 33 ---------------------------------------------------------------------------------------------------

void ActionChngPolLightDimu::SetSelToCurrSel() {
    record(m_sel, Sel().SelPols.ToVector(), [](int p) { return ZELMAR_polygon_get_light_diminution(p); });
}

void ActionChngPolLightDimu::SetPolygons(const std::vector<int>& polygons) {
    record(m_sel, polygons, [](int p) { return ZELMAR_polygon_get_light_diminution(p); });
}

void ActionChngPolLightDimu::apply(bool undo) {
    for (std::size_t i = 0; i < m_sel.polygons.size(); ++i)
        ZELMAR_polygon_set_light_diminution(m_sel.polygons[i], undo ? m_sel.values[i] : m_new);
    if (panel()) panel()->ShowLightDimu(undo ? m_prev : m_new);
}

// ---- 34 ---------------------------------------------------------------------------------------------------

void ActionChngPolTranslucency::SetSelToCurrSel() {
    record(m_sel, Sel().SelPols.ToVector(), [](int p) { return ZELMAR_polygon_get_translucent(p); });
}

void ActionChngPolTranslucency::SetPolygons(const std::vector<int>& polygons) {
    record(m_sel, polygons, [](int p) { return ZELMAR_polygon_get_translucent(p); });
}

void ActionChngPolTranslucency::apply(bool undo) {
    for (std::size_t i = 0; i < m_sel.polygons.size(); ++i)
        ZELMAR_polygon_set_translucent(m_sel.polygons[i], undo ? m_sel.values[i] : m_new);
    if (panel()) panel()->cmbPolFilter_SetAccordingToSelPol();
}

// ---- 35 ---------------------------------------------------------------------------------------------------

void ActionChngPolTrnsIndx::SetChangedPols(const std::vector<int>& polygons, const std::vector<int>& oldBitmaps,
                                           int newBitmap) {
    m_pols.polygons = polygons;
    m_pols.values = oldBitmaps;
    m_newBitmap = newBitmap;
}

void ActionChngPolTrnsIndx::apply(bool undo) {
    // A bitmap that has gone since is loaded again from its file with the index to restore.
    auto live = [](int bitmap, int sameFileAs, int index) {
        if (ZELMAR_bitmap_is_bitmap(bitmap)) return bitmap;
        const QString file = FileBehindBitmap(sameFileAs);
        return file.isEmpty() ? 0 : ZELMAR_bitmap_load(file.toLocal8Bit().constData(), index);
    };
    const int to = undo ? 0 : live(m_newBitmap, m_pols.values.empty() ? 0 : m_pols.values.front(), m_newIndex);
    for (std::size_t i = 0; i < m_pols.polygons.size(); ++i) {
        const int bitmap = undo ? live(m_pols.values[i], m_newBitmap, m_prevIndex) : to;
        if (bitmap) ZELMAR_polygon_set_bitmap_fill(m_pols.polygons[i], bitmap);
    }
    if (panel()) panel()->ShowTransparentColour(ZELMAR_polygon_get_bitmap_handle(m_polygon), undo ? m_prevIndex : m_newIndex);
}

} // namespace vexil
