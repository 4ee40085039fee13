// the maths library, module Maths: angles.
#include "Maths.h"

#include "MathsDetail.h"
#include "MathsReport.h"

#include <cmath>

namespace Maths {

using detail::at;
using detail::fin;
using vexil::propagate;

double AngleFromXY(double x, double y) {
    return propagate("Maths", "AngleFromXY", [&] {
        if (x == 0.0) return y < 0.0 ? ThreeHalfTurns / 2.0 : PiXY / 2.0;
        const double angle = std::atan(fin(y / x));
        return x < 0.0 ? angle + PiXY : angle;
    });
}

double angleBetVectors(const Vector& a, const Vector& b) {
    return propagate("Maths", "angleBetVectors", [&] {
        // Lengths by power-of-two terms and a 0.5 power, as the Windows design does.
        auto length = [](const Vector& v) {
            const double s = fin(fin(std::pow(at(v, 0), 2.0)) + fin(std::pow(at(v, 1), 2.0)) +
                                 fin(std::pow(at(v, 2), 2.0)));
            return std::pow(s, 0.5);
        };
        const double la = length(a);
        const double lb = length(b);
        const double m = fin(la * lb);
        const double dot = VectorDot(a, b);
        if (la == 0.0 || lb == 0.0) {
            LogEvent("angleBetVectors: invalid vector", 1);
            return 0.0;
        }
        const double c = fin(vexil::checkedDiv(dot, m));
        if (c == 0.0) return 90.0;
        double s2 = 1.0 - fin(std::pow(c, 2.0));
        if (s2 < 0.0) s2 = 0.0;
        const double s = std::sqrt(s2);
        return AngleFromXY(c, s) * 180.0 / Pi;
    });
}

double angleBetVectors2D(const Vector& a, const Vector& b) {
    return propagate("Maths", "angleBetVectors2D", [&] { return 90.0 - angleBetVectors(a, b); });
}

void RotatePointXY(double x, double y, double degrees, double& outX, double& outY) {
    propagate("Maths", "RotatePointXY", [&] {
        const double radians = fin(fin(degrees * Pi / 180.0) + AngleFromXY(x, y));
        const double r = fin(std::sqrt(fin(fin(x * x) + fin(y * y))));
        const double rx = fin(std::cos(radians) * r);
        const double ry = fin(std::sin(radians) * r);
        outX = rx;
        outY = ry;
    });
}

void RotatePointAbout(const Vector& point, const Vector& centre, double degrees, Vector& dest) {
    propagate("Maths", "RotatePointAbout", [&] {
        Vector local;
        VectorFromTo(centre, point, local);
        RotatePointXY(local[0], local[1], degrees, local[0], local[1]);
        VectorAdd(local, centre, dest);
    });
}

} // namespace Maths
