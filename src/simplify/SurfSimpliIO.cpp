// the simplification output: the two crossings with the engine (extraction of a group's triangles, building of
// the output group) and the walk over the mesh's valid triangles.
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"

#include <algorithm>
#include <cmath>

namespace simplify {

void SurfSimpli::ExtractTriangles(int group) {
    vexil::propagate("SurfSimpli", "ExtractTriangles", [&] {
        setStatus(msg(messages_.extracting, "Extracting Triangles"));
        const int count = engine_->group_get_number_of_polygons(group);
        if (progress_) {
            progress_->setMaximum(count);
            progress_->setValue(0);
        }
        engine_->group_get_center_of_mass(group, octantCentre_);
        outputGroup_ = group;
        if (!extractWhole(group, count)) extractByTriangles(group, count);
        CopyGeomForRestore();
        triTotal_ = TriCount();
    });
}

int SurfSimpli::BuildOutput() {
    return vexil::propagate("SurfSimpli", "BuildOutput", [&] {
        setStatus(msg(messages_.building, "Building Output"));
        if (progress_) progress_->setMaximum(triCurrent_);
        engine_->reserve_output(triCurrent_, triCurrent_ * 3);
        const int group = engine_->group_create("Simplified_version");
        double location[3] = {0, 0, 0};
        engine_->group_get_location(outputGroup_, location);
        engine_->group_set_rotate_reference_point(group, location);
        double c[3][9];
        int bitmap = 0;
        double brightness = 0;
        int color[3] = {0, 0, 0};
        double scratch[9];
        int done = 0;
        for (bool more = GetFirstTriangle(c[0], c[1], c[2], bitmap, brightness, color); more;
             more = GetNextTriangle(c[0], c[1], c[2], bitmap, brightness, color)) {
            const int pol = engine_->polygon_create();
            engine_->polygon_set_group(pol, group);
            for (int k = 0; k < 3; ++k) {
                for (int i = 0; i < 9; ++i) scratch[i] = c[k][i]; // CopyLinearArray: same bounds
                engine_->polygon_add_point(pol, scratch);
            }
            engine_->engine_add_polygon(pol);
            engine_->polygon_set_color_fill(pol, color[0], color[1], color[2]);
            engine_->polygon_set_brightness(pol, std::nearbyint(brightness)); // rounded half to even
            engine_->polygon_set_bitmap_fill(pol, bitmap);
            ++done;
            if (progress_) progress_->setValue(done);
        }
        if (progress_) progress_->setValue(0);
        setStatus("");
        return group;
    });
}

bool SurfSimpli::GetFirstTriangle(double c1[9], double c2[9], double c3[9], int& bitmapHandle, double& brightness,
                                  int color[3]) {
    outCursor_ = 1;
    return GetNextTriangle(c1, c2, c3, bitmapHandle, brightness, color);
}

bool SurfSimpli::GetNextTriangle(double c1[9], double c2[9], double c3[9], int& bitmapHandle, double& brightness,
                                 int color[3]) {
    const int n = TriCount();
    for (int t = std::max(outCursor_, 1); t <= n; ++t) { // in the order of the design's indices
        // The records lie anywhere in the arrays (the model's own order): the triangles a few
        // steps on are asked for, and the corners of those half as far on, whose records are in.
        if (t + 8 <= n) {
            const std::size_t ahead = static_cast<std::size_t>(inTri(t + 8));
            __builtin_prefetch(&tris_[ahead]);
            __builtin_prefetch(tUV_[ahead].data());
        }
        if (t + 4 <= n) {
            const TriHot& A = tris_[static_cast<std::size_t>(inTri(t + 4))];
            for (const std::int32_t p : A.pts)
                if (static_cast<std::size_t>(p) < pts_.size()) {
                    __builtin_prefetch(pts_[static_cast<std::size_t>(p)].xyz);
                    __builtin_prefetch(&pNormal_[static_cast<std::size_t>(p)]);
                }
        }
        const std::size_t ti = static_cast<std::size_t>(inTri(t));
        const TriHot& T = tris_[ti];
        if (!T.valid) continue;
        double* out[3] = {c1, c2, c3};
        for (int k = 0; k < 3; ++k) {
            const std::size_t p = static_cast<std::size_t>(T.pts[k]);
            if (p >= pValid_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
            double* o = out[k];
            o[0] = pts_[p].xyz[0]; // VectorCopy
            o[1] = pts_[p].xyz[1];
            o[2] = pts_[p].xyz[2];
            o[3] = tUV_[ti][static_cast<std::size_t>(k * 2)];
            o[4] = tUV_[ti][static_cast<std::size_t>(k * 2 + 1)];
            o[5] = pBright_[p];
            o[6] = pNormal_[p][0];
            o[7] = pNormal_[p][1];
            o[8] = pNormal_[p][2];
        }
        bitmapHandle = tBitmap_[ti];
        brightness = tBright_[ti];
        for (int k = 0; k < 3; ++k) color[k] = tColor_[ti][static_cast<std::size_t>(k)];
        outCursor_ = t + 1;
        return true;
    }
    return false;
}

} // namespace simplify
