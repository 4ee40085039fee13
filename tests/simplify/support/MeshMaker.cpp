#include "MeshMaker.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

namespace simplify_test {

namespace {
struct Lcg {
    unsigned long long s;
    explicit Lcg(unsigned seed) : s(seed * 2654435761ULL + 12345) {}
    double next() { // 0 .. 1
        s = s * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>((s >> 11) & ((1ULL << 53) - 1)) / static_cast<double>(1ULL << 53);
    }
};

int addV(MeshData& m, double x, double y, double z, double u = 0, double v = 0) {
    MeshVertex mv;
    mv.xyz[0] = x;
    mv.xyz[1] = y;
    mv.xyz[2] = z;
    mv.uv[0] = u;
    mv.uv[1] = v;
    mv.brightness = 50 + std::fmod(std::fabs(x * 7 + y * 3 + z * 5), 100.0);
    mv.normal[2] = 1;
    m.vertices.push_back(mv);
    return static_cast<int>(m.vertices.size()) - 1;
}

void addF(MeshData& m, int a, int b, int c, int bitmap = 0, int r = 128, int g = 128, int bl = 128) {
    MeshFace f;
    f.v = {a, b, c};
    f.bitmap = bitmap;
    f.color[0] = r;
    f.color[1] = g;
    f.color[2] = bl;
    m.faces.push_back(f);
}

// Grid vertices (nx+1) x (ny+1); faces by a callback for their attributes.
template <class Attr>
MeshData grid(int nx, int ny, double bump, unsigned seed, Attr attr) {
    MeshData m;
    Lcg rng(seed);
    std::vector<double> z(static_cast<std::size_t>((nx + 1) * (ny + 1)));
    for (auto& h : z) h = bump * (rng.next() - 0.5);
    for (int j = 0; j <= ny; ++j)
        for (int i = 0; i <= nx; ++i)
            addV(m, i, j, z[static_cast<std::size_t>(j * (nx + 1) + i)], double(i) / nx, double(j) / ny);
    auto id = [&](int i, int j) { return j * (nx + 1) + i; };
    for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
            MeshFace f1, f2;
            if ((i + j) % 2 == 0) {
                f1.v = {id(i, j), id(i + 1, j), id(i + 1, j + 1)};
                f2.v = {id(i, j), id(i + 1, j + 1), id(i, j + 1)};
            } else {
                f1.v = {id(i, j), id(i + 1, j), id(i, j + 1)};
                f2.v = {id(i + 1, j), id(i + 1, j + 1), id(i, j + 1)};
            }
            attr(f1, i, j);
            attr(f2, i, j);
            m.faces.push_back(f1);
            m.faces.push_back(f2);
        }
    return m;
}
} // namespace

MeshData makeGrid(int nx, int ny, double bump, unsigned seed) {
    MeshData m = grid(nx, ny, bump, seed, [](MeshFace&, int, int) {});
    m.name = "grid";
    return m;
}

MeshData makeColorGrid(int nx, int ny, double bump, unsigned seed) {
    MeshData m = grid(nx, ny, bump, seed, [&](MeshFace& f, int i, int j) {
        const int region = i < nx / 3 ? 0 : (j < ny / 2 ? 1 : 2);
        const int colors[3][3] = {{200, 30, 30}, {30, 200, 30}, {30, 30, 200}};
        for (int k = 0; k < 3; ++k) f.color[k] = colors[region][k];
        f.brightness = 60 + 10 * region + 0.5;
    });
    m.name = "colorgrid";
    return m;
}

MeshData makeBitmapGrid(int nx, int ny, double bump, unsigned seed) {
    MeshData m = grid(nx, ny, bump, seed, [&](MeshFace& f, int i, int j) {
        f.bitmap = i < nx / 2 ? 1 : (j < ny / 2 ? 2 : 3);
    });
    m.name = "bitmapgrid";
    return m;
}

