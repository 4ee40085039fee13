// SurfSimpli: reduces the triangle count of one group by quadric-error edge contraction
// (mesh model, edge cost and contraction, extraction and output).
//
// This is the production implementation. Its behaviour is that of the documented linear scans to
// the last tie-break; what differs is only how things are found:
//   - points and edges are found by hashing instead of the octant and edge scans of the simplification mesh;
//   - the cheapest contractible edge comes from an indexed heap ordered by (cost, index) instead
//     of one scan of all edges per candidate (the edge contraction NextCheapestEdge);
//   - association lists of points drop entries of dead records (nothing reads those);
//   - the records are kept as parallel arrays (hot fields together, association lists in pools,
//     a quadric per point only: an edge's is the sum of its ends', formed when it is used).
// tests/simplify/reference holds the literal implementation; the tests prove that both give the
// same contractions and bit-identical output. docs/simplify.md records the open decisions.
//
// Indices are 1-based: slot 0 of every array exists and is never used. They are the design's
// indices (points, edges and triangles numbered as extraction makes them); inside, the records
// are kept in an order of their own, for locality (see docs/simplify.md).
#pragma once
#include "simplify/BigArray.h"
#include "simplify/EdgeHeap.h"
#include "simplify/FlatIndex.h"
#include "simplify/ListPool.h"
#include "simplify/SimplifyEngine.h"
#include "simplify/SimplifyHost.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace simplify {

// Quadric(i, j), i and j from 1 to 4, stored row by row at [(i - 1) * 4 + (j - 1)]. Row 0 and
// column 0 of the documented 5 x 5 array are always 0 and are not stored.
using Quadric = std::array<double, 16>;
inline constexpr int qi(int i, int j) { return (i - 1) * 4 + (j - 1); }

// The records as the design lists them: copies made by Point(i), Edge(i), Tri(i) for tests and
// diagnostics. The model itself keeps their fields in parallel arrays.
struct SimpPoint {
    bool Valid = false;
    double Coords[3] = {0, 0, 0};
    std::vector<std::int32_t> AssTris;  // NumAssTris is AssTris.size()
    std::vector<std::int32_t> AssEdges; // NumAssEdges is AssEdges.size()
    Quadric Q{};
    double VertBrightness = 0;
    double VertNormal[3] = {0, 0, 0};
    int NumAssTris() const { return static_cast<int>(AssTris.size()); }
    int NumAssEdges() const { return static_cast<int>(AssEdges.size()); }
};

struct SimpEdge {
    bool Valid = false;
    bool IsBorder = false;
    std::int32_t PtA = 0;
    std::int32_t PtB = 0;
    std::vector<std::int32_t> AssTris; // slots of removed triangles stay (MergeEdgeTris)
    double NewCoords[3] = {0, 0, 0};
    double Cost = 0;
    int NumAssTris() const { return static_cast<int>(AssTris.size()); }
};

struct SimpTri {
    bool Valid = false;
    std::int32_t Pts[3] = {0, 0, 0};
    double TexUV[3][2] = {{0, 0}, {0, 0}, {0, 0}};
    std::int32_t Edges[3] = {0, 0, 0};
    double Plane[4] = {0, 0, 0, 0};
    std::int32_t BitmapHandle = 0;
    double TriBrightness = 0;
    std::int32_t TriColor[3] = {0, 0, 0};
};

struct SimpBucketEntry {
    std::int32_t Point = 0;
    double Coords[3] = {0, 0, 0};
};

// How SelectMultiplePoints combines the rectangle with the selection (CTRL adds, SHIFT removes).
enum class SelectMode { Replace, Add, Remove };

class SurfSimpli {
public:
    // engine: the engine crossing of the simplification output; nullptr means libzelmar3 (ZelmarSimplifyEngine).
    explicit SurfSimpli(SimplifyEngine* engine = nullptr);
    ~SurfSimpli();
    SurfSimpli(const SurfSimpli&) = delete;
    SurfSimpli& operator=(const SurfSimpli&) = delete;

