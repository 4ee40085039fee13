// Form1: menus, their update routines and handlers, and the language routine of Form1.
// Every item carries the id of its caption in the string table (property "stringId"); ApplyLanguage
// sets all captions from the table, so a language change shows at once.
#include "Form1.h"

#include "frame/AppPaths.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "MostRecentUsedFiles.h"
#include "frame/Preferences.h"
#include "frame/Settings.h"
#include "document/WorldDocument.h"
#include "formAbout.h"
#include "frmPrefrences.h"
#include "library/formTip.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "Form1_Selection.h"
#include "selection/SelectionModel.h"
#include "view/frmPicWins.h"
#include "materials/PolygonSurfacePanel.h"
#include "materials/TexturePanel.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QUrl>

namespace vexil {

namespace {
const char* const kStringId = "stringId";

QAction* item(QMenu* menu, const char* name, int id, std::function<void()> handler = {}) {
    auto* a = menu->addAction(QString());
    a->setObjectName(QString::fromLatin1(name));
    a->setProperty(kStringId, id);
    if (handler) QObject::connect(a, &QAction::triggered, menu, [handler] { handler(); });
    return a;
}

QMenu* submenu(QWidget* parent, const char* name, int id) {
    auto* m = new QMenu(parent);
    m->setObjectName(QString::fromLatin1(name));
    m->menuAction()->setObjectName(QString::fromLatin1(name));
    m->menuAction()->setProperty(kStringId, id);
    return m;
}
} // namespace

void Form1::buildMenus() {
    QMenuBar* bar = menuBar();
    auto top = [&](const char* name, int id) {
        QMenu* m = submenu(this, name, id);
        bar->addMenu(m);
        return m;
    };
    auto ev = [this](const char* proc, void (Form1::*f)()) {
        return [this, proc, f] { handleEvent("Form1", proc, [&] { (this->*f)(); }); };
    };

    // File.
    mnuFile = top("mnuFile", 218);
    mnuNew = item(mnuFile, "mnuNew", 219, ev("mnuNew_Click", &Form1::mnuNew_Click));
    mnuNew->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    mnuOpenFile = item(mnuFile, "mnuOpenFile", 220, ev("mnuOpenFile_Click", &Form1::mnuOpenFile_Click));
    mnuOpenFile->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    mnuAddWorld = item(mnuFile, "mnuAddWorld", 221, ev("mnuAddWorld_Click", &Form1::mnuAddWorld_Click));
    mnuCloseFile = item(mnuFile, "mnuCloseFile", 222, ev("mnuCloseFile_Click", &Form1::mnuCloseFile_Click));
    mnuFile->addSeparator();
    mnuSave = item(mnuFile, "mnuSave", 223, ev("mnuSave_Click", &Form1::mnuSave_Click));
    mnuSave->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    mnuSaveAs = item(mnuFile, "mnuSaveAs", 224, ev("mnuSaveAs_Click", &Form1::mnuSaveAs_Click));
    mnuFile->addSeparator();
    mnuImportMenu = submenu(this, "mnuImport", 399);
    mnuFile->addMenu(mnuImportMenu);
    mnuExportMenu = submenu(this, "mnuExport", 400);
    mnuFile->addMenu(mnuExportMenu);
    mnuImportMenu->menuAction()->setVisible(false); // shown when a file plug-in offers an entry
    mnuExportMenu->menuAction()->setVisible(false);
    mnuSepMRU = mnuFile->addSeparator();
    mnuExit = item(mnuFile, "mnuExit", 225, ev("mnuExit_Click", &Form1::mnuExit_Click));

    // Edit.
    mnuEdit = top("mnuEdit", 226);
    mnuUndo = item(mnuEdit, "mnuUndo", 227, ev("mnuUndo_Click", &Form1::mnuUndo_Click));
    mnuUndo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    mnuRedo = item(mnuEdit, "mnuRedo", 228, ev("mnuRedo_Click", &Form1::mnuRedo_Click));
    mnuRedo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Y));
    mnuEdit->addSeparator();
    mnuSelectAll = item(mnuEdit, "mnuSelectAll", 229, ev("mnuSelectAll_Click", &Form1::mnuSelectAll_Click));
    mnuSelectInvert = item(mnuEdit, "mnuSelectInvert", 230, ev("mnuSelectInvert_Click", &Form1::mnuSelectInvert_Click));
    mnuEdit->addSeparator();
    mnuHold = item(mnuEdit, "mnuHold", 231, ev("mnuHold_Click", &Form1::mnuHold_Click));
    mnuFetch = item(mnuEdit, "mnuFetch", 232, ev("mnuFetch_Click", &Form1::mnuFetch_Click));
    mnuEdit->addSeparator();
    mnuPreference = item(mnuEdit, "mnuPreference", 233, ev("mnuPreference_Click", &Form1::mnuPreference_Click));

    // View.
    mnuView = top("mnuView", 234);
    mnuToolbar = item(mnuView, "mnuToolbar", 235, ev("mnuToolbar_Click", &Form1::mnuToolbar_Click));
    mnuToolbar->setCheckable(true);
    mnuToolbar->setChecked(true);
    mnuToolbarBands = submenu(this, "mnuToolbarBands", 402);
    mnuView->addMenu(mnuToolbarBands);
    static const int bandNames[BandCount] = {631, 634, 632, 336, 633, 635, 395, 504};
    for (int b = 0; b < BandCount; ++b) {
        QAction* a = item(mnuToolbarBands, "mnuToolbarBands", bandNames[b]);
        a->setObjectName(QStringLiteral("mnuToolbarBands%1").arg(b));
        a->setCheckable(true);
        a->setChecked(true);
        connect(a, &QAction::triggered, this, [this, b] {
            handleEvent("Form1", "mnuToolbarBands_Click", [&] { mnuToolbarBands_Click(b); });
        });
        mnuToolbarBand[size_t(b)] = a;
    }
    mnuStatusBar = item(mnuView, "mnuStatusBar", 236, ev("mnuStatusBar_Click", &Form1::mnuStatusBar_Click));
    mnuStatusBar->setCheckable(true);
    mnuStatusBar->setChecked(true);
    mnuWorkspace = item(mnuView, "mnuWorkspace", 237, ev("mnuWorkspace_Click", &Form1::mnuWorkspace_Click));
    mnuWorkspace->setCheckable(true);
    mnuWorkspace->setChecked(true);
    mnuView->addSeparator();
    mnuHideSelected = item(mnuView, "mnuHideSelected", 238);
    mnuHideUnSelected = item(mnuView, "mnuHideUnSelected", 239);
    mnuUnhideAll = item(mnuView, "mnuUnhideAll", 240);
    mnuView->addSeparator();
    mnuRedrawAllViews = item(mnuView, "mnuRedrawAllViews", 241, [this] { UpdateCameras(); });
    mnuResetViews = item(mnuView, "mnuResetViews", 242, ev("mnuResetViews_Click", &Form1::mnuResetViews_Click));
    mnuResetToolbar = item(mnuView, "mnuResetToolbar", 243, ev("mnuResetToolbar_Click", &Form1::mnuResetToolbar_Click));
    mnuView->addSeparator();
    mnuViewerMode = item(mnuView, "mnuViewerMode", 244, ev("mnuViewerMode_Click", &Form1::mnuViewerMode_Click));
    mnuExpertMode = item(mnuView, "mnuExpertMode", 245, ev("mnuExpertMode_Click", &Form1::mnuExpertMode_Click));
    mnuExpertMode->setCheckable(true); // a click flips the check mark, then the handler reads it

    // Group.
    mnuGrp = top("mnuGrp", 246);
    mnuGroupTogether = item(mnuGrp, "mnuGroupTogether", 246);
    mnuUngroup = item(mnuGrp, "mnuUngroup", 247);
    mnuAttach = item(mnuGrp, "mnuAttach", 248);
    mnuDetach = item(mnuGrp, "mnuDetach", 249);
    mnuUngroupAll = item(mnuGrp, "mnuUngroupAll", 250);
    mnuGrp->addSeparator();
    mnuGrpDelete = item(mnuGrp, "mnuGrpDelete", 251, [this] { DeleteSelected(); });
    mnuGrp->addSeparator();
    mnuGrpProperties = item(mnuGrp, "mnuGrpProperties", 252);
    mnuReducePols = item(mnuGrp, "mnuReducePols", 175, ev("cmdReducePols_Click", &Form1::cmdReducePols_Click));

    // Create.
    mnuCreate = top("mnuCreate", 253);
    mnuStandardGroups = submenu(this, "mnuStandardGroups", 254);
    mnuCreate->addMenu(mnuStandardGroups);
    mnuPlane = item(mnuStandardGroups, "mnuPlane", 255);
    mnuBox = item(mnuStandardGroups, "mnuBox", 256);
    mnuSphere = item(mnuStandardGroups, "mnuSphere", 257);
    mnuCylinder = item(mnuStandardGroups, "mnuCylinder", 258);
    mnuCone = item(mnuStandardGroups, "mnuCone", 259);
    mnuTorus = item(mnuStandardGroups, "mnuTorus", 260);
    mnuCamera = item(mnuCreate, "mnuCamera", 261);
    mnuLight = submenu(this, "mnuLight", 262);
    mnuCreate->addMenu(mnuLight);
    mnuOmnidirectional = item(mnuLight, "mnuOmnidirectional", 263);
    mnuDirectional = item(mnuLight, "mnuDirectional", 264);
    mnuTrack = submenu(this, "mnuTrack", 265);
    mnuCreate->addMenu(mnuTrack);
    mnuCircular = item(mnuTrack, "mnuCircular", 266);
    mnuCustom = item(mnuTrack, "mnuCustom", 267);
    mnuCreate->addSeparator();
    mnuLightMaps = item(mnuCreate, "mnuLightMaps", 268);

    // Help.
    mnuHelp = top("mnuHelp", 269);
    mnuReference = item(mnuHelp, "mnuReference", 270, ev("mnuReference_Click", &Form1::mnuReference_Click));
    mnuReference->setShortcut(QKeySequence(Qt::Key_F1));
    mnuTutorial = item(mnuHelp, "mnuTutorial", 271, ev("mnuTutorial_Click", &Form1::mnuTutorial_Click));
    mnuTipOfTheDay = item(mnuHelp, "mnuTipOfTheDay", 272, ev("mnuTipOfTheDay_Click", &Form1::mnuTipOfTheDay_Click));
    mnuHelp->addSeparator();
    mnuAbout = item(mnuHelp, "mnuAbout", 273, ev("mnuAbout_Click", &Form1::mnuAbout_Click));

    // Popup menus: never in the menu bar (Form_Load step 13).
    mnuWinView = submenu(this, "mnuWinView", 274);
    mnuWinViewTop = item(mnuWinView, "mnuWinViewTop", 275);
    mnuWinViewBottom = item(mnuWinView, "mnuWinViewBottom", 276);
    mnuWinViewLeft = item(mnuWinView, "mnuWinViewLeft", 277);
    mnuWinViewRight = item(mnuWinView, "mnuWinViewRight", 278);
    mnuWinViewFront = item(mnuWinView, "mnuWinViewFront", 279);
    mnuWinViewBack = item(mnuWinView, "mnuWinViewBack", 280);
    mnuWinViewPerspective = item(mnuWinView, "mnuWinViewPerspective", 281);
    mnuWinViewCam = item(mnuWinView, "mnuWinViewCam", 282);
    mnuWinView->addSeparator();
    mnuWinWiewMaxMin = item(mnuWinView, "mnuWinWiewMaxMin", 283, [this] { ToggleWindowMinMax(); });

    mnuGroupMenu = submenu(this, "mnuGroupMenu", 284);
    mnuGroupMenuRemoveFromGroup = item(mnuGroupMenu, "mnuGroupMenuRemoveFromGroup", 285);
    mnuGroupMenuUngroup = item(mnuGroupMenu, "mnuGroupMenuUngroup", 286);
    mnuGroupMenuRemoveLight = item(mnuGroupMenu, "mnuGroupMenuRemoveLight", 287);
    mnuGroupMenuRemoveLightMaps = item(mnuGroupMenu, "mnuGroupMenuRemoveLightMaps", 288);
    mnuGroupMenuDelete = item(mnuGroupMenu, "mnuGroupMenuDelete", 289);
    mnuGroupMenuHide = item(mnuGroupMenu, "mnuGroupMenuHide", 290);
    mnuGroupMenuUnhide = item(mnuGroupMenu, "mnuGroupMenuUnhide", 291);
    mnuGroupMenuProperties = item(mnuGroupMenu, "mnuGroupMenuProperties", 292);

    mnuLightMenu = submenu(this, "mnuLightMenu", 293);
    mnuLightMenuNew = item(mnuLightMenu, "mnuLightMenuNew", 294);
    mnuLightMenuDelete = item(mnuLightMenu, "mnuLightMenuDelete", 295);
    mnuLightMenuHide = item(mnuLightMenu, "mnuLightMenuHide", 296);
    mnuLightMenuUnhide = item(mnuLightMenu, "mnuLightMenuUnhide", 297);
    mnuLightMenuHideAll = item(mnuLightMenu, "mnuLightMenuHideAll", 298);
    mnuLightMenuShowAll = item(mnuLightMenu, "mnuLightMenuShowAll", 299);

    mnuCamTrkBkMenu = submenu(this, "mnuCamTrkBkMenu", 300);
    mnuCamTrkBkMenuNew = item(mnuCamTrkBkMenu, "mnuCamTrkBkMenuNew", 301);
    mnuCamTrkBkMenuDelete = item(mnuCamTrkBkMenu, "mnuCamTrkBkMenuDelete", 302);
    mnuCamTrkBkMenuSaveCurrent = item(mnuCamTrkBkMenu, "mnuCamTrkBkMenuSaveCurrent", 303);
    mnuCamTrkBkMenuHide = item(mnuCamTrkBkMenu, "mnuCamTrkBkMenuHide", 304);
    mnuCamTrkBkMenuUnhide = item(mnuCamTrkBkMenu, "mnuCamTrkBkMenuUnhide", 305);
    mnuCamTrkBkMenuHideAll = item(mnuCamTrkBkMenu, "mnuCamTrkBkMenuHideAll", 306);
    mnuCamTrkBkMenuShowAll = item(mnuCamTrkBkMenu, "mnuCamTrkBkMenuShowAll", 307);

    mnuTexture = submenu(this, "mnuTexture", 308);
    mnuTextureNew = item(mnuTexture, "mnuTextureNew", 309);
    mnuTextureEdit = item(mnuTexture, "mnuTextureEdit", 310);
    mnuTextureUpdate = item(mnuTexture, "mnuTextureUpdate", 311);
    mnuTextureDelete = item(mnuTexture, "mnuTextureDelete", 312);

    mnuModelGallery = submenu(this, "mnuModelGallery", 313);
    mnuModelGalleryAdd = item(mnuModelGallery, "mnuModelGalleryAdd", 314);
    mnuModelGalleryAddFolder = item(mnuModelGallery, "mnuModelGalleryAddFolder", 315);
    mnuModelGalleryDeleteFolder = item(mnuModelGallery, "mnuModelGalleryDeleteFolder", 316);
    mnuModelGalleryRemove = item(mnuModelGallery, "mnuModelGalleryRemove", 317);

    mnuWorkSpacePopup = submenu(this, "mnuWorkSpace", 318);
    mnuBend = item(mnuWorkSpacePopup, "mnuBend", 319, [this] { BendGrp(); });
}

