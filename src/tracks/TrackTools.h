// Tracks: circular creation, custom laying by clicks, drawing over the viewports, the track centre, and the
// insertion and deletion of track points. A track is an engine entity, an ordered list of points that
// cameras and groups can travel along; the editor only makes and edits it.
#pragma once
#include <array>
#include <vector>

class QPainter;

namespace vexil {

class TracksHost;

class TrackTools {
  public:
    explicit TrackTools(TracksHost& host);

    // ---- creation ----------------------------------------------------------------------------------
    // A cyclic circle of n points about the origin, radius world size / 10, named "Track" + first free
    // number, saved with the world, made current, one ActionCreate. Answers the track (0 for n < 1).
    int CreateCircularTrack(int n);
    // Custom laying: the flag the mouse dispatch reads, set by Create > Track > Custom.
    void StartCustomTrack();
    bool LayingCustomTrack() const { return m_laying; }
    // A click while laying: the left button adds the point under the mouse (the grid plane of the view
    // when the click hits no polygon); the right button finishes (asks whether the track is cyclic).
    void CreateCustomTrack(int button, int x, int y);
    void ResetCustomTrk();
    const std::vector<double>& CustomTrackPoints() const { return m_custom; }

    // ---- drawing -----------------------------------------------------------------------------------
    // The current track: white segments, blue 2-pixel boxes, closed when cyclic.
    void DrawTrack(QPainter& p);
    // The track being laid: white segments, red boxes.
    void DrawCustomTrk(QPainter& p);
    // The centre of a track's box of points (not their mean).
    static std::array<double, 3> TrackCenter(int track);
    void UpdateTrackCenter();
    const std::array<double, 3>& Center() const { return m_center; }

    // ---- points ----------------------------------------------------------------------------------
    // Insert mode: a mouse move finds the segment of the current track under the mouse (2 pixels).
    void MonitorInsertTrackPoint(int x, int y);
    bool InsertPointAvailable() const { return m_insertAvailable; }
    // A click with an insert point available: asks to clear the undo history, then inserts.
    void InsertTrackPt();
    // The Delete button of the point panel: the selected points, after the same question.
    void cmdTrkPtDelete_Click();
    static void DeleteTrackPt(int track, int index);

  private:
    // "This action cannot be undone..." answered Yes (or nothing to lose); the history is cleared.
    bool confirmLosingUndo();
    void finishCustomTrack();
    int currentTrack() const;

    TracksHost& m_host;
    bool m_laying = false;
    std::vector<double> m_custom; // three doubles a point
    std::array<double, 3> m_center{0, 0, 0};
    bool m_insertAvailable = false;
    int m_insertAfter = 0; // the segment's first point
    std::array<double, 3> m_insertPoint{0, 0, 0};
};

} // namespace vexil
