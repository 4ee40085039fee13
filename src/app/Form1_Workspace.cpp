// Form1: the workspace tabs, the four viewports, the status bar, and the hosts of the document and of
// the undo stack.
#include "Form1.h"

#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "library/formTemplate.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "MostRecentUsedFiles.h"
#include "frame/Preferences.h"
#include "frame/Spinner.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "builders/CreatePanel.h"
#include "modelling/frmEditGeom.h"
#include "materials/PolygonSurfacePanel.h"
#include "materials/TexturePanel.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QApplication>
#include <QLineEdit>
#include <QComboBox>
#include <QFocusEvent>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QScrollArea>
#include <QStatusBar>
#include <QMenu>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vexil {

// ---- building ---------------------------------------------------------------------------------------------

void Form1::buildWorkspace() {
    auto* central = new QWidget(this);
    central->setObjectName(QStringLiteral("MDIClient"));
    auto* row = new QHBoxLayout(central);
    row->setContentsMargins(2, 2, 2, 2);
    row->setSpacing(3);

    Picture2 = new QWidget(central);
    Picture2->setObjectName(QStringLiteral("Picture2"));
    Picture1 = new QWidget(central);
    Picture1->setObjectName(QStringLiteral("Picture1"));
    row->addWidget(Picture2, 1);
    row->addWidget(Picture1, 0);
    setCentralWidget(central);

    auto* p1 = new QVBoxLayout(Picture1);
    p1->setContentsMargins(0, 0, 0, 0);
    tabWorkspace = new QTabWidget(Picture1);
    tabWorkspace->setObjectName(QStringLiteral("tabWorkspace"));
    tabWorkspace->setUsesScrollButtons(true);
    tabWorkspace->setDocumentMode(false);
    p1->addWidget(tabWorkspace);
    // The workspace's own popup (Bend) opens on a right click on the tabs.
    tabWorkspace->tabBar()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(tabWorkspace->tabBar(), &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (mnuWorkSpacePopup) mnuWorkSpacePopup->popup(tabWorkspace->tabBar()->mapToGlobal(at));
    });

    auto page = [this](const char* name) {
        auto* w = new QWidget(tabWorkspace);
        w->setObjectName(QString::fromLatin1(name));
        auto* l = new QVBoxLayout(w);
        l->setContentsMargins(4, 4, 4, 4);
        l->setSpacing(4);
        return w;
    };

    // 0: Groups.
    QWidget* groups = page("frmGroups");
    lblSelectedGrpName = new QLabel(groups);
    txtSelectedGrpName = new QLabel(groups);
    txtSelectedGrpName->setObjectName(QStringLiteral("txtSelectedGrpName"));
    txtSelectedGrpName->setFrameShape(QFrame::StyledPanel);
    GroupTree = new trwGroupView(groups);
    GroupTree->setObjectName(QStringLiteral("trwGroupView"));
    groups->layout()->addWidget(lblSelectedGrpName);
    groups->layout()->addWidget(txtSelectedGrpName);
    groups->layout()->addWidget(GroupTree);

    // 1: Edit Group. The panel follows the mode of cmbObj (cmbObj_Change): "New Object" shows the create
    // panel, "Edit Geometry" the point or polygon tools (cmbObjEditGeom), both editing modes the surface panel.
    QWidget* edit = page("frmEditGroup");
    auto* form = new QFormLayout;
    cmbObj = new QComboBox(edit);
    cmbObj->setObjectName(QStringLiteral("cmbObj"));
    cmbObjEditGeom = new QComboBox(edit);
    cmbObjEditGeom->setObjectName(QStringLiteral("cmbObjEditGeom"));
    // The create panel holds the kind and the sizes of a new object (src/builders).
    frmCreate = new CreatePanel(edit);
    frmCreate->setObjectName(QStringLiteral("frmCreate"));
    cmbNewObjType = frmCreate->cmbNewObjType;
    spnBoxDim = frmCreate->spnBoxDim[0];
    connect(frmCreate, &CreatePanel::cmdCreateClicked, this,
            [this] { handleEvent("Form1", "cmdCreate_Click", [&] { cmdCreate_Click(); }); });
    const QAction* standard[6] = {mnuPlane, mnuBox, mnuSphere, mnuCylinder, mnuCone, mnuTorus};
    for (int k = 0; k < 6; ++k)
        connect(standard[k], &QAction::triggered, this, [this, k] {
            handleEvent("Form1", "mnuStandardGroups_Click", [&] { mnuStandardGroups_Click(k); });
        });
    // The Edit Geometry panel holds the point and polygon commands, the extrude and bevel spinners and the
    // cut button (src/modelling); the polygon panel the filter, the rotated flag, the light diminution and
    // the colours (src/materials).
    EditGeomPanel = new frmEditGeom(edit);
    for (int i = 0; i < 2; ++i)
        spnExtBvl[size_t(i)] = EditGeomPanel->spnExtBvl[size_t(i)];
    tlbrCut = EditGeomPanel->tlbrCut;
    frmPolSurface = new PolygonSurfacePanel(edit);
    cmbPolFilter = frmPolSurface->cmbPolFilter;
    // One box names the selected polygon: the polygon frame's of Edit Geometry.
    frmPolSurface->lblSelPolName->hide();
    frmPolSurface->txtSelPolName->hide();
    frmPolSurface->txtSelPolName->setObjectName(QStringLiteral("txtSelPolNameSurface"));
    form->addRow(cmbObj);
    form->addRow(cmbObjEditGeom);
    form->addRow(frmCreate);
    form->addRow(EditGeomPanel);
    form->addRow(frmPolSurface);
    static_cast<QVBoxLayout*>(edit->layout())->addLayout(form);
    static_cast<QVBoxLayout*>(edit->layout())->addStretch(1);
    connect(cmbObj, &QComboBox::currentIndexChanged, this, [this] { handleEvent("Form1", "cmbObj_Change", [&] { cmbObj_Change(); }); });
    connect(cmbObjEditGeom, &QComboBox::currentIndexChanged, this,
            [this] { handleEvent("Form1", "cmbObjEditGeom_Change", [&] { cmbObjEditGeom_Change(); }); });

    // 2: Background/Camera/Track.
    QWidget* cam = page("frmCamTrackBk");
    CamTrackBkTree = new trwCamTrackBK(cam);
    CamTrackBkTree->setObjectName(QStringLiteral("trwCamTrackBK"));
    cmbTrackPoint = new QComboBox(cam);
    cmbTrackPoint->setObjectName(QStringLiteral("cmbTrackPoint"));
    tlbrBtnInsert = new QToolBar(cam);
    tlbrBtnInsert->setObjectName(QStringLiteral("tlbrBtnInsert"));
    QAction* ins = tlbrBtnInsert->addAction(QStringLiteral(" Insert "));
    ins->setCheckable(true);
    ins->setProperty("tipId", 210);
    cam->layout()->addWidget(CamTrackBkTree);
    cam->layout()->addWidget(cmbTrackPoint);
    cam->layout()->addWidget(tlbrBtnInsert);

    // 3: Light.
    QWidget* light = page("frmLights");
    LightTree = new trwLight(light);
    LightTree->setObjectName(QStringLiteral("trwLight"));
    light->layout()->addWidget(LightTree);

    // 4: Model Gallery.
    QWidget* gallery = page("frmModelGallery");
    trwModel = new QTreeWidget(gallery);
    trwModel->setObjectName(QStringLiteral("trwModel"));
    trwModel->setHeaderHidden(true);
    gallery->layout()->addWidget(trwModel);

    // 5: Texture.
    QWidget* texture = page("frmTexture");
    // The texture list, its preview and the planar mapper (src/materials).
    frmTexture = new TexturePanel(texture);
    trwTextures = frmTexture->trwTextures;
    texture->layout()->addWidget(frmTexture);

    // The Edit Group tab holds more controls than a small window has room for: it scrolls rather than make
    // the window taller.
    auto* editScroll = new QScrollArea(tabWorkspace);
    editScroll->setObjectName(QStringLiteral("frmEditGroupScroll"));
    editScroll->setFrameShape(QFrame::NoFrame);
    editScroll->setWidgetResizable(true);
    editScroll->setWidget(edit);
    // The Texture tab too: its preview and buttons must not make the window taller.
    auto* textureScroll = new QScrollArea(tabWorkspace);
    textureScroll->setObjectName(QStringLiteral("frmTextureScroll"));
    textureScroll->setFrameShape(QFrame::NoFrame);
    textureScroll->setWidgetResizable(true);
    textureScroll->setWidget(texture);
    for (QWidget* w : {groups, static_cast<QWidget*>(editScroll), cam, light, gallery, static_cast<QWidget*>(textureScroll)})
        tabWorkspace->addTab(w, QString());
    connect(tabWorkspace, &QTabWidget::currentChanged, this, [this](int index) {
        handleEvent("Form1", "tabWorkspace_Click", [&] { tabWorkspace_Click(index); });
    });
}

