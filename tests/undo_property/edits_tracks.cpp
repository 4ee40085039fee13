// The edits of cameras, tracks and backgrounds for the undo property test: create, delete, hide and move
// scene cameras; circular tracks made and deleted; the same commands the tab and the gizmo run.
#include "UndoPropertyFixture.h"

#include "gizmo/TypedTransform.h"
#include "tracks/TracksController.h"
#include "tracks/TracksHost.h"
#include "tracks/formCreateTrack.h"

namespace vexil::test {
namespace {

class FixtureTracksHost : public TracksHost {
  public:
    explicit FixtureTracksHost(UndoPropertyFixture& f) : m_f(f) {}
    ActionUndoRedo_Stack& UndoStack() override { return *m_f.host.stack; }
    SelectionModel* Selection() override { return m_f.model.get(); }
    frmPicWins* Views() override { return m_f.views; }
    trwCamTrackBK* CamTrackBkTree() override { return m_f.host.camTree; }
    bool WorldOpen() override { return true; }
    int RootGrp() override { return m_f.world.root; }

  private:
    UndoPropertyFixture& m_f;
};

// The host before the controller, so that the controller goes first.
struct TracksBundle {
    explicit TracksBundle(UndoPropertyFixture& f) : host(f), controller(host) {}
    FixtureTracksHost host;
    TracksController controller;
};

TracksController& tracks(EditContext& c) {
    if (auto* b = c.fixture.Extra<TracksBundle>("tracks")) return b->controller;
    return c.fixture.SetExtra("tracks", std::make_shared<TracksBundle>(c.fixture)).controller;
}

// The saved scene cameras (not the views' own).
std::vector<int> sceneCameras() {
    std::vector<int> out;
    for (int cam = ZELMAR_camera_get_first_camera(); cam; cam = ZELMAR_camera_get_next_camera(cam))
        if (ZELMAR_camera_get_save_flag(cam) == 1) out.push_back(cam);
    return out;
}

std::vector<int> liveTracks() {
    std::vector<int> out;
    for (int t = ZELMAR_track_get_first_track(); t; t = ZELMAR_track_get_next(t))
        if (ZELMAR_track_get_save_flag(t) == 1) out.push_back(t);
    return out;
}

int pickOne(EditContext& c, const std::vector<int>& from) {
    return from.empty() ? 0 : from[size_t(c.Int(0, int(from.size()) - 1))];
}

bool pushed(EditContext& c, int before) { return c.fixture.Changes() != before; }

VEXIL_UNDO_EDIT(CreateCamera, [](EditContext& c) {
    const int before = c.fixture.Changes();
    tracks(c).CreateNewCam();
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(DeleteCamera, [](EditContext& c) {
    tracks(c);
    const int cam = pickOne(c, sceneCameras());
    if (!cam) return false;
    const int before = c.fixture.Changes();
    c.fixture.model->SelectEntityFromTree(2, cam);
    c.fixture.model->DeleteSelected();
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(HideCamera, [](EditContext& c) {
    tracks(c);
    const int cam = pickOne(c, sceneCameras());
    if (!cam) return false;
    const int before = c.fixture.Changes();
    c.fixture.model->SelectEntityFromTree(2, cam);
    if (c.fixture.model->IsCamHidden(cam)) c.fixture.model->mnuUnhideCurrent_Click();
    else c.fixture.model->mnuHideSelected_Click();
    return pushed(c, before);
});

// As the gizmo's drag: the move goes through the camera's marker, one ActionMove at release.
VEXIL_UNDO_EDIT(MoveCamera, [](EditContext& c) {
    tracks(c);
    const int cam = pickOne(c, sceneCameras());
    if (!cam) return false;
    const int before = c.fixture.Changes();
    c.fixture.model->SelectEntityFromTree(2, cam);
    c.fixture.host.mode = SelectMode::Entity;
    TypedTransform t;
    t.values = {double(c.Int(-40, 40)), double(c.Int(-40, 40)), double(c.Int(-40, 40))};
    ApplyTypedTransform(c.fixture.host, SelectMode::Entity, t, *c.fixture.host.stack);
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(CreateCircularTrack, [](EditContext& c) {
    const int before = c.fixture.Changes();
    tracks(c).Tracks().CreateCircularTrack(c.Int(3, 12));
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(DeleteTrack, [](EditContext& c) {
    tracks(c);
    const int t = pickOne(c, liveTracks());
    if (!t) return false;
    const int before = c.fixture.Changes();
    c.fixture.model->SelectEntityFromTree(3, t);
    c.fixture.model->DeleteSelected();
    return pushed(c, before);
});

} // namespace
} // namespace vexil::test
