// The marker groups of one kind of entity that has no geometry of its own (lights, scene cameras). Each
// entity is drawn and picked through a small fatherless group of real polygons; this keeps the records
// (entity, marker), 1-based as the design has them, and the pieces every kind needs: building marker
// polygons, hiding, and the two scales (by the world size at creation, constant on screen at each paint).
// LightGrp (src/lighting) holds one; CameraGrp holds one the same way.
//
//   MarkerGroup markers;
//   const int g = MarkerGroup::NewMarker("LightGrp");
//   MarkerGroup::AddFace(g, "LightGrp_Face", corners, 3, normal, yellow);
//   markers.Add(light, g);
#pragma once
#include <array>
#include <unordered_map>
#include <vector>

namespace vexil {

class MarkerGroup {
  public:
    using Vec = std::array<double, 3>;
    struct Rgb {
        int r = 0, g = 0, b = 0;
    };

    // ---- records -----------------------------------------------------------------------------------
    // A new record at the end (an entity already recorded gets its marker replaced).
    void Add(int entity, int group);
    // Deletes the entity's marker (its polygons and points) and drops the record; later records shift
    // down one. An unknown entity: nothing.
    void Remove(int entity);
    // Deletes every marker and empties the records.
    void RemoveAll();
    // Forgets every record without touching the engine (after the engine was emptied).
    void Forget();
    // The record's marker becomes `group` (the old one is not deleted).
    void SetGroup(int entity, int group);
    // 1 to Count(), -1 when absent.
    int IndexOf(int entity) const;
    int Count() const { return static_cast<int>(m_records.size()); }
    int EntityAt(int i) const;  // from 1; 0 outside
    int GroupAt(int i) const;   // from 1; 0 outside
    int EntityOf(int group) const;  // 0 when the group is no marker of this kind
    int GroupOf(int entity) const;  // 0 when unknown

    // ---- the marker in the engine ------------------------------------------------------------------
    // Hidden: the marker disabled. Unknown entity: nothing.
    void HideUnhide(int entity, bool hide);
    bool IsHidden(int entity) const;

    // A new fatherless group with that name.
    static int NewMarker(const char* name);
    // One polygon of a marker: the corners in order, each point with the face's normal and colour; the
    // polygon gets the plain fill colour, is added to the engine and given to the group. Answers it.
    static int AddFace(int group, const char* name, const Vec* corners, int count, const Vec& normal, Rgb colour);
    // The scale of a new marker: a model of about 100 units becomes worldSize * 0.1 / 320.4 times as large.
    static void ScaleToWorld(int group, double worldSize);
    // Keeps a marker at `at` a constant size on the screen of the current camera: the view's extent at
    // that distance (tangent of half the zoom) / (51 - relativeSize) * 0.8 becomes the marker's size
    // along its own third axis. Nothing for a marker without size or a camera at the marker.
    static void ScaleForView(int group, const Vec& at, double relativeSize);

  private:
    struct Record {
        int entity = 0, group = 0;
    };
    void reindex();
    std::vector<Record> m_records;
    std::unordered_map<int, int> m_byEntity, m_byGroup; // handle -> index from 0
};

} // namespace vexil
