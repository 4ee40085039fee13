#include "TrackTools.h"

#include "EntityCreation.h"
#include "TracksHost.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/Overlays.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <zelmar/zelmar.h>

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vexil {

namespace {

constexpr double kInsertTolerance = 2.0; // pixels

// Projections and picks of a mouse event work in the view the mouse is in.
void makeActiveViewCurrent(frmPicWins* v) {
    if (!v) return;
    const int i = v->ActiveWin;
    const int cam = v->ShownCamera(i) ? v->ShownCamera(i) : v->ViewCams(i).CamHandle;
    ZELMAR_camera_set_current(cam, v->PicWindow(i)->Target());
}

// Segments and 2-pixel boxes of a list of points (three doubles each), closed when asked.
void drawPolyline(QPainter& p, const std::vector<double>& xyz, bool closed, const QPen& boxPen) {
    const int n = static_cast<int>(xyz.size() / 3);
    p.setBrush(Qt::NoBrush);
    p.setPen(Pens().white1);
    for (int i = 0; i + 1 < n || (closed && i < n && n > 1); ++i) {
        const int j = (i + 1) % n;
        int a[2], b[2];
        const int r = ZELMAR_engine_3D_edge_to_2D(&xyz[size_t(3 * i)], &xyz[size_t(3 * j)], a, b);
        if (r == 1 || r == -1) p.drawLine(a[0], a[1], b[0], b[1]);
        if (j == 0) break;
    }
    p.setPen(boxPen);
    for (int i = 0; i < n; ++i) {
        int s[2];
        if (ZELMAR_engine_3D_point_to_2D(&xyz[size_t(3 * i)], s) == 0) p.drawRect(s[0] - 2, s[1] - 2, 4, 4);
    }
}

std::vector<double> trackPoints(int track) {
    const int n = std::max(0, ZELMAR_track_get_number_of_points(track));
    std::vector<double> xyz(size_t(3 * n));
    for (int i = 0; i < n; ++i) ZELMAR_track_get_point(track, i, &xyz[size_t(3 * i)]);
    return xyz;
}

} // namespace

TrackTools::TrackTools(TracksHost& host) : m_host(host) {}

int TrackTools::currentTrack() const {
    const SelectionState& s = Sel();
    return s.CurrSelEntityType == 3 && ZELMAR_track_is_track(s.CurrSelEntity) ? s.CurrSelEntity : 0;
}

// ---- creation -------------------------------------------------------------------------------------------

int TrackTools::CreateCircularTrack(int n) {
    if (n < 1 || !m_host.WorldOpen()) return 0;
    const double r = m_host.WorldSize() / 10.0;
    std::vector<double> xyz;
    xyz.reserve(size_t(3 * n));
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * M_PI * i / n;
        xyz.insert(xyz.end(), {r * std::cos(a), r * std::sin(a), 0.0});
    }
    const std::string name = GetNewTrkName();
    const int track = ZELMAR_track_create(name.c_str(), xyz.data(), n, 1);
    if (track == 0) return 0;
    ZELMAR_track_set_save_flag(track, 1);
    AnnounceCreatedEntity(m_host, 3, track);
    UpdateTrackCenter();
    return track;
}

void TrackTools::StartCustomTrack() {
    m_custom.clear();
    m_laying = true;
    m_host.SetMousePointer(QStringLiteral("Cross hair"));
    m_host.SetToolMode(0);
}

void TrackTools::ResetCustomTrk() {
    m_custom.clear();
    m_laying = false;
    m_host.SetMousePointer(QStringLiteral("Select"));
}

void TrackTools::CreateCustomTrack(int button, int x, int y) {
    if (!m_laying || !m_host.SelectToolPressed()) return;
    frmPicWins* v = m_host.Views();
    if (button == 1) {
        makeActiveViewCurrent(v);
        double at[3] = {0, 0, 0};
        int group = 0, polygon = 0;
        if (ZELMAR_engine_2D_point_to_3D(x, y, at, &group, &polygon) == -1 || polygon == 0) {
            // Empty space: the point goes on the view's grid plane, so a track can be laid anywhere.
            if (!v) return;
            Grid& grid = v->ViewGrids(v->ActiveWin);
            grid.Draw(nullptr);
            Maths::Vector w;
            grid.Snap(x, y, w);
            if (w.size() < 3) return;
            at[0] = w[0];
            at[1] = w[1];
            at[2] = w[2];
            m_host.SetStatusText(GetLocaleString(380));
        }
        m_custom.insert(m_custom.end(), {at[0], at[1], at[2]});
        if (v) v->UpdateCameras();
    } else if (button == 2) {
        finishCustomTrack();
    }
}

void TrackTools::finishCustomTrack() {
    frmPicWins* v = m_host.Views();
    const int n = static_cast<int>(m_custom.size() / 3);
    if (n < 2) {
        dialogs().msgBox(QStringLiteral("We need to have atleast 2 points. No track has been created."));
        ResetCustomTrk();
        if (v) v->UpdateCameras();
        return;
    }
    const int cyclic = dialogs().msgBox(QStringLiteral("Should the track be cyclic?"), MsgYesNo) == vbYes ? 1 : 0;
    const std::string name = GetNewTrkName();
    const int track = ZELMAR_track_create(name.c_str(), m_custom.data(), n, cyclic);
    ResetCustomTrk();
    if (track == 0) return;
    ZELMAR_track_set_save_flag(track, 1);
    AnnounceCreatedEntity(m_host, 3, track);
    UpdateTrackCenter();
}

// ---- drawing -------------------------------------------------------------------------------------------

void TrackTools::DrawTrack(QPainter& p) {
    const int track = currentTrack();
    if (track == 0) return;
    drawPolyline(p, trackPoints(track), ZELMAR_track_is_cyclic(track) == 1, Pens().blue1);
}

