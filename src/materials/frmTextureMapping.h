// frmTextureMapping ("Texture Map Editor."): one bitmap of the current group flat on screen, the group's
// polygons drawn over it in bitmap space, and the bitmap coordinates of their points selected, moved,
// rotated, scaled and mirrored with the mouse. It stays open beside the viewports and works on the current
// group only. Every change of coordinates is one ActionChngTextureCoords (24), every change of the selection
// one ActionSelectCoords (26).
//
// Screen position of (u, v): x = image left + pan x + image width * u, y = image top + pan y + image height * v.
// Drawing goes to a back buffer (QImage) that reaches the screen in one copy; the stretched visible part of
// the bitmap is kept apart and made again only when zoom, pans, size, bitmap or "texture on/off" change.
#pragma once
#include "PolygonLists.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QWidget>
#include <vector>

class QAction;
class QComboBox;
class QToolBar;

namespace vexil {

class TextureMapPicture;

class frmTextureMapping : public QWidget {
    Q_OBJECT
  public:
    enum Tool { ToolSelect = 0, ToolMove = 1, ToolRotate = 2, ToolScale = 3, ToolPan = 4, ToolZoom = 6 };

    explicit frmTextureMapping(QWidget* parent = nullptr);
    ~frmTextureMapping() override;

    // ---- widgets ---------------------------------------------------------------------------------------
    QToolBar* tbrTextureMapping = nullptr;
    QToolBar* tbrBottom = nullptr;
    QComboBox* cmbTextures = nullptr;
    TextureMapPicture* PicMain = nullptr;
    // The buttons by key: "select" .. "zoom", "texture on/off", "zoom extent"; "Selected Only", "Mirror".
    QAction* Button(const QString& key) const;

    // ---- state (public for tests and benchmarks) -----------------------------------------------------
    int MapWidth = 256, MapHeight = 256;
    double MapAspect = 1.0;
    double InitialZoom = 1.0;
    double Zoom = 1.0;
    int ImgWidth = 0, ImgHeight = 0;
    int ImgLeft = 0, ImgTop = 0;
    int PanX = 0, PanY = 0;
    double PanX1 = 0, PanY1 = 0; // the pans at zoom 1
    int ToolMode = ToolSelect;
    QPoint LastCursor;
    double Dx = 0, Dy = 0, Distance = 0;
    int AnchorX = 0, AnchorY = 0;
    float LastX = 0, LastY = 0;
    bool OverSelection = false;
    std::vector<PointOfPolygon> SelPts;          // selection among all polygons of the group
    std::vector<PointOfPolygon> SelPtsOfSelPols; // those that belong to selected polygons
    // The bitmap shown (0 when the group uses none) and the group the form works on.
    int MapHandle() const { return m_bitmap; }
    int Group() const { return m_group; }
    bool SelectedOnly() const;
    bool TextureOn() const;

    // ---- operations ------------------------------------------------------------------------------------
    void SetToolMode(int tool);
    void SetMousePtr(const QString& name);
    void picMainSetMousePtr(const QString& name) { SetMousePtr(name); }
    void cmbTextures_Populate();
    void cmbTextures_Click();
    void SetMapProps();
    void SetInitialZoom();
    void CenterImgInPicBox();
    void SetupWithNewZoom();
    void ResetSelections();
    void SetSelPts_And_OwnerPols(const std::vector<PointOfPolygon>& points);
    void SetSelPtsPartOfSelPols_And_OwnerPols(const std::vector<PointOfPolygon>& points);
    void SetSelPtsPartOfSelPols();
    void ZoomExtent();
    void Mirror();
    // Repaints from the engine (undo, redo, the viewports' selection, a bitmap deleted or updated).
    void Redraw();
    // A bitmap went or came back: the list of bitmaps is made again.
    void BitmapsChanged();
    // The screen position of a (u, v), and back.
    QPointF ScreenOf(double u, double v) const;
    void UvOf(double x, double y, double& u, double& v) const;
    // The points listed for a change: the selection that "Selected Only" names.
    const std::vector<PointOfPolygon>& ListedPoints() const;

    // ---- mouse and keys (PicMain's events) ----------------------------------------------------------
    void PicMain_MouseDown(Qt::MouseButton button, QPoint pos);
    void PicMain_MouseMove(Qt::MouseButtons buttons, QPoint pos);
    void PicMain_MouseUp(Qt::MouseButton button, QPoint pos);
    void PicMain_Zoom(float y);
    // Form_Resize: a new buffer, and the pans scaled in proportion to the new size of the picture box.
    void PicMain_Resize(QSize old, QSize now);
    void PicMain_Pan(float x, float y);
    void MonitorMouse(bool leftDown, QPoint pos);
    void SetMoveDistances();
    void MoveCoords();
    void RotateCoords();
    void ScaleCoords();
    void MultipleSelection(QPoint pos);
    void SelectPts(QPoint pos);
    int PtMouseIsClosestTo(QPoint pos) const; // index in ListedPoints(), -1 for none
    void Form_KeyDown(int key, Qt::KeyboardModifiers modifiers, bool autoRepeat);

    // ---- drawing -----------------------------------------------------------------------------------------
    // Asks for a repaint: the back buffer is drawn again once, when the picture paints (or is asked for).
    void PicMain_Paint();
    // The back buffer, drawn first if a repaint is pending.
    const QImage& BackBuffer();
    // The rubber band being drawn (empty when none).
    QRect Band() const { return m_band; }

  protected:
    void keyPressEvent(QKeyEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void showEvent(QShowEvent* e) override;

  private:
    friend class TextureMapPicture;
    void buildToolbars();
    void startChange();
    void finishChange();
    void DrawImg(QImage& into);
    void DrawMapCoor(QImage& into);
    void DrawSelectedPts(QImage& into);
    void drawPolygons(QImage& into, const std::vector<int>& polygons, const QColor& colour);
    void invalidateBackground() { m_backgroundValid = false; }
    void recordSelection(ActionRef& ref, bool old);
    bool rectSelect(const QRect& r, std::vector<PointOfPolygon>& hits) const;
    void syncGroup();
    void render();

    int m_bitmap = 0;
    int m_group = 0;
    ActionRef m_change; // the coordinates change being made
    QImage m_buffer, m_background;
    bool m_backgroundValid = false;
    bool m_bufferDirty = true;
    QRect m_band;
    int m_bandMode = 0; // 1 adding (Ctrl), 2 removing (Shift), 0 fresh
    QSize m_boxSize;
};

} // namespace vexil
