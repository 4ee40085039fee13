// The math family: stateless questions on points, vectors and planes.
#include "api/CoreArgs.h"
#include "scene/Vec.h"

#include <zelmar/zelmar.h>

#include <cmath>

using namespace zelmar;
using namespace zelmar::api;

namespace {
bool in3(const double* a, const char* op) {
    return inArray(a, 3, op);
}
} // namespace

extern "C" {

double ZELMAR_math_get_distance(const double a[3], const double b[3]) {
    if (!in3(a, "math_get_distance") || !in3(b, "math_get_distance")) return 0.0;
    return length(V3(a) - V3(b));
}

double ZELMAR_math_get_square_distance(const double a[3], const double b[3]) {
    if (!in3(a, "math_get_square_distance") || !in3(b, "math_get_square_distance")) return 0.0;
    const V3 d = V3(a) - V3(b);
    return dot(d, d);
}

double ZELMAR_math_get_vector_length(const double vector[3]) {
    return in3(vector, "math_get_vector_length") ? length(V3(vector)) : 0.0;
}

double ZELMAR_math_product(const double a[3], const double b[3]) {
    if (!in3(a, "math_product") || !in3(b, "math_product")) return 0.0;
    return dot(V3(a), V3(b));
}

void ZELMAR_math_cross(const double a[3], const double b[3], double result[3]) {
    if (!in3(a, "math_cross") || !in3(b, "math_cross") || !outArray(result, "math_cross")) return;
    cross(V3(a), V3(b)).store(result);
}

int ZELMAR_math_normalize_vector(double vector[3]) {
    if (!in3(vector, "math_normalize_vector")) return 0;
    const V3 n = normalized(V3(vector));
    if (length(n) == 0) return 0;
    n.store(vector);
    return 1;
}

int ZELMAR_math_points_to_plane(const double p1[3], const double p2[3], const double p3[3], double plane[4]) {
    const char* op = "math_points_to_plane";
    if (!in3(p1, op) || !in3(p2, op) || !in3(p3, op) || !outArray(plane, op)) return 0;
    const V3 a(p1);
    // The plane of a polygon whose ring starts p1, p2, p3: its front is where they run clockwise.
    const V3 n = normalized(cross(V3(p3) - a, V3(p2) - a));
    if (length(n) == 0) return 0;
    n.store(plane);
    plane[3] = -dot(n, a);
    return 1;
}

int ZELMAR_math_get_plane_point_relations(const double plane[4], const double point[3], double tolerance) {
    const char* op = "math_get_plane_point_relations";
    if (!inArray(plane, 4, op) || !in3(point, op)) return 0;
    const double d = plane[0] * point[0] + plane[1] * point[1] + plane[2] * point[2] + plane[3];
    const double tol = std::isfinite(tolerance) ? std::fabs(tolerance) : 0.0;
    if (d > tol) return 1;
    if (d < -tol) return 2;
    return 0;
}

int ZELMAR_math_does_segment_intersect_plane(const double start[3], const double end[3],
                                             const double plane[4], double intersection[3]) {
    const char* op = "math_does_segment_intersect_plane";
    if (!in3(start, op) || !in3(end, op) || !inArray(plane, 4, op)) return 0;
    const V3 a(start), b(end), n(plane);
    const double da = dot(n, a) + plane[3], db = dot(n, b) + plane[3];
    if ((da > 0 && db > 0) || (da < 0 && db < 0)) return 0;
    const V3 hit = da == db ? a : a + (b - a) * (da / (da - db));
    if (intersection) hit.store(intersection);
    return 1;
}

void ZELMAR_math_get_closest_point_on_line(const double point[3], const double line_point[3],
                                           const double line_direction[3], double result[3]) {
    const char* op = "math_get_closest_point_on_line";
    if (!in3(point, op) || !in3(line_point, op) || !in3(line_direction, op) || !outArray(result, op)) return;
    const V3 a(line_point), d(line_direction);
    const double dd = dot(d, d);
    (dd > 0 ? a + d * (dot(V3(point) - a, d) / dd) : a).store(result);
}

double ZELMAR_math_get_distance_between_point_and_line(const double point[3], const double line_point[3],
                                                       const double line_direction[3]) {
    double foot[3];
    const char* op = "math_get_distance_between_point_and_line";
    if (!in3(point, op) || !in3(line_point, op) || !in3(line_direction, op)) return 0.0;
    ZELMAR_math_get_closest_point_on_line(point, line_point, line_direction, foot);
    return length(V3(point) - V3(foot));
}

int ZELMAR_math_is_point_on_segment(const double point[3], const double start[3], const double end[3],
                                    double tolerance) {
    const char* op = "math_is_point_on_segment";
    if (!in3(point, op) || !in3(start, op) || !in3(end, op)) return 0;
    const V3 p(point), a(start), ab = V3(end) - a;
    const double l2 = dot(ab, ab);
    double t = l2 > 0 ? dot(p - a, ab) / l2 : 0.0;
    t = t < 0 ? 0 : (t > 1 ? 1 : t);
    const double tol = std::isfinite(tolerance) ? std::fabs(tolerance) : 0.0;
    return length(p - (a + ab * t)) <= tol ? 1 : 0;
}

void ZELMAR_math_get_reflected_direction(const double direction[3], const double normal[3],
                                         double result[3]) {
    const char* op = "math_get_reflected_direction";
    if (!in3(direction, op) || !in3(normal, op) || !outArray(result, op)) return;
    const V3 d(direction), n = normalized(V3(normal));
    (d - n * (2 * dot(d, n))).store(result);
}

int ZELMAR_math_is_clockwise_from_direction(const double p1[3], const double p2[3], const double p3[3],
                                            const double view_direction[3]) {
    const char* op = "math_is_clockwise_from_direction";
    if (!in3(p1, op) || !in3(p2, op) || !in3(p3, op) || !in3(view_direction, op)) return 0;
    const V3 a(p1);
    // Seen looking along the direction, a counter-clockwise triangle's normal points back at the eye.
    return dot(cross(V3(p2) - a, V3(p3) - a), V3(view_direction)) > 0 ? 1 : 0;
}

int ZELMAR_math_is_clockwise(const double p1[3], const double p2[3], const double p3[3],
                             const double view_point[3]) {
    const char* op = "math_is_clockwise";
    if (!in3(p1, op) || !in3(p2, op) || !in3(p3, op) || !in3(view_point, op)) return 0;
    const double dir[3] = {p1[0] - view_point[0], p1[1] - view_point[1], p1[2] - view_point[2]};
    return ZELMAR_math_is_clockwise_from_direction(p1, p2, p3, dir);
}

} // extern "C"
