// Small OBJ and PLY readers for the simplification tests and benchmarks.
#include "MeshData.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace simplify_test {

MeshData triangulateFans(const MeshData& mesh) {
    MeshData out;
    out.name = mesh.name;
    out.vertices = mesh.vertices;
    for (const MeshFace& f : mesh.faces) {
        if (f.v.size() < 3) continue;
        for (std::size_t i = 1; i + 1 < f.v.size(); ++i) {
            MeshFace t = f;
            t.v = {f.v[0], f.v[i], f.v[i + 1]};
            out.faces.push_back(t);
        }
    }
    return out;
}

MeshData firstFaces(const MeshData& mesh, std::size_t count) {
    MeshData out = mesh;
    if (out.faces.size() > count) out.faces.resize(count);
    return out;
}

namespace {
int resolveIndex(long i, std::size_t size) {
    if (i > 0) return static_cast<int>(i - 1);
    if (i < 0) return static_cast<int>(static_cast<long>(size) + i);
    throw std::runtime_error("OBJ: index 0");
}
} // namespace

MeshData loadObj(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot open " + path);
    std::vector<std::array<double, 3>> pos, nrm;
    std::vector<std::array<double, 2>> tex;
    MeshData mesh;
    mesh.name = path;
    // one mesh vertex per distinct (v, vt, vn) triple
    std::map<std::array<int, 3>, int> made;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::istringstream ls(line);
        std::string tag;
        ls >> tag;
        if (tag == "v") {
            std::array<double, 3> p{0, 0, 0};
            ls >> p[0] >> p[1] >> p[2];
            pos.push_back(p);
        } else if (tag == "vt") {
            std::array<double, 2> t{0, 0};
            ls >> t[0] >> t[1];
            tex.push_back(t);
        } else if (tag == "vn") {
            std::array<double, 3> n{0, 0, 0};
            ls >> n[0] >> n[1] >> n[2];
            nrm.push_back(n);
        } else if (tag == "f") {
            MeshFace face;
            std::string item;
            while (ls >> item) {
                std::array<int, 3> key{-1, -1, -1};
                std::size_t start = 0;
                for (int k = 0; k < 3 && start <= item.size(); ++k) {
                    const std::size_t slash = item.find('/', start);
                    const std::string part = item.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
                    if (!part.empty()) {
                        const long i = std::stol(part);
                        key[static_cast<std::size_t>(k)] = resolveIndex(i, k == 0 ? pos.size() : k == 1 ? tex.size() : nrm.size());
                    }
                    if (slash == std::string::npos) break;
                    start = slash + 1;
                }
                if (key[0] < 0 || static_cast<std::size_t>(key[0]) >= pos.size()) throw std::runtime_error("OBJ: bad vertex index");
                auto it = made.find(key);
                if (it == made.end()) {
                    MeshVertex v;
                    for (int k = 0; k < 3; ++k) v.xyz[k] = pos[static_cast<std::size_t>(key[0])][static_cast<std::size_t>(k)];
                    if (key[1] >= 0 && static_cast<std::size_t>(key[1]) < tex.size()) {
                        v.uv[0] = tex[static_cast<std::size_t>(key[1])][0];
                        v.uv[1] = tex[static_cast<std::size_t>(key[1])][1];
                    }
                    if (key[2] >= 0 && static_cast<std::size_t>(key[2]) < nrm.size())
                        for (int k = 0; k < 3; ++k) v.normal[k] = nrm[static_cast<std::size_t>(key[2])][static_cast<std::size_t>(k)];
                    it = made.emplace(key, static_cast<int>(mesh.vertices.size())).first;
                    mesh.vertices.push_back(v);
                }
                face.v.push_back(it->second);
            }
            if (face.v.size() >= 3) mesh.faces.push_back(face);
        }
    }
    return mesh;
}

namespace {
struct PlyProperty {
    std::string name, type, countType;
    bool list = false;
};
struct PlyElement {
    std::string name;
    std::size_t count = 0;
    std::vector<PlyProperty> props;
};

std::size_t typeSize(const std::string& t) {
    if (t == "char" || t == "uchar" || t == "int8" || t == "uint8") return 1;
    if (t == "short" || t == "ushort" || t == "int16" || t == "uint16") return 2;
    if (t == "int" || t == "uint" || t == "float" || t == "int32" || t == "uint32" || t == "float32") return 4;
    if (t == "double" || t == "float64") return 8;
    throw std::runtime_error("PLY: unknown type " + t);
}

double readBinary(std::istream& in, const std::string& t, bool bigEndian) {
    const std::size_t n = typeSize(t);
    unsigned char b[8] = {0};
    in.read(reinterpret_cast<char*>(b), static_cast<std::streamsize>(n));
    if (!in) throw std::runtime_error("PLY: truncated");
    if (bigEndian) std::reverse(b, b + n);
    if (t == "char" || t == "int8") return static_cast<signed char>(b[0]);
    if (t == "uchar" || t == "uint8") return b[0];
    if (t == "short" || t == "int16") { std::int16_t v; std::memcpy(&v, b, 2); return v; }
    if (t == "ushort" || t == "uint16") { std::uint16_t v; std::memcpy(&v, b, 2); return v; }
    if (t == "int" || t == "int32") { std::int32_t v; std::memcpy(&v, b, 4); return v; }
    if (t == "uint" || t == "uint32") { std::uint32_t v; std::memcpy(&v, b, 4); return v; }
    if (t == "float" || t == "float32") { float v; std::memcpy(&v, b, 4); return v; }
    double v;
    std::memcpy(&v, b, 8);
    return v;
}
} // namespace

