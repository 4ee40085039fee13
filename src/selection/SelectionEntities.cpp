// The selection model: entities picked by click and band in a viewport, the rubber band, the pivot of a
// selection of entities, and the context menus of the picked kind.
#include "SelectionModel.h"

#include "base/VexilError.h"

#include "EntityKinds.h"
#include "frame/InputState.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QPainter>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

int SelectionModel::keyMode() {
    if (keyDown(Qt::Key_Control)) return 1;
    if (keyDown(Qt::Key_Shift)) return 2;
    return 0;
}

PixelRect SelectionModel::SetUpperAndLowerCorners() {
    PixelRect r;
    frmPicWins* v = Views();
    if (!v) return r;
    const float x1 = v->LastDownX, x2 = v->LastUpX, y1 = v->LastDownY, y2 = v->LastUpY;
    r.lowX = static_cast<int>(std::min(x1, x2));
    r.highX = static_cast<int>(std::max(x1, x2));
    r.lowY = static_cast<int>(std::min(y1, y2));
    r.highY = static_cast<int>(std::max(y1, y2));
    return r;
}

void SelectionModel::makeActiveCameraCurrent() {
    frmPicWins* v = Views();
    if (!v) return;
    const int i = v->ActiveWin;
    const int cam = v->ShownCamera(i) ? v->ShownCamera(i) : v->ViewCams(i).CamHandle;
    ZELMAR_camera_set_current(cam, v->PicWindow(i)->Target());
}

void SelectionModel::SetClickedEntity(int x, int y) {
    SelectionState& s = Sel();
    makeActiveCameraCurrent();
    double hit[3] = {0, 0, 0};
    int group = 0, polygon = 0;
    ZELMAR_engine_2D_point_to_3D(x, y, hit, &group, &polygon);
    if (polygon == 0 || group == 0) {
        s.ClickedEntityType = 0;
        return;
    }
    if (ZELMAR_group_get_father_group(group) == 0) {
        // A marker: the camera or light it stands for. Anything else leaves the clicked entity as it was.
        if (const int cam = m_host.GetCamHandle(group)) {
            s.ClickedCamGrp = group;
            s.ClickedEntityType = 2;
            s.ClickedEntity = cam;
        } else if (const int light = m_host.GetLightHandle(group)) {
            s.ClickedLightGrp = group;
            s.ClickedEntityType = 4;
            s.ClickedEntity = light;
        }
        return;
    }
    s.ClickedEntityType = 1;
    s.ClickedEntity = GetTopMostFatherGrpExcludingRootGrp(group);
}

void SelectionModel::addClickedEntity(bool setCurrentForMarkers) {
    SelectionState& s = Sel();
    switch (s.ClickedEntityType) {
    case 1:
        s.MultiSel.AddGrpHandles(s.ClickedEntity);
        break;
    case 2:
        s.MultiSel.AddCamHandles(s.ClickedEntity);
        if (setCurrentForMarkers) setCurrent(2, s.ClickedEntity);
        break;
    case 4:
        s.MultiSel.AddLightHandles(s.ClickedEntity);
        if (setCurrentForMarkers) setCurrent(4, s.ClickedEntity);
        break;
    default:
        break;
    }
}

void SelectionModel::removeEntity(int kind, int handle) {
    vexil::MultipleSelection& m = Sel().MultiSel;
    switch (kind) {
    case 1:
        m.RemoveGrp(handle);
        break;
    case 2:
        m.RemoveCam(handle);
        break;
    case 3:
        m.RemoveTrack(handle);
        break;
    case 4:
        m.RemoveLight(handle);
        break;
    default:
        break;
    }
}

