// Every stored value survives save and load in every format, bit for bit, and a second save
// of the loaded world gives the same bytes.
#include "WorldGen.h"
#include "io/BinaryFormat.h"
#include "io/SaveFlags.h"
#include "io/TextFormat.h"
#include "io/WorldFile.h"

#include <cstring>
#include <filesystem>

using namespace zelmar;
using namespace zelmar::io;
using iotest::TempDir;

namespace {

constexpr int kWorldFlags = 0x1203;
const char* const kExtensions[] = {".wld", ".zelmar", ".tolvane", ".3dzelmar"};

bool load(World& w, const std::string& path, std::string* warning = nullptr) {
    LoadOutcome out;
    std::string error;
    const bool ok = loadWorld(w, path, "", true, out, error);
    EXPECT_TRUE(ok) << error;
    if (warning) *warning = out.warning;
    return ok;
}

TEST(WorldRoundTrip, RandomWorldsInEveryFormat) {
    for (uint64_t seed = 1; seed <= 12; ++seed) {
        for (const char* ext : kExtensions) {
            SCOPED_TRACE(std::string("seed ") + std::to_string(seed) + " format " + ext);
            TempDir dir;
            World a;
            Group* root = iotest::makeRandomWorld(a, seed);
            std::string error;
            const std::string first = dir / (std::string("first") + ext);
            ASSERT_TRUE(saveWorld(a, first, root, kWorldFlags, error)) << error;

            World b;
            std::string warning;
            ASSERT_TRUE(load(b, first, &warning));
            EXPECT_EQ(warning, "");
            EXPECT_TRUE(iotest::sameWorlds(a, b));

            const std::string second = dir / (std::string("second") + ext);
            ASSERT_TRUE(saveWorld(b, second, b.groupByName("the_world"), kWorldFlags, error)) << error;
            EXPECT_EQ(iotest::fileBytes(first), iotest::fileBytes(second));
        }
    }
}

TEST(WorldRoundTrip, FormatsAgreeWithEachOther) {
    // A world read from any format and written as text gives the text of the original.
    TempDir dir;
    World a;
    Group* root = iotest::makeRandomWorld(a, 99);
    std::string error;
    ASSERT_TRUE(saveWorld(a, dir / "direct.wld", root, kWorldFlags, error)) << error;
    const auto direct = iotest::fileBytes(dir / "direct.wld");
    for (const char* ext : {".zelmar", ".tolvane", ".3dzelmar"}) {
        const std::string via = dir / (std::string("via") + ext);
        ASSERT_TRUE(saveWorld(a, via, root, kWorldFlags, error)) << error;
        World b;
        ASSERT_TRUE(load(b, via));
        ASSERT_TRUE(saveWorld(b, dir / "again.wld", b.groupByName("the_world"), kWorldFlags, error)) << error;
        EXPECT_EQ(iotest::fileBytes(dir / "again.wld"), direct) << ext;
    }
}

TEST(WorldRoundTrip, ExtremeDoublesSurviveText) {
    // Shortest round-trip text for the awkward cases: signed zero, subnormals, extremes.
    TempDir dir;
    World a;
    Group* root = a.createGroup("the_world");
    const double values[] = {-0.0,
                             0.0,
                             5e-324,
                             -5e-324,
                             2.2250738585072014e-308,
                             1.7976931348623157e308,
                             -1.7976931348623157e308,
                             0.1,
                             1.0 / 3.0,
                             9007199254740993.0,
                             1e-300};
    Polygon* p = a.createPolygon();
    for (size_t i = 0; i + 2 < std::size(values); ++i) {
        PointData d;
        d.xyz[0] = values[i], d.xyz[1] = values[i + 1], d.xyz[2] = values[i + 2];
        d.normal[0] = values[i];
        a.addPoint(*p, d);
    }
    a.setPolygonGroup(*p, root);
    std::string error;
    ASSERT_TRUE(saveWorld(a, dir / "x.wld", root, kWorldFlags, error)) << error;
    World b;
    ASSERT_TRUE(load(b, dir / "x.wld"));
    const Polygon* q = b.groupByName("the_world")->firstPolygon;
    ASSERT_NE(q, nullptr);
    ASSERT_EQ(q->points.size(), p->points.size());
    for (size_t i = 0; i < p->points.size(); ++i) {
        EXPECT_EQ(std::memcmp(p->points[i].xyz, q->points[i].xyz, sizeof p->points[i].xyz), 0) << i;
        EXPECT_EQ(std::memcmp(&p->points[i].normal, &q->points[i].normal, sizeof p->points[i].normal), 0)
            << i;
    }
    EXPECT_TRUE(std::signbit(q->points[0].xyz[0]));
}

TEST(WorldRoundTrip, NonFiniteValuesAreRefusedAtSave) {
    TempDir dir;
    World a;
    Group* root = a.createGroup("the_world");
    Polygon* p = a.createPolygon();
    PointData d;
    d.xyz[1] = std::numeric_limits<double>::quiet_NaN();
    a.addPoint(*p, d);
    a.setPolygonGroup(*p, root);
    for (const char* ext : kExtensions) {
        std::string error;
        EXPECT_FALSE(saveWorld(a, dir / (std::string("nan") + ext), root, kWorldFlags, error)) << ext;
        EXPECT_NE(error.find("not finite"), std::string::npos) << error;
    }
    Camera* c = a.createCamera("cam");
    c->saveFlag = 1;
    c->zoom = std::numeric_limits<double>::infinity();
    std::string error;
    p->points[0].xyz[1] = 0;
    EXPECT_FALSE(saveWorld(a, dir / "inf.zelmar", root, kWorldFlags, error));
    EXPECT_NE(error.find("zoom"), std::string::npos) << error;
}

// The flag words: what each bit brings along.
struct FlagWorld {
    World w;
    Group* root = w.createGroup("the_world");
    Group* child = w.createGroup("chair");
    Group* outside = w.createGroup("LightGrp"); // a marker: fatherless, never saved with the root
    Light* lamp = w.createLight("lamp");
    Light* sun = w.createLight("sun");
    Camera* cam = w.createCamera("scene cam");
    Camera* viewport = w.createCamera("camera0");
    Track* track = w.createTrack("path");
    Animation* flagged = w.createAnimation("fire");
    FlagWorld() {
        w.setFather(*child, root);
        lamp->saveFlag = sun->saveFlag = cam->saveFlag = track->saveFlag = flagged->saveFlag = 1;
        lamp->entityToLight = child->handle;
        child->disabled = true;
    }
};

TEST(SaveFlags, WorldWordSavesFlaggedEntitiesAndKeepsHiddenGroupsHidden) {
    TempDir dir;
    FlagWorld f;
    std::string error;
    ASSERT_TRUE(saveWorld(f.w, dir / "w.wld", f.root, 0x1203, error)) << error;
    World b;
    ASSERT_TRUE(load(b, dir / "w.wld"));
    EXPECT_EQ(b.groupCount(), 2u);
    EXPECT_EQ(b.groupByName("LightGrp"), nullptr);
    ASSERT_NE(b.groupByName("chair"), nullptr);
    EXPECT_TRUE(b.groupByName("chair")->disabled);
    EXPECT_EQ(b.list<Light>().size(), 2u);
    ASSERT_EQ(b.list<Camera>().size(), 1u); // the viewport camera has no save flag
    EXPECT_EQ(b.list<Camera>()[0]->name, "scene cam");
    EXPECT_EQ(b.list<Track>().size(), 1u);
    EXPECT_EQ(b.list<Animation>().size(), 1u);
    EXPECT_EQ(b.list<Light>()[0]->entityToLight, b.groupByName("chair")->handle);
}

TEST(SaveFlags, ModelWordSavesTheGroupWithItsOwnLightsOnly) {
    TempDir dir;
    FlagWorld f;
    std::string error;
    ASSERT_TRUE(saveWorld(f.w, dir / "chair.tolvane", f.child, 0x243, error)) << error;
    World b;
    ASSERT_TRUE(load(b, dir / "chair.tolvane"));
    EXPECT_EQ(b.groupCount(), 1u);
    EXPECT_NE(b.groupByName("chair"), nullptr);
    EXPECT_EQ(b.groupByName("chair")->father, nullptr);
    ASSERT_EQ(b.list<Light>().size(), 1u);
    EXPECT_EQ(b.list<Light>()[0]->name, "lamp");
    EXPECT_TRUE(b.list<Camera>().empty());
    EXPECT_TRUE(b.list<Track>().empty());
    EXPECT_EQ(b.list<Animation>().size(), 1u);
}

TEST(SaveFlags, UnknownBitsAndMissingGroupAreErrors) {
    TempDir dir;
    FlagWorld f;
    std::string error;
    EXPECT_FALSE(saveWorld(f.w, dir / "x.wld", f.root, 0x1203 | 0x8, error));
    EXPECT_NE(error.find("0x8"), std::string::npos) << error;
    EXPECT_FALSE(saveWorld(f.w, dir / "x.wld", nullptr, kSaveGroups, error));
    EXPECT_FALSE(saveWorld(f.w, dir / "x.txt", f.root, 0x1203, error));
    EXPECT_NE(error.find("extension"), std::string::npos) << error;
    EXPECT_FALSE(std::filesystem::exists(dir / "x.wld"));
}

TEST(SaveFlags, PolygonsSharingALookShareOneStyle) {
    World a;
    Group* root = a.createGroup("the_world");
    for (int i = 0; i < 50; ++i) {
        Polygon* p = a.createPolygon();
        a.addPoint(*p, PointData{});
        p->fill.color[0] = i % 2;
        a.setPolygonGroup(*p, root);
    }
    SaveSet s;
    std::string error;
    ASSERT_TRUE(collectSaveSet(a, root, 0x1203, s, error));
    EXPECT_EQ(s.styles.size(), 2u);
    EXPECT_EQ(s.polygons.size(), 50u);
}

} // namespace
