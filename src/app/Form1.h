// Form1, the main window: menus, toolbar bands, workspace tabs, the four viewports,
// the status bar; start-up, keyboard, close and unload. It owns everything that lives as long as the
// process and implements the hosts of the document (DocumentHost) and of the undo stack (UndoHost).
//
// The class is split along subsystems into several files:
//   Form1.cpp           shell: construction, Form_Initialize, Form_Load, activation, resize, close, unload
//   Form1_Menus.cpp     menus, mnu_Update, menu handlers, the language routine of Form1
//   Form1_Keys.cpp      Form_KeyDown / Form_KeyUp, the wheel (ScrollCheck)
//   Form1_Toolbars.cpp  toolbar bands (CoolBar1): build, save, restore, reset
//   Form1_Workspace.cpp workspace tabs, viewports, status bar, DocumentHost and UndoHost
//   Form1_Views.cpp     the viewport area (frmPicWins) and ViewportHost
//   Form1_Hooks.cpp     commands whose feature is not built yet: each tells the user so
//
// To hang code on Form1: add a member function here and its body in your subsystem's folder (a further
// translation unit of Form1: add it with target_sources(vexil_app PRIVATE ...) from your CMakeLists), or
// replace a body of Form1_Hooks.cpp by moving it to your folder.
#pragma once
#include "frame/Dialogs.h"
#include "document/DocumentHost.h"
#include "undo/UndoHost.h"
#include "view/ViewportHost.h" // viewport wiring (Form1_Views.cpp)
#include "view/picWindow.h"

#include <QMainWindow>
#include <QPen>
#include <QPointer>
#include <array>
#include <memory>
#include <vector>

class QAction;
class QActionGroup;
class QComboBox;
class QFrame;
class QLabel;
class QMenu;
class QProgressBar;
class QStatusBar;
class QTabWidget;
class QToolBar;
class QToolButton;
class QTreeWidget;

namespace vexil {

class ActionUndoRedo_Stack;
class MostRecentUsedFiles;
class Spinner;
class WorldDocument;
class trwGroupView;
class trwCamTrackBK;
class trwLight;
class formTip;
class CreatePanel;
class frmEditGeom;
class PolygonSurfacePanel;
class TexturePanel;

class frmPicWins;

class Form1 : public QMainWindow, public DocumentHost, public UndoHost, public ViewportHost {
    Q_OBJECT
public:
    // Workspace tab indices (docs/ui.md: the order of the texture and gallery tabs).
    enum WorkspaceTab { TabGroups = 0, TabEditGroup = 1, TabCamTrackBk = 2, TabLight = 3, TabModelGallery = 4, TabTexture = 5 };
    static constexpr int BandCount = 8;
    static constexpr int MruMax = 8;
    static constexpr double MinimumWidthTwips = 10300;

    explicit Form1(QWidget* parent = nullptr);
    ~Form1() override;

    // The process's main window (null when none exists).
    static Form1* instance();

    // ---- lifecycle ----------------------------------------------------------------------
    // Shows the window: Form_Load on the first show, then the first activation.
    void Show();
    bool IsLoaded() const { return m_loaded; }
    void Form_Initialize();
    void RepositionMeAccordingToLastUsedPos();
    void Form_Load();
    void Form_Activate();                         // the first activation (guarded by ToolbarsRestored)
    // The tip of the day of Form_Load, shown in front of the window once the window shows.
    void ShowPendingTip();
    // The window opens maximised: at the first start, and when it was maximised at the last close.
    bool StartsMaximised() const { return m_startMaximised; }
    bool Form_QueryUnload();                      // true: cancel (the window stays)
    void Form_Unload();
    void MDIForm_Resize();
    // Makes the workspace tabs' titles fit `available` pixels where it can, by putting long titles on two or
    // three lines (the full title stays the tab's tool tip); answers the width the titles then need.
    int FitWorkspaceTabs(int available);
    // The command line given to the program (arguments joined by blanks); read by ParseCommand.
    void SetCommandLine(const QString& commandLine) { m_commandLine = commandLine; }
    QString ParseCommand() const { return ParseCommand(m_commandLine); }
    static QString ParseCommand(const QString& commandLine);
    void ResetControls();
    void ScrollCheck();
    int GetWheelMessages();
    // Twips and pixels of this screen (1440 twips per inch).
    int TwipsToPixelsX(double twips) const;
    int TwipsToPixelsY(double twips) const;
    double PixelsToTwipsX(int px) const;
    double PixelsToTwipsY(int px) const;

