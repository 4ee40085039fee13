// Runs the production SurfSimpli and the literal reference side by side on the same mesh and
// the same series of Reduce calls, and compares: the contracted edges in order, the output
// triangles bit by bit, the messages, progress and status calls, and the model's state.
#pragma once
#include "MemoryEngine.h"
#include "base/VexilError.h"
#include "MeshData.h"
#include "reference/RefSurfSimpli.h"
#include "simplify/SurfSimpli.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace simplify_test {

// Records every call of the three outlets, in order.
class Recorder final : public simplify::SimplifyProgress, public simplify::SimplifyStatus, public simplify::SimplifyHost {
public:
    std::vector<std::string> events;
    bool keepProgressValues = true;
    void setMaximum(int v) override { events.push_back("max " + std::to_string(v)); }
    void setMinimum(int v) override { events.push_back("min " + std::to_string(v)); }
    void setValue(int v) override {
        if (keepProgressValues) events.push_back("value " + std::to_string(v));
    }
    void setText(const std::string& t) override { events.push_back("status " + t); }
    void messageBox(const std::string& t) override { events.push_back("message " + t); }
    void yieldEvents() override { ++yields; }
    long yields = 0;
};

struct Step {
    int target = 0;
    bool texSeams = false, geomOnly = false, lock = false, colorBorders = false;
    bool zeroError = false;
    bool forceRestart = true;
    std::vector<int> selected;  // SelectedPts before the call
    bool setSelected = false;
    int groupOverride = -1;     // a group other than the mesh's (e.g. 0)
};

struct OutputTri {
    std::vector<double> values; // 3 x 6 doubles
    int bitmap = 0;
    int color[3] = {0, 0, 0};
    double brightness = 0;
};

struct StepResult {
    bool threw = false;
    long errorNumber = 0;
    std::vector<int> trace;
    std::vector<OutputTri> output;
    std::vector<std::string> events;
    int triCurrent = 0, minEdge = 0;
    double minCost = 0;
    double reference[3] = {0, 0, 0};
};

inline std::vector<OutputTri> readOutput(const MemoryEngine& eng, int group) {
    std::vector<OutputTri> out;
    for (int p : eng.group(group).polygons) {
        const MemPolygon& P = eng.polygon(p);
        OutputTri t;
        for (int pt : P.points)
            for (int k = 0; k < 6; ++k) t.values.push_back(eng.point(pt).v[k]);
        t.bitmap = P.bitmap;
        for (int k = 0; k < 3; ++k) t.color[k] = P.color[k];
        t.brightness = P.brightness;
        out.push_back(t);
    }
    return out;
}

template <class S, class SetSel>
StepResult runStep(S& s, MemoryEngine& eng, int group, const Step& st, SetSel setSelected) {
    StepResult r;
    Recorder rec;
    s.SetHost(&rec);
    s.TraceContractions = true;
    s.ContractionTrace.clear();
    if constexpr (std::is_same_v<S, simplify::SurfSimpli>) {
        s.ZeroErrorMode = st.zeroError;
        if (st.forceRestart) s.ForceRestart = true;
    } else {
        s.ZeroErrorMode = st.zeroError ? simplify_ref::vbTrue : simplify_ref::vbFalse;
        if (st.forceRestart) s.ForceRestart = simplify_ref::vbTrue;
    }
    if (st.setSelected) setSelected(s, st.selected);
    try {
        const int g = s.Reduce(st.target, st.groupOverride >= 0 ? st.groupOverride : group, st.texSeams, &rec, &rec,
                               st.geomOnly, st.lock, st.colorBorders);
        r.output = readOutput(eng, g);
        const MemGroup& G = eng.group(g);
        for (int k = 0; k < 3; ++k) r.reference[k] = G.reference[k];
    } catch (const vexil::VexilError& e) {
        r.threw = true;
        r.errorNumber = e.number;
    }
    r.trace = s.ContractionTrace;
    r.events = rec.events;
    return r;
}

inline bool sameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