    // ---- public properties ----
    bool ZeroErrorMode = false;
    bool ForceRestart = false;

    void SetHost(SimplifyHost* host) { host_ = host; }
    void SetLocaleMessages(const SimplifyMessages& messages) { messages_ = messages; }
    const SimplifyMessages& LocaleMessages() const { return messages_; }
    void SetEngine(SimplifyEngine* engine);

    // ---- the simplification mesh: mesh model ----
    void AddTriangle(const double corner1[9], const double corner2[9], const double corner3[9], const double plane[4],
                     int bitmapHandle, double brightness, const int color[3]);
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
    double GetEdgCost(int edge) const;

    void Reset();
    void CopyGeomForRestore();
    void RestoreGeomFromCopy();

    // Selection (the list SelectedPts; the simplification workbench fills it).
    void SelectMultiplePoints(double x1, double y1, double x2, double y2, bool ignoreBackFaced, SelectMode mode,
                              const double cameraLocation[3]);
    void ResetPtSelection() {
        selectedPts_.clear();
        selectedMark_.clear();
    }
    void SetSelectedPts(std::vector<std::int32_t> points) {
        selectedPts_ = std::move(points);
        selectedMark_.clear();
    }
    void AddSelectedPt(std::int32_t point) {
        selectedPts_.push_back(point);
        selectedMark_.clear();
    }
    bool IsPtSelected(std::int32_t point) const; // linear search from the first entry
    void RemoveSelectedPt(std::int32_t point);   // entries behind move up by one
    const std::vector<std::int32_t>& SelectedPts() const { return selectedPts_; }

    // Diagnostic drawing.
    void SetPaintableAreaDC(SimplifyCanvas* canvas) { canvas_ = canvas; }
    void DisplayPoint(int point, SimpPen pen);
    void DisplayEdge(int edge, SimpPen pen);
    void DisplayTri(int tri, SimpPen pen);
    void DisplayTriAndAssEdges(int tri);
    void DisplayEdgeAndAssTris(int edge);
    void DisplayPtAssEdgsAndAssTris(int point);
    void Pt_DisplayAssociatedEdges(int point);
    void Pt_DisplayAssociatedTris(int point);
    void DisplayMinCostEdge();
    void DrawAllBorderEdges();
    void DisplayAffectedEdges();
    void DrawSelectedPts();

    // Reads the group into an empty model (Reset, ExtractTriangles) and sets ForceRestart, as
    // the first Reduce on a group does, without contracting or building an output group.
    void Load(int group, SimplifyProgress* progress = nullptr, SimplifyStatus* status = nullptr);

    // ---- the edge contraction: edge cost and contraction ----
    int Reduce(int target, int group, bool protectTexSeams, SimplifyProgress* progress, SimplifyStatus* status,
               bool geomOnly, bool lockSelected, bool protectColorBorders);
    void SimplifyLoop(int target);
    int ContractEdge();
    int SelectContractibleEdge();
    // The documented linear scan, kept for diagnostics and tests; SelectContractibleEdge uses the heap.
    int NextCheapestEdge(int after, const std::vector<int>& excluded);
    bool WouldDegenerate(int edge);
    bool WouldFlipNormal(int edge);
    bool KeepsManifold(int edge); // the documented -1 is true
    void InterpolateTexCoords(const double newCoords[3], int kept, int gone);
    void RemoveTriOfEdge(int tri, int edge);
    void MergeEdgeTris(int e1, int e2);
    void RepointTriEdges(int from, int to);
    void CollectAffected(int kept);
    void EvaluatePlaneOfAffectedTris(int kept);
    void BuildAllQuadrics();
    void BuildPointQuadric(int point);
    void ClearPointQuadric(int point);
    void MarkBorderEdges();
    bool HasBitmapBorder(int edge) const;
    bool HasTexSeam(int edge) const;
    bool HasColorBorder(int edge) const;
    void AddBorderPenalty(int edge);
    void AddBorderPenaltyToPoint(int point, int edge);
    void AddLockTerms();
    void EvaluateEdgeQuadric(int edge);
    void EvaluateAllEdges();
    void EvaluateAffectedEdges();
    double EdgeCostAt(int edge) const;
    void PlaceOptimal(int edge);
    void PlaceOnSegment(int edge);
    void PlaceAtBetterEnd(int edge);
    int CountValidTris(int edge) const;

