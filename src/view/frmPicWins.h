// The viewport area of the main window: four picture windows in a two by two layout with their caption
// labels, the splitters and the cross handle, the focus frame, and everything that makes a mouse or key
// event in a viewport mean something (tool modes, navigation, grid, snap, overlays).
//
// Form1 embeds it, gives it a ViewportHost, adds its tool band to a toolbar area and calls ScrollCheck
// from the tick loop:
//
//   auto* views = new vexil::frmPicWins(host, centralWidget);
//   addToolBar(views->ToolBand());
//   ... in the tick loop: views->ScrollCheck();
//
// Windows: 0 top left, 1 top right, 2 bottom left, 3 bottom right. Sizes given in twips in the layout
// rules are converted with the screen's logical DPI.
#pragma once
#include "Grid.h"
#include "Overlays.h"
#include "ViewportHost.h"
#include "camera.h"

#include <QString>
#include <QWidget>
#include <array>
#include <deque>
#include <memory>

class QLabel;
class QMenu;
class QToolBar;
class QAction;

namespace vexil {

class picWindow;
class SplitterHandle;

// Tool modes: what a drag in a viewport means.
enum ToolModes {
    ToolSelect = 0,
    ToolMove = 1,
    ToolRotate = 2,
    ToolScale = 3,
    ToolPan = 4,
    ToolRevolve = 5,
    ToolZoomCamera = 6,
    ToolMoveCamera = 7,
    ToolRollCamera = 8,
    ToolAlign = 9,
};

// View command numbers of the caption menu.
enum ViewCommands {
    ViewTop = 0,
    ViewBottom = 1,
    ViewLeft = 2,
    ViewRight = 3,
    ViewFront = 4,
    ViewBack = 5,
    ViewPerspective = 6,
    ViewCamera = 7,
    ViewMaxMin = 8,
    ViewNone = 9,
};

// UI strings of the captions.
enum ViewLabelIds {
    LblTop = 129,
    LblBottom = 346,
    LblLeft = 126,
    LblRight = 128,
    LblFront = 127,
    LblBack = 347,
    LblPerspective = 335,
    LblCamera = 336,
    LblUser = 337,
};

// The cross handle's half width and half height as fractions of the frame: the splitter ratio is its
// position over the frame size plus these.
constexpr double SplitterRatioX = 0.0086, SplitterRatioY = 0.0116;
// The frame never gets lower than this (twips); the main window grows to hold it.
constexpr double MinimumFrameHeightTwips = 6400;

// The zoom of a perspective view when it is (re)made: the engine's default field of view.
constexpr double PerspectiveZoom = 60.0;

class frmPicWins : public QWidget, public CameraContext, public GridContext {
    Q_OBJECT
  public:
    explicit frmPicWins(ViewportHost& host, QWidget* parent = nullptr);
    ~frmPicWins() override;

    ViewportHost& Host() { return m_host; }

    // ---- state ---------------------------------------------------------------------------------------
    int ActiveWin = 0;
    bool ViewHasFocus = false;
    bool UseScreenDC = false;
    bool PaintLocked = false;
    bool WireframeMode = false;
    bool RedrawPending = false;
    int ViewSelected = ViewNone;
    float LastDownX = 0, LastDownY = 0, LastUpX = 0, LastUpY = 0;

    picWindow* PicWindow(int i) const { return m_wins[i]; }
    QLabel* lblPicView(int i) const { return m_labels[i]; }
    // Captions are UI strings: 129 "Top", 346 "Bottom", 126 "Left", 128 "Right", 127 "Front", 347 "Back",
    // 335 "Perspective", 336 "Camera", 337 "User". The number is kept so a language change can reapply them.
    QString ViewLabel(int i) const;
    int ViewLabelId(int i) const { return m_labelId[i]; }
    void SetViewLabel(int i, int stringId);
    void ApplyLanguage();
    camera& ViewCams(int i) { return *m_cams[i]; }
    Grid& ViewGrids(int i) { return *m_grids[i]; }
    BoundingBox& SelectionBox() { return m_selectionBox; }
    // The engine camera shown by a view labelled "Camera" (0 otherwise).
    int ShownCamera(int i) const { return m_shownCam[i]; }
    // Paints of each window since construction (the 75-unit rule and the dispatch are observable).
    unsigned PaintCount(int i) const { return m_paintCount[i]; }
    // Milliseconds of the last picWindow_Paint: the engine's render, and the whole paint.
    double LastRenderMs = 0, LastPaintMs = 0;

