// The selection model: groups and visibility, the change notice, the trees.
#include "SelectionModel.h"

#include "EntityKinds.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"
#include "ActionSelect.h"
#include "ActionSubSelect.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "EntityActions.h"

#include <QIcon>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

SelectionModel* g_model = nullptr;

QString keyOf(int type, int handle) {
    const QString h = QString::number(handle);
    switch (type) {
    case 1:
        return QStringLiteral("Group") + h;
    case 2:
        return QStringLiteral("Camera") + h;
    case 3:
        return QStringLiteral("Track") + h;
    case 4:
        return QStringLiteral("Light") + h;
    case 5:
        return QStringLiteral("Background") + h;
    default:
        return {};
    }
}

// A hidden node's image: "Group Invisible", "Cam Invisible", "Light Invisible".
QString visibleImageOf(int type) {
    switch (type) {
    case 1:
        return QStringLiteral("Group");
    case 2:
        return QStringLiteral("Cam");
    case 4:
        return QStringLiteral("Light");
    default:
        return {};
    }
}

} // namespace

SelectionModel* selectionModel() {
    return g_model;
}
void setSelectionModel(SelectionModel* model) {
    g_model = model;
}

void DeleteGroupPermanently(int group) {
    if (ZELMAR_group_is_group(group) == 1) ZELMAR_group_delete_members(group);
}

SelectionModel::SelectionModel(SelectionHost& host) : m_host(host) {
    RegisterEntityActions();
    // Cameras and lights show their hidden state in their trees until their subsystems add the markers.
    for (int kind : {2, 4}) {
        EntityKindOps& ops = KindOps(kind);
        if (ops.HideUnhide) continue;
        ops.HideUnhide = [kind](int handle, bool hide) { MarkHiddenInTree(kind, handle, hide); };
    }
}

void MarkHiddenInTree(int kind, int handle, bool hide) {
    SelectionModel* m = selectionModel();
    if (!m || (kind != 2 && kind != 4)) return;
    WorkspaceTree* tree = kind == 2 ? static_cast<WorkspaceTree*>(m->Host().CamTrackBkTree())
                                    : static_cast<WorkspaceTree*>(m->Host().LightTree());
    if (!tree) return;
    QTreeWidgetItem* n = tree->Node(keyOf(kind, handle));
    if (!n) return;
    const QString base = visibleImageOf(kind);
    tree->SetNodeImage(n, hide ? base + QStringLiteral(" Invisible") : base);
    // The trees draw no image of their own for these: a greyed copy of the visible one.
    if (hide) n->setIcon(0, QIcon(TreeImage(base).pixmap(16, QIcon::Disabled)));
}

SelectionModel::~SelectionModel() {
    if (g_model == this) g_model = nullptr;
}

// ---- groups and visibility ----------------------------------------------------------------------------

int SelectionModel::GetTopMostFatherGrpExcludingRootGrp(int group) {
    const int root = RootGrp();
    int g = group;
    if (ZELMAR_group_get_father_group(g) == 0) return 0;
    for (int n = 0; n < 1000000; ++n) {
        const int f = ZELMAR_group_get_father_group(g);
        if (f == root || f == 0) return g;
        g = f;
    }
    return g;
}

bool SelectionModel::IsGrpHidden(int group) {
    trwGroupView* t = m_host.GroupTree();
    QTreeWidgetItem* n = t ? t->Node(keyOf(1, group)) : nullptr;
    return n && WorkspaceTree::NodeImage(n) == QLatin1String("Group Invisible");
}

bool SelectionModel::IsCamHidden(int camera) {
    trwCamTrackBK* t = m_host.CamTrackBkTree();
    QTreeWidgetItem* n = t ? t->Node(keyOf(2, camera)) : nullptr;
    return n && WorkspaceTree::NodeImage(n) == QLatin1String("Cam Invisible");
}

bool SelectionModel::IsLightHidden(int light) {
    trwLight* t = m_host.LightTree();
    QTreeWidgetItem* n = t ? t->Node(keyOf(4, light)) : nullptr;
    return n && WorkspaceTree::NodeImage(n) == QLatin1String("Light Invisible");
}

bool SelectionModel::IsEntityHidden(int kind, int handle) {
    switch (kind) {
    case 1:
        return IsGrpHidden(handle);
    case 2:
        return IsCamHidden(handle);
    case 4:
        return IsLightHidden(handle);
    default:
        return false;
    }
}

bool SelectionModel::CurrentEntityHidden() {
    const SelectionState& s = Sel();
    return IsEntityHidden(s.CurrSelEntityType, s.CurrSelEntity);
}

// ---- change ----------------------------------------------------------------------------------------------

void SelectionModel::setCurrent(int type, int handle) {
    Sel().CurrSelEntityType = type;
    Sel().CurrSelEntity = handle;
}

