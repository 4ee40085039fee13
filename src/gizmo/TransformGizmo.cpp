// TransformGizmo: placement, drawing, hit testing and the drag of one viewport's gizmo.
#include "TransformGizmo.h"

#include "selection/SelectionModel.h"
#include "SelectionTransforms.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "view/frmPicWins.h"
#include "maths/Maths.h"
#include "view/picWindow.h"
#include "selection/ActionTransformSubObject.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "selection/EntityActions.h"

#include <QPainter>
#include <QScreen>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

constexpr double Pi = 3.14159265358979;
constexpr int StrDistMoved = 624, StrDegRotated = 625, StrScaleFactor = 626;

SelectMode modeOf(frmPicWins& v) {
    return v.Host().CurrentSelectMode();
}

} // namespace

TransformGizmo::TransformGizmo(frmPicWins& views, int index, ActionUndoRedo_Stack& stack)
    : m_views(views), m_index(index), m_stack(stack) {
    RegisterEntityActions();
    RegisterSubObjectActions();
}

TransformGizmo::~TransformGizmo() = default;

// ---- selection and placement -----------------------------------------------------------------------------

bool TransformGizmo::SelectionExists() const {
    return vexil::SelectionExists(m_views.Host(), modeOf(m_views));
}

bool TransformGizmo::Place() {
    Placed = false;
    if (!SelectionPivot(m_views.Host(), modeOf(m_views), Pivot)) return false;
    picWindow* win = m_views.PicWindow(m_index);
    const int cam =
        m_views.ShownCamera(m_index) ? m_views.ShownCamera(m_index) : m_views.ViewCams(m_index).CamHandle;
    if (!win || ZELMAR_camera_is_camera(cam) != 1) return false;
    ZELMAR_camera_set_current(cam, win->Target());
    double eye[3];
    ZELMAR_camera_get_location(cam, eye);
    // A fixed share of the view's half-width at the pivot's distance: the same size on screen anywhere.
    const double distance = ZELMAR_math_get_distance(Pivot.data(), eye);
    const double extent = std::tan((ZELMAR_camera_get_zoom(cam) / 2) * Pi / 180) * distance;
    HandleLen = std::abs(0.3 * extent);
    int c[2];
    if (ZELMAR_engine_3D_point_to_2D(Pivot.data(), c) == -1) return false;
    Center2D = {c[0], c[1]};
    std::array<int, 2>* tips[3] = {&TipX, &TipY, &TipZ};
    for (int axis = 0; axis < 3; ++axis) {
        Vec3 tip = Pivot;
        tip[size_t(axis)] += HandleLen;
        int t[2] = {c[0], c[1]};
        ZELMAR_engine_3D_point_to_2D(tip.data(), t);
        *tips[axis] = {t[0], t[1]};
    }
    Placed = true;
    return true;
}

const std::array<int, 2>& TransformGizmo::Tip(int axis) const {
    return axis == AxisY ? TipY : axis == AxisZ ? TipZ : TipX;
}

const QPen& TransformGizmo::HandlePen(int axis) const {
    // Per tool a pen set: move solid, rotate dashed, scale dash-dotted; the grabbed handle is thick.
    static const std::array<QPen, 18> pens = [] {
        std::array<QPen, 18> p;
        const QColor colours[3] = {QColor(255, 0, 0), QColor(0, 255, 0), QColor(0, 0, 255)};
        const Qt::PenStyle styles[3] = {Qt::SolidLine, Qt::DashLine, Qt::DashDotLine};
        for (int tool = 0; tool < 3; ++tool)
            for (int a = 0; a < 3; ++a)
                for (int thick = 0; thick < 2; ++thick)
                    p[size_t(tool * 6 + a * 2 + thick)] = QPen(colours[a], thick ? 3 : 1, styles[tool]);
        return p;
    }();
    const int tool = std::clamp(m_views.ToolMode(), 1, 3) - 1;
    const bool thick = axis == ActiveAxis || ActiveAxis == AxisAll;
    return pens[size_t(tool * 6 + axis * 2 + (thick ? 1 : 0))];
}

void TransformGizmo::Draw(QPainter& p) {
    if (!Place()) return;
    myLine line;
    line.SetDC(&p);
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    for (int axis = 0; axis < 3; ++axis) {
        p.setPen(HandlePen(axis));
        const auto& t = Tip(axis);
        line.Draw(Center2D[0], Center2D[1], t[0], t[1]);
    }
    p.restore();
}

// ---- hit testing -----------------------------------------------------------------------------------------

double TransformGizmo::DistSquared(const std::array<int, 2>& a, const std::array<int, 2>& b) {
    const double dx = double(a[0]) - b[0], dy = double(a[1]) - b[1];
    return dx * dx + dy * dy;
}

