// The engine's scene data: every entity kind the C API hands out handles for.
// Points live inside their polygon (no allocation per point); every other entity is
// an object with a stable address, reached from its handle in O(1) through the
// HandleTable. Geometry is kept in world space.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

namespace zelmar {

using Handle = int32_t;

enum class Kind : uint8_t {
    None,
    Group,
    Polygon,
    Point,
    Camera,
    Light,
    Track,
    Background,
    Bitmap,
    Animation
};

struct Group;
struct Polygon;

// Where a chase rule stands between two steps (not saved): the resolved chased entity and
// track, the position along the track, the physics velocity.
struct Motion {
    bool started = false;          // the first step has set what follows up
    int32_t type = 0;              // chase type the state was set up for
    Handle target = 0;             // chased entity the name last resolved to
    Handle track = 0;              // track the name last resolved to
    int32_t nextPoint = 0;         // groups: the track point travelled to (cameras keep theirs)
    double trackPos[3] = {0, 0, 0}; // where the walk stands on the track, offset included
    double velocity[3] = {0, 0, 0}; // physics, world units per second
};

struct Vec3 {
    double x = 0, y = 0, z = 0;
};

struct PointData {
    Handle handle = 0;
    double xyz[3] = {0, 0, 0};
    double uv[2] = {0, 0};
    double uv2[2] = {0, 0};          // second bitmap (light map) coordinates
    double brightness = 100.0;       // percent
    double rgb[3] = {255, 255, 255}; // per-vertex colour
    double normal[3] = {0, 0, 0};
};

// Where rings get their memory: the world keeps its polygons' rings in blocks it owns; a
// copy of a ring, and the ring of a polygon outside the world, uses the heap. A ring's
// memory always goes back where it came from.
class RingStore {
  public:
    virtual void* takeRing(size_t bytes) = 0;
    virtual void giveRing(void* p, size_t bytes) = 0;

