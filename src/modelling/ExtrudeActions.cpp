#include "ExtrudeActions.h"

#include "selection/ActionTransformSubObject.h"

#include "ModellingRefresh.h"
#include "PolygonNodes.h"
#include "mdlExtrude.h"
#include "geometry/Extrude.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

template <class T> std::unique_ptr<Action> make() {
    return std::make_unique<T>();
}

void moveAll(const std::vector<int>& polygons, const std::array<double, 3>& d) {
    for (int pt : PointsOfPolygons(polygons)) {
        double p[3];
        ZELMAR_point_get_xyz(pt, p);
        for (int k = 0; k < 3; ++k)
            p[k] += d[size_t(k)];
        ZELMAR_point_set_xyz(pt, p);
    }
}

void afterChange(int group) {
    if (SelectionModel* m = selectionModel()) {
        m->UpdateSelPolsRelatedPtsArray();
        m->ComputeSelPolsAvgCenter();
        m->ValidateChangedPolygons();
    }
    RefreshAfterPointsMoved(group);
}

} // namespace

// ---- ActionExtrude ------------------------------------------------------------------------------------

void ActionExtrude::Undo() {
    m_added.Undo();
    WeldTableLeave(m_moved);
    WeldTableLeave(m_added.RetrieveAddedPols());
    if (!m_before.Empty()) {
        if (!m_hasAfter) {
            m_after = m_before.Again();
            m_hasAfter = true;
        }
        m_before.Restore();
    } else {
        moveAll(m_moved, {m_initial[0] - m_final[0], m_initial[1] - m_final[1], m_initial[2] - m_final[2]});
    }
    WeldTableEnter(m_moved);
    afterChange(m_added.Group());
}

void ActionExtrude::Redo() {
    m_added.Redo();
    WeldTableLeave(m_moved);
    if (m_hasAfter)
        m_after.Restore();
    else
        moveAll(m_moved, {m_final[0] - m_initial[0], m_final[1] - m_initial[1], m_final[2] - m_initial[2]});
    WeldTableEnter(m_moved);
    WeldTableEnter(m_added.RetrieveAddedPols());
    afterChange(m_added.Group());
}

// ---- ActionBevel --------------------------------------------------------------------------------------

void ActionBevel::Undo() {
    if (!m_before.Empty()) {
        if (!m_hasAfter) {
            m_after = m_before.Again();
            m_hasAfter = true;
        }
        m_before.Restore();
    } else if (m_factor != 0) {
        mdlExtrude::Instance().BevelReset();
        mdlExtrude::Instance().BevelChange(1.0 / m_factor);
    }
    afterChange(Sel().CurrSelEntity);
}

void ActionBevel::Redo() {
    if (m_hasAfter) {
        m_after.Restore();
    } else {
        mdlExtrude::Instance().BevelReset();
        mdlExtrude::Instance().BevelChange(m_factor);
    }
    afterChange(Sel().CurrSelEntity);
}

// ---- ActionCutPol -------------------------------------------------------------------------------------

ActionCutPol::~ActionCutPol() {
    // Done: the originals stand deleted and die with the action (the halves die with the embedded one).
    if (!m_undone) DeletePolsPermanently(PolygonsOf(m_deleted));
}

void ActionCutPol::Undo() {
    const std::vector<int> halves = m_added.RetrieveAddedPols();
    WeldTableLeave(halves);
    m_added.Undo();
    UnDeletePols(m_deleted);
    AddPolygonNodes(m_deleted);
    const std::vector<int> originals = PolygonsOf(m_deleted);
    WeldTableEnter(originals);
    SelectPolygons(originals);
    UpdateStatusBar();
    m_undone = true;
}

void ActionCutPol::Redo() {
    const std::vector<int> originals = PolygonsOf(m_deleted);
    WeldTableLeave(originals);
    m_deleted = FakeDeletePols(originals);
    RemovePolygonNodes(originals);
    m_added.Redo();
    const std::vector<int> halves = m_added.RetrieveAddedPols();
    WeldTableEnter(halves);
    SelectPolygons(halves);
    UpdateStatusBar();
    m_undone = false;
}

void RegisterExtrudeActions() {
    RegisterActionClass(AT_ActionExtrude, &make<ActionExtrude>);
    RegisterActionClass(AT_ActionBevel, &make<ActionBevel>);
    RegisterActionClass(AT_ActionCutPol, &make<ActionCutPol>);
}

} // namespace vexil

namespace vexil {
void InstallModellingActions() {
    RegisterSubObjectActions();
    RegisterModellingActions();
    RegisterExtrudeActions();
}
} // namespace vexil