// Compares two step results; answers an empty string when they agree.
inline std::string compareResults(const StepResult& a, const StepResult& b) {
    std::ostringstream d;
    if (a.threw != b.threw || a.errorNumber != b.errorNumber) d << "exception differs (" << a.threw << "/" << b.threw << ")\n";
    if (a.trace != b.trace) {
        std::size_t i = 0;
        while (i < a.trace.size() && i < b.trace.size() && a.trace[i] == b.trace[i]) ++i;
        d << "traces differ at contraction " << i << " of " << a.trace.size() << "/" << b.trace.size();
        if (i < a.trace.size() && i < b.trace.size()) d << ": edge " << a.trace[i] << " vs " << b.trace[i];
        d << "\n";
    }
    if (a.output.size() != b.output.size()) d << "output sizes " << a.output.size() << "/" << b.output.size() << "\n";
    else
        for (std::size_t i = 0; i < a.output.size(); ++i) {
            const OutputTri &x = a.output[i], &y = b.output[i];
            bool same = x.values.size() == y.values.size() && x.bitmap == y.bitmap && sameBits(x.brightness, y.brightness) &&
                        x.color[0] == y.color[0] && x.color[1] == y.color[1] && x.color[2] == y.color[2];
            for (std::size_t k = 0; same && k < x.values.size(); ++k) same = sameBits(x.values[k], y.values[k]);
            if (!same) {
                d << "output triangle " << i << " differs\n";
                break;
            }
        }
    if (a.events != b.events) {
        std::size_t i = 0;
        while (i < a.events.size() && i < b.events.size() && a.events[i] == b.events[i]) ++i;
        d << "events differ at " << i << ": '" << (i < a.events.size() ? a.events[i] : "-") << "' vs '"
          << (i < b.events.size() ? b.events[i] : "-") << "'\n";
    }
    if (a.triCurrent != b.triCurrent || a.minEdge != b.minEdge || !sameBits(a.minCost, b.minCost))
        d << "state differs: TriCurrent " << a.triCurrent << "/" << b.triCurrent << " MinEdge " << a.minEdge << "/"
          << b.minEdge << " MinCost " << a.minCost << "/" << b.minCost << "\n";
    for (int k = 0; k < 3; ++k)
        if (!sameBits(a.reference[k], b.reference[k])) d << "reference point differs\n";
    return d.str();
}

