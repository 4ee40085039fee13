// Regenerates the files the world readers are tested and fuzzed with, after a format change:
//   zelmar_io_make_corpus <fuzz corpus folder> <bad files folder>
// Seeds: small valid worlds in each format. Bad files: one fault each, named for it.
#include "BinaryFaults.h"
#include "ImageFaults.h"
#include "WorldGen.h"
#include "io/BinaryFormat.h"
#include "io/Schema.h"
#include "io/WorldFile.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

using namespace zelmar;
using namespace zelmar::io;
using namespace iotest;

namespace {

void put(const std::string& path, const Bytes& b) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
}
void put(const std::string& path, const std::string& s) {
    put(path, Bytes(s.begin(), s.end()));
}

Bytes save(World& w, Group* root, const std::string& ext, const std::string& dir) {
    const std::string path = dir + "/world" + ext;
    std::string error;
    if (!saveWorld(w, path, root, 0x1203, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        std::exit(1);
    }
    return iotest::fileBytes(path);
}

std::string replaced(std::string s, const std::string& from, const std::string& to) {
    const size_t at = s.find(from);
    if (at == std::string::npos) {
        std::fprintf(stderr, "no \"%s\" in the text\n", from.c_str());
        std::exit(1);
    }
    return s.replace(at, from.size(), to);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <fuzz corpus folder> <bad files folder>\n", argv[0]);
        return 2;
    }
    const std::string corpus = argv[1], bad = argv[2];
    iotest::TempDir tmp;
    namespace fs = std::filesystem;
    for (const char* sub : {"wld", "binary", "compressed"})
        fs::create_directories(corpus + "/" + sub);
    fs::create_directories(bad);

    iotest::GenSize small;
    small.groups = 3, small.polygons = 5, small.cameras = 1, small.lights = 1, small.tracks = 1;
    small.backgrounds = 1, small.animations = 1, small.bitmaps = 1;
    for (int seed = 1; seed <= 4; ++seed) {
        World w;
        Group* root = iotest::makeRandomWorld(w, seed, small);
        const std::string n = std::to_string(seed);
        put(corpus + "/wld/seed" + n + ".wld", save(w, root, ".wld", tmp.path));
        put(corpus + "/binary/seed" + n + ".zelmar", save(w, root, ".zelmar", tmp.path));
        put(corpus + "/binary/seed" + n + ".tolvane", save(w, root, ".tolvane", tmp.path));
        put(corpus + "/compressed/seed" + n + ".3dzelmar", save(w, root, ".3dzelmar", tmp.path));
    }
    // A plain hand-sized world: the base of the bad files.
    World w;
    Group* root = w.createGroup("the_world");
    Group* box = w.createGroup("box");
    w.setFather(*box, root);
    Polygon* p = w.createPolygon();
    for (int i = 0; i < 4; ++i) {
        PointData d;
        d.xyz[0] = i & 1, d.xyz[1] = i >> 1, d.uv[0] = 0.5;
        w.addPoint(*p, d);
    }
    w.setPolygonGroup(*p, box);
    Camera* cam = w.createCamera("cam");
    cam->saveFlag = 1;
    const std::string text(reinterpret_cast<const char*>(save(w, root, ".wld", tmp.path).data()),
                           save(w, root, ".wld", tmp.path).size());
    const Bytes bin = save(w, root, ".zelmar", tmp.path);
    const Bytes z = save(w, root, ".3dzelmar", tmp.path);
    put(corpus + "/wld/plain.wld", text);
    put(corpus + "/binary/plain.zelmar", bin);
    put(corpus + "/compressed/plain.3dzelmar", z);

    // Text faults.
    put(bad + "/empty.wld", std::string());
    put(bad + "/truncated.wld", text.substr(0, text.size() / 2));
    put(bad + "/no_end.wld", replaced(text, "end\n", ""));
    put(bad + "/nan_point.wld", replaced(text, "p 0 0 0 0.5 0", "p nan 0 0 0.5 0"));
    put(bad + "/inf_zoom.wld", replaced(text, "zoom=60", "zoom=inf"));
    put(bad + "/huge_number.wld", replaced(text, "zoom=60", "zoom=1e999"));
    put(bad + "/dangling_style_bitmap.wld", replaced(text, "bitmap=none", "bitmap=bitmap:7"));
    put(bad + "/dangling_polygon_group.wld", replaced(text, "polygon group=1", "polygon group=9"));
    put(bad + "/father_cycle.wld", replaced(text, "group 0 father=-1", "group 0 father=1"));
    put(bad + "/self_father.wld", replaced(text, "group 1 father=0", "group 1 father=1"));
    put(bad + "/missing_points.wld", replaced(text, "points=4", "points=5"));
    put(bad + "/absurd_points.wld", replaced(text, "points=4", "points=4000000000"));
    put(bad + "/short_point_line.wld", replaced(text, "p 0 0 0 0.5 0", "p 0 0"));
    put(bad + "/unknown_field.wld", replaced(text, "zoom=60", "zoom=60 colour_of_sky=3"));
    put(bad + "/duplicate_field.wld", replaced(text, "zoom=60", "zoom=60 zoom=60"));
    put(bad + "/bad_escape.wld", replaced(text, "name=\"cam\"", "name=\"c\\qam\""));
    put(bad + "/unterminated_string.wld", replaced(text, "name=\"cam\"", "name=\"cam"));
    put(bad + "/bitmap_path_escape.wld",
        replaced(text, "group 0",
                 "bitmap 0 file=\"../../etc/passwd\" name=\"x\" transparent_index=-1\ngroup 0"));
    put(bad + "/index_out_of_order.wld", replaced(text, "camera 0", "camera 3"));
    put(bad + "/future_version.wld", replaced(text, "zelmar-world-text 1", "zelmar-world-text 99"));
    put(bad + "/wrong_ref_kind.wld", replaced(text, "bitmap=none", "bitmap=camera:0"));
    put(bad + "/negative_count.wld", replaced(text, "points=4", "points=-4"));

    // Binary faults; checksums recomputed unless the checksum is the fault.
    put(bad + "/garbage.bin", Bytes{'M', 'Z', 0x90, 0, 3, 0, 0, 0, 4, 0xff, 0xff});
    Bytes g = bin;
    for (size_t i = 16; i < g.size(); ++i)
        g[i] = static_cast<uint8_t>(i * 131 + 7);
    put(bad + "/garbage_after_magic.zelmar", g);
    put(bad + "/truncated.zelmar", Bytes(bin.begin(), bin.begin() + bin.size() / 2));
    put(bad + "/header_only.zelmar", Bytes(bin.begin(), bin.begin() + 16));
    {
        Bytes b = bin;
        b[find(b, "GRPS").at + 20] ^= 1;
        put(bad + "/bad_checksum.zelmar", b);
    }
    {
        Bytes b = bin;
        const Chunk c = find(b, "GRPS");
        const uint32_t n = 0xFFFFFFF0u;
        std::memcpy(&b[c.at + 16], &n, 4);
        fixCrc(b, c);
        put(bad + "/absurd_group_count.zelmar", b);
    }
    {
        Bytes b = bin;
        const Chunk c = find(b, "POLY");
        const uint64_t len = uint64_t(1) << 62;
        std::memcpy(&b[c.at + 8], &len, 8);
        put(bad + "/absurd_chunk_length.zelmar", b);
    }
    {
        Bytes b = bin;
        const Chunk c = find(b, "GRPS");
        const int32_t father = 1; // group 0 names group 1: forward link
        std::memcpy(&b[c.at + 20], &father, 4);
        fixCrc(b, c);
        put(bad + "/father_forward.zelmar", b);
    }
    {
        // NaN in the first point's x: the point bytes end the POLY chunk's only polygon.
        Bytes b = bin;
        const Chunk c = find(b, "POLY");
        const size_t end = c.at + 16 + c.len;
        const size_t pointBytes = 4 * 5 * 8; // xyz and uv of four points
        const uint64_t nan = 0x7FF8000000000001ull;
        std::memcpy(&b[end - pointBytes], &nan, 8);
        fixCrc(b, c);
        put(bad + "/nan_point.zelmar", b);
    }
    {
        Bytes b = bin;
        const Chunk c = find(b, "POLY");
        const uint32_t group = 77;
        std::memcpy(&b[c.at + 20], &group, 4);
        fixCrc(b, c);
        put(bad + "/dangling_polygon_group.zelmar", b);
    }
    put(bad + "/empty_record_bomb.zelmar", emptyRecordBomb(bin));
    {
        Bytes b = bin;
        const uint32_t version = 42;
        std::memcpy(&b[8], &version, 4);
        put(bad + "/future_version.zelmar", b);
    }
    {
        Bytes b = bin;
        b.push_back(0);
        put(bad + "/trailing_bytes.zelmar", b);
    }
    {
        // Polygons before the groups they name.
        const Chunk grps = find(bin, "GRPS"), poly = find(bin, "POLY");
        Bytes b(bin.begin(), bin.begin() + static_cast<long>(grps.at));
        b.insert(b.end(), bin.begin() + static_cast<long>(poly.at),
                 bin.begin() + static_cast<long>(poly.at + 20 + poly.len));
        b.insert(b.end(), bin.begin() + static_cast<long>(grps.at), bin.begin() + static_cast<long>(poly.at));
        b.insert(b.end(), bin.begin() + static_cast<long>(poly.at + 20 + poly.len), bin.end());
        put(bad + "/chunks_out_of_order.zelmar", b);
    }

    // Compressed faults.
    put(bad + "/truncated.3dzelmar", Bytes(z.begin(), z.begin() + z.size() / 2));
    put(bad + "/absurd_size.3dzelmar", compress(bin, uint64_t(1) << 60));
    put(bad + "/size_too_small.3dzelmar", compress(bin, bin.size() - 1));
    put(bad + "/size_too_large.3dzelmar", compress(bin, bin.size() + 100));
    put(bad + "/bad_inside.3dzelmar",
        compress(Bytes(bin.begin(), bin.begin() + bin.size() - 3), bin.size() - 3));
    {
        Bytes b = z;
        for (size_t i = 40; i < b.size() && i < 60; ++i)
            b[i] ^= 0x5A;
        put(bad + "/damaged_frame.3dzelmar", b);
    }
    // 32 KiB that inflate to 1 GiB; a schema whose record size wraps a 32-bit sum (12 MB of
    // schema, padded as the writer pads); data that is no world, cut short.
    const Bytes bomb = compressedZeros(uint64_t(1) << 30);
    put(bad + "/ratio_bomb.3dzelmar", bomb);
    put(corpus + "/compressed/ratio_bomb.3dzelmar", bomb);
    const Bytes wrapping = wrappingRecordSize(bin);
    const Bytes wrappingZ = compress(wrapping, wrapping.size(), true);
    put(bad + "/wrapping_record_size.3dzelmar", wrappingZ);
    put(corpus + "/compressed/wrapping_record_size.3dzelmar", wrappingZ);
    put(bad + "/garbage_inside.3dzelmar", compressedGarbageCutShort(256 << 10));

    // Bitmaps the image reader must refuse cleanly.
    fs::create_directories(corpus + "/image");
    put(corpus + "/image/no_reason.jpg", damagedJpeg());
    put(corpus + "/image/index_past_palette.bmp", bmpIndexPastPalette());
    put(corpus + "/image/huge_header.jpg", hugeJpegHeader());
    std::printf("corpus written\n");
    return 0;
}
