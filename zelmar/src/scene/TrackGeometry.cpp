#include "scene/TrackGeometry.h"

#include <algorithm>
#include <limits>

namespace zelmar::tracks {

int closestPoint(const std::vector<double>& points, bool cyclic, const double p[3], double out[3]) {
    const int n = static_cast<int>(points.size() / 3);
    if (n == 0) return -1;
    const int segments = n == 1 ? 1 : (cyclic ? n : n - 1);
    double best = std::numeric_limits<double>::infinity();
    int bestIndex = -1;
    for (int s = 0; s < segments; ++s) {
        const double* a = &points[size_t(s) * 3];
        const double* b = &points[size_t((s + 1) % n) * 3];
        double ab[3], ap[3], len2 = 0, t = 0;
        for (int i = 0; i < 3; ++i) {
            ab[i] = b[i] - a[i];
            ap[i] = p[i] - a[i];
            len2 += ab[i] * ab[i];
            t += ab[i] * ap[i];
        }
        t = len2 > 0 ? std::clamp(t / len2, 0.0, 1.0) : 0.0;
        double q[3], d2 = 0;
        for (int i = 0; i < 3; ++i) {
            q[i] = a[i] + ab[i] * t;
            d2 += (p[i] - q[i]) * (p[i] - q[i]);
        }
        if (d2 < best) {
            best = d2;
            bestIndex = s;
            std::copy(q, q + 3, out);
        }
    }
    return bestIndex;
}

} // namespace zelmar::tracks
