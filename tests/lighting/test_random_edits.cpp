// Seeded sequences of random lighting edits on the sample world: undo all gives back the saved world of
// the start byte for byte (and the fog, which worlds do not keep), redo all the saved world of the end.
#include "LightTestSupport.h"
#include "RandomLightingEdit.h"
#include "lighting/ActionChngFog.h"

#include <QFile>

using namespace vexil;
using namespace vexil::test;

namespace {

class RandomLightingEdits : public LightForm {
  protected:
    QByteArray saved() {
        const QString path = tempPath(QStringLiteral("random.wld"));
        form->Document()->ZelmarEngineSave(path, root, form->Document()->SaveFlags);
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

TEST_F(RandomLightingEdits, UndoAllAndRedoAllGiveTheSameSavedWorlds) {
    int changed = 0;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        stack().Reset();
        const QByteArray start = saved();
        const FogValues fogStart = ReadFog();
        std::mt19937 rng(seed);
        std::string done;
        for (int i = 0; i < 8; ++i)
            done += ApplyRandomLightingEdit(*form, rng) + "; ";
        const QByteArray end = saved();
        const FogValues fogEnd = ReadFog();
        changed += end != start;
        int undone = 0;
        while (mnuUndo_Click(stack(), *form))
            ++undone;
        EXPECT_EQ(saved(), start) << "seed " << seed << ": " << done;
        EXPECT_EQ(ReadFog(), fogStart) << "seed " << seed;
        for (int i = 0; i < undone; ++i)
            mnuRedo_Click(stack(), *form);
        EXPECT_EQ(saved(), end) << "seed " << seed << ": " << done;
        EXPECT_EQ(ReadFog(), fogEnd) << "seed " << seed;
    }
    EXPECT_GE(changed, 4); // the sequences did change the world
}

TEST_F(RandomLightingEdits, TurnsUndoToTheLastBits) {
    std::mt19937 rng(11);
    for (int i = 0; i < 3; ++i)
        ApplyRandomLightingEdit(*form, rng); // some lights to turn
    form->mnuDirectional->trigger();
    stack().Reset();
    std::vector<std::pair<int, V3>> before;
    for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
        before.emplace_back(l, lightDirection(l));
    for (int i = 0; i < 10; ++i)
        ApplyRandomLightingEdit(*form, rng, true);
    while (mnuUndo_Click(stack(), *form)) {
    }
    for (const auto& [l, d] : before)
        for (size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(lightDirection(l)[k], d[k], 1e-12);
}

} // namespace