    // ---- development switches (no menu calls them) ------------------------------------------------
    // Sets DebugEnabled.
    void SetDebug();
    // Writes every caption of the window to application folder + "/String Table Entries/Strings.txt"
    // (overwriting it), one per line, for translators; answers the file's path.
    QString PrintAllControlNames();

    // ---- keyboard -------------------------------------------------------------------------
    void Form_KeyDown(int keyCode, Qt::KeyboardModifiers shift);
    void Form_KeyUp(int keyCode, Qt::KeyboardModifiers shift);

    // ---- menus (Form1_Menus.cpp) --------------------------------------------------------------------
    void mnu_Update();
    void mnuFile_Update();
    void mnuEdit_Update();
    void mnuView_Update();
    void mnuGrp_Update();
    void mnuCreate_Update();
    void ApplyLanguage(); // the language routine of Form1: menus, tool tips, tabs, labels
    void mnuNew_Click();
    void mnuOpenFile_Click();
    void mnuAddWorld_Click();
    void mnuCloseFile_Click();
    void mnuSave_Click();
    void mnuSaveAs_Click();
    void mnuExit_Click();
    void mnuMRU_Click(int index);
    void mnuImport_Click(int index);
    void mnuExport_Click(int index);
    void mnuUndo_Click();
    void mnuRedo_Click();
    void mnuSelectAll_Click();
    void mnuSelectInvert_Click();
    void mnuHold_Click();
    void mnuFetch_Click();
    void mnuPreference_Click();
    void mnuToolbar_Click();
    void mnuStatusBar_Click();
    void mnuWorkspace_Click();
    void mnuViewerMode_Click();
    void mnuExpertMode_Click();
    void mnuResetToolbar_Click();
    void mnuToolbarBands_Click(int band);
    void mnuTipOfTheDay_Click();
    void mnuAbout_Click();
    void mnuReference_Click();
    void mnuTutorial_Click();
    // Opens help/<page> beside the program in the system's browser.
    void OpenHelpPage(const QString& page);
    bool ExpertMode = true;

    // ---- toolbar bands (Form1_Toolbars.cpp, the preferences) ----------------------------------------------
    void SaveOriginalStateOfAllFormTlbrs();
    void SaveToolbars();
    void RestoreToolbars();
    void ResetToolbar();
    // The state value of one band: name, child index, visible, break, width, index; lines joined by LF.
    QString BandState(int band) const;
    // The buttons of the bands, by key ("New", "Select", "3D Card Toggle", ...).
    QAction* ToolbarButton(const QString& key) const;
    // The current band order (the toolbar index of each band), for tests.
    std::vector<int> BandOrder() const { return m_bandOrder; }
    int GetIndxOfNewToolbarPlugin() const;

    // ---- workspace and viewports (Form1_Workspace.cpp) ---------------------------------------------
    void SetWindowFocus();
    void picWindow_GotFocus(int index);
    void picWindow_LostFocus(int index);
    void cmbTrackPoint_InitialSetup();
    void cmbPolFilter_InitialSetup();
    void cmbNewObjType_InitialSetup();
    void tabWorkspace_Click(int index);
    // The status bar's progress bar: shown with value of maximum while 0 <= value < maximum, else hidden.
    void ShowProgress(int value, int maximum);
    void InitialiseSpinners();