  protected:
    ~RingStore() = default;
};

template <class T> struct RingAllocator {
    using value_type = T;
    using propagate_on_container_copy_assignment = std::false_type;
    using propagate_on_container_move_assignment = std::true_type;
    using propagate_on_container_swap = std::true_type;
    using is_always_equal = std::false_type;
    RingStore* store = nullptr; // nullptr: the heap

    RingAllocator() = default;
    explicit RingAllocator(RingStore* s) : store(s) {}
    template <class U> RingAllocator(const RingAllocator<U>& o) : store(o.store) {}
    RingAllocator select_on_container_copy_construction() const { return {}; }
    T* allocate(size_t n) {
        return static_cast<T*>(store ? store->takeRing(n * sizeof(T)) : ::operator new(n * sizeof(T)));
    }
    void deallocate(T* p, size_t n) {
        if (store)
            store->giveRing(p, n * sizeof(T));
        else
            ::operator delete(p);
    }
    template <class U> bool operator==(const RingAllocator<U>& o) const { return store == o.store; }
};

using Ring = std::vector<PointData, RingAllocator<PointData>>;

// Everything that says how a polygon is filled and lit.
struct Fill {
    int32_t color[3] = {255, 255, 255};
    Handle bitmap = 0;    // primary bitmap, 0 = colour fill
    Handle animation = 0; // 2D animation, 0 = none
    int32_t animationFrame = 0;
    Handle secondBitmap = 0; // light map
    int32_t translucent = 0; // blending filter number, 0 = opaque
    int32_t rotated = 0;
    double bitmapRotation = 0;
    double lightDiminution = 0;
    int32_t bilinear = 1;
    double brightness = 100.0;
    double ambient[3] = {0, 0, 0};
    double diffuse[3] = {0, 0, 0};
    double specular[3] = {0, 0, 0};
    double specularShining = 0;
};

struct Polygon {
    Handle handle = 0;
    Group* group = nullptr;         // owner, nullptr while not yet owned
    Polygon* prevInGroup = nullptr; // the owner's polygon list
    Polygon* nextInGroup = nullptr;
    Polygon* prevInWorld = nullptr; // every live polygon in creation order
    Polygon* nextInWorld = nullptr;
    Ring points; // ring order
    std::string name;
    Fill fill;
    int32_t orientation = 0; // 0 seen from both sides, 1 front only
    bool disabled = false;
    bool collisional = true;
    int32_t releaseSaveFlag = 0;
    bool addedToWorld = false; // engine_add_polygon was called
    uint32_t orderIndex = 0;   // position in group->order (not saved)
    int64_t ownData = 0;
    uint32_t version = 0; // bumped on any geometry change; caches compare against it
};

struct Group {
    Handle handle = 0;
    std::string name;
    Group* father = nullptr;
    Group* firstChild = nullptr;
    Group* lastChild = nullptr;
    Group* prevSibling = nullptr;
    Group* nextSibling = nullptr;
    Group* prevInWorld = nullptr; // every live group in creation order
    Group* nextInWorld = nullptr;
    Polygon* firstPolygon = nullptr;
    Polygon* lastPolygon = nullptr;
    int64_t ownPolygons = 0;
    // The own polygons' handles in list order, 0 for a removed one (compacted when half are
    // holes): the subtree walk reads this array instead of chasing the list. Not saved.
    std::vector<Handle> order;
    uint32_t orderHoles = 0;
    bool disabled = false;
    bool loadAsDisabled = false;
    bool isStatic = true;
    double referencePoint[3] = {0, 0, 0};                  // rotate reference point, world space
    bool referencePointSet = false;                        // until set, the reference point is the location
    double emptyLocation[3] = {0, 0, 0};                   // location while the subtree has no points
    double axis[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}; // group's own axis system (rows x, y, z)
    // Boxes of the subtree's points (not saved), valid while boundsGeneration == World::generation.
    mutable uint64_t boundsGeneration = UINT64_MAX;
    mutable bool boundsEmpty = true;
    mutable double orientedMin[3] = {0, 0, 0}, orientedMax[3] = {0, 0, 0}; // along the axis rows
    mutable double worldMin[3] = {0, 0, 0}, worldMax[3] = {0, 0, 0};
    mutable uint64_t enabledPass = 0; // the last enabledGroups() pass that found it enabled (not saved)
    // Behaviour parameters kept for the player.
    int32_t chaseType = 0;
    std::string chasedName;
    double chaseDistance = 0, chaseSoftness = 0;
    double chaseOffset[3] = {0, 0, 0};
    std::string trackName;
    double trackOffset[3] = {0, 0, 0};
    double speed = 0, absoluteSpeed = 0;
    double physicsRotation[3] = {0, 0, 0};
    double physicsForce[3] = {0, 0, 0};
    double physicsFriction = 0, physicsElasticity = 0, physicsMaxSpeed = 0;
    int32_t controlNumber = 0;
    int32_t fallingFromTrack = 0;
    double fallingHeight = 0;
    Motion motion;
    uint32_t version = 0;
};

struct Camera {
    Handle handle = 0;
    uint32_t listPos = 0; // position in the world's list of its kind, for O(1) walks
    std::string name;
    double location[3] = {0, 0, 0};
    // Rows: x = viewing direction, y = left, z = up (right-handed, world up is +z). The viewport
    // navigator rolls with rotate_x, pans along y (horizontal) and z (vertical).
    double axis[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    double zoom = 60.0; // field of view in degrees
    double distanceFromEye = 1.0;
    bool perspective = true;
    double parallelWidth = 0, parallelHeight = 0;
    int32_t saveFlag = 0;
    // Chase and track behaviour, kept for the player.
    int32_t chaseType = 0;
    std::string chasedName;
    Handle chasedCamera = 0, chasedGroup = 0, chasedObject = 0;
    double chaseDistance = 0, chaseSoftness = 0;
    double chaseOffset[3] = {0, 0, 0};
    Handle track = 0;
    std::string trackName;
    double trackOffset[3] = {0, 0, 0};
    int32_t nextPointOnTrack = 0;
    double speed = 0, absoluteSpeed = 0, maxSpeed = 0;
    double force[3] = {0, 0, 0}; // physics force: direction times magnitude
    double friction = 0, elasticity = 0;
    double focus = 0;
    Motion motion;
};

struct Light {
    Handle handle = 0;
    uint32_t listPos = 0; // position in the world's list of its kind, for O(1) walks
    std::string name;
    double location[3] = {0, 0, 0};
    double direction[3] = {0, 0, -1};
    double color[3] = {255, 255, 255}; // 0..255
    double ambient = 0.1, diffuse = 1.0, specular = 0.5, specularShining = 10;
    int32_t type = 58;        // bits: 1 directional, 2 linear decay, 4 square decay, 8/16/32 lighting terms
    double distanceReach = 0; // 0 or less: unlimited
    Handle entityToLight = 0; // 0 = the whole world
    int32_t rayTracing = 0;
    int32_t activateBeforeRender = 0;
    bool disabled = false;
    int32_t saveFlag = 0;
    // Lights relight the world only once activated; a change after that waits for the
    // next activation unless activateBeforeRender is set. Not saved.
    bool activated = false;
    int32_t activationMode = 0;
    uint32_t version = 0;          // bumped on any change
    uint32_t activatedVersion = 0; // version at the last activation
};

struct Track {
    Handle handle = 0;
    uint32_t listPos = 0; // position in the world's list of its kind, for O(1) walks
    std::string name;
    std::vector<double> points; // x, y, z triples
    int32_t cyclic = 0;
    int32_t saveFlag = 0;
};

struct Bitmap {
    Handle handle = 0;
    uint32_t listPos = 0; // position in the world's list of its kind, for O(1) walks
    std::string name;     // file name without folder and extension
    std::string path;     // where it was loaded from (absolute), empty for generated bitmaps
    int32_t width = 0, height = 0;
    std::vector<uint8_t> rgba;    // width * height * 4
    std::vector<uint8_t> indices; // palette indices when the source was paletted, else empty
    std::vector<uint8_t> palette; // rgb triples
    int32_t transparentIndex = -1;
    int32_t transparentRgb[3] = {-1, -1, -1};
    uint32_t version = 0;
};

struct Background {
    Handle handle = 0;
    uint32_t listPos = 0; // position in the world's list of its kind, for O(1) walks
    std::string name;
    Handle bitmap = 0;
    double bottom = 0, bottomIntensity = 0, distance = 0, intensityStep = 0;
    int32_t saveFlag = 0;
};

struct Animation {
    Handle handle = 0;
    uint32_t listPos = 0; // position in the world's list of its kind, for O(1) walks
    std::string name;
    struct Frame {
        Handle bitmap = 0;
        int32_t time = 10;             // hundredths of a second
        int32_t transparentIndex = -1; // the bitmap's at the time it was added
    };
    static constexpr int kViewDirections = 5; // front, front sided, side, back sided, back
    std::vector<Frame> frames[kViewDirections];
    int32_t saveFlag = 0;
};

} // namespace zelmar
