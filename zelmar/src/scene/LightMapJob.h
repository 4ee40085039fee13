// The pieces of a light-map bake: what is read from the world before the work spreads
// (Bake, Job), the texels computed on any thread from those alone (Result), and putting a
// result on its polygon on the calling thread.
#pragma once
#include "rays/OcclusionScene.h"
#include "scene/LightMap.h"
#include "scene/Vec.h"
#include <unordered_map>

namespace zelmar::lightmap {

struct LightSnap {
    V3 location;
    V3 toLight; // directional lights: towards the light, unit (zero for a zero direction)
    bool directional = false;
    double color[3] = {0, 0, 0}; // 0..1
    double ambient = 0, diffuse = 0;
    double reach = 0;   // > 0 with a decay bit: the distance at which the light is gone
    bool square = false; // decay (1 - d / reach)^2 instead of linear
    bool shadows = false;
};

// Everything the texels of every polygon depend on, fixed for the whole bake.
struct Bake {
    LightMapParams params;
    std::vector<LightSnap> lights;
    const rays::OcclusionScene* occluders = nullptr; // null: no light casts shadows
    bool targeted = false; // some light lights one group's subtree only
    bool record = false;
};

// One polygon's frame in its plane and its texel grid.
struct Job {
    Handle polygon = 0;
    bool valid = false; // a live polygon with area
    bool twoSided = false;
    V3 n, origin, u, v;
    double s0 = 0, s1 = 0, t0 = 0, t1 = 0;
    int width = 0, height = 0;
    double offset = 0;           // shadow rays start this far off the surface
    std::vector<uint32_t> lights; // indices into Bake::lights that reach this polygon, when Bake::targeted
};

struct Result {
    std::vector<uint8_t> rgba;
    uint64_t rays = 0;
    std::vector<rays::ShadowRay> recorded;
};

Bake makeBake(const LightMapParams& params, bool record);
// Reads the polygon; safe on several threads at once while nothing changes the world.
void prepare(const Bake& bake, const Polygon& p, Job& job);
// Pure: reads bake and job only.
void compute(const Bake& bake, const Job& job, Result& out);

// How many polygons use each bitmap (as bitmap or second bitmap), so that replacing a light
// map can tell whether the old one is still used elsewhere without a walk over the world.
// Counted by one walk, then kept up to date by the bakes and kept across them while
// nothing else changes the world.
class BitmapUses {
  public:
    // The counts, walking the world only if it changed since the last bake ended.
    static BitmapUses& forBake();
    // The world as it is now is what the counts describe (called at the end of a bake).
    static void stillValid();
    bool usedElsewhere(Handle bitmap, const Polygon& p) const;
    void replaced(Handle old, Handle now, const Polygon& p);

  private:
    void count();
    std::unordered_map<Handle, int> uses_;
    uint64_t generation_ = UINT64_MAX;
};

// Puts the light map on the polygon and answers its handle. The polygon's own earlier light
// map, if nothing else uses it, joins `doomed`, to be destroyed with the others at the end.
Handle apply(Polygon& p, const Job& job, Result&& r, BitmapUses& uses, std::vector<Bitmap*>& doomed);

} // namespace zelmar::lightmap
