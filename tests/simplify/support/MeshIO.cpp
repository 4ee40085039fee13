// Small OBJ and PLY readers for the simplification tests and benchmarks.
#include "MeshData.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>

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
// Readers refuse what they cannot read with a reason that names the line or the element; the
// caller adds the file's name.
[[noreturn]] void fail(const std::string& why) { throw std::runtime_error(why); }

std::string lineText(std::size_t n) { return "line " + std::to_string(n) + ": "; }

// Opens a regular file; anything else (a directory, a FIFO that would block, a device) is refused
// before it is opened.
std::ifstream openRegular(const std::string& path, std::ios::openmode mode) {
    std::error_code ec;
    const auto st = std::filesystem::status(path, ec);
    if (ec || !std::filesystem::exists(st)) fail("no such file");
    if (!std::filesystem::is_regular_file(st)) fail("not a regular file");
    std::ifstream in(path, mode);
    if (!in) fail(std::string("cannot open it: ") + std::strerror(errno));
    return in;
}

// A whole token as a number ("+1", "2.", "1e-3", "nan" and "inf" too); false for anything else.
bool parseNumber(std::string_view t, double& out) {
    if (t.size() > 1 && t[0] == '+' && t[1] != '-') t.remove_prefix(1);
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), out);
    return ec == std::errc() && end == t.data() + t.size() && !t.empty();
}

bool parseInteger(std::string_view t, long& out) {
    if (t.size() > 1 && t[0] == '+' && t[1] != '-') t.remove_prefix(1);
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), out);
    return ec == std::errc() && end == t.data() + t.size() && !t.empty();
}

// Reads the numbers of an OBJ statement: at least `least`, the first `finite` of them finite.
std::vector<double> objNumbers(std::istringstream& ls, std::size_t least, std::size_t finite, std::size_t lineNo,
                               const char* what) {
    std::vector<double> v;
    std::string item;
    while (ls >> item) {
        double x;
        if (!parseNumber(item, x)) fail(lineText(lineNo) + "'" + item + "' is not a number");
        if (v.size() < finite && !std::isfinite(x)) fail(lineText(lineNo) + "a " + what + " that is not a finite number");
        v.push_back(x);
    }
    if (v.size() < least) fail(lineText(lineNo) + "a " + what + " needs " + std::to_string(least) + " numbers");
    return v;
}

int resolveIndex(long i, std::size_t size, std::size_t lineNo) {
    if (i > 0 && static_cast<std::size_t>(i) <= size) return static_cast<int>(i - 1);
    if (i < 0 && static_cast<std::size_t>(-i) <= size) return static_cast<int>(static_cast<long>(size) + i);
    fail(lineText(lineNo) + "index " + std::to_string(i) + " refers to none of the " + std::to_string(size) + " listed");
}

bool isObjStatement(const std::string& tag) {
    static const char* const known[] = {"v",     "vt",     "vn",   "vp",      "f",      "l",        "p",        "o",
                                        "g",     "s",      "mg",   "mtllib",  "usemtl", "usemap",   "maplib",   "cstype",
                                        "deg",   "bmat",   "step", "curv",    "curv2",  "surf",     "parm",     "trim",
                                        "hole",  "scrv",   "sp",   "end",     "con",    "bevel",    "c_interp", "d_interp",
                                        "lod",   "shadow_obj", "trace_obj", "ctech", "stech", "call", "csh"};
    for (const char* k : known)
        if (tag == k) return true;
    return false;
}
} // namespace

MeshData loadObj(const std::string& path) {
    std::ifstream in = openRegular(path, std::ios::in);
    std::vector<std::array<double, 3>> pos, nrm;
    std::vector<std::array<double, 2>> tex;
    MeshData mesh;
    mesh.name = path;
    // one mesh vertex per distinct (v, vt, vn) triple
    std::map<std::array<int, 3>, int> made;
    std::string line;
    std::size_t lineNo = 0;
    while (std::getline(in, line)) {
        ++lineNo;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.find('\0') != std::string::npos) fail(lineText(lineNo) + "binary data: not a text OBJ file");
        std::istringstream ls(line);
        std::string tag;
        if (!(ls >> tag) || tag[0] == '#') continue;
        if (tag == "v") {
            const std::vector<double> p = objNumbers(ls, 3, 3, lineNo, "vertex");
            pos.push_back({p[0], p[1], p[2]});
        } else if (tag == "vt") {
            const std::vector<double> t = objNumbers(ls, 1, 0, lineNo, "texture coordinate");
            tex.push_back({t[0], t.size() > 1 ? t[1] : 0.0});
        } else if (tag == "vn") {
            const std::vector<double> n = objNumbers(ls, 3, 0, lineNo, "normal");
            nrm.push_back({n[0], n[1], n[2]});
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
                        long i = 0;
                        if (!parseInteger(part, i)) fail(lineText(lineNo) + "'" + item + "' is not a corner (v, v/vt, v//vn, v/vt/vn)");
                        key[static_cast<std::size_t>(k)] = resolveIndex(i, k == 0 ? pos.size() : k == 1 ? tex.size() : nrm.size(), lineNo);
                    } else if (k == 0) {
                        fail(lineText(lineNo) + "'" + item + "' has no vertex index");
                    }
                    if (slash == std::string::npos) break;
                    start = slash + 1;
                }
                auto it = made.find(key);
                if (it == made.end()) {
                    MeshVertex v;
                    for (int k = 0; k < 3; ++k) v.xyz[k] = pos[static_cast<std::size_t>(key[0])][static_cast<std::size_t>(k)];
                    if (key[1] >= 0) {
                        v.uv[0] = tex[static_cast<std::size_t>(key[1])][0];
                        v.uv[1] = tex[static_cast<std::size_t>(key[1])][1];
                    }
                    if (key[2] >= 0)
                        for (int k = 0; k < 3; ++k) v.normal[k] = nrm[static_cast<std::size_t>(key[2])][static_cast<std::size_t>(k)];
                    it = made.emplace(key, static_cast<int>(mesh.vertices.size())).first;
                    mesh.vertices.push_back(v);
                }
                face.v.push_back(it->second);
            }
            if (face.v.size() >= 3) mesh.faces.push_back(face);
        } else if (!isObjStatement(tag)) {
            fail(lineText(lineNo) + "'" + tag.substr(0, 20) + "' is not an OBJ statement: not an OBJ file");
        }
    }
    if (in.bad()) fail(std::string("read error: ") + std::strerror(errno));
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
    fail("PLY: unknown type '" + t + "'");
}