    // ---- view commands, and commands of features not built yet (Form1_Hooks.cpp: each says so) -----------
    void ZoomExtentAll();
    void ZoomExtentSingle(int index);
    void Toggle3DCard();
    void MirrorObjects();
    void SetToolMode(int mode);
    void picWinSetMousePtr(const QString& pointer);
    void CenterObjInView();
    void ShowAtmosphereForm();
    void ShowSelectionWindow();
    void DuplicatGrp();
    void AlignObjects();
    void DisplaceGrp();
    void BendGrp();
    void ToggleWireframe();
    void ToggleWindowMinMax();
    void DeleteSelected();
    void ToggleGridVisibility(int index);
    void UpdateCamerasSingle(int index);
    void picWindow_Paint(int index);
    void PointViewCameraAt(int index, int x, int y); // the I key: camera.MouseDown family
    void WheelZoom(int sign, bool shift);              // ScrollCheck steps 2 to 5 (the camera navigation camera)
    bool IsLayingCustomTrack();                        // formCreateTrack
    void ResetCustomTrk();
    void trwModel_InitialSetup();
    void cmbObj_Change();
    void cmbObjEditGeom_Change();
    void mnuResetViews_Click();
    void LoadPlugins();
    void UnloadPlugins();
    void PluginsKeyDown(int keyCode, Qt::KeyboardModifiers shift);
    void ReleaseWeldList();
    void SetGridDensity(double density); // the four grids
    double GridDensity() const;
    void CreateSharedObjects();  // Form_Load 14, 17, 18: markers, makers, drawers, gizmos, cameras, grids
    void ConnectPendingCommands(); // menu items of features not built yet: each says so
    void ReleaseSharedObjects(); // Form_Unload 6 to 8

    // ---- state ----------------------------------------------------------------------------
    bool WorldOpen() const;
    int ActiveWin = 0;
    bool ExitRequested = false;
    bool KeyIHeld = false;
    bool ToolbarsRestored = false;
    bool ViewHasFocus = false;
    bool DebugEnabled = false;
    double MouseStepFactor = 1.0;
    int ToolMode = 0;
    double BackspaceValue = 0.0;         // the field that Backspace lowers by 1.0 (viewport layer)
    std::array<int, 3> ViewLayerFlags{}; // Form_Load step 11
    int LayerGlobalA = 0, LayerGlobalB = 0, LayerGlobalC = 0; // Form_Load step 16
    bool ShowGizmoFlag = false;          // Form_Load step 17
    QPoint IKeyMousePos;                 // the I key's stored mouse position
    // The grid flags of viewport i (Form_Load step 20 sets them); they live in the viewports' grids.
    bool GridDisplay(int index) const;
    bool GridSnap(int index) const;
    void SetGridDisplay(int index, bool visible);
    void SetGridSnap(int index, bool on);
    // The Grid and Grid Snap buttons show the active viewport's grid.
    void SyncGridButtons();
    std::array<QPen, 12> Pens;           // white 1; red 1, 2; green 1, 2; blue 1, 2; yellow 1, 2; grey 1; black 1, 1
    bool PensCreated = false;

    // ---- owned objects -----------------------------------------------------------------------------
    ActionUndoRedo_Stack* UndoStackPtr() const { return m_undoStack.get(); }
    WorldDocument* Document() const { return m_document.get(); }
    MostRecentUsedFiles* MruList() const { return m_mru.get(); }

