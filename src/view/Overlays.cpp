#include "Overlays.h"

#include <QLine>
#include <QPainter>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil {

const ViewPens& Pens() {
    static const ViewPens pens = [] {
        auto pen = [](int r, int g, int b, int w) {
            QPen p(QColor(r, g, b));
            p.setWidth(w);
            p.setStyle(Qt::SolidLine);
            return p;
        };
        ViewPens v;
        v.white1 = pen(255, 255, 255, 1);
        v.red1 = pen(255, 0, 0, 1);
        v.red2 = pen(255, 0, 0, 2);
        v.green1 = pen(0, 255, 0, 1);
        v.green2 = pen(0, 255, 0, 2);
        v.blue1 = pen(0, 0, 255, 1);
        v.blue2 = pen(0, 0, 255, 2);
        v.yellow1 = pen(255, 255, 0, 1);
        v.yellow2 = pen(255, 255, 0, 2);
        v.grey1 = pen(122, 122, 122, 1);
        v.black1 = pen(0, 0, 0, 1);
        v.black1b = pen(0, 0, 0, 1);
        return v;
    }();
    return pens;
}

bool DrawEdge3D(QPainter& p, const double a[3], const double b[3]) {
    int r1[2] = {0, 0}, r2[2] = {0, 0};
    if (ZELMAR_engine_3D_edge_to_2D(a, b, r1, r2) == 0) return false;
    p.drawLine(r1[0], r1[1], r2[0], r2[1]);
    return true;
}

bool DrawPointMark(QPainter& p, const double pt[3], int half) {
    int r[2] = {0, 0};
    if (ZELMAR_engine_3D_point_to_2D(pt, r) != 0) return false;
    p.save();
    p.setBrush(Qt::NoBrush);
    p.drawRect(r[0] - half, r[1] - half, 2 * half, 2 * half);
    p.restore();
    return true;
}

void myLine::Draw(int x1, int y1, int x2, int y2) {
    if (m_p) m_p->drawLine(x1, y1, x2, y2);
}

void BoundingBox::Initialize(int group) {
    m_group = group;
    double loc[3] = {0, 0, 0}, dim[3] = {0, 0, 0};
    ZELMAR_group_get_location(group, loc);
    ZELMAR_group_get_dimensions(group, dim);
    for (double& d : dim)
        d /= 2;
    for (int i = 0; i < 8; ++i) {
        const double local[3] = {loc[0] + ((i & 1) ? dim[0] : -dim[0]), loc[1] + ((i & 2) ? dim[1] : -dim[1]),
                                 loc[2] + ((i & 4) ? dim[2] : -dim[2])};
        double w[3] = {local[0], local[1], local[2]};
        ZELMAR_group_convert_point_to_world_space_fast(group, local, w);
        m_corners[i] = {w[0], w[1], w[2]};
    }
}

void BoundingBox::InitializeOriented(int group, const double axis[3][3], const double lo[3], const double hi[3]) {
    // As the engine answers location and dimensions: the middle of the oriented bounds turned back into
    // world space, and each corner turned about it.
    auto toWorld = [&](const double o[3], double w[3]) {
        for (int k = 0; k < 3; ++k)
            w[k] = axis[0][k] * o[0] + axis[1][k] * o[1] + axis[2][k] * o[2];
    };
    m_group = group;
    double mid[3], dim[3], loc[3];
    for (int k = 0; k < 3; ++k) {
        mid[k] = (lo[k] + hi[k]) * 0.5;
        dim[k] = (hi[k] - lo[k]) / 2;
    }
    toWorld(mid, loc);
    for (int i = 0; i < 8; ++i) {
        const double d[3] = {(i & 1) ? dim[0] : -dim[0], (i & 2) ? dim[1] : -dim[1], (i & 4) ? dim[2] : -dim[2]};
        double w[3];
        toWorld(d, w);
        m_corners[i] = {loc[0] + w[0], loc[1] + w[1], loc[2] + w[2]};
    }
}

void BoundingBox::Draw(QPainter& p) const {
    if (m_group == 0) return;
    p.save();
    p.setPen(Pens().white1);
    // Corner i has bit 0 for x, bit 1 for y, bit 2 for z: an edge joins corners that differ in one bit.
    for (int i = 0; i < 8; ++i)
        for (int bit = 1; bit < 8; bit <<= 1)
            if (!(i & bit)) DrawEdge3D(p, m_corners[i].data(), m_corners[i | bit].data());
    p.restore();
}

int Wireframe::Draw(QPainter& p, int group, const QPen& pen) {
    const int cam = ZELMAR_camera_get_current();
    if (cam == 0 || group == 0) return 0;
    double eye[3] = {0, 0, 0};
    ZELMAR_camera_get_location(cam, eye);

    std::vector<QLine> lines;
    std::vector<std::array<double, 3>> ring;
    std::vector<QPoint> pix;
    int drawn = 0;
    for (int pol = ZELMAR_group_get_first_polygon(group); pol != 0;
         pol = ZELMAR_group_get_next_polygon(pol)) {
        if (ZELMAR_polygon_is_disabled(pol)) continue;
        double plane[4] = {0, 0, 0, 0};
        ZELMAR_polygon_get_plane(pol, plane);
        if (ZELMAR_math_get_plane_point_relations(plane, eye, 0.0) == 2) continue; // faces away
        ring.clear();
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            std::array<double, 3> xyz{};
            ZELMAR_point_get_xyz(pt, xyz.data());
            ring.push_back(xyz);
        }
        if (ring.size() < 2) continue;
        ++drawn;
        // Each point is projected once; a ring that reaches behind the near plane is clipped edge by edge.
        pix.clear();
        bool whole = true;
        for (const auto& q : ring) {
            int r[2] = {0, 0};
            const int s = ZELMAR_engine_3D_point_to_2D(q.data(), r);
            if (s != 0 && s != 1) {
                whole = false;
                break;
            }
            pix.emplace_back(r[0], r[1]);
        }
        const size_t n = ring.size();
        for (size_t i = 0; i < n; ++i) {
            const size_t j = (i + 1) % n;
            if (whole) {
                lines.emplace_back(pix[i], pix[j]);
            } else {
                int r1[2], r2[2];
                if (ZELMAR_engine_3D_edge_to_2D(ring[i].data(), ring[j].data(), r1, r2) != 0)
                    lines.emplace_back(r1[0], r1[1], r2[0], r2[1]);
            }
        }
    }
    if (!lines.empty()) {
        p.save();
        p.setPen(pen);
        p.drawLines(lines.data(), static_cast<int>(lines.size()));
        p.restore();
    }
    return drawn;
}

} // namespace vexil