    // NewWorld: the camera object of viewport `index` drives the engine camera `handle`.
    void SetViewportCamera(int index, int handle);

    // ---- layout --------------------------------------------------------------------------------------
    int TwipsToPixels(double twips) const;
    double PixelsToTwips(int pixels) const;
    // A resize from oldSize (an empty size: lay out at the kept ratios).
    void picWinsResize(QSize oldSize = QSize());
    // Both splitters, as fractions 0..1 of the frame.
    void imgSplitterHV_ResetPos(double fx, double fy);
    double SplitterFractionX() const { return m_fx; }
    double SplitterFractionY() const { return m_fy; }
    void ToggleWindowMinMax();
    bool WindowMaximised() const { return m_maximised; }
    void SetWindowFocus();
    // Focus frame colour: yellow with focus, blue without.
    QColor FocusFrameColor() const;
    QRect FocusFrameGeometry() const;
    // Splitter drags (kind 0 vertical, 1 horizontal, 2 the cross), in frame coordinates.
    void Splitter_MouseDown(int kind, QPoint p);
    void Splitter_MouseMove(int kind, QPoint p);
    void Splitter_MouseUp(int kind, QPoint p);

    // ---- views and labels ------------------------------------------------------------------------------
    void lblPicView_MouseUp(int index, int button, QPoint globalPos);
    // Acts on a view command (ViewCommands) for window `index`.
    void ApplyViewCommand(int index, int view);
    // The caption menu of window `index` (built on demand; exec'd by lblPicView_MouseUp).
    QMenu* WinViewMenu(int index);
    bool WorldHasCamera() const;
    void ResetCameras();
    void ZoomExtentAll();
    void ZoomExtentSingle(int index);
    void CenterObjInView();
    // Squared pixel distance between the projection of `point` and the centre of window `index`; -1 when
    // the point does not project.
    double GetSqrDistFrmCntrOfScreen(int index, const double point[3]);

    // ---- painting ------------------------------------------------------------------------------------
    void UpdateCameras();
    // The active view now and the others at the next turn of the event loop (one render each however often
    // this is called before it turns; a full UpdateCameras in between does them at once). For commands
    // that end with a long render of four views: the user sees the active one first either way.
    void UpdateCamerasDeferred();
    // The views still waiting for that turn (bit i for window i).
    unsigned DeferredViews() const { return m_deferred; }
    void UpdateCamerasSingle(int index);
    void picWindow_Paint(int index);
    void ToggleWireframe();
    void Toggle3DCard();
    void ClearViewports();

    // ---- mouse and wheel (keys are the main window's table) -----------------------------------------
    void picWindow_MouseDown(int index, int button, int shift, int x, int y);
    void picWindow_MouseMove(int index, int button, int shift, int x, int y);
    void picWindow_MouseUp(int index, int button, int shift, int x, int y);
    void picWindow_GotFocus(int index);
    void picWindow_LostFocus(int index);
    // Wheel: the viewports collect the deltas, the tick loop consumes them.
    void AddWheelDelta(int delta);
    int GetWheelMessages();
    void ScrollCheck();

