// The undo actions of polygon surface values: rotated flag (32), light diminution (33), blending filter (34)
// and transparent colour (35). Each keeps the polygons it changed and each polygon's own previous value, so
// that Undo gives every polygon back exactly what it had; Undo and Redo share one body.
#pragma once
#include "undo/Action.h"

#include <vector>

namespace vexil {

// The selected polygons with one value each (the value before the change).
template <class T> struct PolygonValues {
    std::vector<int> polygons;
    std::vector<T> values;
};

class ActionChngPolRotatedProp : public Action {
  public:
    void SetSelToCurrSel();
    void SetPrevRotatedFlag(bool flag) { m_prev = flag; }
    void SetNewRotatedFlag(bool flag) { m_new = flag; }
    void Undo() override { apply(true); }
    void Redo() override { apply(false); }
    const std::vector<int>& Polygons() const { return m_sel.polygons; }

  private:
    void apply(bool undo);
    PolygonValues<int> m_sel;
    bool m_prev = false, m_new = true;
};

class ActionChngPolLightDimu : public Action {
  public:
    void SetSelToCurrSel();
    void SetPolygons(const std::vector<int>& polygons);
    void SetPrevLightDimu(double v) { m_prev = v; }
    void SetnewLightDimu(double v) { m_new = v; }
    void Undo() override { apply(true); }
    void Redo() override { apply(false); }
    const std::vector<int>& Polygons() const { return m_sel.polygons; }

  private:
    void apply(bool undo);
    PolygonValues<double> m_sel;
    double m_prev = 0, m_new = 0;
};

class ActionChngPolTranslucency : public Action {
  public:
    void SetSelToCurrSel();
    void SetPolygons(const std::vector<int>& polygons);
    void SetPrevTranslucency(int v) { m_prev = v; }
    void SetnewTranslucency(int v) { m_new = v; }
    void Undo() override { apply(true); }
    void Redo() override { apply(false); }
    const std::vector<int>& Polygons() const { return m_sel.polygons; }

  private:
    void apply(bool undo);
    PolygonValues<int> m_sel;
    int m_prev = 0, m_new = 0;
};

// A transparent colour given to one polygon's bitmap, or to every polygon of its group with that bitmap. A
// bitmap with another transparent index is another engine bitmap: the action keeps the bitmap each changed
// polygon had and the one it got, and reloads from the file by index only when a handle has gone since.
class ActionChngPolTrnsIndx : public Action {
  public:
    void SetSel_PolandFatherGrp(int polygon, int group) {
        m_polygon = polygon;
        m_group = group;
    }
    void SetAffectAllPolsWithSameMapNameFlag(bool all) { m_all = all; }
    void SetPrevTrnsIndx(int index) { m_prevIndex = index; }
    void SetNewTrnsIndx(int index) { m_newIndex = index; }
    // The polygons changed, each with the bitmap it had, and the bitmap they got.
    void SetChangedPols(const std::vector<int>& polygons, const std::vector<int>& oldBitmaps, int newBitmap);
    void Undo() override { apply(true); }
    void Redo() override { apply(false); }
    int Polygon() const { return m_polygon; }
    int Group() const { return m_group; }
    bool AffectsAll() const { return m_all; }
    int PrevIndex() const { return m_prevIndex; }
    int NewIndex() const { return m_newIndex; }
    const std::vector<int>& Polygons() const { return m_pols.polygons; }

  private:
    void apply(bool undo);
    int m_polygon = 0, m_group = 0;
    bool m_all = false;
    int m_prevIndex = -1, m_newIndex = -1;
    PolygonValues<int> m_pols; // old bitmap of each
    int m_newBitmap = 0;
};

} // namespace vexil
