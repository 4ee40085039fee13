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
        const std::size_t expected = count > 0 ? static_cast<std::size_t>(count) : 0;
        const std::size_t points = expected / 2 + 16, edges = expected * 3 / 2 + 16;
        tris_.reserve(expected + 1);
        tUV_.reserve(expected + 1);
        tBitmap_.reserve(expected + 1);
        tBright_.reserve(expected + 1);
        tColor_.reserve(expected + 1);
        edges_.reserve(edges);
        eTris_.reserve(edges, edges * 2 + 64);
        pValid_.reserve(points);
        pts_.reserve(points);
        pBright_.reserve(points);
        pNormal_.reserve(points);
        // a point has about six triangles and six edges: room for eight at once, one block each
        for (ListPool* pool : {&pTris_, &pEdges_, &pFar_}) pool->setFirstRoom(8);
        pTris_.reserve(points, points * 8);
        pEdges_.reserve(points, points * 8);
        if (edgesInLists_) pFar_.reserve(points, points * 8);
        pointIndex_.reserve(points);
        if (!edgesInLists_) edgeIndex_.reserve(edges);
        // The triangles are read a few hundred at a time, then added in the same order: while
        // one is added, the index slots of the corners a few triangles on are on their way in.
        struct Read {
            double corners[3][9];
            double plane[4];
            int bitmap;
            double brightness;
            int color[3];
        };
        constexpr std::size_t kChunk = 256, kAhead = 8;
        std::vector<Read> chunk;
        chunk.reserve(kChunk);
        int done = 0;
        auto addChunk = [&] {
            for (std::size_t i = 0; i < kAhead && i < chunk.size(); ++i)
                for (const auto& c : chunk[i].corners) prefetchPoint(c);
            for (std::size_t i = 0; i < chunk.size(); ++i) {
                if (i + kAhead < chunk.size())
                    for (const auto& c : chunk[i + kAhead].corners) prefetchPoint(c);
                Read& r = chunk[i];
                AddTriangle(r.corners[0], r.corners[1], r.corners[2], r.plane, r.bitmap, r.brightness, r.color);
                ++done;
                if (progress_) progress_->setValue(done);
            }
            chunk.clear();
        };
        for (int pol = engine_->group_get_first_polygon(group); pol != 0; pol = engine_->group_get_next_polygon(pol)) {
            Read& r = chunk.emplace_back();
            r.bitmap = engine_->polygon_get_bitmap_handle(pol);
            r.color[0] = r.color[1] = r.color[2] = 0;
            engine_->polygon_get_color(pol, r.color);
            double brightness = engine_->polygon_get_brightness(pol);
            int pt = engine_->polygon_get_first_point(pol);
            for (int k = 0; k < 3; ++k) {
                if (k > 0) pt = engine_->point_get_next_point(pt);
                double* c = r.corners[k];
                double uv[2] = {0, 0}, normal[3] = {0, 0, 0}, xyz[3] = {0, 0, 0};
                engine_->point_get_bitmap_xy(pt, uv);
                brightness = engine_->point_get_brightness(pt); // the third corner's is the one passed on
                engine_->point_get_normal(pt, normal);
                engine_->point_get_xyz(pt, xyz);
                c[0] = xyz[0];
                c[1] = xyz[1];
                c[2] = xyz[2];
                c[3] = uv[0];
                c[4] = uv[1];
                c[5] = brightness;
                c[6] = normal[0];
                c[7] = normal[1];
                c[8] = normal[2];
            }
            r.brightness = brightness;
            r.plane[0] = r.plane[1] = r.plane[2] = r.plane[3] = 0;
            engine_->polygon_get_plane(pol, r.plane);
            if (chunk.size() == kChunk) addChunk();
        }
        addChunk();
        if (progress_) progress_->setValue(0);
        notePeak();
        dropIndexes();
        // the records in an order of their own, with the lists packed, before the copy is made
        renumberForLocality();
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