    // ---- the simplification output: extraction and output ----
    void ExtractTriangles(int group);
    int BuildOutput();
    bool GetFirstTriangle(double corner1[9], double corner2[9], double corner3[9], int& bitmapHandle,
                          double& brightness, int color[3]);
    bool GetNextTriangle(double corner1[9], double corner2[9], double corner3[9], int& bitmapHandle,
                         double& brightness, int color[3]);

    // ---- state, for the workbench, the tests and the diagnostics ----
    int PointCount() const { return static_cast<int>(pValid_.size()) - 1; }
    int EdgeCount() const { return static_cast<int>(edges_.size()) - 1; }
    int TriCount() const { return static_cast<int>(tris_.size()) - 1; }
    // Copies of the records (bounds checked; for tests and diagnostics, not for loops over the model).
    SimpPoint Point(int i) const;
    SimpEdge Edge(int i) const;
    SimpTri Tri(int i) const;
    const double* PointCoords(int i) const { return pts_.at(static_cast<std::size_t>(inPt(i))).xyz; }
    bool PointValid(int i) const { return pValid_.at(static_cast<std::size_t>(inPt(i))) != 0; }
    // The edge's Quadric: the sum of its ends' (the only form in which it is used).
    Quadric EdgeQuadric(int i) const;
    const double* OctantCentre() const { return octantCentre_; }
    void SetOctantCentre(const double c[3]) {
        for (int k = 0; k < 3; ++k) octantCentre_[k] = c[k];
    }
    const std::vector<SimpBucketEntry>& OctantBucket(int i) const { return buckets_.at(static_cast<std::size_t>(i)); }
    int TriTotal() const { return triTotal_; }
    int TriCurrent() const { return triCurrent_; }
    int SourceGroup() const { return sourceGroup_; }
    int MinEdge() const { return exEdge(minEdge_); }
    double MinCost() const { return minCost_; }
    bool ContinueRun() const { return continueRun_; }
    // True when the last Reduce stopped because the host asked to cancel (no output was built).
    bool Cancelled() const { return cancelled_; }
    // True when a contraction since the model was last set up cost more than 0.00 (rounded):
    // a zero-error run from the copy would have stopped before the state the model is in.
    bool CostlyContractionMade() const { return costlyContraction_; }
    const std::vector<std::int32_t>& AffectedPoints() const;
    const std::vector<std::int32_t>& AffectedEdges() const;
    int TriCursor() const { return triCursor_; }
    int EdgeCursor() const { return edgeCursor_; }
    int PtCursor() const { return ptCursor_; }
    int OutputCursor() const { return outCursor_; }
    bool GeomOnly() const { return geomOnly_; }
    bool LockSelected() const { return lockSelected_; }
    bool ProtectTexSeams() const { return protectTexSeams_; }
    bool ProtectColorBorders() const { return protectColorBorders_; }
    // Options can also be set without a Reduce (tests, diagnostics).
    void SetOptions(bool protectTexSeams, bool geomOnly, bool lockSelected, bool protectColorBorders);