MeshData makeSeamGrid(int nx, int ny, double bump, unsigned seed) {
    // Same positions, but the faces right of the seam use vertices with their own uv.
    MeshData base = makeGrid(nx, ny, bump, seed);
    MeshData m;
    m.vertices = base.vertices;
    const std::size_t n = base.vertices.size();
    for (std::size_t i = 0; i < n; ++i) {
        MeshVertex v = base.vertices[i];
        v.uv[0] = 0.25 + v.uv[0] * 0.5;
        v.uv[1] = 1.0 - v.uv[1];
        m.vertices.push_back(v);
    }
    for (MeshFace f : base.faces) {
        double cx = 0;
        for (int v : f.v) cx += base.vertices[static_cast<std::size_t>(v)].xyz[0];
        if (cx / 3 > nx / 2.0)
            for (int& v : f.v) v += static_cast<int>(n);
        f.bitmap = 7;
        m.faces.push_back(f);
    }
    m.name = "seamgrid";
    return m;
}

MeshData makeCube(int n, double bump, unsigned seed) {
    MeshData m;
    m.name = "cube";
    Lcg rng(seed);
    // integer lattice on the surface of [0, n]^3, shared exactly between faces
    std::vector<int> index(static_cast<std::size_t>((n + 1) * (n + 1) * (n + 1)), -1);
    auto at = [&](int x, int y, int z) {
        int& i = index[static_cast<std::size_t>((z * (n + 1) + y) * (n + 1) + x)];
        if (i < 0) {
            const double d = bump * (rng.next() - 0.5);
            i = addV(m, x + d, y + d * 0.5, z - d * 0.25, double(x + y) / (2 * n), double(z + y) / (2 * n));
        }
        return i;
    };
    for (int axis = 0; axis < 3; ++axis)
        for (int side = 0; side < 2; ++side)
            for (int a = 0; a < n; ++a)
                for (int b = 0; b < n; ++b) {
                    int q[4];
                    const int cs[4][2] = {{a, b}, {a + 1, b}, {a + 1, b + 1}, {a, b + 1}};
                    for (int k = 0; k < 4; ++k) {
                        int p[3];
                        p[axis] = side * n;
                        p[(axis + 1) % 3] = cs[k][0];
                        p[(axis + 2) % 3] = cs[k][1];
                        q[k] = at(p[0], p[1], p[2]);
                    }
                    if (side == 0) {
                        std::swap(q[1], q[3]);
                    }
                    if ((a + b) % 2 == 0) {
                        addF(m, q[0], q[1], q[2]);
                        addF(m, q[0], q[2], q[3]);
                    } else {
                        addF(m, q[0], q[1], q[3]);
                        addF(m, q[1], q[2], q[3]);
                    }
                }
    return m;
}

MeshData makeSphere(int lat, int lon) {
    MeshData m;
    m.name = "sphere";
    const double pi = 3.14159265358979323846;
    const int top = addV(m, 0, 0, 1, 0.5, 0);
    std::vector<int> ring;
    for (int i = 1; i < lat; ++i)
        for (int j = 0; j < lon; ++j) {
            const double th = pi * i / lat, ph = 2 * pi * j / lon;
            ring.push_back(addV(m, std::sin(th) * std::cos(ph), std::sin(th) * std::sin(ph), std::cos(th), double(j) / lon,
                                double(i) / lat));
        }
    const int bottom = addV(m, 0, 0, -1, 0.5, 1);
    auto r = [&](int i, int j) { return ring[static_cast<std::size_t>((i - 1) * lon + (j % lon))]; };
    for (int j = 0; j < lon; ++j) addF(m, top, r(1, j), r(1, j + 1));
    for (int i = 1; i < lat - 1; ++i)
        for (int j = 0; j < lon; ++j) {
            addF(m, r(i, j), r(i + 1, j), r(i + 1, j + 1));
            addF(m, r(i, j), r(i + 1, j + 1), r(i, j + 1));
        }
    for (int j = 0; j < lon; ++j) addF(m, bottom, r(lat - 1, j + 1), r(lat - 1, j));
    return m;
}