    // ---- widgets -------------------------------------------------------------------------------------
    // Menus and items: every item named in the design (see Form1_Menus.cpp for the arrangement).
    QMenu *mnuFile = nullptr, *mnuEdit = nullptr, *mnuView = nullptr, *mnuGrp = nullptr, *mnuCreate = nullptr,
          *mnuHelp = nullptr;
    QAction *mnuNew = nullptr, *mnuOpenFile = nullptr, *mnuAddWorld = nullptr, *mnuCloseFile = nullptr,
            *mnuSave = nullptr, *mnuSaveAs = nullptr, *mnuExit = nullptr, *mnuSepMRU = nullptr;
    QMenu *mnuImportMenu = nullptr, *mnuExportMenu = nullptr;
    std::vector<QAction*> mnuImport, mnuExport;      // one per file plug-in
    QAction *mnuUndo = nullptr, *mnuRedo = nullptr, *mnuSelectAll = nullptr, *mnuSelectInvert = nullptr,
            *mnuHold = nullptr, *mnuFetch = nullptr, *mnuPreference = nullptr;
    QAction *mnuToolbar = nullptr, *mnuStatusBar = nullptr, *mnuWorkspace = nullptr, *mnuHideSelected = nullptr,
            *mnuHideUnSelected = nullptr, *mnuUnhideAll = nullptr, *mnuRedrawAllViews = nullptr,
            *mnuResetViews = nullptr, *mnuResetToolbar = nullptr, *mnuViewerMode = nullptr, *mnuExpertMode = nullptr;
    QMenu* mnuToolbarBands = nullptr;
    std::array<QAction*, BandCount> mnuToolbarBand{};
    QAction *mnuGroupTogether = nullptr, *mnuUngroup = nullptr, *mnuAttach = nullptr, *mnuDetach = nullptr,
            *mnuUngroupAll = nullptr, *mnuGrpDelete = nullptr, *mnuGrpProperties = nullptr;
    QMenu *mnuStandardGroups = nullptr, *mnuLight = nullptr, *mnuTrack = nullptr;
    QAction *mnuPlane = nullptr, *mnuBox = nullptr, *mnuSphere = nullptr, *mnuCylinder = nullptr, *mnuCone = nullptr,
            *mnuTorus = nullptr, *mnuCamera = nullptr, *mnuOmnidirectional = nullptr, *mnuDirectional = nullptr,
            *mnuCircular = nullptr, *mnuCustom = nullptr, *mnuLightMaps = nullptr;
    QAction *mnuReference = nullptr, *mnuTutorial = nullptr, *mnuTipOfTheDay = nullptr, *mnuAbout = nullptr;
    // Popup menus (hidden from the menu bar).
    QMenu* mnuWinView = nullptr;
    QAction *mnuWinViewTop = nullptr, *mnuWinViewBottom = nullptr, *mnuWinViewLeft = nullptr,
            *mnuWinViewRight = nullptr, *mnuWinViewFront = nullptr, *mnuWinViewBack = nullptr,
            *mnuWinViewPerspective = nullptr, *mnuWinViewCam = nullptr, *mnuWinWiewMaxMin = nullptr;
    QMenu* mnuGroupMenu = nullptr;
    QAction *mnuGroupMenuRemoveFromGroup = nullptr, *mnuGroupMenuUngroup = nullptr, *mnuGroupMenuRemoveLight = nullptr,
            *mnuGroupMenuRemoveLightMaps = nullptr, *mnuGroupMenuDelete = nullptr, *mnuGroupMenuHide = nullptr,
            *mnuGroupMenuUnhide = nullptr, *mnuGroupMenuProperties = nullptr;
    QMenu* mnuLightMenu = nullptr;
    QAction *mnuLightMenuNew = nullptr, *mnuLightMenuDelete = nullptr, *mnuLightMenuHide = nullptr,
            *mnuLightMenuUnhide = nullptr, *mnuLightMenuHideAll = nullptr, *mnuLightMenuShowAll = nullptr;
    QMenu* mnuCamTrkBkMenu = nullptr;
    QAction *mnuCamTrkBkMenuNew = nullptr, *mnuCamTrkBkMenuDelete = nullptr, *mnuCamTrkBkMenuSaveCurrent = nullptr,
            *mnuCamTrkBkMenuHide = nullptr, *mnuCamTrkBkMenuUnhide = nullptr, *mnuCamTrkBkMenuHideAll = nullptr,
            *mnuCamTrkBkMenuShowAll = nullptr;
    QMenu* mnuTexture = nullptr;
    QAction *mnuTextureNew = nullptr, *mnuTextureEdit = nullptr, *mnuTextureUpdate = nullptr, *mnuTextureDelete = nullptr;
    QMenu* mnuModelGallery = nullptr;
    QAction *mnuModelGalleryAdd = nullptr, *mnuModelGalleryAddFolder = nullptr, *mnuModelGalleryDeleteFolder = nullptr,
            *mnuModelGalleryRemove = nullptr;
    QMenu* mnuWorkSpacePopup = nullptr;
    QAction* mnuBend = nullptr;
    // All popup menus, hidden by Form_Load step 13.
    std::vector<QMenu*> PopupMenus() const;

