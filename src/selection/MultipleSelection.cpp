#include "MultipleSelection.h"

#include <QPainter>
#include <algorithm>
#include <zelmar/zelmar.h>

namespace vexil {

void MultipleSelection::AddGrpHandles(int handle) {
    if (!m_grpSet.insert(handle).second) return;
    m_grps.push_back(handle);
    ++GrpCount;
    m_boxes.emplace_back();
    m_boxes.back().Initialize(handle);
    recount();
}

void MultipleSelection::AddLightHandles(int handle) {
    if (!m_lightSet.insert(handle).second) return;
    m_lights.push_back(handle);
    ++LightCount;
    recount();
}

void MultipleSelection::AddCamHandles(int handle) {
    if (!m_camSet.insert(handle).second) return;
    m_cams.push_back(handle);
    ++CamCount;
    recount();
}

void MultipleSelection::AddTrackHandles(int handle) {
    if (!m_trackSet.insert(handle).second) return;
    m_tracks.push_back(handle);
    ++TrackCount;
    recount();
}

bool MultipleSelection::removeFrom(std::vector<int>& v, std::unordered_set<int>& set, int handle) {
    if (set.erase(handle) == 0) return false;
    auto it = std::find(v.begin(), v.end(), handle);
    const auto slot = it - v.begin();
    v.erase(it);
    // The box array follows the engine's answer, not the kind: a group that died meanwhile keeps its box.
    if (ZELMAR_group_is_group(handle) == 1 && slot < static_cast<std::ptrdiff_t>(m_boxes.size()))
        m_boxes.erase(m_boxes.begin() + slot);
    return true;
}

void MultipleSelection::RemoveGrp(int handle) {
    if (removeFrom(m_grps, m_grpSet, handle)) --GrpCount;
    recount();
}

void MultipleSelection::RemoveLight(int handle) {
    if (removeFrom(m_lights, m_lightSet, handle)) --LightCount;
    recount();
}

void MultipleSelection::RemoveCam(int handle) {
    if (removeFrom(m_cams, m_camSet, handle)) --CamCount;
    recount();
}

void MultipleSelection::RemoveTrack(int handle) {
    if (removeFrom(m_tracks, m_trackSet, handle)) --TrackCount;
    recount();
}

void MultipleSelection::Reset() {
    GrpCount = CamCount = LightCount = TrackCount = TotalCount = 0;
    m_grps.clear();
    m_lights.clear();
    m_cams.clear();
    m_tracks.clear();
    m_grpSet.clear();
    m_lightSet.clear();
    m_camSet.clear();
    m_trackSet.clear();
    m_boxes.clear();
}

void MultipleSelection::DrawGrpBndBoxes(QPainter& p) const {
    for (const BoundingBox& b : m_boxes)
        b.Draw(p);
}

void MultipleSelection::InitializeBndBoxes() {
    for (size_t i = 0; i < m_boxes.size() && i < m_grps.size(); ++i)
        m_boxes[i].Initialize(m_grps[i]);
}

void MultipleSelection::DrawGrpsWires(QPainter& p, const QPen& pen) {
    for (int g : m_grps)
        m_wire.Draw(p, g, pen);
}

void MultipleSelection::CopyFrom(const MultipleSelection& source) {
    if (&source == this) return;
    Reset();
    for (int g : source.m_grps)
        AddGrpHandles(g);
    for (int c : source.m_cams)
        AddCamHandles(c);
    for (int l : source.m_lights)
        AddLightHandles(l);
    for (int t : source.m_tracks)
        AddTrackHandles(t);
}

bool MultipleSelection::SameAs(const MultipleSelection& o) const {
    return GrpCount == o.GrpCount && CamCount == o.CamCount && LightCount == o.LightCount &&
           TrackCount == o.TrackCount && m_grps == o.m_grps && m_cams == o.m_cams && m_lights == o.m_lights &&
           m_tracks == o.m_tracks;
}

} // namespace vexil