    // Every contracted edge in order, when enabled (tests and benchmarks).
    bool TraceContractions = false;
    std::vector<std::int32_t> ContractionTrace;
    // Counts for the benchmarks: selections made, candidates visited by SelectContractibleEdge,
    // and candidates whose refusal was known without running the three tests again.
    long long SelectionCount = 0, CandidateCount = 0, CachedRefusals = 0;
    // Times the heap of the cheapest edges was filled from all edges (docs/simplify.md).
    long long HeapFills = 0;
    // Remember refusals until something near the edge changes (on by default; the tests compare
    // both settings). See docs/simplify.md, "Refusal cache".
    bool CacheRefusals = true;
    // Renumber the records for locality when a group is read (on by default; the design's
    // indices stay at the interface either way, and the tests compare both settings).
    bool RenumberRecords = true;
    // Sum the neighbourhood's quadrics four lanes at a time where the processor can (on by
    // default; the same bits either way, and the tests compare both settings).
    bool WideSums = true;
    // Read a group into a fresh model as whole arrays (on by default; the tests compare it with
    // AddTriangle one triangle at a time, which it must equal record for record).
    bool WholeExtraction = true;
    // How edges are re-costed: four at a time with AVX2, four at a time on two-lane halves (any
    // processor), or one at a time. All give the same bits (the tests compare them); the default
    // is AVX2 where the processor has it, one at a time otherwise.
    enum class Costing { Avx2, Portable, Scalar };
    Costing CostingPath = DefaultCosting();
    static Costing DefaultCosting();

    // Bytes held by the model now (arrays, lists, the copy for restarting, indexes, heap), and the
    // most it held since it was made.
    std::size_t MemoryBytes() const;
    std::size_t PeakMemoryBytes() const { return std::max(peakBytes_, MemoryBytes()); }

    // A point's position and quadric in two cache lines. The quadric is symmetric but for the
    // lock terms, which change Quadric(1..3, 4) only: s holds the upper triangle as the sums of
    // plane products give it, (1,1) (1,2) (1,3) (1,4) (2,2) (2,3) (2,4) (3,3) (3,4) (4,4), its
    // (i, 4) entries standing for Quadric(4, i); u holds Quadric(1, 4), (2, 4), (3, 4) as they are.
    struct alignas(64) PointHot {
        double s[10];
        double u[3];
        double xyz[3];
    };
    // The sum of two points' quadrics, laid out as PointHot's.
    struct alignas(16) QSum {
        double s[10];
        double u[3];
    };

private:
    using Vec3 = std::array<double, 3>;
    // The fields of a triangle that contraction reads and writes, in one cache line.
    struct alignas(64) TriHot {
        double plane[4];
        std::int32_t pts[3];
        std::int32_t edges[3];
        bool valid;
    };
    struct EdgeHot {
        std::int32_t a, b;
        double cost;
        double nc[3];
        bool valid, border;
        std::uint32_t stamp = 0; // collectAffected's mark, in the record's padding
    };
    static_assert(sizeof(EdgeHot) == 48, "the mark must stay in the edge record's padding");
    // A copy for restarting: the fields that contraction changes. Point quadrics and edge
    // placements and costs are all zero after extraction; they are kept only when they are not.
    struct Backup {
        bool made = false;
        BigVector<std::uint8_t> pValid;
        BigVector<Vec3> pCoords;   // when every quadric is zero
        BigVector<PointHot> pts;  // otherwise
        std::size_t points = 0;
        ListPool pTris, pEdges;
        struct EdgeEnds {
            std::int32_t a, b;
            bool valid, border;
        };
        BigVector<EdgeEnds> edgeEnds;
        BigVector<EdgeHot> edges; // only when some NewCoords or Cost is not zero
        ListPool eTris;
        BigVector<TriHot> tris;
        BigVector<std::array<double, 6>> tUV;
        // brightness and normals of points change only when triangles are added; copied then
        BigVector<double> pBright;
        BigVector<Vec3> pNormal;
        bool coldCopied = false;
    };

    std::string msg(const std::string& locale, const char* fallback) const {
        return locale.empty() ? std::string(fallback) : locale;
    }
    void setStatus(const std::string& text) {
        if (status_) status_->setText(text);
    }
    void showMessage(const std::string& text) {
        if (host_) host_->messageBox(text);
    }

