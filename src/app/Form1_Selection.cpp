// Form1: the selection model's host, the menu, tree and key handlers of selection, hiding, deleting and
// grouping, and the document's questions about the selection.
#include "Form1_Selection.h"

#include "selection/EntityKinds.h"
#include "selection/SelectionModel.h"
#include "frame/ErrLog.h"
#include "Form1.h"
#include "Form1_Tracks.h"
#include "tracks/TracksController.h"
#include "Form1_Lighting.h"
#include "lighting/LightController.h"
#include "frame/Locale.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "view/frmPicWins.h"
#include "modelling/frmEditGeom.h"
#include "materials/PolygonSurfacePanel.h"
#include "materials/TexturePanel.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <zelmar/zelmar.h>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QTabWidget>
#include <QToolBar>
#include <algorithm>
#include <memory>

namespace vexil {

namespace {

class Form1SelectionHost : public SelectionHost {
  public:
    explicit Form1SelectionHost(Form1& f) : m_f(f) {}

    ActionUndoRedo_Stack& UndoStack() override { return m_f.UndoStack(); }
    bool WorldOpen() override { return m_f.WorldOpen(); }
    int RootGrp() override { return m_f.Document() ? m_f.Document()->RootGrp : 0; }
    frmPicWins* Views() override {
        // The viewports are found wherever the window keeps them.
        if (!m_views) m_views = m_f.findChild<frmPicWins*>();
        return m_views;
    }
    trwGroupView* GroupTree() override { return m_f.GroupTree; }
    trwCamTrackBK* CamTrackBkTree() override { return m_f.CamTrackBkTree; }
    trwLight* LightTree() override { return m_f.LightTree; }

    SelectMode CurrentSelectMode() override {
        const int tab = m_f.tabWorkspace->currentIndex();
        const QString obj = m_f.cmbObj->currentText(), geom = m_f.cmbObjEditGeom->currentText();
        if (tab == Form1::TabEditGroup) {
            if (obj == GetLocaleString(323) && geom == GetLocaleString(325)) return SelectMode::Point;
            if ((obj == GetLocaleString(323) && geom == GetLocaleString(329)) || obj == GetLocaleString(324))
                return SelectMode::Polygon;
        }
        if (tab == Form1::TabCamTrackBk && Sel().CurrSelEntityType == 3 &&
            m_f.cmbTrackPoint->currentText() == GetLocaleString(325)) {
            const QList<QAction*> buttons = m_f.tlbrBtnInsert->actions();
            const bool insert = !buttons.isEmpty() && buttons.front()->isChecked();
            return insert ? SelectMode::TrackPointInsert : SelectMode::TrackPoint;
        }
        return SelectMode::Entity;
    }
    int WorkspaceTab() override { return m_f.tabWorkspace->currentIndex(); }
    bool EditGeometryOpen() override { return m_f.cmbObj->currentText() == GetLocaleString(323); }