bool TransformGizmo::HitHandle(int axis, double tolerance, const std::array<int, 2>& mouse) const {
    const auto& tip = Tip(axis);
    const double a = std::sqrt(DistSquared(Center2D, tip));
    const double b = std::sqrt(DistSquared(mouse, tip));
    const double c = std::sqrt(DistSquared(mouse, Center2D));
    return b + c <= std::sqrt(a * a + tolerance * tolerance) + tolerance;
}

void TransformGizmo::UpdateTransformationPossible() {
    ActiveAxis = AxisNone;
    if (!Place()) return;
    for (int axis = AxisX; axis <= AxisZ; ++axis) {
        if (!HitHandle(axis, HitTolerance, Mouse2D)) continue;
        ActiveAxis = axis;
        if (axis == AxisX && keyDown(Qt::Key_Shift) && m_views.ToolMode() == ToolScale) ActiveAxis = AxisAll;
        return;
    }
}

// ---- mouse -----------------------------------------------------------------------------------------------

void TransformGizmo::MouseMove(int button, int x, int y) {
    if (!SelectionExists()) return;
    Mouse2D = {x, y};
    if (button != BtnLeft) UpdateTransformationPossible();
    if (Dragging) DragHandle(button, x, y);
}

void TransformGizmo::MouseDown(int button, int x, int y) {
    if (button != BtnLeft) return;
    Dragging = true;
    LastProj = {0, 0};
    TotalMove = 0;
    ScaleFactorShown = 1.0;
    TotalRotation = {0, 0, 0};
    TotalScale = TotalTrackScale = {1, 1, 1};
    m_views.Host().SetStatusPanel(3, QString());
    const int tool = m_views.ToolMode();
    // The handle under the press decides, so that a press without a move before it still grabs.
    Mouse2D = {x, y};
    if (tool >= ToolMove && tool <= ToolScale && SelectionExists())
        UpdateTransformationPossible();
    else
        ActiveAxis = AxisNone;
    if (ActiveAxis == AxisNone) return;
    BeginActions();
}

void TransformGizmo::MouseUp(int button, int /*x*/, int /*y*/) {
    Dragging = false;
    LastProj = {0, 0};
    TotalMove = 0;
    ScaleFactorShown = 1.0;
    ViewportHost& h = m_views.Host();
    h.SetStatusPanel(3, QString());
    const int tool = m_views.ToolMode();
    const bool transformTool = tool >= ToolMove && tool <= ToolScale;
    // The other views were not redrawn during the drag.
    if (!keyDown(Qt::Key_Control) && transformTool) m_views.UpdateCameras();
    if (button == BtnLeft && transformTool && ActiveAxis != AxisNone) {
        EndActions();
        RefreshDependants(); // what the drag left: bent polygons stay reported after the release
    }
    m_open.reset();
    TotalScale = TotalTrackScale = {1, 1, 1};
    TotalRotation = {0, 0, 0};
}

void TransformGizmo::DragHandle(int button, int /*x*/, int /*y*/) {
    if (!keyDown(VkLButton) || button != BtnLeft || ActiveAxis == AxisNone) return;
    picWindow* win = m_views.PicWindow(m_index);
    const QPoint cursor = inputState().cursorPos();
    const int tool = m_views.ToolMode();
    if (tool == ToolRotate || tool == ToolScale) {
        // Turning and scaling have no end: the cursor jumps to the other side of the screen, and the next
        // event starts afresh.
        const QScreen* screen = win->screen();
        const QRect r = screen ? screen->geometry() : QRect(QPoint(0, 0), m_views.ScreenSize());
        const int gx = cursor.x() - r.left(), gy = cursor.y() - r.top(), W = r.width(), H = r.height();
        int nx = gx, ny = gy;
        if (gx >= W - 10)
            nx = 11;
        else if (gx <= 10)
            nx = W - 11;
        if (gy >= H - 10)
            ny = 11;
        else if (gy <= 10)
            ny = H - 11;
        if (nx != gx || ny != gy) {
            inputState().setCursorPos(QPoint(nx + r.left(), ny + r.top()));
            LastProj = {0, 0};
            return;
        }
    }
    if (!Place()) return;
    const QPoint local = cursor - win->mapToGlobal(QPoint(0, 0));
    const Maths::IntPoint mouse{local.x(), local.y()};
    const Maths::IntPoint a{Center2D[0], Center2D[1]};
    const auto& tip = Tip(ActiveAxis == AxisAll ? AxisX : ActiveAxis);
    const Maths::IntPoint b{tip[0], tip[1]};
    Maths::IntPoint proj{a[0], a[1]};
    Maths::NearestPointOnLineInt(mouse, a, b, proj);
    const std::array<int, 2> p{proj[0], proj[1]};
    if (LastProj == std::array<int, 2>{0, 0}) {
        LastProj = p;
        return;
    }
    const double pixels = std::sqrt(DistSquared(p, LastProj));
    if (pixels == 0) return;
    double sensitivity = Prefs().TransformGizmoSensitivity;
    if (!(sensitivity > 0)) sensitivity = 50;
    double amount = pixels * HandleLen / sensitivity;
    // Towards the tip is positive.
    const float dirX = float(b[0] - a[0]), dirY = float(b[1] - a[1]);
    const float motX = float(LastProj[0] - p[0]), motY = float(LastProj[1] - p[1]);
    if (dirX * motX + dirY * motY > 0) amount = -amount;
    if (HandleLen > 0) {
        if (tool == ToolMove)
            MoveSelection(amount);
        else if (tool == ToolRotate)
            Rotate(amount / HandleLen);
        else if (tool == ToolScale)
            ChangeScale(2 * amount / HandleLen);
    }
    RefreshDependants();
    RefreshViewOrViews();
    LastProj = p;
}