void SelectionModel::SetPrevSelEntityToCurrSelEntity() {
    SelectionState& s = Sel();
    s.PrevSelEntityType = s.CurrSelEntityType;
    s.PrevSelEntity = s.CurrSelEntity;
    s.PrevMultiSel.CopyFrom(s.MultiSel);
    // The sub-object selections die with the entity change; an ActionSelect brings them back on undo.
    if (s.SelPts.Count() > 0)
        m_prevSelPts = s.SelPts.Slots();
    else
        m_prevSelPts.clear();
    if (s.SelPols.Count() > 0)
        m_prevSelPols = s.SelPols.Slots();
    else
        m_prevSelPols.clear();
}

void SelectionModel::SetCurrSelEntityToPrevSelEntity() {
    SelectionState& s = Sel();
    s.CurrSelEntityType = s.PrevSelEntityType;
    s.CurrSelEntity = s.PrevSelEntity;
    s.MultiSel.CopyFrom(s.PrevMultiSel);
}

bool SelectionModel::IsSelectionUnchanged() {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != s.PrevSelEntityType) return false;
    if (s.CurrSelEntityType == 6) return s.MultiSel.SameAs(s.PrevMultiSel);
    return s.CurrSelEntity == s.PrevSelEntity;
}

void SelectionModel::PushSelectIfChanged() {
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionSelect);
    if (IsSelectionUnchanged()) return;
    auto* a = env->As<ActionSelect>();
    if (!a) return;
    a->SetOldSelToPrevSel();
    a->SetNewSelToCurrSel();
    m_host.UndoStack().Push(env);
}

void SelectionModel::ThingsToDoOnSelectedEntityChange() {
    SelectionState& s = Sel();
    m_host.HideLightFrame();            // 1
    if (IsSelectionUnchanged()) return; // 2
    s.SelPts.Clear();                   // 3
    s.SelPols.Clear();
    treeViewHighlightCurrentSelectedAndDeHighlightPrevSelected();     // 4
    const int prev = s.PrevSelEntityType, type = s.CurrSelEntityType; // 5
    if (prev == 1)
        m_host.ResetGroupsTabToNewObj();
    else if (prev >= 2 && prev <= 5)
        m_host.ClosePanelOfKind(prev, type);
    switch (type) { // 6
    case 0:
        m_host.SetSelectedGrpName(QString(), false);
        break;
    case 1: {
        const int g = s.CurrSelEntity;
        m_host.SetSelectedGrpName(QString::fromLocal8Bit(EntityName(g).c_str()), true);
        if (frmPicWins* v = Views()) v->SelectionBox().Initialize(g);
        m_host.ShowGroupPanel(g);
        s.MultiSel.Reset();
        s.MultiSel.AddGrpHandles(g);
        if (keyDown(Qt::Key_Control) && keyDown(Qt::Key_Shift)) {
            if (frmPicWins* v = Views()) {
                camera& cam = v->ViewCams(v->ActiveWin);
                cam.SetLookAtOffset(0, 0);
                cam.PointAtGrp(g);
                cam.Update();
                v->UpdateCamerasSingle(v->ActiveWin);
            }
        }
        break;
    }
    case 2:
    case 3:
    case 4:
        m_host.OpenPanelOfKind(type, s.CurrSelEntity);
        break;
    case 5:
        s.MultiSel.Reset();
        m_host.OpenPanelOfKind(type, s.CurrSelEntity);
        break;
    case 6:
        m_host.SetSelectedGrpName(GetLocaleString(348), false);
        ComputeSelObjsAvgCenter();
        break;
    default:
        break;
    }
    m_host.InformPluginsOfSelectedEntityChange(); // 7
    mnuGroup_ShowOnlyRelavant();
    m_host.UpdateStatusBar();
}

void SelectionModel::treeViewHighlightCurrentSelectedAndDeHighlightPrevSelected() {
    const SelectionState& s = Sel();
    if (s.PrevSelEntityType != 0 && s.PrevSelEntityType != 6)
        treeViewHighlightNode(s.PrevSelEntityType, s.PrevSelEntity, false);
    if (s.CurrSelEntityType != 0 && s.CurrSelEntityType != 6)
        treeViewHighlightNode(s.CurrSelEntityType, s.CurrSelEntity, true);
}

void SelectionModel::RefreshAfterUndoRedo() {
    const SelectionState& s = Sel();
    switch (s.CurrSelEntityType) {
    case 0:
        m_host.SetSelectedGrpName(QString(), false);
        break;
    case 1:
        if (ZELMAR_group_is_group(s.CurrSelEntity)) {
            m_host.SetSelectedGrpName(QString::fromLocal8Bit(EntityName(s.CurrSelEntity).c_str()), true);
            m_host.RefreshGroup(s.CurrSelEntity);
        }
        break;
    case 6:
        m_host.SetSelectedGrpName(GetLocaleString(348), false);
        m_host.RefreshGroup(0);
        break;
    default:
        break;
    }
    if (s.CurrSelEntityType != 0 && s.CurrSelEntityType != 6)
        treeViewHighlightNode(s.CurrSelEntityType, s.CurrSelEntity, true);
}