MeshData makeTorus(int a, int b, double bump, unsigned seed) {
    MeshData m;
    m.name = "torus";
    Lcg rng(seed);
    const double pi = 3.14159265358979323846;
    for (int i = 0; i < a; ++i)
        for (int j = 0; j < b; ++j) {
            const double u = 2 * pi * i / a, v = 2 * pi * j / b;
            const double r = 0.35 + bump * (rng.next() - 0.5);
            addV(m, (1 + r * std::cos(v)) * std::cos(u), (1 + r * std::cos(v)) * std::sin(u), r * std::sin(v), double(i) / a,
                 double(j) / b);
        }
    auto id = [&](int i, int j) { return (i % a) * b + (j % b); };
    for (int i = 0; i < a; ++i)
        for (int j = 0; j < b; ++j) {
            addF(m, id(i, j), id(i + 1, j), id(i + 1, j + 1));
            addF(m, id(i, j), id(i + 1, j + 1), id(i, j + 1));
        }
    return m;
}

MeshData makeNonManifold(int n, unsigned seed) {
    MeshData m = makeGrid(n, n, 0.3, seed);
    m.name = "nonmanifold";
    // fins: a third and fourth triangle on interior edges of the grid
    const int w = n + 1;
    for (int k = 1; k + 1 < n; k += 3) {
        const int a = k * w + k, b = k * w + k + 1;
        const int top = addV(m, k + 0.5, k + 0.1, 2.0 + k * 0.1);
        addF(m, a, b, top);
        const int low = addV(m, k + 0.4, k - 0.1, -1.5 - k * 0.1);
        addF(m, b, a, low);
    }
    // two closed cubes touching at one corner (a bow-tie vertex), beside the grid
    for (int c = 0; c < 2; ++c) {
        MeshData cube = makeCube(2, 0.0, seed + static_cast<unsigned>(c));
        for (auto& v : cube.vertices) {
            v.xyz[0] += n + 2 + (c ? 2.0 : 0.0);
            v.xyz[1] += c ? 2.0 : 0.0;
            v.xyz[2] += c ? 2.0 : 0.0;
        }
        m = concat(m, cube);
    }
    return m;
}

MeshData makeDuplicates(int n, unsigned seed) {
    MeshData m = makeGrid(n, n, 0.2, seed);
    m.name = "duplicates";
    // exact copies of a band of faces (same coordinates, new vertex records)
    const std::size_t faces = m.faces.size();
    for (std::size_t f = 0; f < faces; f += 5) {
        MeshFace copy = m.faces[f];
        for (int& v : copy.v) {
            m.vertices.push_back(m.vertices[static_cast<std::size_t>(v)]);
            v = static_cast<int>(m.vertices.size()) - 1;
        }
        m.faces.push_back(copy);
    }
    // near copies: the faces right of the middle use a column of points moved by one ulp
    const int w = n + 1, mid = n / 2;
    for (MeshFace& f : m.faces) {
        double cx = 0;
        for (int v : f.v) cx += m.vertices[static_cast<std::size_t>(v)].xyz[0];
        if (cx / 3 <= mid) continue;
        for (int& v : f.v) {
            if (v >= w * w) continue;
            if (v % w != mid) continue;
            MeshVertex near = m.vertices[static_cast<std::size_t>(v)];
            near.xyz[0] = std::nextafter(near.xyz[0], 1e300);
            m.vertices.push_back(near);
            v = static_cast<int>(m.vertices.size()) - 1;
        }
    }
    return m;
}

MeshData makeOneTriangle() {
    MeshData m;
    m.name = "one";
    addV(m, 0, 0, 0, 0, 0);
    addV(m, 1, 0, 0, 1, 0);
    addV(m, 0, 1, 0, 0, 1);
    m.vertices[0].brightness = 10;
    m.vertices[1].brightness = 20;
    m.vertices[2].brightness = 70.5;
    addF(m, 0, 1, 2, 0, 10, 20, 30);
    m.faces[0].brightness = 99;
    return m;
}