std::vector<QMenu*> Form1::PopupMenus() const {
    return {mnuModelGallery, mnuTexture, mnuWinView, mnuGroupMenu, mnuLightMenu, mnuCamTrkBkMenu, mnuWorkSpacePopup};
}

// ---- the language routine of Form1 ------------------------------------------------------------------------

void Form1::ApplyLanguage() {
    // Menus (ids 218 to 319, 399, 400, 402 and the band names).
    for (QAction* a : findChildren<QAction*>()) {
        const QVariant id = a->property(kStringId);
        if (id.isValid()) a->setText(GetLocaleString(id.toInt()));
    }
    for (QMenu* m : findChildren<QMenu*>()) {
        const QVariant id = m->menuAction()->property(kStringId);
        if (id.isValid()) {
            m->setTitle(GetLocaleString(id.toInt()));
            m->menuAction()->setText(GetLocaleString(id.toInt()));
        }
    }
    applyToolbarLanguage();
    // Workspace tabs.
    static const int tabIds[] = {214, 215, 216, 217, 213, 212};
    for (int i = 0; i < tabWorkspace->count() && i < 6; ++i) {
        tabWorkspace->setTabText(i, GetLocaleString(tabIds[i]));
        tabWorkspace->setTabToolTip(i, GetLocaleString(tabIds[i]));
    }
    MDIForm_Resize(); // the titles' widths decide the workspace's
    // Labels and tool tips.
    StatusPanel[1]->setToolTip(GetLocaleString(124));
    StatusPanel[2]->setToolTip(GetLocaleString(125));
    if (lblSelectedGrpName) lblSelectedGrpName->setText(GetLocaleString(179));
    // The combo boxes hold localised texts: refill them, keeping the chosen entry by position.
    auto refill = [](QComboBox* c, const std::vector<int>& ids) {
        if (!c) return;
        const int i = c->currentIndex();
        c->blockSignals(true);
        c->clear();
        for (int id : ids) c->addItem(GetLocaleString(id));
        c->setCurrentIndex(i < c->count() ? i : 0);
        c->blockSignals(false);
    };
    if (cmbObj) {
        std::vector<int> ids{322};
        if (cmbObj->count() == 3) ids = {322, 323, 324};
        refill(cmbObj, ids);
    }
    refill(cmbObjEditGeom, {325, 329});
    refill(cmbTrackPoint, {349, 325});
    refill(cmbNewObjType, {351, 403, 352, 353, 404, 354});
    if (frmPolSurface) frmPolSurface->ApplyLanguage();
    if (frmTexture) frmTexture->ApplyLanguage();
    // The viewport labels keep their views; their texts come from the table.
    if (frmPicWins) frmPicWins->ApplyLanguage();
}