    // ---- the design's indices and the arrays' own order ----
    // An index out of range maps to itself (the bounds check that follows raises as before).
    static int mapIndex(const std::vector<std::int32_t>& m, int x) {
        return x >= 0 && static_cast<std::size_t>(x) < m.size() ? m[static_cast<std::size_t>(x)] : x;
    }
    int inPt(int x) const { return mapIndex(ptOfExt_, x); }
    int exPt(int i) const { return mapIndex(extOfPt_, i); }
    int inEdge(int x) const { return mapIndex(edgeOfExt_, x); }
    int exEdge(int i) const { return mapIndex(extOfEdge_, i); }
    int inTri(int x) const { return mapIndex(triOfExt_, x); }
    int exTri(int i) const { return mapIndex(extOfTri_, i); }
    static std::vector<std::int32_t> mapList(const std::vector<std::int32_t>& m, const std::int32_t* from, const std::int32_t* to);
    void pushIdentity(std::vector<std::int32_t>& ext, std::vector<std::int32_t>& in);
    void renumberForLocality();
    // Extraction (SurfSimpliExtract.cpp): the whole group read into a fresh model at once, in the
    // records' own order, equal to what AddTriangle one by one and renumberForLocality make;
    // false (nothing read) when the model is not fresh. Otherwise the triangles are added one by one.
    bool extractWhole(int group, int count);
    void extractByTriangles(int group, int count);

    // The work of the public operations on the arrays' own record numbers.
    int bucketPoint(const double coords[3], int tri);
    void prefetchPoint(const double coords[3]) const; // the index slot bucketPoint will read first
    int addEdgeOfTri(int pA, int pB, int tri);
    int selectEdge();
    bool wouldDegenerate(int edge);
    bool wouldFlipNormal(int edge);
    bool keepsManifold(int edge);
    bool degeneratesOrFlips(int edge); // wouldDegenerate || wouldFlipNormal, one walk
    void interpolateTexCoords(const double newCoords[3], int kept, int gone);
    void removeTriOfEdge(int tri, int edge);
    void mergeEdgeTris(int e1, int e2);
    void repointTriEdges(int from, int to);
    void collectAffected(int kept);
    // The affected points' quadrics afresh from their valid triangles' planes (one body, made
    // for the plain processor and for one with 4-lane vectors, which gives the same bits).
    template <class Acc> void sumAffectedQuadrics();
    void sumAffectedQuadricsPlain();
    void sumAffectedQuadricsWide();
    struct MovedPlane;
    void evaluatePlanes(int kept, const std::vector<MovedPlane>* moved = nullptr);
    void buildPointQuadric(int point);
    int countValidTris(int edge) const;
    bool hasBitmapBorder(int edge) const;
    bool hasTexSeam(int edge) const;
    bool hasColorBorder(int edge) const;
    void addBorderPenalty(int edge);
    void addBorderPenaltyToPoint(int point, int edge);
    void placeAtBetterEnd(int edge);
    std::size_t newPoint(const double coords[3]);
    std::size_t newEdge(int pA, int pB);
    Quadric fullQuadric(const double s[10], const double u[3]) const;
    void borderPlane(int edge, double p[4]) const;
    void cornerUV(int tri, int point, double uv[2]) const;
    void setCornerUV(int tri, int point, const double uv[2]);
    bool edgeHasTri(int edge, int tri) const { return eTris_.contains(static_cast<std::size_t>(edge), tri); }
    // The sum of the ends' quadrics; raises Overflow when a term is not finite (as MatrixADD).
    void sumEdgeQuadric(int edge, QSum& q) const;
    // Placement and cost of an edge given its quadric sum q.
    void evaluateEdge(int edge, const QSum& q);
    void placeOptimal(int edge, const QSum& q);
    void placeOnSegment(int edge, const QSum& q);
    // Calls test(triangle, corners) for each valid triangle of either end that is not on the edge,
    // with the ends replaced by NewCoords; true as soon as a test answers true.
    template <class Test> bool anyMovedTri(int edge, Test test) const;
    // can ever be chosen: valid, -1e21 <= cost < 1e32 (NaN never)
    static bool eligible(const EdgeHot& E) { return E.valid && E.cost >= -1e21 && E.cost < 1e32; }
    void heapUpdate(int edge, double oldCost);
    // Placement and cost of a list of edges, four at a time; each edge's heap update follows in
    // order when withHeap. Edges the batches cannot finish go through the scalar code in turn.
    void evaluateList(const std::int32_t* edges, std::size_t n, bool withHeap);
    void evaluateOne(int edge, bool withHeap);
    std::vector<double> laneOut_;          // evaluateList's scratch: each edge's (cost, x, y, z)
    std::vector<unsigned char> laneClean_; // and the clean lanes of each four
    void rebuildHeap();
    void fillHeap();
    void rebuildPointIndex();
    void rebuildEdgeIndex();
    void dropIndexes();
    void clearArrays();
    void markSelected();
    bool selectedFast(int point) const;
    void project(int point, double& x, double& y, bool& ok) const;
    void notePeak() { peakBytes_ = std::max(peakBytes_, MemoryBytes()); }
    void notePeak(std::size_t scratch) { peakBytes_ = std::max(peakBytes_, MemoryBytes() + scratch); }
    void copyColdForRestore();

