#include "ModellingActions.h"

#include "ModellingRefresh.h"
#include "PolygonNodes.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

template <class T> std::unique_ptr<Action> make() {
    return std::make_unique<T>();
}

bool polygonModeOpen() {
    SelectionModel* m = selectionModel();
    return m && m->Host().CurrentSelectMode() == SelectMode::Polygon;
}

void makeCurrentGroup(int group) {
    SelectionModel* m = selectionModel();
    if (!m) return;
    m->SetPrevSelEntityToCurrSelEntity();
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = group;
    m->ThingsToDoOnSelectedEntityChange();
}

} // namespace

// ---- ActionDeleteGrpPols ------------------------------------------------------------------------------

ActionDeleteGrpPols::~ActionDeleteGrpPols() {
    if (!m_undone) DeletePolsPermanently(m_polygons);
}

void ActionDeleteGrpPols::SetDeletedPols(std::vector<PolygonPlace> places, int group) {
    m_places = std::move(places);
    m_polygons = PolygonsOf(m_places);
    m_group = group;
}

void ActionDeleteGrpPols::Undo() {
    UnDeletePols(m_places);
    AddPolygonNodes(m_places);
    WeldTableEnter(m_polygons);
    Sel().SelPts.Clear();
    Sel().SelPtsPols.Clear();
    Sel().SelPols.Assign(m_polygons);
    UpdateStatusBar();
    if (polygonModeOpen()) {
        if (SelectionModel* m = selectionModel()) m->Host().RefreshGroup(m_group);
        SelectPolygons(m_polygons);
    }
    m_undone = true;
}

void ActionDeleteGrpPols::Redo() {
    WeldTableLeave(m_polygons);
    m_places = FakeDeletePols(m_polygons);
    RemovePolygonNodes(m_polygons);
    ClearSubSelection();
    if (SelectionModel* m = selectionModel()) m->Host().RefreshGroup(m_group);
    UpdateStatusBar();
    m_undone = false;
}

// ---- ActionAddPols ------------------------------------------------------------------------------------

ActionAddPols::~ActionAddPols() {
    if (m_undone) DeletePolsPermanently(m_polygons);
}

void ActionAddPols::SetAddedPols(int group, const std::vector<int>& polygons) {
    m_group = group;
    m_polygons = polygons;
}

void ActionAddPols::Undo() {
    m_places = FakeDeletePols(m_polygons);
    RemovePolygonNodes(m_polygons);
    UpdateStatusBar();
    m_undone = true;
}

void ActionAddPols::Redo() {
    UnDeletePols(m_places);
    AddPolygonNodes(m_places);
    UpdateStatusBar();
    m_undone = false;
}

// ---- ActionDetachPols ---------------------------------------------------------------------------------

ActionDetachPols::~ActionDetachPols() {
    // Undone: the new group is a corpse that only this action knows.
    if (m_undone && ZELMAR_group_is_group(m_new) == 1 && ZELMAR_group_get_father_group(m_new) == 0)
        DeleteGroupPermanently(m_new);
}

void ActionDetachPols::SetNewGrp(int group) {
    m_new = group;
    m_father = ZELMAR_group_get_father_group(group);
}

void ActionDetachPols::Undo() {
    SelectionModel* m = selectionModel();
    ReturnPols(m_places);
    if (m) m->FakeDeleteGroup(m_new);
    FillWeldTable(WeldTableGroup() == m_new ? 0 : WeldTableGroup());
    if (m) m->Host().RefreshGroup(m_old);
    makeCurrentGroup(m_old);
    UpdateStatusBar();
    m_undone = true;
}

void ActionDetachPols::Redo() {
    SelectionModel* m = selectionModel();
    m_places = MovePolsToGroup(PolygonsOf(m_places), m_new);
    if (m) {
        m->UnDeleteGroup(m_new, m_father);
        m->Host().RefreshGroup(m_old);
        m->Host().RefreshGroup(m_new);
    }
    RemovePolygonNodes(PolygonsOf(m_places));
    makeCurrentGroup(m_new);
    UpdateStatusBar();
    m_undone = false;
}

// ---- ActionWeldSelPts ---------------------------------------------------------------------------------

void ActionWeldSelPts::Undo() {
    m_old.Restore();
    FillWeldTable(WeldTableGroup());
    RefreshAfterPointsMoved(m_group);
}

void ActionWeldSelPts::Redo() {
    m_new.Restore();
    FillWeldTable(WeldTableGroup());
    RefreshAfterPointsMoved(m_group);
}

// ---- ActionPolsFlip -----------------------------------------------------------------------------------

void ActionPolsFlip::apply() {
    FlipPolygons(m_polygons);
}

// ---- ActionMirror -------------------------------------------------------------------------------------

ActionMirror::~ActionMirror() {
    if (m_copy && m_undone && ZELMAR_group_is_group(m_group) == 1 && ZELMAR_group_get_father_group(m_group) == 0)
        DeleteGroupPermanently(m_group);
}

void ActionMirror::SetParameters(int group, bool copy, const std::array<double, 3>& factors) {
    m_group = group;
    m_copy = copy;
    m_factors = factors;
    m_father = ZELMAR_group_get_father_group(group);
    if (!copy) {
        m_before.Capture(PointsOfGroup(group));
        for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p))
            m_polygons.push_back(p);
    }
}

void ActionMirror::Undo() {
    SelectionModel* m = selectionModel();
    if (m_copy) {
        if (m) m->FakeDeleteGroup(m_group);
        if (Sel().CurrSelEntityType == 1 && Sel().CurrSelEntity == m_group) {
            if (m) {
                m->SetPrevSelEntityToCurrSelEntity();
                Sel().CurrSelEntityType = 0;
                m->ThingsToDoOnSelectedEntityChange();
            }
        }
        m_undone = true;
        UpdateStatusBar();
        return;
    }
    if (!m_hasAfter) {
        m_after = m_before.Again();
        m_hasAfter = true;
    }
    // Turned over with the mirror: turned back; then the points as they were.
    if (m_factors[0] * m_factors[1] * m_factors[2] < 0) FlipPolygons(m_polygons);
    m_before.Restore();
    FillWeldTable(WeldTableGroup());
    RefreshAfterPointsMoved(m_group);
    m_undone = true;
}

void ActionMirror::Redo() {
    SelectionModel* m = selectionModel();
    if (m_copy) {
        if (m) {
            m->UnDeleteGroup(m_group, m_father);
            makeCurrentGroup(m_group);
        }
        m_undone = false;
        UpdateStatusBar();
        return;
    }
    if (m_factors[0] * m_factors[1] * m_factors[2] < 0) FlipPolygons(m_polygons);
    if (m_hasAfter) m_after.Restore();
    FillWeldTable(WeldTableGroup());
    RefreshAfterPointsMoved(m_group);
    m_undone = false;
}

void RegisterModellingActions() {
    RegisterActionClass(AT_ActionDeleteGrpPols, &make<ActionDeleteGrpPols>);
    RegisterActionClass(AT_ActionDetachPols, &make<ActionDetachPols>);
    RegisterActionClass(AT_ActionWeldSelPts, &make<ActionWeldSelPts>);
    RegisterActionClass(AT_ActionPolsFlip, &make<ActionPolsFlip>);
    RegisterActionClass(AT_ActionMirror, &make<ActionMirror>);
}

} // namespace vexil