// The band: every usable group of the world is projected point by point; the first point inside the
// rectangle decides the group. Fresh selection lifts to the group under RootGrp, adding and removing go
// through GetTopMostFatherGrp and also pass over groups disabled themselves.
void SelectionModel::bandScanEntities(const PixelRect& r, bool adding, bool strict) {
    SelectionState& s = Sel();
    const int root = RootGrp();
    makeActiveCameraCurrent();
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g)) {
        const int father = ZELMAR_group_get_father_group(g);
        if (father != 0 && father != root) continue;
        if (!IsGroupVisible(g)) continue;
        if (strict && ZELMAR_group_is_disable(g) == 1) continue;
        int marker = 0, markerKind = 0;
        if (father == 0) {
            // Only a marker counts among the fatherless groups (the root and the deleted ones do not).
            if ((marker = m_host.GetCamHandle(g)) != 0)
                markerKind = 2;
            else if ((marker = m_host.GetLightHandle(g)) != 0)
                markerKind = 4;
            else
                continue;
        }
        bool inside = false;
        for (int pol = ZELMAR_group_get_first_polygon(g); pol != 0 && !inside;
             pol = ZELMAR_group_get_next_polygon(pol)) {
            for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0;
                 pt = ZELMAR_point_get_next_point(pt)) {
                double xyz[3];
                int px[2] = {0, 0};
                ZELMAR_point_get_xyz(pt, xyz);
                const int st = ZELMAR_engine_3D_point_to_2D(xyz, px);
                if (st == -1 || st == 2) continue;
                if (r.Contains(px[0], px[1])) {
                    inside = true;
                    break;
                }
            }
        }
        if (!inside) continue;
        int kind = 1, handle = g;
        if (father == 0) {
            kind = markerKind;
            handle = marker;
        } else if (strict) {
            // Adding and removing lift through GetTopMostFatherGrp: RootGrp means the group itself.
            const int top = GetTopMostFatherGrp(g);
            handle = top == root ? g : top;
        }
        if (adding) {
            if (kind == 1)
                s.MultiSel.AddGrpHandles(handle);
            else if (kind == 2)
                s.MultiSel.AddCamHandles(handle);
            else
                s.MultiSel.AddLightHandles(handle);
        } else {
            removeEntity(kind, handle);
        }
    }
}

void SelectionModel::SettleCurrentEntity(bool strict) {
    SelectionState& s = Sel();
    const vexil::MultipleSelection& m = s.MultiSel;
    if (m.TotalCount == 0) {
        s.CurrSelEntityType = 0;
    } else if (m.TotalCount == 1) {
        auto one = [&](int count) { return strict ? count == 1 : count > 0; };
        if (one(m.GrpCount))
            setCurrent(1, m.GetGrp(1));
        else if (one(m.CamCount))
            setCurrent(2, m.GetCam(1));
        else if (one(m.LightCount))
            setCurrent(4, m.GetLight(1));
        else if (one(m.TrackCount))
            setCurrent(3, m.GetTrack(1));
    } else {
        s.CurrSelEntityType = 6;
    }
}

void SelectionModel::FreshObjSelection(const PixelRect& r) {
    Sel().MultiSel.Reset();
    if (r.IsClick()) {
        SetClickedEntity(r.lowX, r.lowY);
        addClickedEntity(true);
    } else {
        bandScanEntities(r, true, false);
    }
    SettleCurrentEntity();
}

void SelectionModel::RemoveChildGrpSelectedIfAny() {
    vexil::MultipleSelection& m = Sel().MultiSel;
    const int root = RootGrp();
    const std::vector<int> groups = m.Groups();
    for (int g : groups)
        if (ZELMAR_group_get_father_group(g) != root) m.RemoveGrp(g);
}

void SelectionModel::AddToObjSelection(const PixelRect& r) {
    SelectionState& s = Sel();
    const int t = s.CurrSelEntityType;
    if (t != 1 && t != 2 && t != 4 && t != 6) s.MultiSel.Reset();
    RemoveChildGrpSelectedIfAny();
    if (r.IsClick()) {
        SetClickedEntity(r.lowX, r.lowY);
        addClickedEntity(false);
    } else {
        bandScanEntities(r, true, true);
    }
    SettleCurrentEntity();
}

void SelectionModel::RemoveFromObjSelection(const PixelRect& r) {
    SelectionState& s = Sel();
    if (r.IsClick()) {
        SetClickedEntity(r.lowX, r.lowY);
        if (s.ClickedEntityType == 1) {
            const int top = GetTopMostFatherGrp(s.ClickedEntity);
            if (top == RootGrp())
                s.MultiSel.RemoveGrp(s.ClickedEntity);
            else if (top != 0)
                s.MultiSel.RemoveGrp(top);
        } else if (s.ClickedEntityType == 2 || s.ClickedEntityType == 4) {
            removeEntity(s.ClickedEntityType, s.ClickedEntity);
        }
    } else {
        bandScanEntities(r, false, true);
    }
    SettleCurrentEntity(true);
}

