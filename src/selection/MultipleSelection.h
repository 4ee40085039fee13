// A set of selected entities: groups, cameras, lights and tracks, each kind in the order the entities were
// added, and one box per group kept in step with the group array. MultiSel and PrevMultiSel are two of
// them; actions keep private copies. A hash set beside each array answers membership in constant time.
#pragma once
#include "view/Overlays.h"

#include <unordered_set>
#include <vector>

class QPainter;
class QPen;

namespace vexil {

class MultipleSelection {
  public:
    int GrpCount = 0;
    int CamCount = 0;
    int LightCount = 0;
    int TrackCount = 0;
    int TotalCount = 0;

    // No-op when present; else appended. A group also gets a box initialised from it.
    void AddGrpHandles(int handle);
    void AddLightHandles(int handle);
    void AddCamHandles(int handle);
    void AddTrackHandles(int handle);
    // Removes the entry and shifts the later ones down. Whenever the handle is a live engine group, the
    // same slot of the box array goes too (for any of the four kinds, as the engine is asked, not the kind).
    void RemoveGrp(int handle);
    void RemoveLight(int handle);
    void RemoveCam(int handle);
    void RemoveTrack(int handle);
    // The i-th handle, from 1; 0 outside.
    int GetGrp(int i) const { return at(m_grps, i); }
    int GetLight(int i) const { return at(m_lights, i); }
    int GetCam(int i) const { return at(m_cams, i); }
    int GetTrack(int i) const { return at(m_tracks, i); }
    bool HasGrp(int h) const { return m_grpSet.count(h) != 0; }
    bool HasLight(int h) const { return m_lightSet.count(h) != 0; }
    bool HasCam(int h) const { return m_camSet.count(h) != 0; }
    bool HasTrack(int h) const { return m_trackSet.count(h) != 0; }
    const std::vector<int>& Groups() const { return m_grps; }
    const std::vector<int>& Lights() const { return m_lights; }
    const std::vector<int>& Cams() const { return m_cams; }
    const std::vector<int>& Tracks() const { return m_tracks; }
    int BoxCount() const { return static_cast<int>(m_boxes.size()); }
    const BoundingBox& Box(int i) const { return m_boxes[static_cast<size_t>(i - 1)]; }

    void Reset();
    void DrawGrpBndBoxes(QPainter& p) const;
    // Re-reads each box from its group, after groups moved.
    void InitializeBndBoxes();
    void DrawGrpsWires(QPainter& p, const QPen& pen);

    // The shared copy: reset this set, then add the groups, cameras, lights and tracks of the source.
    void CopyFrom(const MultipleSelection& source);
    // Equal counts of each kind and equal handles at equal positions (order matters).
    bool SameAs(const MultipleSelection& other) const;

  private:
    static int at(const std::vector<int>& v, int i) {
        return i >= 1 && i <= static_cast<int>(v.size()) ? v[static_cast<size_t>(i - 1)] : 0;
    }
    bool removeFrom(std::vector<int>& v, std::unordered_set<int>& set, int handle);
    void recount() { TotalCount = GrpCount + CamCount + LightCount + TrackCount; }

    std::vector<int> m_grps, m_lights, m_cams, m_tracks;
    std::unordered_set<int> m_grpSet, m_lightSet, m_camSet, m_trackSet;
    std::vector<BoundingBox> m_boxes;
    Wireframe m_wire;
};

} // namespace vexil
