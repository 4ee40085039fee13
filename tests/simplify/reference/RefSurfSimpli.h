// The LITERAL reference of SurfSimpli: every search is the documented linear
// scan, every list is kept as the design keeps it, booleans are 16-bit -1/0, quadrics are 5 x 5
// matrices of the maths library, and vector work goes through the procedures of the maths library that
// the design names. It exists only to check the production implementation (src/simplify); it is
// slow on purpose.
#pragma once
#include "maths/Maths.h"
#include "maths/mdlMatrixFunctions.h"
#include "simplify/SimplifyEngine.h"
#include "simplify/SimplifyHost.h"

#include <cstdint>
#include <string>
#include <vector>

namespace simplify_ref {

using VBool = std::int16_t;
constexpr VBool vbTrue = -1;
constexpr VBool vbFalse = 0;
using Matrix = mdlMatrixFunctions::Matrix;

// Lists are 1-based: element 0 exists and is never used.
struct RPoint {
    VBool Valid = vbFalse;
    Maths::Vector Coords = Maths::Vector(3, 0.0);
    std::int32_t NumAssTris = 0;
    std::vector<std::int32_t> AssTris = std::vector<std::int32_t>(1, 0);
    std::int32_t NumAssEdges = 0;
    std::vector<std::int32_t> AssEdges = std::vector<std::int32_t>(1, 0);
    Matrix Quadric = Matrix(4, 4);
    double VertBrightness = 0;
    Maths::Vector VertNormal = Maths::Vector(3, 0.0);
};

struct REdge {
    VBool Valid = vbFalse;
    std::int32_t PtA = 0;
    std::int32_t PtB = 0;
    std::int32_t NumAssTris = 0;
    std::vector<std::int32_t> AssTris = std::vector<std::int32_t>(1, 0);
    Maths::Vector NewCoords = Maths::Vector(3, 0.0);
    double Cost = 0;
    Matrix Quadric = Matrix(4, 4);
    VBool IsBorder = vbFalse;
};

struct RTri {
    VBool Valid = vbFalse;
    std::int32_t Pts[4] = {0, 0, 0, 0};               // 1..3
    double TexUV[4][2] = {{0, 0}, {0, 0}, {0, 0}, {0, 0}}; // 1..3
    std::int32_t Edges[4] = {0, 0, 0, 0};             // 1..3
    double Plane[4] = {0, 0, 0, 0};                   // a, b, c, d
    std::int32_t BitmapHandle = 0;
    double TriBrightness = 0;
    std::int32_t TriColor[4] = {0, 0, 0, 0};          // 1..3
};

struct RBucketEntry {
    std::int32_t Point = 0;
    double x = 0, y = 0, z = 0;
};

class RefSurfSimpli {
public:
    explicit RefSurfSimpli(simplify::SimplifyEngine* engine);

    VBool ZeroErrorMode = vbFalse;
    VBool ForceRestart = vbFalse;
    void SetHost(simplify::SimplifyHost* host) { host_ = host; }
    void SetLocaleMessages(const simplify::SimplifyMessages& m) { messages_ = m; }

    // the simplification mesh
    void AddTriangle(const double c1[9], const double c2[9], const double c3[9], const double plane[4], int bitmapHandle,
                     double brightness, const int color[3]);
    int BucketPoint(const double coords[3], int tri);
    int AddEdgeOfTri(int pA, int pB, int tri);
    int GetFirstValidTri();
    int GetNextValidTri();
    int GetPrevValidTri();
    int GetFirstValidEdge();
    int GetNextValidEdge();
    int GetPrevValidEdge();
    int GetFirstValidPt();
    int GetNextValidPt();
    int GetPrevValidPt();
    double GetEdgCost(int edge) const { return Edges.at(static_cast<std::size_t>(edge)).Cost; }
    void Reset();
    void CopyGeomForRestore();
    void RestoreGeomFromCopy();
    bool IsSelected(int point) const;
    void RemoveSelected(int point);