void Form1::ShowProgress(int value, int maximum) {
    // The bar shows only while something is in progress: from the first step until the last.
    if (!ProgressBar1) return;
    if (maximum <= 0 || value < 0 || value >= maximum) {
        ProgressBar1->hide();
        ProgressBar1->reset();
        return;
    }
    ProgressBar1->setRange(0, maximum);
    ProgressBar1->setValue(value);
    ProgressBar1->show();
}

void Form1::buildStatusBar() {
    StatusBar1 = statusBar();
    StatusBar1->setObjectName(QStringLiteral("StatusBar1"));
    static const int widths[7] = {0, 70, 70, 0, 90, 90, 90};
    for (int i = 1; i <= 6; ++i) {
        auto* panel = new QLabel(StatusBar1);
        panel->setObjectName(QStringLiteral("StatusPanel%1").arg(i));
        panel->setFrameShape(QFrame::StyledPanel);
        panel->setFrameShadow(QFrame::Sunken);
        if (widths[i]) panel->setMinimumWidth(widths[i]);
        StatusPanel[size_t(i)] = panel;
        if (i == 4) {
            ProgressBar1 = new QProgressBar(StatusBar1);
            ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
            ProgressBar1->setMaximumWidth(140);
            ProgressBar1->setMaximumHeight(16);
            ProgressBar1->setTextVisible(false);
            ProgressBar1->setValue(0);
            StatusBar1->addPermanentWidget(ProgressBar1);
            ProgressBar1->hide(); // ShowProgress shows it while there is progress
        }
        if (i == 3) StatusBar1->addWidget(panel, 1);
        else if (i < 3) StatusBar1->addWidget(panel);
        else StatusBar1->addPermanentWidget(panel);
    }
    StatusBar2 = new QWidget(this);
    StatusBar2->setObjectName(QStringLiteral("StatusBar2"));
    StatusBar2->hide();
}

