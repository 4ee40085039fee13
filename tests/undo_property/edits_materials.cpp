// The edits of the materials for the undo property test: fills of bitmaps, animations and colours, blending
// filters, rotated flags, light diminution, transparent colours, planar maps and texture-coordinate gestures,
// chosen and run by the materials' own random edit (tests/materials).
#include "UndoPropertyFixture.h"

#include "RandomMaterialsEdit.h"
#include "materials/MaterialsActions.h"
#include "materials/MaterialsHost.h"

#include <QImage>

namespace vexil::test {
namespace {

// Installed for the life of one world; the materials go back to their do-nothing host with it.
class FixtureMaterialsHost : public MaterialsHost {
  public:
    explicit FixtureMaterialsHost(UndoPropertyFixture& f) : m_f(f) { setMaterialsHost(this); }
    ~FixtureMaterialsHost() override { setMaterialsHost(nullptr); }
    ActionUndoRedo_Stack* UndoStack() override { return m_f.host.stack.get(); }

  private:
    UndoPropertyFixture& m_f;
};

// Two bitmaps read from files (transparent colours reload them) and an animation of both, before the run
// starts, so that they belong to the world undo must give back.
int loadBitmap(UndoPropertyFixture& f, const char* name, QRgb a, QRgb b) {
    QImage img(8, 8, QImage::Format_RGB32);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            img.setPixel(x, y, (x + y) % 2 ? a : b);
    const QString path = f.m_dir.path() + QStringLiteral("/") + QString::fromLatin1(name);
    EXPECT_TRUE(img.save(path));
    const int bitmap = ZELMAR_bitmap_load(path.toLocal8Bit().constData(), -1);
    EXPECT_NE(bitmap, 0) << ZELMAR_engine_get_last_error();
    return bitmap;
}

VEXIL_UNDO_WORLD_SETUP([](UndoPropertyFixture& f) {
    f.SetExtra("materials", std::make_shared<FixtureMaterialsHost>(f));
    RegisterMaterialsActions();
    const int brick = loadBitmap(f, "brick.bmp", qRgb(180, 60, 40), qRgb(90, 30, 20));
    const int grass = loadBitmap(f, "grass.png", qRgb(40, 160, 40), qRgb(20, 90, 20));
    const int flag = ZELMAR_animation_create("Flag");
    ZELMAR_animation_add_bitmap(flag, 1, brick);
    ZELMAR_animation_add_bitmap(flag, 3, grass);
    ZELMAR_animation_set_save_flag(flag, 1);
});

VEXIL_UNDO_EDIT(Materials, [](EditContext& c) {
    const int before = c.fixture.Changes();
    ApplyRandomMaterialsEdit(c.rng);
    return c.fixture.Changes() != before;
}, 4);

} // namespace
} // namespace vexil::test