MeshData loadPly(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot open " + path);
    std::string line;
    std::getline(in, line);
    if (line.rfind("ply", 0) != 0) throw std::runtime_error("PLY: no magic");
    std::string format;
    std::vector<PlyElement> elements;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::istringstream ls(line);
        std::string tag;
        ls >> tag;
        if (tag == "format") ls >> format;
        else if (tag == "element") {
            PlyElement e;
            ls >> e.name >> e.count;
            elements.push_back(e);
        } else if (tag == "property") {
            if (elements.empty()) throw std::runtime_error("PLY: property before element");
            PlyProperty p;
            ls >> p.type;
            if (p.type == "list") {
                p.list = true;
                ls >> p.countType >> p.type;
            }
            ls >> p.name;
            elements.back().props.push_back(p);
        } else if (tag == "end_header") break;
    }
    const bool ascii = format == "ascii";
    const bool big = format == "binary_big_endian";
    if (!ascii && format != "binary_little_endian" && !big) throw std::runtime_error("PLY: format " + format);
    MeshData mesh;
    mesh.name = path;
    for (const PlyElement& e : elements) {
        for (std::size_t r = 0; r < e.count; ++r) {
            std::istringstream ls;
            if (ascii) {
                if (!std::getline(in, line)) throw std::runtime_error("PLY: truncated");
                ls.str(line);
            }
            auto scalar = [&](const std::string& t) {
                if (!ascii) return readBinary(in, t, big);
                double v;
                if (!(ls >> v)) throw std::runtime_error("PLY: bad value");
                return v;
            };
            MeshVertex v;
            MeshFace f;
            bool color = false;
            for (const PlyProperty& p : e.props) {
                if (p.list) {
                    const auto n = static_cast<std::size_t>(scalar(p.countType));
                    std::vector<int> idx;
                    for (std::size_t i = 0; i < n; ++i) idx.push_back(static_cast<int>(scalar(p.type)));
                    if (e.name == "face" && (p.name == "vertex_indices" || p.name == "vertex_index")) f.v = idx;
                    continue;
                }
                const double x = scalar(p.type);
                if (e.name != "vertex") continue;
                const std::string& n = p.name;
                if (n == "x") v.xyz[0] = x;
                else if (n == "y") v.xyz[1] = x;
                else if (n == "z") v.xyz[2] = x;
                else if (n == "nx") v.normal[0] = x;
                else if (n == "ny") v.normal[1] = x;
                else if (n == "nz") v.normal[2] = x;
                else if (n == "s" || n == "u" || n == "texture_u") v.uv[0] = x;
                else if (n == "t" || n == "v" || n == "texture_v") v.uv[1] = x;
                else if (n == "red" || n == "diffuse_red") { color = true; v.brightness = x; }
            }
            (void)color;
            if (e.name == "vertex") mesh.vertices.push_back(v);
            else if (e.name == "face") {
                for (int i : f.v)
                    if (i < 0 || static_cast<std::size_t>(i) >= mesh.vertices.size()) throw std::runtime_error("PLY: bad index");
                if (f.v.size() >= 3) mesh.faces.push_back(f);
            }
        }
    }
    return mesh;
}

MeshData loadMesh(const std::string& path) {
    std::string lower = path;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    auto endsWith = [&](const char* ext) {
        const std::size_t n = std::strlen(ext);
        return lower.size() >= n && lower.compare(lower.size() - n, n, ext) == 0;
    };
    if (endsWith(".ply")) return loadPly(path);
    if (endsWith(".obj")) return loadObj(path);
    throw std::runtime_error(path + ": not a mesh format this reader knows (it reads .obj and .ply)");
}

void saveObj(const MeshData& mesh, const std::string& path) {
    std::ofstream out(path);
    if (!out) throw std::runtime_error("cannot write " + path);
    out.precision(17);
    for (const MeshVertex& v : mesh.vertices) out << "v " << v.xyz[0] << ' ' << v.xyz[1] << ' ' << v.xyz[2] << '\n';
    for (const MeshVertex& v : mesh.vertices) out << "vt " << v.uv[0] << ' ' << v.uv[1] << '\n';
    for (const MeshFace& f : mesh.faces) {
        out << 'f';
        for (int i : f.v) out << ' ' << i + 1 << '/' << i + 1;
        out << '\n';
    }
}

} // namespace simplify_test
