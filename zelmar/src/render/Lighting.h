// The lights a render uses and their effect on a vertex. A light relights the world only
// once activated; a light changed after its activation keeps lighting as it was when
// activated, unless it is activated before each render.
#pragma once
#include "scene/Entities.h"
#include <unordered_set>
#include <vector>

namespace zelmar::render {

struct ActiveLight {
    double location[3];
    double towards[3]; // unit direction the light travels (directional lights)
    float color[3];    // 0..1
    double ambient, diffuse, specular, shining, reach;
    int type;
    Handle target; // group whose subtree it lights, 0 = everything
};

std::vector<ActiveLight> gatherLights();

// Which of the lights reach the polygons of which group, worked out once per frame: a walk up
// to the root for every group would be quadratic in the depth of the tree.
class LightReach {
  public:
    explicit LightReach(const std::vector<ActiveLight>& lights);
    bool reaches(size_t light, const Group& g) const;

  private:
    const std::vector<ActiveLight>& lights_;
    std::vector<std::unordered_set<const Group*>> subtree_; // per light with a target
};

// Light factor per channel at a point with unit normal n seen from eye (n is turned to
// face the eye for polygons seen from both sides).
void lightVertex(const std::vector<const ActiveLight*>& lights, const double p[3], const double n[3],
                 const double eye[3], float out[3]);

} // namespace zelmar::render
