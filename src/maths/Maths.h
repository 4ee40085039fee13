// the maths library, module `Maths`: stateless vector, plane and angle procedures.
//
// Conventions (see docs/maths.md):
// - A Vector is a dynamic array of doubles from index 0; elements 0, 1, 2 are x, y, z.
//   Procedures read exactly those three unless stated (Distance, NearestPointOnLine follow
//   the size of their first argument). An IntPoint is the same with int32 elements; a
//   Plane is four doubles a, b, c, d in the same kind of array (so a Plane can be handed
//   to a procedure that reads a Vector, which then sees its first three elements).
// - Results go to an output array given by the caller. An output that is smaller than
//   what is written is grown (never shrunk; other elements are kept). An input that is too
//   small raises vexil::VexilError number 9 (ErrSubscript), as a bounds failure of the Windows design.
// - Outputs may be the same array as an input wherever the table of the maths library says so; in
//   this implementation every procedure also tolerates the other aliasings.
// - Failures: a division by zero raises vexil::VexilError ErrDivisionByZero (11), a result
//   that overflows (not finite) ErrOverflow (6). Every procedure appends
//   "Vexil.Maths.<Procedure>" to the error's source and raises it again. Exceptions, as
//   the design says: angleBetVectors with a zero vector (logs, returns 0), LineMeetsPlane
//   (a failed division leaves dest unchanged), CopyLinearArray (logs).
#pragma once
#include <cstdint>
#include <vector>

namespace Maths {

using Vector = std::vector<double>;
using IntPoint = std::vector<std::int32_t>;
using Plane = std::vector<double>;

// Constants as the Windows design writes them.
constexpr double Pi = 3.14159265358979;              // degree conversion (angleBetVectors, RotatePointXY)
constexpr double PiXY = 3.14159265359;               // AngleFromXY
constexpr double ThreeHalfTurns = 9.424777960770001; // three half-turns, AngleFromXY

// ---- Vectors ----
void VectorCopy(Vector& dest, const Vector& src); // elements 0..2
void VectorFromValues(Vector& dest, double x, double y, double z);
void VectorAdd(const Vector& a, const Vector& b, Vector& dest);        // dest may be a or b
void VectorFromTo(const Vector& from, const Vector& to, Vector& dest); // dest := to - from
void VectorScale(const Vector& src, double factor, Vector& dest);
void VectorNormalize(const Vector& src, Vector& dest); // zero length: division failure
void VectorNegate(Vector& v);                          // in place
double VectorLength(const Vector& v);
double VectorDot(const Vector& a, const Vector& b);
void VectorCross(const Vector& a, const Vector& b, Vector& dest); // dest := a x b
double DistanceSquared(const Vector& a, const Vector& b);         // always three elements
double Distance(const Vector& a, const Vector& b);                // indices 0..size(a)-1
double DistanceInt(const IntPoint& a, const IntPoint& b);         // indices 0..size(a)-1
bool SameLocation(const Vector& a, const Vector& b);              // rounded to 6 decimals, half to even
// Copies src[0..] into dest without resizing dest. If dest is shorter, the elements that
// fit are copied, the log gets the failure (type 1), and nothing is raised.
void CopyLinearArray(Vector& dest, const Vector& src);

// ---- Angles ----
// Radians in -pi/2 .. 3pi/2; AngleFromXY(0, 0) is PiXY / 2.
double AngleFromXY(double x, double y);
// Degrees in 0..180. A zero vector: the log gets "angleBetVectors: invalid vector", result 0.
double angleBetVectors(const Vector& a, const Vector& b);
double angleBetVectors2D(const Vector& a, const Vector& b); // 90 - angleBetVectors
void RotatePointXY(double x, double y, double degrees, double& outX, double& outY);
// Rotates elements 0 and 1 of point about centre; element 2 is point's. dest may be point.
void RotatePointAbout(const Vector& point, const Vector& centre, double degrees, Vector& dest);

// ---- Lines and planes ----
// If negate, direction is negated in place (the caller's array changes) first.
// dest := start + t * direction; dest[2] += lift.
void PointOnLine(Vector& dest, const Vector& start, Vector& direction, bool negate, double t, double lift);
// k := plane[3] - (n.point)/(n.n); dest := point + k n.  n.n = 0: division failure.
void ProjectPointOnPlane(const Vector& point, const Plane& plane, Vector& dest);
// Over indices 0..size(point)-1. If the line is degenerate (t + 1 = 0) dest is unchanged.
void NearestPointOnLine(const Vector& point, const Vector& a, const Vector& b, Vector& dest);
void NearestPointOnLineInt(const IntPoint& point, const IntPoint& a, const IntPoint& b, IntPoint& dest);
// Point where the line start->end meets the plane through planePoint with the given normal.
// A failed division (line parallel to the plane) returns without changing dest.
void LineMeetsPlane(const Vector& start, const Vector& end, const Vector& planePoint, const Vector& normal,
                    Vector& dest);
// dest := (a, b, c, d), normal (p2 - p1) x (p3 - p1), not unit.
void PlaneFromPoints(const Vector& p1, const Vector& p2, const Vector& p3, Plane& dest);
// Signed: (a x + b y + c z + d) / |(a, b, c)|; a zero normal is a division failure.
double DistanceToPlane(const Plane& plane, const Vector& point);
// Segments (x1,y1)-(x2,y2) and (x3,y3)-(x4,y4). True if the determinant of the two
// directions is 0 (parallel; meetX/meetY unchanged), or if both line parameters lie in
// 0..1 inclusive (then meetX/meetY receive the crossing).
bool SegmentsMeet2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4,
                    double& meetX, double& meetY);

} // namespace Maths