    // ---- tools ---------------------------------------------------------------------------------------
    int ToolMode() const override { return m_toolMode; }
    void SetToolMode(int mode);
    void Toolbar1_ButtonClick(const QString& key);
    // Band 2 of Toolbar1: Select ... Roll Camera, Align. Form1 adds it to its toolbar area.
    QToolBar* ToolBand() const { return m_toolBand; }
    QAction* ToolButton(int mode) const { return m_toolActions[mode]; }
    // The main window's own band 2 buttons (keys "Select" ... "Align") take the place of ToolBand's:
    // they drive Toolbar1_ButtonClick and SetToolMode presses them.
    void UseToolButtons(const std::array<QAction*, 10>& buttons);
    bool AlignPressed() const;
    void picWinSetMousePtr(const QString& name);
    void SetMousePointer(const QString& key);
    void ResetMousePointer();
    QString MousePointerKey(int index) const { return m_pointerKey[index]; }
    // Grid snap from the toolbar and the menu: every viewport, or the active one.
    void Grid_ToggleSnap(bool allViews);

    // ---- CameraContext, GridContext ------------------------------------------------------------------
    double WorldSize() override { return m_host.WorldSize(); }
    double CamMoveFactor() override { return m_host.CamMoveFactor(); }
    int CurrSelEntityType() override { return m_host.CurrSelEntityType(); }
    int CurrSelEntity() override { return m_host.CurrSelEntity(); }
    int ActiveWindowHeight() override;
    int ActiveWindowWidth() override;
    void RedrawActiveView() override { UpdateCamerasSingle(ActiveWin); }
    void ProcessEvents() override { m_host.ProcessEvents(); }
    QSize ScreenSize() override;
    void RepaintView(int index) override { UpdateCamerasSingle(index); }
    void SetStatusText(const QString& text) override { m_host.SetStatusPanel(3, text); }
    int SignificantDecimals() override { return m_host.SignificantDecimals(); }

  protected:
    void resizeEvent(QResizeEvent* e) override;

  private:
    void buildToolBand();
    void layoutWindows();
    void applyStandardView(int index, int view);
    void DrawBDBoxOrWire(int index, QPainter& p);
    void picWindow_MouseMove_PanRevolveZoomCammoveCamroll(int index, int button, int shift, int x, int y);
    // picWindow_MouseMove from the plug-in hook on (steps 5 to 9).
    void mouseMoveByTool(int index, int button, int shift, int x, int y);
    bool aimAtSelection(camera& cam);
    bool selectionBounds(double mn[3], double mx[3]);
    void showGroupNameUnderMouse(int x, int y);

    ViewportHost& m_host;
    std::array<picWindow*, 4> m_wins{};
    std::array<QLabel*, 4> m_labels{};
    std::array<std::unique_ptr<camera>, 4> m_cams;
    std::array<std::unique_ptr<Grid>, 4> m_grids;
    std::array<int, 4> m_shownCam{};
    std::array<int, 4> m_labelId{};
    std::array<unsigned, 4> m_paintCount{};
    unsigned m_deferred = 0;
    bool m_deferredQueued = false;
    void paintDeferred();
    std::array<QString, 4> m_pointerKey;
    BoundingBox m_selectionBox;
    Wireframe m_wireframe;

    QWidget* m_focusFrame = nullptr;
    bool m_focusOn = false;
    SplitterHandle* m_splitVert = nullptr;
    SplitterHandle* m_splitHoriz = nullptr;
    SplitterHandle* m_splitHV = nullptr;
    QWidget* m_rubberVert = nullptr;
    QWidget* m_rubberHoriz = nullptr;
    double m_fx = 0.5, m_fy = 0.5;
    bool m_maximised = false;
    double m_savedFx = 0.5, m_savedFy = 0.5;

    int m_toolMode = ToolSelect;
    QToolBar* m_toolBand = nullptr;
    std::array<QAction*, 10> m_toolActions{};
    std::deque<int> m_wheel;
    std::shared_ptr<bool> m_alive;
};

// Group helpers of the selection model that the viewports need for their status text.
int GetTopMostFatherGrp(int group);
bool IsGroupVisible(int group);

} // namespace vexil