    // Toolbar bands: Toolbar1(0..7) and the band container (the top tool bar area).
    std::array<QToolBar*, BandCount> Toolbar1{};
    bool CoolBar1Visible = true;

    // Workspace: Picture1 holds tabWorkspace, Picture2 the viewport frame.
    QWidget* Picture1 = nullptr;
    QWidget* Picture2 = nullptr;
    QTabWidget* tabWorkspace = nullptr;
    trwGroupView* GroupTree = nullptr;
    trwCamTrackBK* CamTrackBkTree = nullptr;
    trwLight* LightTree = nullptr;
    QTreeWidget* trwModel = nullptr;
    QTreeWidget* trwTextures = nullptr;
    TexturePanel* frmTexture = nullptr;             // the Texture tab (holds trwTextures)
    PolygonSurfacePanel* frmPolSurface = nullptr;   // the polygon panel of the Edit Group tab (holds cmbPolFilter)
    QComboBox *cmbObj = nullptr, *cmbObjEditGeom = nullptr, *cmbNewObjType = nullptr, *cmbTrackPoint = nullptr,
              *cmbPolFilter = nullptr;
    QLabel* lblSelectedGrpName = nullptr;
    QLabel* txtSelectedGrpName = nullptr;
    std::array<Spinner*, 2> spnExtBvl{};
    Spinner* spnBoxDim = nullptr;
    QToolBar* tlbrCut = nullptr;
    frmEditGeom* EditGeomPanel = nullptr; // the Edit Geometry panel (src/modelling)
    QToolBar* tlbrBtnInsert = nullptr;
    // Viewports.
    ::vexil::frmPicWins* frmPicWins = nullptr;
    std::array<::vexil::picWindow*, 4> picWindow{}; // frmPicWins' windows
    std::array<QLabel*, 4> lblPicView{};
    // Status bar: panels 1 to 6 (index 0 unused) and the progress bar; StatusBar2 stays hidden.
    QStatusBar* StatusBar1 = nullptr;
    std::array<QLabel*, 7> StatusPanel{};
    QProgressBar* ProgressBar1 = nullptr;
    QWidget* StatusBar2 = nullptr;
    QPointer<formTip> TipForm;

