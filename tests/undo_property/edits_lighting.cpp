// The edits of lights for the undo property test: create, delete, hide and move lights through their
// markers, by the same calls as the Light menu, the Delete key, the View menu and the gizmo. Turns are left
// out: a turn undone equals the start only to the last bits of the direction (docs/lighting.md).
#include "UndoPropertyFixture.h"

#include "gizmo/TypedTransform.h"
#include "lighting/LightController.h"

namespace vexil::test {
namespace {

LightController& lights(EditContext& c) {
    if (auto* l = c.fixture.Extra<LightController>("lights")) return *l;
    return c.fixture.SetExtra("lights", std::make_shared<LightController>(*c.fixture.model));
}

std::vector<int> savedLights(LightController& l) {
    std::vector<int> out;
    for (int h = ZELMAR_light_get_first_light(); h; h = ZELMAR_light_get_next_light(h))
        if (ZELMAR_light_get_save_flag(h) == 1 && l.Markers().GetLightGrp(h) != 0) out.push_back(h);
    return out;
}

int pickLight(EditContext& c) {
    const std::vector<int> all = savedLights(lights(c));
    return all.empty() ? 0 : all[size_t(c.Int(0, int(all.size()) - 1))];
}

VEXIL_UNDO_EDIT(CreateLight, [](EditContext& c) {
    const int before = c.fixture.Changes();
    lights(c).CreateLight(c.Int(0, 1), {double(c.Int(-200, 200)), double(c.Int(-200, 200)), double(c.Int(50, 300))});
    return c.fixture.Changes() != before;
});

VEXIL_UNDO_EDIT(DeleteLight, [](EditContext& c) {
    const int light = pickLight(c);
    if (!light) return false;
    const int before = c.fixture.Changes();
    c.fixture.model->SelectEntityFromTree(4, light);
    c.fixture.model->DeleteSelected();
    return c.fixture.Changes() != before;
});

VEXIL_UNDO_EDIT(HideLight, [](EditContext& c) {
    const int light = pickLight(c);
    if (!light) return false;
    const int before = c.fixture.Changes();
    c.fixture.model->SelectEntityFromTree(4, light);
    if (c.fixture.model->IsLightHidden(light)) c.fixture.model->mnuUnhideCurrent_Click();
    else c.fixture.model->mnuHideSelected_Click();
    return c.fixture.Changes() != before;
});

VEXIL_UNDO_EDIT(MoveLight, [](EditContext& c) {
    const int light = pickLight(c);
    if (!light) return false;
    const int before = c.fixture.Changes();
    c.fixture.model->SelectEntityFromTree(4, light);
    c.fixture.host.mode = SelectMode::Entity;
    TypedTransform t;
    t.values = {double(c.Int(-40, 40)), double(c.Int(-40, 40)), double(c.Int(-40, 40))};
    ApplyTypedTransform(c.fixture.host, SelectMode::Entity, t, *c.fixture.host.stack);
    return c.fixture.Changes() != before;
});

} // namespace
} // namespace vexil::test