    void SetSelectedGrpName(const QString& text, bool enabled) override {
        m_f.txtSelectedGrpName->setText(text);
        m_f.txtSelectedGrpName->setEnabled(enabled);
    }
    void ResetGroupsTabToNewObj() override {
        if (m_f.Document()) m_f.Document()->tabWorkspace_ResetGroupsTabToNewObj();
    }
    void ShowGroupPanel(int) override {
        m_f.SetCmbObjItems({GetLocaleString(322), GetLocaleString(323), GetLocaleString(324)}, 0);
        if (m_f.frmPolSurface) m_f.frmPolSurface->UpdateEditGeomTabBasedOnPolsSelected();
    }
    bool TextureMappingUp() override { return m_f.frmTexture && m_f.frmTexture->TextureMapping(); }
    void UpdateStatusBar() override {
        if (m_f.Document()) m_f.Document()->UpdateStatusBar();
    }
    void SetStatusPanel(int panel, const QString& text) override { m_f.SetStatusPanel(panel, text); }
    void SetGroupMenuEnabled(bool group, bool ungroup, bool attach, bool detach, bool ungroupAll,
                             bool del) override {
        const bool open = m_f.WorldOpen();
        m_f.mnuGroupTogether->setEnabled(open && group);
        m_f.mnuUngroup->setEnabled(open && ungroup);
        m_f.mnuAttach->setEnabled(open && attach);
        m_f.mnuDetach->setEnabled(open && detach);
        m_f.mnuUngroupAll->setEnabled(open && ungroupAll);
        m_f.mnuGrpDelete->setEnabled(open && del);
    }
    void PopupEntityMenu(int type, QPoint globalPos) override;
    int GetCamHandle(int group) override { return FormTracks() ? FormTracks()->Markers().GetCamHandle(group) : 0; }
    int GetLightHandle(int group) override {
        return FormLighting() ? FormLighting()->Markers().GetLightHandle(group) : 0;
    }
    void HideLightFrame() override {
        if (FormLighting()) FormLighting()->HidePanel();
    }
    void ClosePanelOfKind(int prevType, int newType) override {
        if (prevType == 4 && newType != 4 && FormLighting()) FormLighting()->HidePanel();
        if (FormTracks()) FormTracks()->ClosePanelOfKind(prevType, newType);
    }
    void OpenPanelOfKind(int type, int handle) override {
        if (type == 4 && FormLighting()) FormLighting()->OpenPanel(handle);
        if (FormTracks()) FormTracks()->OpenPanelOfKind(type, handle);
    }
    void RefreshGroup(int group) override {
        // The box of the current group and the counts of the status bar follow its points and polygons.
        if (Sel().CurrSelEntityType == 1 && Sel().CurrSelEntity == group)
            if (frmPicWins* v = Views()) v->SelectionBox().Initialize(group);
        if (Sel().CurrSelEntityType == 6) Sel().MultiSel.InitializeBndBoxes();
        UpdateStatusBar();
    }
    void SetSelPolName(const QString& text) override {
        if (m_f.EditGeomPanel) m_f.EditGeomPanel->txtSelPolName->setText(text);
    }
    void UpdateEditGeomTabBasedOnPolsSelected() override {
        if (!m_f.EditGeomPanel) return;
        const int n = Sel().SelPols.Count();
        QString text = GetLocaleString(349); // "None"
        if (n == 1) text = QString::fromLocal8Bit(ZELMAR_polygon_get_name(Sel().SelPols[1]));
        else if (n > 1) text = QString::number(n) + GetLocaleString(390); // " Pols selected"
        m_f.EditGeomPanel->txtSelPolName->setText(text);
        if (m_f.frmPolSurface) m_f.frmPolSurface->UpdateEditGeomTabBasedOnPolsSelected();
        m_f.RefreshTextureMapping();
    }
    bool IgnoreBackFacedForPtSel() override {
        return m_f.EditGeomPanel && m_f.EditGeomPanel->chkIgnoreBackFacedForPtSel->isChecked();
    }
    bool IgnoreBackFacedForPolSel() override {
        return m_f.EditGeomPanel && m_f.EditGeomPanel->chkIgnoreBackFacedForPolSel->isChecked();
    }
    void ShowInvalidPolygons(int count) override {
        if (count > 0) m_f.SetStatusPanel(3, QString::number(count) + QStringLiteral(" polygon(s) not flat"));
    }