// ---- update routines ----------------------------------------------------------------------------------------

void Form1::mnu_Update() {
    mnuFile_Update();
    mnuEdit_Update();
    mnuView_Update();
    mnuGrp_Update();
    mnuCreate_Update();
}

void Form1::mnuFile_Update() {
    const bool open = WorldOpen();
    mnuAddWorld->setEnabled(open);
    mnuCloseFile->setEnabled(open);
    mnuSave->setEnabled(open);
    mnuSaveAs->setEnabled(open);
    mnuExportMenu->setEnabled(open);
    if (QAction* b = ToolbarButton(QStringLiteral("Save"))) b->setEnabled(open);
}

void Form1::mnuEdit_Update() {
    const bool open = WorldOpen();
    if (!open) {
        mnuUndo->setEnabled(false);
        mnuRedo->setEnabled(false);
    } else if (m_undoStack) {
        mnuUndo->setEnabled(m_undoStack->Retrive() != nullptr);
        mnuRedo->setEnabled(m_undoStack->GetStackTop() > 1);
    }
    mnuSelectAll->setEnabled(open);
    mnuSelectInvert->setEnabled(open);
    mnuHold->setEnabled(open);
    mnuFetch->setEnabled(true);
}

void Form1::mnuView_Update() {
    const bool open = WorldOpen();
    mnuHideSelected->setEnabled(open);
    mnuHideUnSelected->setEnabled(open);
    mnuUnhideAll->setEnabled(open);
    mnuRedrawAllViews->setEnabled(open);
    mnuResetViews->setEnabled(open);
    mnuViewerMode->setEnabled(open);
}