void TransformGizmo::RefreshDependants() {
    RefreshAfterTransform(m_views.Host(), modeOf(m_views), &m_views);
}

void TransformGizmo::RefreshViewOrViews() {
    if (keyDown(Qt::Key_Control))
        m_views.UpdateCameras();
    else
        m_views.UpdateCamerasSingle(m_views.ActiveWin);
}

// ---- the three transforms --------------------------------------------------------------------------------

void TransformGizmo::MoveSelection(double amount) {
    if (amount == 0 || ActiveAxis < AxisX || ActiveAxis > AxisZ) return;
    Vec3 d{0, 0, 0};
    d[size_t(ActiveAxis)] = amount;
    MoveSelectionBy(m_views.Host(), modeOf(m_views), d);
    TotalMove += amount;
    UpdateStatusbarTransformParams();
}

void TransformGizmo::RotatePts(double degrees, int axis) {
    RotateSelectionBy(m_views.Host(), SelectMode::Point, degrees, axis);
}

void TransformGizmo::RotatePols(double degrees, int axis) {
    RotateSelectionBy(m_views.Host(), SelectMode::Polygon, degrees, axis);
}

void TransformGizmo::Rotate(double amount) {
    if (amount == 0 || ActiveAxis < AxisX || ActiveAxis > AxisZ) return;
    const double degrees = amount * 30;
    TotalRotation[size_t(ActiveAxis)] += degrees;
    const SelectMode mode = modeOf(m_views);
    if (mode == SelectMode::Point)
        RotatePts(degrees, ActiveAxis);
    else if (mode == SelectMode::Polygon)
        RotatePols(degrees, ActiveAxis);
    else
        RotateSelectionBy(m_views.Host(), mode, degrees, ActiveAxis);
    UpdateStatusbarTransformParams();
}

void TransformGizmo::ChangeScale(double amount) {
    if (!Dragging || amount == 0) return;
    amount /= 40;
    Vec3 f{1, 1, 1};
    if (ActiveAxis == AxisAll)
        f = {1 + amount, 1 + amount, 1 + amount};
    else if (ActiveAxis >= AxisX && ActiveAxis <= AxisZ)
        f[size_t(ActiveAxis)] += amount;
    else
        return;
    // A step through 0 would flatten the selection for good: it is not taken.
    const SelectMode mode = modeOf(m_views);
    if (!ScaleSelectionBy(m_views.Host(), mode, f)) return;
    Vec3& total = mode == SelectMode::TrackPoint ? TotalTrackScale : TotalScale;
    for (size_t k = 0; k < 3; ++k)
        total[k] *= f[k];
    ScaleFactorShown = total[ActiveAxis == AxisAll ? 0 : size_t(ActiveAxis)];
    UpdateStatusbarTransformParams();
}

void TransformGizmo::UpdateStatusbarTransformParams() {
    ViewportHost& h = m_views.Host();
    const int decimals = std::clamp(h.SignificantDecimals(), 0, 15);
    auto rounded = [&](double v) {
        const double scale = std::pow(10.0, decimals);
        const double r = std::nearbyint(v * scale) / scale;
        return NumText(r == 0 ? 0.0 : r);
    };
    QString text;
    switch (m_views.ToolMode()) {
    case ToolMove:
        text = GetLocaleString(StrDistMoved) + QStringLiteral(": ") + rounded(TotalMove);
        break;
    case ToolRotate: {
        const int axis = ActiveAxis >= AxisX && ActiveAxis <= AxisZ ? ActiveAxis : AxisX;
        text = GetLocaleString(StrDegRotated) + QStringLiteral(": ") + rounded(TotalRotation[size_t(axis)]);
        break;
    }
    case ToolScale:
        text = GetLocaleString(StrScaleFactor) + QStringLiteral(": ") + rounded(ScaleFactorShown);
        break;
    default:
        return;
    }
    h.SetStatusPanel(3, text);
}

} // namespace vexil