void SelectionModel::SelectMultipleObjects() {
    frmPicWins* v = Views();
    if (!v || v->ToolMode() != ToolSelect) return;
    const PixelRect r = SetUpperAndLowerCorners();
    switch (keyMode()) {
    case 1:
        AddToObjSelection(r);
        break;
    case 2:
        RemoveFromObjSelection(r);
        break;
    default:
        FreshObjSelection(r);
        break;
    }
    ComputeSelObjsAvgCenter();
}

void SelectionModel::SelectEntitiesAtMouseUp() {
    propagate("Form1", "SelectEntitiesAtMouseUp", [&] {
        SetPrevSelEntityToCurrSelEntity();
        SelectMultipleObjects();
        ThingsToDoOnSelectedEntityChange();
        if (frmPicWins* v = Views()) v->UpdateCameras();
        PushSelectIfChanged();
    });
}

void SelectionModel::ShowContextMenu(int x, int y) {
    frmPicWins* v = Views();
    const int type = Sel().CurrSelEntityType;
    if (type != 1 && type != 2 && type != 4) return;
    const QPoint global = v ? v->PicWindow(v->ActiveWin)->mapToGlobal(QPoint(x, y)) : QPoint(x, y);
    m_host.PopupEntityMenu(type, global);
}

// ---- pivot of entities --------------------------------------------------------------------------

void SelectionModel::ComputeSelObjsAvgCenter() {
    SelectionState& s = Sel();
    const vexil::MultipleSelection& m = s.MultiSel;
    if (m.TotalCount == 0) return;
    Vec3 sum{0, 0, 0};
    for (int g : m.Groups()) {
        double p[3];
        ZELMAR_group_get_rotate_reference_point(g, p);
        for (int k = 0; k < 3; ++k)
            sum[k] += p[k];
    }
    for (int c : m.Cams()) {
        double p[3];
        ZELMAR_camera_get_location(c, p);
        for (int k = 0; k < 3; ++k)
            sum[k] += p[k];
    }
    for (int l : m.Lights()) {
        double p[3];
        ZELMAR_light_get_location(l, p);
        for (int k = 0; k < 3; ++k)
            sum[k] += p[k];
    }
    // Tracks count in the divisor and add nothing to the sum.
    for (int k = 0; k < 3; ++k)
        s.SelObjsAvgCenter[k] = sum[k] / m.TotalCount;
    SetObjNearestToObjsAvgCenter();
}

void SelectionModel::SetObjNearestToObjsAvgCenter() {
    SelectionState& s = Sel();
    double best = SelectionState::FarAway;
    for (int g : s.MultiSel.Groups()) {
        double p[3];
        ZELMAR_group_get_rotate_reference_point(g, p);
        const double d =
            std::sqrt(std::pow(p[0] - s.SelObjsAvgCenter[0], 2) + std::pow(p[1] - s.SelObjsAvgCenter[1], 2) +
                      std::pow(p[2] - s.SelObjsAvgCenter[2], 2));
        if (d < best) {
            best = d;
            s.ObjNearestToAvgCenter = g;
            s.ObjNearestType = 1;
        }
    }
}

// ---- the rubber band ----------------------------------------------------------------------------

void SelectionModel::MultipleSelection(int button, int x, int y) {
    frmPicWins* v = Views();
    if (!v || v->ToolMode() != ToolSelect || button != BtnLeft) return;
    switch (keyMode()) {
    case 1:
        DrawSelectionRectangle(x, y, 0, 255, 0);
        break;
    case 2:
        DrawSelectionRectangle(x, y, 255, 0, 0);
        break;
    default:
        DrawSelectionRectangle(x, y, 255, 255, 0);
        break;
    }
}

void SelectionModel::DrawSelectionRectangle(int x, int y, int red, int green, int blue) {
    frmPicWins* v = Views();
    if (!v) return;
    const int i = v->ActiveWin;
    v->UpdateCamerasSingle(i); // erases the previous band
    picWindow* w = v->PicWindow(i);
    QImage& back = w->BackBuffer();
    if (back.isNull()) return;
    {
        QPainter p(&back);
        QPen pen(QColor(red, green, blue));
        pen.setStyle(Qt::DashDotLine);
        p.setPen(pen);
        p.setBrush(Qt::NoBrush);
        const QPoint a(static_cast<int>(v->LastDownX), static_cast<int>(v->LastDownY));
        p.drawRect(QRect(a, QPoint(x, y)).normalized().adjusted(0, 0, -1, -1));
    }
    w->update();
}

} // namespace vexil