void TrackTools::DrawCustomTrk(QPainter& p) {
    if (!m_laying || m_custom.empty()) return;
    drawPolyline(p, m_custom, false, Pens().red1);
}

std::array<double, 3> TrackTools::TrackCenter(int track) {
    std::array<double, 3> lo{1e308, 1e308, 1e308}, hi{-1e308, -1e308, -1e308};
    const std::vector<double> xyz = trackPoints(track);
    for (size_t i = 0; i + 2 < xyz.size(); i += 3)
        for (int k = 0; k < 3; ++k) {
            lo[size_t(k)] = std::min(lo[size_t(k)], xyz[i + size_t(k)]);
            hi[size_t(k)] = std::max(hi[size_t(k)], xyz[i + size_t(k)]);
        }
    if (xyz.empty()) return {0, 0, 0};
    return {(lo[0] + hi[0]) / 2, (lo[1] + hi[1]) / 2, (lo[2] + hi[2]) / 2};
}

void TrackTools::UpdateTrackCenter() {
    if (const int track = currentTrack()) m_center = TrackCenter(track);
}

// ---- insert and delete points ---------------------------------------------------------------------------

void TrackTools::MonitorInsertTrackPoint(int x, int y) {
    const int track = currentTrack();
    frmPicWins* v = m_host.Views();
    m_insertAvailable = false;
    if (track != 0) {
        makeActiveViewCurrent(v);
        const std::vector<double> xyz = trackPoints(track);
        const int n = static_cast<int>(xyz.size() / 3);
        const int segments = ZELMAR_track_is_cyclic(track) == 1 ? n : n - 1;
        const double T = kInsertTolerance;
        for (int i = 0; i < segments && n > 1; ++i) {
            const int j = (i + 1) % n;
            int a[2], b[2];
            const int r = ZELMAR_engine_3D_edge_to_2D(&xyz[size_t(3 * i)], &xyz[size_t(3 * j)], a, b);
            if (r != 1 && r != -1) continue;
            const double dx = b[0] - a[0], dy = b[1] - a[1];
            const double d = std::hypot(dx, dy);
            if (d <= 0) continue;
            // Distance to the line first, then the mouse must lie between the ends.
            const double lineDist = std::fabs(dy * (x - a[0]) - dx * (y - a[1])) / d;
            if (lineDist >= T) continue;
            const double d1 = std::hypot(x - a[0], y - a[1]), d2 = std::hypot(x - b[0], y - b[1]);
            if (d1 + d2 > d + std::sqrt(T * T + T * T)) continue;
            // The 3D point at the ratio of the projected distance from the start.
            const double along = std::clamp(((x - a[0]) * dx + (y - a[1]) * dy) / (d * d), 0.0, 1.0);
            for (int k = 0; k < 3; ++k)
                m_insertPoint[size_t(k)] =
                    xyz[size_t(3 * i + k)] + along * (xyz[size_t(3 * j + k)] - xyz[size_t(3 * i + k)]);
            m_insertAfter = i;
            m_insertAvailable = true;
            break;
        }
    }
    m_host.SetMousePointer(m_insertAvailable ? QStringLiteral("Cross hair") : QStringLiteral("Pointer"));
}

bool TrackTools::confirmLosingUndo() {
    ActionUndoRedo_Stack& stack = m_host.UndoStack();
    if (stack.UBound() > 0) {
        if (dialogs().msgBox(GetLocaleString(361), MsgYesNoCancel) != vbYes) return false;
    }
    stack.Reset();
    return true;
}

void TrackTools::InsertTrackPt() {
    const int track = currentTrack();
    if (track == 0 || !m_insertAvailable) return;
    if (!confirmLosingUndo()) return;
    std::vector<double> xyz = trackPoints(track);
    const int n = static_cast<int>(xyz.size() / 3);
    // The closing segment of a cyclic track puts the new point at the end.
    const size_t at = m_insertAfter == n - 1 ? xyz.size() : size_t(3 * (m_insertAfter + 1));
    xyz.insert(xyz.begin() + std::ptrdiff_t(at), m_insertPoint.begin(), m_insertPoint.end());
    ZELMAR_track_set_number_of_points(track, n + 1);
    ZELMAR_track_set_points_buffer(track, xyz.data());
    Sel().SelTrackPts.resize(1);
    m_insertAvailable = false;
    UpdateTrackCenter();
    if (frmPicWins* v = m_host.Views()) v->UpdateCameras();
}

void TrackTools::DeleteTrackPt(int track, int index) {
    const int n = ZELMAR_track_get_number_of_points(track);
    if (index < 0 || index >= n) return;
    for (int i = index; i + 1 < n; ++i) {
        double p[3];
        ZELMAR_track_get_point(track, i + 1, p);
        ZELMAR_track_set_point(track, i, p);
    }
    ZELMAR_track_set_number_of_points(track, n - 1);
}

void TrackTools::cmdTrkPtDelete_Click() {
    const int track = currentTrack();
    SelectionState& s = Sel();
    if (track == 0 || s.SelTrackPtsCount() == 0) return;
    if (!confirmLosingUndo()) return;
    // Highest first, so that each deletion leaves the remaining indices valid.
    std::vector<int> order(s.SelTrackPts.begin() + 1, s.SelTrackPts.end());
    std::sort(order.rbegin(), order.rend());
    order.erase(std::unique(order.begin(), order.end()), order.end());
    for (int i : order) DeleteTrackPt(track, i);
    s.SelTrackPts.resize(1);
    UpdateTrackCenter();
    if (frmPicWins* v = m_host.Views()) v->UpdateCameras();
}

} // namespace vexil