    bigarray::CacheUser arrayCache_; // first: outlives the arrays
    SimplifyEngine* engine_ = nullptr;
    std::unique_ptr<SimplifyEngine> ownEngine_;
    SimplifyHost* host_ = nullptr;
    SimplifyProgress* progress_ = nullptr;
    SimplifyStatus* status_ = nullptr;
    SimplifyCanvas* canvas_ = nullptr;
    SimplifyMessages messages_;

    // points
    BigVector<std::uint8_t> pValid_;
    BigVector<PointHot> pts_;
    BigVector<double> pBright_;
    BigVector<Vec3> pNormal_;
    ListPool pTris_, pEdges_;
    // edges
    BigVector<EdgeHot> edges_;
    ListPool eTris_;
    // triangles
    BigVector<TriHot> tris_;
    BigVector<std::array<double, 6>> tUV_; // TexUV[k][j] at [k * 2 + j]
    BigVector<std::int32_t> tBitmap_;
    BigVector<double> tBright_;
    BigVector<std::array<std::int32_t, 3>> tColor_;
    // record number of each design index, and back (slot 0 to 0)
    std::vector<std::int32_t> ptOfExt_, extOfPt_, edgeOfExt_, extOfEdge_, triOfExt_, extOfTri_;
    mutable std::vector<std::int32_t> affectedPtsExt_, affectedEdgesExt_;

    double octantCentre_[3] = {0, 0, 0};
    std::array<std::vector<SimpBucketEntry>, 8> buckets_;
    Backup backup_;
    int triTotal_ = 0;
    int triCurrent_ = 0;
    std::vector<std::int32_t> selectedPts_;
    int triCursor_ = 0, edgeCursor_ = 0, ptCursor_ = 0, outCursor_ = 1;
    std::vector<std::int32_t> affectedPts_, affectedEdges_;
    std::vector<char> affectedBorder_; // for each affected point: has it a valid border edge
    int sourceGroup_ = 0;
    int outputGroup_ = 0; // the group read or being reduced: its location is the output's reference point

    bool geomOnly_ = false, lockSelected_ = false, protectTexSeams_ = false, protectColorBorders_ = false;
    bool continueRun_ = false;
    bool cancelled_ = false;
    bool costlyContraction_ = false;
    bool pristine_ = false; // the arrays equal the copy for restarting (no restore copy needed)
    bool extractedZero_ = false; // extractWhole left every quadric, placement and cost zero: the copy need not look
    int minEdge_ = -1;
    double minCost_ = 0;
    std::size_t peakBytes_ = 0;