// Compares the valid records of the two models field by field (lists of points compared on
// their valid entries, as the production drops the dead ones).
inline std::string compareModels(const simplify::SurfSimpli& p, const simplify_ref::RefSurfSimpli& r) {
    std::ostringstream d;
    if (p.PointCount() != r.NumPts || p.EdgeCount() != r.NumEdges || p.TriCount() != r.NumTris) {
        d << "counts differ\n";
        return d.str();
    }
    auto validTris = [&](auto getValid, const std::vector<std::int32_t>& list, std::size_t from, std::size_t to) {
        std::vector<int> out;
        for (std::size_t i = from; i < to; ++i)
            if (getValid(list[i])) out.push_back(list[i]);
        return out;
    };
    auto triValid = [&](int t) { return r.Tris[static_cast<std::size_t>(t)].Valid == simplify_ref::vbTrue; };
    auto edgeValid = [&](int e) { return r.Edges[static_cast<std::size_t>(e)].Valid == simplify_ref::vbTrue; };
    for (int i = 1; i <= r.NumPts && d.tellp() < 2000; ++i) {
        const auto& R = r.Points[static_cast<std::size_t>(i)];
        const auto& P = p.Point(i);
        if ((R.Valid != 0) != P.Valid) { d << "point " << i << " validity\n"; continue; }
        if (!P.Valid) continue;
        for (int k = 0; k < 3; ++k)
            if (!sameBits(R.Coords[static_cast<std::size_t>(k)], P.Coords[k])) d << "point " << i << " coords\n";
        for (int a = 1; a <= 4; ++a)
            for (int b = 1; b <= 4; ++b)
                if (!sameBits(R.Quadric(a, b), P.Q[static_cast<std::size_t>(simplify::qi(a, b))]))
                    d << "point " << i << " quadric(" << a << "," << b << ")\n";
        if (validTris(triValid, R.AssTris, 1, static_cast<std::size_t>(R.NumAssTris) + 1) !=
            validTris(triValid, P.AssTris, 0, P.AssTris.size()))
            d << "point " << i << " AssTris\n";
        if (validTris(edgeValid, R.AssEdges, 1, static_cast<std::size_t>(R.NumAssEdges) + 1) !=
            validTris(edgeValid, P.AssEdges, 0, P.AssEdges.size()))
            d << "point " << i << " AssEdges\n";
        if (!sameBits(R.VertBrightness, P.VertBrightness)) d << "point " << i << " brightness\n";
    }
    for (int i = 1; i <= r.NumEdges && d.tellp() < 2000; ++i) {
        const auto& R = r.Edges[static_cast<std::size_t>(i)];
        const auto& P = p.Edge(i);
        if ((R.Valid != 0) != P.Valid) { d << "edge " << i << " validity\n"; continue; }
        if (!P.Valid) continue;
        if (R.PtA != P.PtA || R.PtB != P.PtB) d << "edge " << i << " ends\n";
        if (std::vector<int>(R.AssTris.begin() + 1, R.AssTris.begin() + 1 + R.NumAssTris) !=
            std::vector<int>(P.AssTris.begin(), P.AssTris.end()))
            d << "edge " << i << " AssTris\n";
        for (int k = 0; k < 3; ++k)
            if (!sameBits(R.NewCoords[static_cast<std::size_t>(k)], P.NewCoords[k])) d << "edge " << i << " NewCoords\n";
        if (!sameBits(R.Cost, P.Cost)) d << "edge " << i << " cost " << R.Cost << " vs " << P.Cost << "\n";
        if ((R.IsBorder != 0) != P.IsBorder) d << "edge " << i << " IsBorder\n";
        // The production keeps no edge quadric: it is the sum of the ends' when used. The
        // reference's stored one equals that sum, except where lock terms were added to a
        // selected end after the edge was last evaluated (it is never read then).
        const simplify::Quadric eq = p.EdgeQuadric(i);
        const bool lockedEnd = std::find(r.SelectedPts.begin(), r.SelectedPts.end(), R.PtA) != r.SelectedPts.end() ||
                               std::find(r.SelectedPts.begin(), r.SelectedPts.end(), R.PtB) != r.SelectedPts.end();
        const auto& qa = r.Points[static_cast<std::size_t>(R.PtA)].Quadric;
        const auto& qb = r.Points[static_cast<std::size_t>(R.PtB)].Quadric;
        for (int a = 1; a <= 4; ++a)
            for (int b = 1; b <= 4; ++b) {
                const double mine = eq[static_cast<std::size_t>(simplify::qi(a, b))];
                if (!sameBits(qa(a, b) + qb(a, b), mine) || (!lockedEnd && !sameBits(R.Quadric(a, b), mine)))
                    d << "edge " << i << " quadric\n";
            }
    }
    for (int i = 1; i <= r.NumTris && d.tellp() < 2000; ++i) {
        const auto& R = r.Tris[static_cast<std::size_t>(i)];
        const auto& P = p.Tri(i);
        if ((R.Valid != 0) != P.Valid) { d << "tri " << i << " validity\n"; continue; }
        if (!P.Valid) continue;
        for (int k = 0; k < 3; ++k) {
            if (R.Pts[k + 1] != P.Pts[k] || R.Edges[k + 1] != P.Edges[k]) d << "tri " << i << " corners/edges\n";
            if (!sameBits(R.TexUV[k + 1][0], P.TexUV[k][0]) || !sameBits(R.TexUV[k + 1][1], P.TexUV[k][1]))
                d << "tri " << i << " uv\n";
        }
        for (int k = 0; k < 4; ++k)
            if (!sameBits(R.Plane[k], P.Plane[k])) d << "tri " << i << " plane\n";
    }
    return d.str();
}

// The production and the reference over one series of steps on one mesh.
struct PairRun {
    MemoryEngine engP, engR;
    int groupP = 0, groupR = 0;
    simplify::SurfSimpli prod;
    simplify_ref::RefSurfSimpli ref;
    explicit PairRun(const MeshData& mesh) : prod(&engP), ref(&engR) {
        groupP = engP.addMesh(mesh);
        groupR = engR.addMesh(mesh);
    }
    // Runs one step on both; answers the differences (empty when none).
    std::string step(const Step& st, StepResult* out = nullptr, bool compareState = true) {
        StepResult a = runStep(prod, engP, groupP, st, [](simplify::SurfSimpli& s, const std::vector<int>& sel) {
            s.SetSelectedPts(std::vector<std::int32_t>(sel.begin(), sel.end()));
        });
        a.triCurrent = prod.TriCurrent();
        a.minEdge = prod.MinEdge();
        a.minCost = prod.MinCost();
        StepResult b = runStep(ref, engR, groupR, st, [](simplify_ref::RefSurfSimpli& s, const std::vector<int>& sel) {
            s.SelectedPts.assign(sel.begin(), sel.end());
        });
        b.triCurrent = ref.TriCurrent;
        b.minEdge = ref.MinEdge;
        b.minCost = ref.MinCost;
        std::string diff = compareResults(a, b);
        if (compareState && diff.empty() && !a.threw) diff = compareModels(prod, ref);
        if (out) *out = a;
        return diff;
    }
};

} // namespace simplify_test
