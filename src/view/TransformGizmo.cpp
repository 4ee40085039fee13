// TransformGizmo: placement, drawing, hit testing and the drag of one viewport's gizmo.
#include "TransformGizmo.h"

#include "EntityKinds.h"
#include "SelectionModel.h"
#include "app/InputState.h"
#include "app/Locale.h"
#include "app/Preferences.h"
#include "frmPicWins.h"
#include "maths/Maths.h"
#include "picWindow.h"
#include "undo/ActionTransformEntity.h"
#include "undo/ActionTransformSubObject.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "undo/EntityActions.h"

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

std::vector<int> trackIndicesAll(int track) {
    std::vector<int> all;
    const int n = ZELMAR_track_get_number_of_points(track);
    for (int i = 0; i < n; ++i)
        all.push_back(i);
    return all;
}

Vec3 trackCentre(frmPicWins& v, int track) {
    double c[3];
    if (v.Host().TrackCenter(track, c)) return {c[0], c[1], c[2]};
    return TrackCentre(track);
}

Vec3 plus(const Vec3& a, const Vec3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

// A camera or light of a set turns on its own and swings about the common centre.
void swingAbout(int kind, int handle, const Vec3& centre, double degrees, int axis) {
    EntityKindOps& ops = KindOps(kind);
    Vec3 turn{0, 0, 0};
    turn[size_t(axis)] = degrees;
    if (ops.Rotate) ops.Rotate(handle, turn);
    if (ops.GetLocation && ops.SetLocation)
        ops.SetLocation(handle, RotateAbout(ops.GetLocation(handle), centre, degrees, axis));
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
    ViewportHost& h = m_views.Host();
    if (h.EditTextureMode()) return false;
    const SelectionState& s = Sel();
    switch (modeOf(m_views)) {
    case SelectMode::Point:
        return s.SelPts.Count() > 0;
    case SelectMode::Polygon:
        return s.SelPols.Count() > 0;
    case SelectMode::TrackPoint:
        return s.SelTrackPtsCount() > 0;
    case SelectMode::TrackPointInsert:
        return false;
    case SelectMode::Entity:
        break;
    }
    const int t = s.CurrSelEntityType;
    return (t >= 0 && t <= 4) || t == 6;
}

bool TransformGizmo::ChoosePivot(Vec3& pivot) const {
    const SelectionState& s = Sel();
    switch (modeOf(m_views)) {
    case SelectMode::Point:
        pivot = s.SelPtsAvgCenter;
        return s.SelPts.Count() > 0;
    case SelectMode::Polygon:
        pivot = s.SelPolsAvgCenter;
        return s.SelPols.Count() > 0;
    case SelectMode::TrackPoint:
        pivot = s.SelTrackPtsAvgCenter;
        return s.SelTrackPtsCount() > 0;
    case SelectMode::TrackPointInsert:
        return false;
    case SelectMode::Entity:
        break;
    }
    const int h = s.CurrSelEntity;
    switch (s.CurrSelEntityType) {
    case 1:
        if (ZELMAR_group_is_group(h) != 1) return false;
        ZELMAR_group_get_rotate_reference_point(h, pivot.data());
        return true;
    case 6:
        pivot = s.SelObjsAvgCenter;
        return s.MultiSel.TotalCount > 0;
    case 2:
    case 4:
        if (m_views.Host().CurrentEntityHidden() || !KindOps(s.CurrSelEntityType).GetLocation) return false;
        pivot = KindOps(s.CurrSelEntityType).GetLocation(h);
        return true;
    case 3:
        if (ZELMAR_track_get_number_of_points(h) <= 0) return false;
        pivot = trackCentre(m_views, h);
        return true;
    default:
        return false;
    }
}

bool TransformGizmo::Place() {
    Placed = false;
    if (!SelectionExists() || !ChoosePivot(Pivot)) return false;
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
    if (button == BtnLeft && transformTool && ActiveAxis != AxisNone) EndActions();
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
    SelectionModel* m = selectionModel();
    const SelectionState& s = Sel();
    const SelectMode mode = modeOf(m_views);
    if (mode == SelectMode::Point || mode == SelectMode::Polygon) return; // the engine reads points afresh
    if (mode != SelectMode::Entity) return;
    if (s.CurrSelEntityType == 1) m_views.SelectionBox().Initialize(s.CurrSelEntity);
    if (s.CurrSelEntityType == 6) {
        Sel().MultiSel.InitializeBndBoxes();
        if (m) m->ComputeSelObjsAvgCenter();
    }
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
    SelectionState& s = Sel();
    SelectionModel* m = selectionModel();
    switch (modeOf(m_views)) {
    case SelectMode::Point:
        MovePoints(s.SelPts.ToVector(), d);
        if (m) m->ComputeSelPtsAvgCenter();
        break;
    case SelectMode::Polygon:
        MoveWeldSets(SelectedWeldSets(), d);
        if (m) m->ComputeSelPolsAvgCenter();
        break;
    case SelectMode::TrackPoint:
        MoveTrackPoints(s.CurrSelEntity, SelectedTrackIndices(), d);
        if (m) m->ComputeSelTrackPtsAvgCenter();
        break;
    case SelectMode::TrackPointInsert:
        return;
    case SelectMode::Entity: {
        auto shift = [&](int kind, int h) {
            EntityKindOps& ops = KindOps(kind);
            if (ops.GetLocation && ops.SetLocation) ops.SetLocation(h, plus(ops.GetLocation(h), d));
        };
        switch (s.CurrSelEntityType) {
        case 1:
            ZELMAR_group_move(s.CurrSelEntity, d.data(), 0);
            break;
        case 6:
            for (int g : s.MultiSel.Groups())
                ZELMAR_group_move(g, d.data(), 0);
            for (int c : s.MultiSel.Cams())
                shift(2, c);
            for (int l : s.MultiSel.Lights())
                shift(4, l);
            break;
        case 2:
        case 4:
            shift(s.CurrSelEntityType, s.CurrSelEntity);
            break;
        case 3:
            MoveTrackPoints(s.CurrSelEntity, trackIndicesAll(s.CurrSelEntity), d);
            break;
        default:
            return;
        }
        break;
    }
    }
    TotalMove += amount;
    UpdateStatusbarTransformParams();
}

void TransformGizmo::RotatePts(double degrees, int axis) {
    RotatePoints(Sel().SelPts.ToVector(), Sel().SelPtsAvgCenter, degrees, axis);
}

void TransformGizmo::RotatePols(double degrees, int axis) {
    RotateWeldSets(SelectedWeldSets(), Sel().SelPolsAvgCenter, degrees, axis);
}

void TransformGizmo::Rotate(double amount) {
    if (amount == 0 || ActiveAxis < AxisX || ActiveAxis > AxisZ) return;
    const double degrees = amount * 30;
    const int axis = ActiveAxis;
    TotalRotation[size_t(axis)] += degrees;
    SelectionState& s = Sel();
    Vec3 turn{0, 0, 0};
    turn[size_t(axis)] = degrees;
    switch (modeOf(m_views)) {
    case SelectMode::Point:
        RotatePts(degrees, axis);
        break;
    case SelectMode::Polygon:
        RotatePols(degrees, axis);
        break;
    case SelectMode::TrackPoint:
        RotateTrackPoints(s.CurrSelEntity, SelectedTrackIndices(), s.SelTrackPtsAvgCenter, degrees, axis);
        break;
    case SelectMode::TrackPointInsert:
        return;
    case SelectMode::Entity:
        switch (s.CurrSelEntityType) {
        case 1:
            ZELMAR_group_rotate(s.CurrSelEntity, turn.data(), 0);
            break;
        case 6: {
            // Every member swings about the common centre.
            const Vec3 centre = s.SelObjsAvgCenter;
            for (int g : s.MultiSel.Groups()) {
                Vec3 own{};
                ZELMAR_group_get_rotate_reference_point(g, own.data());
                ZELMAR_group_set_rotate_reference_point(g, centre.data());
                ZELMAR_group_rotate(g, turn.data(), 0);
                ZELMAR_group_set_rotate_reference_point(g, own.data());
            }
            for (int c : s.MultiSel.Cams())
                swingAbout(2, c, centre, degrees, axis);
            for (int l : s.MultiSel.Lights())
                swingAbout(4, l, centre, degrees, axis);
            break;
        }
        case 2:
        case 4:
            if (KindOps(s.CurrSelEntityType).Rotate)
                KindOps(s.CurrSelEntityType).Rotate(s.CurrSelEntity, turn);
            break;
        case 3: {
            const int t = s.CurrSelEntity;
            RotateTrackPoints(t, trackIndicesAll(t), trackCentre(m_views, t), degrees, axis);
            break;
        }
        default:
            break;
        }
        break;
    }
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
    // A scale through 0 would flatten the selection for good.
    for (double v : f)
        if (!(v > 0)) return;
    SelectionState& s = Sel();
    const SelectMode mode = modeOf(m_views);
    switch (mode) {
    case SelectMode::Point:
        ScalePoints(s.SelPts.ToVector(), s.SelPtsAvgCenter, f);
        break;
    case SelectMode::Polygon:
        ScaleWeldSets(SelectedWeldSets(), s.SelPolsAvgCenter, f);
        break;
    case SelectMode::TrackPoint:
        ScaleTrackPoints(s.CurrSelEntity, SelectedTrackIndices(), s.SelTrackPtsAvgCenter, f);
        break;
    case SelectMode::TrackPointInsert:
        return;
    case SelectMode::Entity:
        switch (s.CurrSelEntityType) {
        case 1:
            ZELMAR_group_scale(s.CurrSelEntity, 1, f[0], f[1], f[2]);
            break;
        case 6: {
            const Vec3 c = s.SelObjsAvgCenter;
            for (int g : s.MultiSel.Groups()) {
                ZELMAR_group_scale(g, 0, f[0], f[1], f[2]);
                Vec3 l{};
                ZELMAR_group_get_location(g, l.data());
                for (size_t k = 0; k < 3; ++k)
                    l[k] = l[k] - (1.0 - f[k]) * (l[k] - c[k]);
                ZELMAR_group_set_location(g, l.data());
            }
            break;
        }
        case 3: {
            const int t = s.CurrSelEntity;
            ScaleTrackPoints(t, trackIndicesAll(t), trackCentre(m_views, t), f);
            break;
        }
        default:
            return; // cameras and lights have no size
        }
        break;
    }
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