// ---- focus, tabs, combo boxes --------------------------------------------------------------------------------

void Form1::tabWorkspace_Click(int index) {
    if (m_document) m_document->tabWorkspace_Click(index);
    // The Texture tab has no enabling rule of its own: it works whatever is selected.
    if (index == TabTexture && WorldOpen()) EnableWorkspaceTab(TabTexture);
}

void Form1::cmbTrackPoint_InitialSetup() {
    cmbTrackPoint->clear();
    cmbTrackPoint->addItems({GetLocaleString(349), GetLocaleString(325)});
    cmbTrackPoint->setCurrentIndex(0);
}

void Form1::cmbPolFilter_InitialSetup() {
    frmPolSurface->cmbPolFilter_InitialSetup();
}

void Form1::cmbNewObjType_InitialSetup() {
    cmbNewObjType->clear();
    for (int id : {351, 403, 352, 353, 404, 354}) cmbNewObjType->addItem(GetLocaleString(id));
    cmbNewObjType->setCurrentIndex(1);
    if (cmbObjEditGeom->count() == 0) cmbObjEditGeom->addItems({GetLocaleString(325), GetLocaleString(329)});
}

void Form1::InitialiseSpinners() {
    // Counts (property "wholeNumbers") keep no decimals.
    for (Spinner* s : findChildren<Spinner*>())
        if (!s->property("wholeNumbers").toBool()) s->setDecimals(std::clamp(Prefs().SignificantDecimals, 0, 10));
}

// ---- events ------------------------------------------------------------------------------------------------

bool Form1::eventFilter(QObject* obj, QEvent* e) {
    if (e->type() == QEvent::KeyPress || e->type() == QEvent::KeyRelease) {
        auto* w = qobject_cast<QWidget*>(obj);
        auto* k = static_cast<QKeyEvent*>(e);
        // A key event travels up the parents when a control ignores it: take it once, at its first receiver.
        const bool seen = k == m_lastKeyEvent && k->timestamp() == m_lastKeyTime && e->type() == m_lastKeyType &&
                          k->key() == m_lastKey && w && m_lastKeyReceiver &&
                          w->isAncestorOf(qobject_cast<QWidget*>(m_lastKeyReceiver.data()));
        if (w && w->window() == this && isVisible() && !seen) {
            m_lastKeyEvent = k;
            m_lastKeyTime = k->timestamp();
            m_lastKeyType = e->type();
            m_lastKey = k->key();
            m_lastKeyReceiver = obj;
            inputState().noteEvent(e); // the key table polls the key being handled
            if (e->type() == QEvent::KeyPress) Form_KeyDown(k->key(), k->modifiers());
            else if (!k->isAutoRepeat()) Form_KeyUp(k->key(), k->modifiers());
        }
    }
    return QMainWindow::eventFilter(obj, e);
}

