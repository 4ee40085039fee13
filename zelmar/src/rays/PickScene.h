// Nearest-hit queries over many sets of triangles that change one at a time (the groups
// of the world). Each set is a scene of its own in the ray kernel, its points single
// precision relative to the set's origin; a small hierarchy of the sets' boxes, kept here
// in double precision, sends a ray to the sets it passes, nearest first. So a change of
// one set rebuilds that set alone, and a set that only moved keeps its scene.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zelmar::rays {

class PickScene {
  public:
    using Member = uint32_t;

    PickScene();
    ~PickScene();
    PickScene(const PickScene&) = delete;
    PickScene& operator=(const PickScene&) = delete;

    // A new member without triangles.
    Member add();
    void remove(Member m);
    // New triangles for a member: points (x, y, z floats, relative to `origin`) and four
    // words per triangle: its three corners and one the caller keeps there (read back with
    // the corners by a candidate hit, in the same cache line). May run for different members
    // on different threads at once; queries see the change after the next commit().
    void setTriangles(Member m, std::vector<float>&& points, std::vector<uint32_t>&& triangles,
                      const double origin[3]);
    // True when the member holds exactly these points and triangles.
    bool holds(Member m, const std::vector<float>& points, const std::vector<uint32_t>& triangles) const;
    void setOrigin(Member m, const double origin[3]);
    // The member's triangles (four words each) and points, as given.
    const uint32_t* triangles(Member m) const;
    size_t triangleWords(Member m) const;
    const float* points(Member m) const;
    size_t pointFloats(Member m) const;
    // Makes the changes since the last commit visible to queries.
    void commit();

    // Called for each candidate hit that the kernel finds; answers whether the triangle
    // counts and, if so, its exact distance t along the ray.
    using Accept = bool (*)(void* user, Member m, uint32_t triangle, double& t);
    struct Hit {
        Member member = 0;
        uint32_t triangle = 0;
        double t = 0;
    };
    // The accepted triangle of least t met by org + t dir, t in [tNear, tFar]; tNear may be
    // negative or -infinity.
    bool nearest(const double org[3], const double dir[3], double tNear, double tFar, Accept accept, void* user,
                 Hit& out) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace zelmar::rays