    // indexes of the production implementation
    struct PointKey {
        std::uint64_t x = 0, y = 0, z = 0;
        int octant = 0;
        bool operator==(const PointKey&) const = default;
    };
    struct PointKeyHash {
        std::size_t operator()(const PointKey& k) const;
    };
    FlatIndex<PointKey, PointKeyHash> pointIndex_;
    bool pointIndexDirty_ = false;
    struct EdgeKeyHash {
        std::size_t operator()(std::uint64_t k) const {
            k ^= k >> 33;
            k *= 0xff51afd7ed558ccdULL;
            k ^= k >> 33;
            return static_cast<std::size_t>(k);
        }
    };
    FlatIndex<std::uint64_t, EdgeKeyHash> edgeIndex_;
    bool edgeIndexDirty_ = false;
    // True while every edge is in both its ends' edge lists and no pair of points has two edges
    // (a model read afresh, nothing contracted or restored): edges are then found by A's list.
    bool edgesInLists_ = true;
    ListPool pFar_; // meanwhile: the far end of each entry of pEdges_, kept in step with it
    void leaveListMode() {
        if (!edgesInLists_) return;
        edgesInLists_ = false;
        pFar_ = ListPool{};
    }
    // The heap holds the edges that cost less than heapLimit_ (the cheapest few thousand; all of
    // them when the limit is infinite); the others wait outside until a selection reaches it.
    EdgeHeap heap_;
    bool heapDirty_ = true;
    double heapLimit_ = EdgeHeap::kNoLimit;
    std::vector<int> refusedNow_;          // candidates refused by the running selection
    std::vector<double> costScratch_;
    struct EdgeEnds {
        std::int32_t edge, a, b;
    };
    std::vector<EdgeEnds> edgeEnds_; // keepsManifold's scratch
    // One moved triangle's flip test with its side effects put off (degeneratesOrFlips).
    struct FlipCheck {
        enum Kind : unsigned char { Keeps, Flips, Overflows, Ask } kind;
        double n[3];          // the negated normal, for angleBetVectors
        const double* plane;  // the triangle's plane
    };
    static FlipCheck flipCheck(const double* plane, const double* const* c);
    static bool flips(const FlipCheck& f); // raises Overflow, or asks angleBetVectors
    std::vector<FlipCheck> flipChecks_;    // degeneratesOrFlips' scratch
    // The moved triangles' planes before their normalisation (PlaneFromPoints), as the flip test
    // of the last candidate walked made them: the same operations on the same positions as
    // evaluatePlanes when that candidate is contracted next, which takes them from here.
    struct MovedPlane {
        std::int32_t tri;
        std::int32_t pts[3]; // its corners, -1 for an end of the edge
        double a, b, c, d;
    };
    std::vector<MovedPlane> movedPlanes_;
    int movedPlanesEdge_ = -1; // the candidate whose walk made them all (-1: none)
    bool reusePlanes_ = false; // SimplifyLoop contracts the edge it has just selected
    std::vector<std::uint32_t> ptStamp_;
    std::uint32_t stamp_ = 0;
    std::vector<char> selectedMark_;
    // refusal cache: a refused edge is parked with the ends it had then (it keeps them while
    // parked: a contraction that moves an end touches it first); each point counts the parked
    // edges at it
    struct Refusal {
        std::int32_t a = 0, b = 0;
    };
    std::unordered_map<std::int32_t, Refusal> refusals_; // few: only parked edges have one
    std::vector<char> parked_; // refused edges held out of the heap
    std::vector<std::int32_t> ptParked_; // parked edges at each point
    std::vector<int> stale_;
    void unpark(int edge);
    void clearPark(std::size_t edge);
    // Something near p changed: the edges parked at p come back. A point is touched many
    // times a contraction; after the first touch it has no parked edge left.
    void touchPoint(int p) {
        if (static_cast<std::size_t>(p) < ptParked_.size() && ptParked_[static_cast<std::size_t>(p)] > 0 && !heapDirty_)
            unparkAt(p);
    }
    void unparkAt(int p);
    void clearRefusals();
};

} // namespace simplify