void Form1::installKeyPreview() {
    // KeyPreview: the form sees every key before its controls.
    qApp->installEventFilter(this);
    inputState(); // the production input state starts watching events
}

// ---- DocumentHost -------------------------------------------------------------------------------------------

ActionUndoRedo_Stack& Form1::UndoStack() { return *m_undoStack; }

void Form1::SetWindowCaption(const QString& caption) { setWindowTitle(caption); }

void Form1::SetStatusPanel(int panel, const QString& text) {
    if (panel >= 1 && panel <= 6) StatusPanel[size_t(panel)]->setText(text);
}

void Form1::SetBusyPointers(bool busy) {
    if (busy == m_busy) return;
    m_busy = busy;
    for (auto* p : picWindow) {
        if (busy) p->setCursor(Qt::WaitCursor);
        else p->unsetCursor();
    }
    if (busy) QApplication::setOverrideCursor(Qt::WaitCursor);
    else QApplication::restoreOverrideCursor();
}

void Form1::ProcessEvents() { QCoreApplication::processEvents(); }

void Form1::AddMRUItem(const QString& path) {
    if (m_mru) m_mru->AddMRUItem(path);
}

void Form1::RemoveMRUItem(int index) {
    if (m_mru) m_mru->RemoveItem(index);
}

void Form1::SetWorkspaceEnabled(bool enabled) { tabWorkspace->setEnabled(enabled); }
void Form1::SetAddWorldEnabled(bool enabled) { mnuAddWorld->setEnabled(enabled); }

bool Form1::Is3DCardTogglePressed() {
    QAction* a = ToolbarButton(QStringLiteral("3D Card Toggle"));
    return a && a->isChecked();
}

void Form1::Set3DCardTogglePressed(bool pressed) {
    if (QAction* a = ToolbarButton(QStringLiteral("3D Card Toggle"))) a->setChecked(pressed);
}

void Form1::SetNewWorldCombos(const QString& cmbObjText, const QString& cmbObjEditGeomText) {
    auto choose = [](QComboBox* c, const QString& text) {
        int i = c->findText(text);
        if (i < 0) {
            c->addItem(text);
            i = c->count() - 1;
        }
        c->setCurrentIndex(i);
    };
    choose(cmbObj, cmbObjText);
    choose(cmbObjEditGeom, cmbObjEditGeomText);
}

void Form1::SetCmbObjItems(const QStringList& items, int chosen) {
    cmbObj->blockSignals(true);
    cmbObj->clear();
    cmbObj->addItems(items);
    cmbObj->setCurrentIndex(chosen);
    cmbObj->blockSignals(false);
    cmbObj_Change();
}

void Form1::SetSelectedGroupNameText(const QString& text) { txtSelectedGrpName->setText(text); }
void Form1::SetSelectedGroupNameText(const std::string& text) { SetSelectedGroupNameText(QString::fromStdString(text)); }

void Form1::DisableAllTabs() {
    for (int i = 0; i < tabWorkspace->count(); ++i) tabWorkspace->widget(i)->setEnabled(false);
}

void Form1::EnableWorkspaceTab(int index) {
    if (index >= 0 && index < tabWorkspace->count()) tabWorkspace->widget(index)->setEnabled(true);
}

// ---- UndoHost -----------------------------------------------------------------------------------------------

void Form1::SetUndoMenuEnabled(bool enabled) { mnuUndo->setEnabled(enabled && WorldOpen()); }
void Form1::SetRedoMenuEnabled(bool enabled) { mnuRedo->setEnabled(enabled && WorldOpen()); }

void Form1::SetCaption() {
    if (m_document) m_document->SetCaption();
}

void Form1::SetMousePtrToHourGlass(bool bRestore) {
    if (m_document) m_document->SetMousePtrToHourGlass(bRestore);
    else SetBusyPointers(!bRestore);
}

void Form1::SetTreeNodeText(const std::string& key, const std::string& text) {
    const QString k = QString::fromStdString(key), t = QString::fromStdString(text);
    for (WorkspaceTree* tree : {static_cast<WorkspaceTree*>(GroupTree), static_cast<WorkspaceTree*>(CamTrackBkTree),
                                static_cast<WorkspaceTree*>(LightTree)})
        if (tree && tree->SetNodeText(k, t)) return;
}

void Form1::ShowTemplates(const std::function<bool(const QString&)>& load) {
    formTemplate form(m_document->ApplicationFolder() + QStringLiteral("/Templates"), load, {}, this);
    dialogs().exec(form);
}

} // namespace vexil