double readBinary(std::istream& in, const std::string& t, bool bigEndian) {
    const std::size_t n = typeSize(t);
    unsigned char b[8] = {0};
    in.read(reinterpret_cast<char*>(b), static_cast<std::streamsize>(n));
    if (!in) fail("PLY: truncated");
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

namespace {
// A list's count or a vertex index: a whole number that fits an int.
int plyWhole(double x, const char* what) {
    if (!(x >= 0 && x <= 2147483647.0) || x != std::floor(x)) fail(std::string("PLY: a ") + what + " that is not a whole number from 0");
    return static_cast<int>(x);
}
} // namespace

MeshData loadPly(const std::string& path) {
    std::ifstream in = openRegular(path, std::ios::in | std::ios::binary);
    std::error_code ec;
    const auto fileSize = static_cast<std::uintmax_t>(std::filesystem::file_size(path, ec));
    std::string line;
    std::getline(in, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line != "ply") fail("not a PLY file (it does not start with 'ply')");
    std::string format;
    std::vector<PlyElement> elements;
    bool ended = false;
    while (!ended && std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::istringstream ls(line);
        std::string tag;
        ls >> tag;
        if (tag == "format") ls >> format;
        else if (tag == "element") {
            PlyElement e;
            std::string count;
            ls >> e.name >> count;
            long n = -1;
            if (e.name.empty() || !parseInteger(count, n) || n < 0) fail("PLY: element line '" + line.substr(0, 60) + "'");
            e.count = static_cast<std::size_t>(n);
            elements.push_back(e);
        } else if (tag == "property") {
            if (elements.empty()) fail("PLY: property before element");
            PlyProperty p;
            ls >> p.type;
            if (p.type == "list") {
                p.list = true;
                ls >> p.countType >> p.type;
                typeSize(p.countType);
            }
            typeSize(p.type);
            ls >> p.name;
            elements.back().props.push_back(p);
        } else if (tag == "end_header") ended = true;
    }
    if (!ended) fail("PLY: the header has no end_header");
    const bool ascii = format == "ascii";
    const bool big = format == "binary_big_endian";
    if (!ascii && format != "binary_little_endian" && !big) fail("PLY: format '" + format + "'");
    MeshData mesh;
    mesh.name = path;
    for (const PlyElement& e : elements) {
        // every row takes at least a byte (a line in ASCII): a count the rest of the file cannot
        // hold is refused before anything is made for it
        const std::streamoff at = in.tellg();
        const std::uintmax_t left = at < 0 || static_cast<std::uintmax_t>(at) > fileSize ? 0 : fileSize - static_cast<std::uintmax_t>(at);
        if (e.count > left) fail("PLY: element '" + e.name + "' lists " + std::to_string(e.count) + " rows, more than the file holds");
        if (e.name == "vertex") {
            int xyz = 0;
            for (const PlyProperty& p : e.props) xyz += !p.list && (p.name == "x" || p.name == "y" || p.name == "z");
            if (xyz != 3 && e.count > 0) fail("PLY: the vertex element has no x, y and z");
        }
        for (std::size_t r = 0; r < e.count; ++r) {
            std::istringstream ls;
            if (ascii) {
                if (!std::getline(in, line)) fail("PLY: truncated in element '" + e.name + "'");
                ls.str(line);
            }
            auto scalar = [&](const std::string& t) {
                if (!ascii) return readBinary(in, t, big);
                std::string item;
                double v;
                if (!(ls >> item) || !parseNumber(item, v)) fail("PLY: element '" + e.name + "', row " + std::to_string(r) + ": bad value");
                return v;
            };
            MeshVertex v;
            MeshFace f;
            for (const PlyProperty& p : e.props) {
                if (p.list) {
                    const int n = plyWhole(scalar(p.countType), "list length");
                    std::vector<int> idx;
                    for (int i = 0; i < n; ++i) idx.push_back(plyWhole(scalar(p.type), "vertex index"));
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
                else if (n == "red" || n == "diffuse_red") v.brightness = x;
            }
            if (e.name == "vertex") {
                for (const double c : v.xyz)
                    if (!std::isfinite(c)) fail("PLY: vertex " + std::to_string(r) + " is not at a finite position");
                mesh.vertices.push_back(v);
            } else if (e.name == "face") {
                for (int i : f.v)
                    if (static_cast<std::size_t>(i) >= mesh.vertices.size())
                        fail("PLY: face " + std::to_string(r) + " refers to vertex " + std::to_string(i) + " of " +
                             std::to_string(mesh.vertices.size()));
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
    const std::string ext = std::filesystem::path(path).extension().string();
    fail((ext.empty() ? std::string("a file without extension") : "'" + ext + "'") +
         " is not a mesh format this reader knows (it reads .obj and .ply)");
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