void SelectionModel::treeViewHighlightNode(int type, int handle, bool mark) {
    if (type == 1 && handle == RootGrp()) return;
    WorkspaceTree* tree = nullptr;
    switch (type) {
    case 1:
        tree = m_host.GroupTree();
        break;
    case 2:
    case 3:
    case 5:
        tree = m_host.CamTrackBkTree();
        break;
    case 4:
        tree = m_host.LightTree();
        break;
    default:
        return;
    }
    if (!tree) return;
    QTreeWidgetItem* n = tree->Node(keyOf(type, handle));
    if (!n) return;
    if (mark) {
        tree->ShowNode(n);
    } else {
        n->setSelected(false);
    }
}

// ---- trees --------------------------------------------------------------------------------------

void SelectionModel::SelectEntityFromTree(int kind, int handle) {
    if (!m_host.WorldOpen() || handle == 0) return;
    int polygon = 0;
    if (kind == 7) {
        polygon = handle;
        kind = 1;
        handle = ZELMAR_polygon_get_group(polygon);
        if (handle == 0) return;
    }
    SelectionState& s = Sel();
    SetPrevSelEntityToCurrSelEntity();
    setCurrent(kind, handle);
    // The same entity clicked again runs the change notice too (it closes the light frame); only a change
    // is pushed.
    ThingsToDoOnSelectedEntityChange();
    PushSelectIfChanged();
    if (polygon != 0) {
        // A polygon node: the polygon becomes the polygon selection of its group.
        const std::vector<int> old = s.SelPols.Slots();
        const int oldCount = s.SelPols.Count();
        s.SelPols.Clear();
        s.SelPols.Append(polygon);
        UpdateSelPolsRelatedPtsArray();
        ComputeSelPolsAvgCenter();
        m_host.UpdateEditGeomTabBasedOnPolsSelected();
        pushSubSelection(AT_ActionSelectPols, old, oldCount);
    }
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

void SelectionModel::trwCamTrackBK_NodeClick(QTreeWidgetItem* node) {
    if (!node || !m_host.WorldOpen()) return;
    const QString key = WorkspaceTree::NodeKey(node);
    const std::string text = node->text(0).toLocal8Bit().toStdString();
    if (key.startsWith(QLatin1String("Camera"))) {
        SelectEntityFromTree(2, CameraUsingName(text));
    } else if (key.startsWith(QLatin1String("Track"))) {
        SelectEntityFromTree(3, TrackUsingName(text));
    } else if (key.startsWith(QLatin1String("Background"))) {
        SelectEntityFromTree(5, BackgroundUsingName(text));
    } else {
        // A folder: nothing is current.
        SetPrevSelEntityToCurrSelEntity();
        setCurrent(0, 0);
        ThingsToDoOnSelectedEntityChange();
        PushSelectIfChanged();
        if (frmPicWins* v = Views()) v->UpdateCameras();
    }
}

void SelectionModel::trwLight_NodeClick(QTreeWidgetItem* node) {
    if (!node || !m_host.WorldOpen()) return;
    const QString key = WorkspaceTree::NodeKey(node);
    if (key.startsWith(QLatin1String("Light"))) {
        SelectEntityFromTree(4, LightUsingName(node->text(0).toLocal8Bit().toStdString()));
        return;
    }
    m_host.HideLightFrame();
    SetPrevSelEntityToCurrSelEntity();
    setCurrent(0, 0);
    ThingsToDoOnSelectedEntityChange();
    PushSelectIfChanged();
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

int SelectionModel::pushSubSelection(int type, const std::vector<int>& oldSlots, int oldCount) {
    ActionRef env = ActionUndoRedo_Stack::MakeAction(type);
    SelectionState& s = Sel();
    if (auto* a = env->As<ActionSelectPols>(); a && type == AT_ActionSelectPols) {
        a->SetOldSelPols(oldSlots, oldCount);
        a->SetNewSelPols(s.SelPols.Slots(), s.SelPols.Count());
    } else if (auto* b = env->As<ActionSelectPts>(); b && type == AT_ActionSelectPts) {
        b->SetOldSelPts(oldSlots, oldCount);
        b->SetNewSelPts(s.SelPts.Slots(), s.SelPts.Count());
    } else if (auto* c = env->As<ActionSelectTrkPts>(); c && type == AT_ActionSelectTrkPts) {
        c->SetOldSelTrkPts(oldSlots, oldCount);
        c->SetNewSelTrkPts(s.SelTrackPts, s.SelTrackPtsCount());
    }
    m_host.UndoStack().Push(env);
    return type;
}

// ---- world --------------------------------------------------------------------------------------

void SelectionModel::ClearWorldState() {
    Sel().Clear();
    m_prevSelPts.clear();
    m_prevSelPols.clear();
}

} // namespace vexil