    // ---- the create panel of the Edit Group tab (Form1_Create.cpp) ---------------------------
    CreatePanel* frmCreate = nullptr; // holds cmbNewObjType and spnBoxDim
    void cmdCreate_Click();
    // Where a new object goes: on the ground (z = 0) where the active view's line of sight meets it, or, for
    // a side view, below the point where it meets the grid plane that faces the view.
    std::array<double, 3> NewObjectPlace();
    // Create > Standard Groups: kind 0 plane, 1 box, 2 sphere, 3 cylinder, 4 cone, 5 torus.
    void mnuStandardGroups_Click(int kind);
    // ---- the simplification workbench (Form1_Workbench.cpp) --------------------------------------
    // "Reduce Polys": the workbench on the current group, then one ActionReplaceGrp.
    void cmdReducePols_Click(); // Form1_Workbench.cpp
    QAction* mnuReducePols = nullptr; // Group > Reduce Polys
    // ---- the transform gizmos and the typed transform panel (Form1_Gizmo.cpp) -------------------
    void DrawGizmo(int index, QPainter& p) override;
    void Gizmo_MouseDown(int index, int button, int x, int y) override;
    void Gizmo_MouseUp(int index, int button, int x, int y) override;
    void Gizmo_MouseMoveRotateScale(int index, int button, int x, int y) override;
    void UpdateTransformGizmo(int button, int x, int y) override;
    // frmTransformParameters for kind 0 move, 1 rotate, 2 scale.
    void ShowTransformParameters(int kind);
    // ---- cameras, tracks and backgrounds (Form1_Tracks.cpp) ---------------------------------------------
    void DrawTrack(int index, QPainter& p) override;
    void DrawCustomTrk(int index, QPainter& p) override;
    void CreateCustomTrack(int button, int x, int y) override;
    void MonitorInsertTrackPoint(int x, int y) override;
    void InsertTrackPt() override;
    bool TrackCenter(int track, double c[3]) override;
    void ScaleSceneCameras(int index) override;
    // ---- lighting (Form1_Lighting.cpp) ------------------------------------------------------------
    // Create > Light Maps: the light-map dialog, modal, when a world is open.
    void CreateLightMaps();
    void ScaleSceneLights(int index) override;
    // Markers of the saved cameras and lights (load, add).
    void RefreshMarkers() override;

    // ---- the materials (Form1_Materials.cpp) ---------------------------------------------------------
    void mnuGrpProperties_Click();
    void PopulateTextureTree() override;
    void UnloadTextureMapping() override;
    void RefreshTextureMapping() override;