void Form1::mnuGrp_Update() {
    const bool open = WorldOpen();
    for (QAction* a : {mnuGroupTogether, mnuUngroup, mnuAttach, mnuDetach, mnuUngroupAll, mnuGrpDelete, mnuGrpProperties,
                       mnuReducePols})
        a->setEnabled(open);
}

void Form1::mnuCreate_Update() {
    const bool open = WorldOpen();
    for (QAction* a : mnuCreate->actions()) a->setEnabled(open);
}

// ---- File ---------------------------------------------------------------------------------------------------

void Form1::mnuNew_Click() { m_document->mnuNew_Click(); }
void Form1::mnuOpenFile_Click() { m_document->mnuOpenFile_Click(); }
void Form1::mnuAddWorld_Click() { m_document->mnuAddWorld_Click(); }
void Form1::mnuCloseFile_Click() { m_document->mnuCloseFile_Click(); }
void Form1::mnuSave_Click() { m_document->mnuSave_Click(); }
void Form1::mnuSaveAs_Click() { m_document->mnuSaveAs_Click(); }

void Form1::mnuExit_Click() {
    // UnloadWorld first: WorldOpen is False when Form_QueryUnload runs, so File Exit never asks to save.
    if (m_document) m_document->UnloadWorld();
    close();
}