MeshData makeQuad() {
    MeshData m;
    m.name = "quad";
    addV(m, 0, 0, 0, 0, 0);
    addV(m, 1, 0, 0, 1, 0);
    addV(m, 1, 1, 0, 1, 1);
    addV(m, 0, 1, 0, 0, 1);
    MeshFace f;
    f.v = {0, 1, 2, 3};
    m.faces.push_back(f);
    return m;
}

MeshData concat(const MeshData& a, const MeshData& b) {
    MeshData m = a;
    const int off = static_cast<int>(a.vertices.size());
    m.vertices.insert(m.vertices.end(), b.vertices.begin(), b.vertices.end());
    for (MeshFace f : b.faces) {
        for (int& v : f.v) v += off;
        m.faces.push_back(f);
    }
    return m;
}

MeshData subdivide(const MeshData& mesh, int levels) {
    MeshData m = triangulateFans(mesh);
    for (int level = 0; level < levels; ++level) {
        double centre[3] = {0, 0, 0};
        for (const MeshVertex& v : m.vertices)
            for (int k = 0; k < 3; ++k) centre[k] += v.xyz[k];
        for (double& c : centre) c /= m.vertices.empty() ? 1.0 : static_cast<double>(m.vertices.size());
        MeshData out;
        out.name = m.name;
        out.vertices = m.vertices;
        std::unordered_map<std::uint64_t, int> mid;
        Lcg rnd(static_cast<unsigned>(level + 1));
        auto midpoint = [&](int a, int b) {
            const std::uint64_t key = (static_cast<std::uint64_t>(std::min(a, b)) << 32) | static_cast<std::uint32_t>(std::max(a, b));
            const auto found = mid.find(key);
            if (found != mid.end()) return found->second;
            const MeshVertex &A = m.vertices[static_cast<std::size_t>(a)], &B = m.vertices[static_cast<std::size_t>(b)];
            MeshVertex v;
            double len = 0;
            for (int k = 0; k < 3; ++k) {
                const double d = B.xyz[k] - A.xyz[k];
                len += d * d;
            }
            len = std::sqrt(len);
            double dir[3], dlen = 0;
            for (int k = 0; k < 3; ++k) {
                dir[k] = (A.xyz[k] + B.xyz[k]) * 0.5 - centre[k];
                dlen += dir[k] * dir[k];
            }
            dlen = std::sqrt(dlen);
            const double lift = dlen > 0 ? 0.05 * len * (rnd.next() - 0.3) / dlen : 0.0;
            for (int k = 0; k < 3; ++k) v.xyz[k] = (A.xyz[k] + B.xyz[k]) * 0.5 + lift * dir[k];
            for (int k = 0; k < 2; ++k) v.uv[k] = (A.uv[k] + B.uv[k]) * 0.5;
            for (int k = 0; k < 3; ++k) v.normal[k] = (A.normal[k] + B.normal[k]) * 0.5;
            v.brightness = (A.brightness + B.brightness) * 0.5;
            const int index = static_cast<int>(out.vertices.size());
            out.vertices.push_back(v);
            mid.emplace(key, index);
            return index;
        };
        for (const MeshFace& f : m.faces) {
            const int a = f.v[0], b = f.v[1], c = f.v[2];
            const int ab = midpoint(a, b), bc = midpoint(b, c), ca = midpoint(c, a);
            for (const auto& ring : {std::vector<int>{a, ab, ca}, {ab, b, bc}, {ca, bc, c}, {ab, bc, ca}}) {
                MeshFace g = f;
                g.v = ring;
                out.faces.push_back(g);
            }
        }
        m = std::move(out);
    }
    return m;
}

} // namespace simplify_test