  private:
    Form1& m_f;
    QPointer<frmPicWins> m_views;
};

std::unique_ptr<Form1SelectionHost> g_host;
std::unique_ptr<SelectionModel> g_model;

void Form1SelectionHost::PopupEntityMenu(int type, QPoint globalPos) {
    QMenu* menu = nullptr;
    if (type == 1) {
        const SelectionModel::GroupMenuItems items = g_model->mnuGroupMenu_HideObsoleteItems();
        m_f.mnuGroupMenuRemoveFromGroup->setVisible(items.removeFromGroup);
        m_f.mnuGroupMenuUngroup->setVisible(items.ungroup);
        m_f.mnuGroupMenuHide->setVisible(items.hide);
        m_f.mnuGroupMenuUnhide->setVisible(items.unhide);
        m_f.mnuGroupMenuDelete->setVisible(items.del);
        menu = m_f.mnuGroupMenu;
    } else if (type == 2 || type == 3 || type == 5) {
        const bool hidden = type == 2 && g_model->IsCamHidden(Sel().CurrSelEntity);
        m_f.mnuCamTrkBkMenuHide->setVisible(type == 2 && !hidden);
        m_f.mnuCamTrkBkMenuUnhide->setVisible(type == 2 && hidden);
        menu = m_f.mnuCamTrkBkMenu;
    } else if (type == 4) {
        LightMenuHideObsoleteItems(m_f, false, g_model->IsLightHidden(Sel().CurrSelEntity));
        menu = m_f.mnuLightMenu;
    }
    // Not exec: the menu must not hold up the event that opened it.
    if (menu) menu->popup(globalPos);
}

// One handler of the model behind a menu item, with the standard report.
void on(QAction* a, const char* name, void (SelectionModel::*f)()) {
    if (!a) return;
    QObject::connect(a, &QAction::triggered, a, [name, f] {
        handleEvent("Form1", name, [&] {
            if (g_model) (g_model.get()->*f)();
        });
    });
}

void hideOne(int kind, bool hide) {
    if (Sel().CurrSelEntityType != kind) return;
    if (hide)
        g_model->mnuHideSelected_Click();
    else
        g_model->mnuUnhideCurrent_Click();
}

// Right-click on a tree node: the node becomes current as by a click, then its menu opens.
void treeMenu(WorkspaceTree* tree, const std::function<void(QTreeWidgetItem*)>& click) {
    tree->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(tree, &QWidget::customContextMenuRequested, tree, [tree, click](const QPoint& p) {
        handleEvent("Form1", "trw_MouseUp", [&] {
            QTreeWidgetItem* n = tree->itemAt(p);
            if (!n || !g_model) return;
            click(n);
            g_model->Host().PopupEntityMenu(Sel().CurrSelEntityType, tree->viewport()->mapToGlobal(p));
        });
    });
}

} // namespace

SelectionModel* FormSelection() {
    return g_model.get();
}

void InstallSelection(Form1& f) {
    g_host = std::make_unique<Form1SelectionHost>(f);
    g_model = std::make_unique<SelectionModel>(*g_host);
    setSelectionModel(g_model.get());

    on(f.mnuHideSelected, "mnuHideSelected_Click", &SelectionModel::mnuHideSelected_Click);
    on(f.mnuHideUnSelected, "mnuHideUnSelected_Click", &SelectionModel::mnuHideUnSelected_Click);
    on(f.mnuUnhideAll, "mnuUnhideAll_Click", &SelectionModel::mnuUnhideAll_Click);
    on(f.mnuGroupTogether, "mnuGroupTogether_Click", &SelectionModel::mnuGroupTogether_Click);
    on(f.mnuUngroup, "mnuUngroup_Click", &SelectionModel::mnuUngroup_Click);
    on(f.mnuAttach, "mnuAttach_Click", &SelectionModel::mnuAttach_Click);
    on(f.mnuDetach, "mnuDetach_Click", &SelectionModel::mnuDetach_Click);
    on(f.mnuUngroupAll, "mnuUngroupAll_Click", &SelectionModel::mnuUngroupAll_Click);
    on(f.mnuGroupMenuRemoveFromGroup, "mnuGroupMenuRemoveFromGroup_Click",
       &SelectionModel::mnuGroupMenuRemoveFromGroup_Click);
    on(f.mnuGroupMenuUngroup, "mnuGroupMenuUngroup_Click", &SelectionModel::mnuUngroup_Click);
    on(f.mnuGroupMenuDelete, "mnuGroupMenuDelete_Click", &SelectionModel::mnuGroupMenuDelete_Click);
    on(f.mnuGroupMenuHide, "mnuGroupMenuHide_Click", &SelectionModel::mnuGroupMenuHide_Click);
    on(f.mnuGroupMenuUnhide, "mnuGroupMenuUnhide_Click", &SelectionModel::mnuGroupMenuUnhide_Click);
    auto act = [](QAction* a, const char* name, std::function<void()> body) {
        QObject::connect(a, &QAction::triggered, a, [name, body] {
            handleEvent("Form1", name, [&] {
                if (g_model) body();
            });
        });
    };
    act(f.mnuLightMenuHide, "mnuLightMenuHide_Click", [] { hideOne(4, true); });
    act(f.mnuLightMenuUnhide, "mnuLightMenuUnhide_Click", [] { hideOne(4, false); });
    act(f.mnuLightMenuHideAll, "mnuLightMenuHideAll_Click", [] { g_model->mnuLightMenuHideAll_Click(true); });
    act(f.mnuLightMenuShowAll, "mnuLightMenuShowAll_Click",
        [] { g_model->mnuLightMenuHideAll_Click(false); });
    act(f.mnuCamTrkBkMenuHide, "mnuCamTrkBkMenuHide_Click", [] { hideOne(2, true); });
    act(f.mnuCamTrkBkMenuUnhide, "mnuCamTrkBkMenuUnhide_Click", [] { hideOne(2, false); });
    act(f.mnuCamTrkBkMenuHideAll, "mnuCamTrkBkMenuHideAll_Click",
        [] { g_model->mnuCamTrkBkMenuHideAll_Click(true); });
    act(f.mnuCamTrkBkMenuShowAll, "mnuCamTrkBkMenuShowAll_Click",
        [] { g_model->mnuCamTrkBkMenuHideAll_Click(false); });

    QObject::connect(f.CamTrackBkTree, &QTreeWidget::itemClicked, f.CamTrackBkTree,
                     [](QTreeWidgetItem* n, int) {
                         handleEvent("Form1", "trwCamTrackBK_NodeClick", [&] {
                             if (g_model) g_model->trwCamTrackBK_NodeClick(n);
                         });
                     });
    QObject::connect(f.LightTree, &QTreeWidget::itemClicked, f.LightTree, [](QTreeWidgetItem* n, int) {
        handleEvent("Form1", "trwLight_NodeClick", [&] {
            if (g_model) g_model->trwLight_NodeClick(n);
        });
    });
    treeMenu(f.GroupTree, [](QTreeWidgetItem* n) {
        static_cast<trwGroupView*>(n->treeWidget())->trwGroupView_NodeClick(n);
    });
    Form1* form = &f;
    f.CamTrackBkTree->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(f.CamTrackBkTree, &QWidget::customContextMenuRequested, f.CamTrackBkTree,
                     [form](const QPoint& p) {
                         handleEvent("Form1", "trwCamTrackBK_MouseUp", [&] {
                             QTreeWidgetItem* n = form->CamTrackBkTree->itemAt(p);
                             if (!n || !g_model) return;
                             form->CamTrackBkTree->setCurrentItem(n);
                             g_model->trwCamTrackBK_NodeClick(n);
                             ShowCamTrkBkMenu(*form, n, form->CamTrackBkTree->viewport()->mapToGlobal(p));
                         });
                     });
    treeMenu(f.LightTree, [](QTreeWidgetItem* n) { g_model->trwLight_NodeClick(n); });
    // The light tree's root has a menu of its own: New, Show All, Hide All.
    QObject::connect(f.LightTree, &QWidget::customContextMenuRequested, f.LightTree, [&f](const QPoint& p) {
        QTreeWidgetItem* n = f.LightTree->itemAt(p);
        if (!n || n->parent() || Sel().CurrSelEntityType != 0) return;
        LightMenuHideObsoleteItems(f, true, false);
        f.mnuLightMenu->popup(f.LightTree->viewport()->mapToGlobal(p));
    });
}

void ReleaseSelection() {
    if (selectionModel() == g_model.get()) setSelectionModel(nullptr);
    g_model.reset();
    g_host.reset();
}

// ---- Form1 --------------------------------------------------------------------------------------

void Form1::ShowSelectionWindow() {
    if (g_model) g_model->ShowSelectionWindow();
}
void Form1::mnuSelectAll_Click() {
    if (!g_model) return;
    g_model->mnuSelectAll_Click();
    UpdateCameras();
}
void Form1::mnuSelectInvert_Click() {
    if (!g_model) return;
    g_model->mnuSelectInvert_Click();
    UpdateCameras();
}
void Form1::DeleteSelected() {
    if (g_model) g_model->DeleteSelected();
}

int Form1::CurrSelEntityType() {
    return Sel().CurrSelEntityType;
}
int Form1::CurrSelEntity() {
    return Sel().CurrSelEntity;
}
std::vector<int> Form1::PrevMultiSelGroups() {
    return Sel().PrevMultiSel.Groups();
}

void Form1::SelectEntityFromTree(int kind, int handle) {
    if (g_model) g_model->SelectEntityFromTree(kind, handle);
}

void Form1::SelectAddedGroup(int group) {
    if (g_model) g_model->SelectCreatedGroup(group);
}

void Form1::WorldChanged() {
    // A new or loaded world starts with nothing selected; its lights get their markers.
    if (g_model) g_model->ClearWorldState();
    if (FormLighting()) FormLighting()->LoadMarkers();
    if (txtSelectedGrpName) {
        txtSelectedGrpName->setText(QString());
        txtSelectedGrpName->setEnabled(false);
    }
}

void Form1::ClearWorldState() {
    if (g_model) g_model->ClearWorldState();
    if (FormTracks()) FormTracks()->ClearWorldState();
    if (FormLighting()) FormLighting()->ResetMarkers();
    if (frmTexture) frmTexture->trwTextures_Reset(); // tmrAnimPreview, imgTexture, and no stale handles
}

// ---- ViewportHost -------------------------------------------------------------------------------

SelectMode Form1::CurrentSelectMode() {
    return g_host ? g_host->CurrentSelectMode() : SelectMode::Entity;
}
bool Form1::EditTextureMode() {
    return tabWorkspace->currentIndex() == TabEditGroup && cmbObj->currentText() == GetLocaleString(324);
}
int Form1::SelPtsCount() {
    return Sel().SelPts.Count();
}
int Form1::SelPolsCount() {
    return Sel().SelPols.Count();
}
void Form1::SelPtsAvgCenter(double c[3]) {
    std::copy(Sel().SelPtsAvgCenter.begin(), Sel().SelPtsAvgCenter.end(), c);
}
void Form1::SelPolsAvgCenter(double c[3]) {
    std::copy(Sel().SelPolsAvgCenter.begin(), Sel().SelPolsAvgCenter.end(), c);
}
void Form1::SelObjsAvgCenter(double c[3]) {
    std::copy(Sel().SelObjsAvgCenter.begin(), Sel().SelObjsAvgCenter.end(), c);
}
bool Form1::GetSelObjsBoundingBx(double mn[3], double mx[3]) {
    return g_model && g_model->GetSelObjsBoundingBx(mn, mx);
}
bool Form1::CurrentEntityHidden() {
    return g_model && g_model->CurrentEntityHidden();
}
void Form1::MultipleSelection(int button, int x, int y) {
    if (g_model) g_model->MultipleSelection(button, x, y);
}
void Form1::SelectMultiplePoints() {
    if (g_model) g_model->SelectMultiplePoints();
}
void Form1::SelectMultiplePols() {
    if (g_model) g_model->SelectMultiplePols();
}
void Form1::SelectMultipleTrackPts() {
    if (g_model) g_model->SelectMultipleTrackPts();
}
void Form1::SelectMultipleObjects() {
    if (g_model) g_model->SelectEntitiesAtMouseUp();
}
void Form1::ShowContextMenu(int x, int y) {
    if (g_model) g_model->ShowContextMenu(x, y);
}
void Form1::DrawSelectedPts(int index, QPainter& p) {
    if (g_model) g_model->DrawSelectedPts(index, p);
}
void Form1::DrawSelectedPols(int index, QPainter& p) {
    if (g_model) g_model->DrawSelectedPols(index, p);
}
void Form1::DrawSelectedTrackPts(int index, QPainter& p) {
    if (g_model) g_model->DrawSelectedTrackPts(index, p);
}
void Form1::DrawMultiSelection(int index, QPainter& p, bool wireframe) {
    if (g_model) g_model->DrawMultiSelection(index, p, wireframe);
}
int Form1::ChooseViewCamera() {
    // The current scene camera, else the one the user picks from the list.
    if (Sel().CurrSelEntityType == 2 && ZELMAR_camera_is_camera(Sel().CurrSelEntity)) return Sel().CurrSelEntity;
    return g_model ? g_model->ChooseViewCamera() : 0;
}

} // namespace vexil