void Form1::mnuMRU_Click(int index) {
    if (!m_mru || index < 0 || index >= m_mru->Count()) return;
    m_document->mnuMRU_Click(index, m_mru->Item(index));
}

void Form1::mnuImport_Click(int index) {
    if (index >= 0 && index < int(mnuImport.size())) m_document->mnuImport_Click(mnuImport[size_t(index)]->data().toInt());
}

void Form1::mnuExport_Click(int index) {
    if (index >= 0 && index < int(mnuExport.size())) m_document->mnuExport_Click(mnuExport[size_t(index)]->data().toInt());
}

// ---- Edit ---------------------------------------------------------------------------------------------------

void Form1::mnuUndo_Click() {
    if (m_undoStack && vexil::mnuUndo_Click(*m_undoStack, *this))
        if (SelectionModel* m = FormSelection()) m->RefreshAfterUndoRedo();
}
void Form1::mnuRedo_Click() {
    if (m_undoStack && vexil::mnuRedo_Click(*m_undoStack, *this))
        if (SelectionModel* m = FormSelection()) m->RefreshAfterUndoRedo();
}
void Form1::mnuHold_Click() { m_document->mnuHold_Click(); }
void Form1::mnuFetch_Click() { m_document->mnuFetch_Click(); }

void Form1::mnuPreference_Click() {
    frmPrefrences dlg(this);
    dialogs().exec(dlg);
}

