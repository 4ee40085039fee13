// The random-edit undo property of the materials: seeded sequences of fills, filters, flags, diminutions,
// transparent colours, planar maps and coordinate gestures; undoing them all gives back the saved world byte
// for byte, and redoing them all gives the edited one.
#include "MaterialsTestSupport.h"
#include "RandomMaterialsEdit.h"

#include <QFile>
#include <map>

using namespace vexil;
using namespace vexil::test;

namespace {

class RandomMaterialsUndo : public MaterialsTest {
  protected:
    void SetUp() override {
        MaterialsTest::SetUp();
        const int house = makeGroup("House", root);
        addBox(makeGroup("Walls", house), {0, 0, 0}, 10);
        addBox(makeGroup("Roof", house), {0, 0, 8}, 6);
        addBox(makeGroup("Fence", root), {20, 0, 0}, 3);
        const int brick = ZELMAR_bitmap_load(writeBitmap(file("brick.bmp"), 8, 8, checker).c_str(), -1);
        const int grass = ZELMAR_bitmap_load(writeBitmap(file("grass.png"), 8, 8, stripes).c_str(), -1);
        ASSERT_TRUE(brick && grass);
        const int anim = ZELMAR_animation_create("Flag");
        ZELMAR_animation_add_bitmap(anim, 1, brick);
        ZELMAR_animation_add_bitmap(anim, 3, grass);
        ZELMAR_animation_set_save_flag(anim, 1);
    }
    QByteArray saved(const char* name) {
        const QString path = dir.path() + QStringLiteral("/") + QString::fromLatin1(name) + QStringLiteral(".zelmar");
        EXPECT_EQ(ZELMAR_engine_save(path.toLocal8Bit().constData(), root, 0x1201), 1) << ZELMAR_engine_get_last_error();
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        return f.readAll();
    }
};

TEST_F(RandomMaterialsUndo, UndoAllAndRedoAllGiveByteIdenticalWorlds) {
    for (unsigned seed : {1u, 7u, 2024u, 90210u}) {
        SCOPED_TRACE(seed);
        const QByteArray before = saved("before");
        std::mt19937 rng(seed);
        int steps = 0;
        std::map<std::string, int> kinds;
        for (int i = 0; i < 80; ++i) {
            const std::string what = ApplyRandomMaterialsEdit(rng);
            if (what.empty()) continue;
            ++kinds[what];
            ++steps;
        }
        EXPECT_GE(kinds.size(), 8u); // the sequence reached most kinds of edit
        ASSERT_EQ(pushes(), steps);
        const QByteArray after = saved("after");
        EXPECT_NE(after, before);
        for (int i = 0; i < steps; ++i) ASSERT_TRUE(undo()) << i;
        EXPECT_FALSE(undo());
        EXPECT_TRUE(saved("undone") == before);
        for (int i = 0; i < steps; ++i) ASSERT_TRUE(redo()) << i;
        EXPECT_TRUE(saved("redone") == after);
        for (int i = 0; i < steps; ++i) ASSERT_TRUE(undo());
        host.stack->Reset();
    }
}

} // namespace