    // the edge contraction
    int Reduce(int target, int group, bool protectTexSeams, simplify::SimplifyProgress* progress,
               simplify::SimplifyStatus* status, bool geomOnly, bool lockSelected, bool protectColorBorders);
    void SimplifyLoop(int target);
    int ContractEdge();
    int SelectContractibleEdge();
    int NextCheapestEdge(int after, const std::vector<int>& excluded);
    bool WouldDegenerate(int edge);
    bool WouldFlipNormal(int edge);
    VBool KeepsManifold(int edge);
    void InterpolateTexCoords(const Maths::Vector& newCoords, int kept, int gone);
    void RemoveTriOfEdge(int tri, int edge);
    void MergeEdgeTris(int e1, int e2);
    void RepointTriEdges(int from, int to);
    void CollectAffected(int kept);
    void EvaluatePlaneOfAffectedTris(int kept);
    void BuildAllQuadrics();
    void BuildPointQuadric(int point);
    void ClearPointQuadric(int point);
    void MarkBorderEdges();
    bool HasBitmapBorder(int edge);
    bool HasTexSeam(int edge);
    bool HasColorBorder(int edge);
    void AddBorderPenalty(int edge);
    void AddBorderPenaltyToPoint(int point, int edge);
    void AddLockTerms();
    void EvaluateEdgeQuadric(int edge);
    void EvaluateAllEdges();
    void EvaluateAffectedEdges();
    double EdgeCostAt(int edge);
    void PlaceOptimal(int edge);
    void PlaceOnSegment(int edge);
    void PlaceAtBetterEnd(int edge);
    int CountValidTris(int edge);

    // the simplification output
    void ExtractTriangles(int group);
    int BuildOutput();
    bool GetFirstTriangle(double c1[9], double c2[9], double c3[9], int& bitmap, double& brightness, int color[3]);
    bool GetNextTriangle(double c1[9], double c2[9], double c3[9], int& bitmap, double& brightness, int color[3]);

    // the state, public for the comparisons of the tests
    std::vector<RPoint> Points = std::vector<RPoint>(1);
    std::vector<REdge> Edges = std::vector<REdge>(1);
    std::vector<RTri> Tris = std::vector<RTri>(1);
    int NumPts = 0, NumEdges = 0, NumTris = 0;
    double OctantCentre[3] = {0, 0, 0};
    std::vector<RBucketEntry> OctantBuckets[8];
    int OctantCount[8] = {0, 0, 0, 0, 0, 0, 0, 0};
    std::vector<RPoint> BkPoints;
    std::vector<REdge> BkEdges;
    std::vector<RTri> BkTris;
    int BkNumPts = 0, BkNumEdges = 0, BkNumTris = 0;
    bool BkMade = false;
    int TriTotal = 0, TriCurrent = 0;
    std::vector<std::int32_t> SelectedPts; // 0-based list of point indices
    int TriCursor = 0, EdgeCursor = 0, PtCursor = 0, OutCursor = 1;
    std::vector<std::int32_t> AffectedPoints, AffectedEdges;
    int SourceGroup = 0;
    int OutputGroup = 0;
    VBool GeomOnly = vbFalse, LockSelected = vbFalse, ProtectTexSeams = vbFalse, ProtectColorBorders = vbFalse;
    VBool ContinueRun = vbFalse;
    int MinEdge = -1;
    double MinCost = 0;
    bool TraceContractions = false;
    std::vector<std::int32_t> ContractionTrace;

private:
    std::string msg(const std::string& locale, const char* fallback) const {
        return locale.empty() ? std::string(fallback) : locale;
    }
    void setStatus(const std::string& t) {
        if (status_) status_->setText(t);
    }
    void addTriProducts(Matrix& q, const double p[4]);
    void borderPlane(int edge, double p[4]);
    void uvOf(int tri, int point, double uv[2]);
    void setUvOf(int tri, int point, const double uv[2]);
    static void addIfAbsent(std::vector<std::int32_t>& list, std::int32_t& count, std::int32_t value);
    static bool listHas(const std::vector<std::int32_t>& list, std::int32_t count, std::int32_t value);

    simplify::SimplifyEngine* engine_;
    simplify::SimplifyHost* host_ = nullptr;
    simplify::SimplifyProgress* progress_ = nullptr;
    simplify::SimplifyStatus* status_ = nullptr;
    simplify::SimplifyMessages messages_;
};

} // namespace simplify_ref