    // ---- DocumentHost ------------------------------------------------------------------------------
    ActionUndoRedo_Stack& UndoStack() override;
    QWidget* MainWindow() override { return this; }
    void SetWindowCaption(const QString& caption) override;
    void SetStatusPanel(int panel, const QString& text) override;
    void SetBusyPointers(bool busy) override;
    void ProcessEvents() override;
    void AddMRUItem(const QString& path) override;
    void RemoveMRUItem(int index) override;
    void MenuUpdate() override { mnu_Update(); }
    void SetWorkspaceEnabled(bool enabled) override;
    void SetAddWorldEnabled(bool enabled) override;
    bool Is3DCardTogglePressed() override;
    void Set3DCardTogglePressed(bool pressed) override;
    void SetNewWorldCombos(const QString& cmbObjText, const QString& cmbObjEditGeomText) override;
    void ResetViews() override { mnuResetViews_Click(); }
    void ShowTemplates(const std::function<bool(const QString&)>& load) override;
    void ClearViewports() override;
    void UpdateCameras() override;
    void SetCmbObjItems(const QStringList& items, int chosen) override;
    // The selection's side of the document (Form1_Selection.cpp).
    int CurrSelEntityType() override;
    int CurrSelEntity() override;
    std::vector<int> PrevMultiSelGroups() override;
    void SelectEntityFromTree(int kind, int handle) override;
    void SelectAddedGroup(int group) override;
    void WorldChanged() override;
    void ClearWorldState() override;
    void SetSelectedGroupNameText(const QString& text) override;
    void DisableAllTabs() override;
    void EnableWorkspaceTab(int index) override;
    // ---- UndoHost ----------------------------------------------------------------------------------
    void SetUndoMenuEnabled(bool enabled) override;
    void SetRedoMenuEnabled(bool enabled) override;
    void SetCaption() override;
    void SetMousePtrToHourGlass(bool bRestore) override;
    void SetTreeNodeText(const std::string& key, const std::string& text) override;
    void SetSelectedGroupNameText(const std::string& text) override;
    // ---- ViewportHost and the viewport wiring (Form1_Views.cpp) -----------------------------------------
    void SetViewportCamera(int index, int handle) override;
    bool WorldOpen() override;
    int RootGrp() override;
    double WorldSize() override;
    double CamMoveFactor() override;
    void SetCamMoveFactor(double f) override;
    int SignificantDecimals() override;
    bool CutStateActive() override;
    void ReleaseCutButton() override;
    bool CreateTrackUp() override;
    void SetWireframePressed(bool pressed) override;
    // ---- ViewportHost: the selection's hooks (Form1_Selection.cpp) ------------------------------
    SelectMode CurrentSelectMode() override;
    bool EditTextureMode() override;
    int SelPtsCount() override;
    int SelPolsCount() override;
    void SelPtsAvgCenter(double c[3]) override;
    void SelPolsAvgCenter(double c[3]) override;
    void SelObjsAvgCenter(double c[3]) override;
    bool GetSelObjsBoundingBx(double mn[3], double mx[3]) override;
    bool CurrentEntityHidden() override;
    void MultipleSelection(int button, int x, int y) override;
    void SelectMultiplePoints() override;
    void SelectMultiplePols() override;
    void SelectMultipleTrackPts() override;
    void SelectMultipleObjects() override;
    void ShowContextMenu(int x, int y) override;
    void DrawSelectedPts(int index, QPainter& p) override;
    void DrawSelectedPols(int index, QPainter& p) override;
    void DrawSelectedTrackPts(int index, QPainter& p) override;
    void DrawMultiSelection(int index, QPainter& p, bool wireframe) override;
    int ChooseViewCamera() override;
    // ---- ViewportHost: point and polygon editing, cut, align (Form1_Modelling.cpp) ----------------------
    void DrawPoints(int index, QPainter& p) override;
    void Cut_MouseDown(int x, int y) override;
    void Cut_MouseMove(int x, int y) override;
    void Cut_MouseUp(int x, int y) override;
    void AlignObjects_MouseMove(int button, int x, int y) override;
    void AlignObjects_MouseUp(int button, int x, int y) override;
    // Pushes Form1's mirrors (ActiveWin, ViewHasFocus, ToolMode, GridDisplay, GridSnap, density) to the views.
    void SyncViewState();

protected:
    void closeEvent(QCloseEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void changeEvent(QEvent* e) override;
    bool eventFilter(QObject* obj, QEvent* e) override;

private:
    void buildMenus();        // Form1_Menus.cpp
    void buildToolbars();     // Form1_Toolbars.cpp
    void buildWorkspace();    // Form1_Workspace.cpp
    void buildViewports();
    void buildStatusBar();
    void applyToolbarLanguage();
    void layoutBands(const std::vector<int>& order, const std::vector<bool>& breaks, const std::vector<bool>& visible);
    void installKeyPreview();
    bool undoHostIsThis() const;

    bool m_loaded = false;
    bool m_unloaded = false;
    bool m_busy = false;
    bool m_startMaximised = false;
    bool m_tipPending = false;
    QString m_commandLine;
    int m_pendingWheel = 0;
    std::unique_ptr<ActionUndoRedo_Stack> m_undoStack;
    std::unique_ptr<WorldDocument> m_document;
    std::unique_ptr<MostRecentUsedFiles> m_mru;
    std::vector<int> m_bandOrder;      // toolbar index of each band, in band order
    std::vector<bool> m_bandBreak;
    std::vector<QString> m_originalBandState; // SaveOriginalStateOfAllFormTlbrs
    std::vector<QAction*> m_toolbarButtons;    // all band buttons, for ToolbarButton
    double m_gridDensity = 40;
    QFrame* m_focusFrame = nullptr;
    const void* m_lastKeyEvent = nullptr;
    quint64 m_lastKeyTime = 0;
    int m_lastKeyType = 0;
    int m_lastKey = 0;
    QPointer<QObject> m_lastKeyReceiver;
};

// The simplification workbench behind Reduce Polys, with the shared objects (Form1_Workbench.cpp).
void InstallWorkbench(Form1& form);
void ReleaseWorkbench();

} // namespace vexil