// ---- View ---------------------------------------------------------------------------------------------------

void Form1::mnuToolbar_Click() {
    CoolBar1Visible = !CoolBar1Visible;
    mnuToolbar->setChecked(CoolBar1Visible);
    for (int b = 0; b < BandCount; ++b) Toolbar1[size_t(b)]->setVisible(CoolBar1Visible && mnuToolbarBand[size_t(b)]->isChecked());
}

void Form1::mnuStatusBar_Click() {
    StatusBar1->setVisible(!StatusBar1->isVisible());
    mnuStatusBar->setChecked(StatusBar1->isVisible());
}

void Form1::mnuWorkspace_Click() {
    Picture1->setVisible(!Picture1->isVisible());
    mnuWorkspace->setChecked(Picture1->isVisible());
    MDIForm_Resize();
}

void Form1::mnuViewerMode_Click() { m_document->mnuViewerMode_Click(); }

void Form1::mnuExpertMode_Click() {
    // The click has flipped the check mark (QAction::trigger); the check mark is the expert mode.
    ExpertMode = mnuExpertMode->isChecked();
}

void Form1::mnuResetToolbar_Click() { ResetToolbar(); }

void Form1::mnuToolbarBands_Click(int band) {
    if (band < 0 || band >= BandCount) return;
    Toolbar1[size_t(band)]->setVisible(mnuToolbarBand[size_t(band)]->isChecked() && CoolBar1Visible);
}

// ---- Help ---------------------------------------------------------------------------------------------------

void Form1::mnuTipOfTheDay_Click() {
    if (!TipForm) {
        TipForm = new formTip(this);
        TipForm->setAttribute(Qt::WA_DeleteOnClose);
        TipForm->setModal(false);
    }
    TipForm->show();
    TipForm->raise();
    TipForm->activateWindow();
}

void Form1::mnuAbout_Click() {
    formAbout dlg(this);
    dialogs().exec(dlg);
}

void Form1::OpenHelpPage(const QString& page) {
    // The help is a set of HTML pages in "help" beside the program, opened in the system's browser.
    const QString file = AppPath(QStringLiteral("help/") + page);
    if (!QFileInfo::exists(file)) {
        dialogs().msgBox(GetLocaleString(609) + QStringLiteral("\n") + file, MsgOKOnly, MsgInformation);
        return;
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        dialogs().msgBox(QStringLiteral("No web browser could show the help. It is in \"%1\".").arg(file), MsgOKOnly,
                         MsgInformation);
}

void Form1::mnuReference_Click() { OpenHelpPage(QStringLiteral("index.html")); }

void Form1::mnuTutorial_Click() { OpenHelpPage(QStringLiteral("tutorial.html")); }

} // namespace vexil
