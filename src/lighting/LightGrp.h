// LightGrp: the marker of every light. An engine light has no geometry; its marker is a fatherless group of
// eight yellow polygons named "LightGrp" (a double pyramid for an omnidirectional light, an arrow along the
// direction for a directional one) that the viewports draw and the mouse picks. Every change of a light's
// place goes through here so that light and marker never drift apart: the marker's location is the
// light's location and its own x axis is the light's direction.
#pragma once
#include "selection/MarkerGroup.h"

#include <array>
#include <functional>

namespace vexil {

class LightGrp {
  public:
    using Vec = std::array<double, 3>;
    static constexpr const char* MarkerName = "LightGrp";
    static constexpr const char* FaceName = "LightGrp_Face";

    // The world size that scales a new marker (GetWorldSize of the open world).
    std::function<double()> WorldSize = [] { return 1000.0; };

    // kind 0 omnidirectional, 1 directional: builds the marker, aligns it with the light and scales it.
    void Add(int light, int kind);
    void Remove(int light);
    void RemoveAll();
    // Forgets the records without touching the engine (the engine was emptied under them).
    void Forget() { m_markers.Forget(); }
    // A hidden light is a disabled marker.
    void HideUnhide(int light, bool hide);
    bool IsHidden(int light) const { return m_markers.IsHidden(light); }
    int GetLightHandle(int group) const { return m_markers.EntityOf(group); }
    int GetLightGrp(int light) const { return m_markers.GroupOf(light); }
    int GetLight_UsingIndex(int i) const { return m_markers.EntityAt(i); }
    int GetLightGrp_UsingIndex(int i) const { return m_markers.GroupAt(i); }
    int TotalLightGrps() const { return m_markers.Count(); }

    void SetLocation(int light, const Vec& location);
    // The engine normalises the direction and refuses (0, 0, 0); the marker follows what it kept.
    void SetDirection(int light, const Vec& direction);
    void Move(int light, const Vec& offset);
    // Turns the marker by degrees about x, then y, then z, about its own location or about `pivot`; the
    // light takes the marker's new direction (and location).
    void Rotate(int light, const Vec& degrees, const Vec* pivot = nullptr);
    // Scales the marker only: a light has no size.
    void ScaleGrp(int light, double factor);
    void SwitchToDirectional(int light);
    void SwitchToOmni(int light);

    // ScaleSceneLight for every marker, in the view whose camera is current.
    void ScaleSceneLights(double relativeSize);

    // The model markers, before alignment and scale: centred on the origin, the arrow along +x.
    static int BuildOmniMarker();
    static int BuildDirectionalMarker();

  private:
    int index(int light) const { return m_markers.IndexOf(light); }
    void align(int light);
    int build(int kind) const;
    void switchTo(int light, int kind);
    MarkerGroup m_markers;
};

} // namespace vexil
