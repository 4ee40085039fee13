// Builds the shipped worlds through the engine's C API: the sample world (data/samples/Sample.wld) and the
// templates (data/Templates/*.wld), with procedural bitmaps. Run by scripts or by hand:
//   vexil_samplegen <repository>/data
// Each world is saved with ZELMAR_engine_save and the editor's flag word 0x1203; the engine writes the
// bitmaps it uses into "bitmaps" beside the world.
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr double kPi = 3.14159265358979323846;

struct V3 { double x, y, z; };
struct UV { double u, v; };

// ---- procedural images ----------------------------------------------------------------------------------

uint32_t hash2(int x, int y, uint32_t seed) {
    uint32_t h = static_cast<uint32_t>(x) * 374761393u + static_cast<uint32_t>(y) * 668265263u + seed * 2246822519u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return h ^ (h >> 16);
}
double noise01(int x, int y, uint32_t seed) { return (hash2(x, y, seed) & 0xFFFF) / 65535.0; }

// Smooth value noise, tiling with period `period`.
double smoothNoise(double x, double y, int period, uint32_t seed) {
    const int x0 = static_cast<int>(std::floor(x)), y0 = static_cast<int>(std::floor(y));
    const double fx = x - x0, fy = y - y0;
    auto at = [&](int xi, int yi) { return noise01(((xi % period) + period) % period, ((yi % period) + period) % period, seed); };
    const double sx = fx * fx * (3 - 2 * fx), sy = fy * fy * (3 - 2 * fy);
    const double a = at(x0, y0) + (at(x0 + 1, y0) - at(x0, y0)) * sx;
    const double b = at(x0, y0 + 1) + (at(x0 + 1, y0 + 1) - at(x0, y0 + 1)) * sx;
    return a + (b - a) * sy;
}
double fractal(double x, double y, int period, uint32_t seed) {
    double sum = 0, amp = 0.5;
    for (int o = 0; o < 4; ++o) {
        sum += amp * smoothNoise(x, y, period, seed + o);
        x *= 2; y *= 2; period *= 2; amp *= 0.5;
    }
    return sum / 0.9375;
}

using Shader = std::function<void(int x, int y, double& r, double& g, double& b)>;

std::string writeImage(const fs::path& dir, const std::string& file, int w, int h, const Shader& shade) {
    std::vector<unsigned char> rgba(static_cast<size_t>(w) * h * 4);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double r = 0, g = 0, b = 0;
            shade(x, y, r, g, b);
            unsigned char* p = &rgba[(static_cast<size_t>(y) * w + x) * 4];
            p[0] = static_cast<unsigned char>(std::clamp(r, 0.0, 255.0));
            p[1] = static_cast<unsigned char>(std::clamp(g, 0.0, 255.0));
            p[2] = static_cast<unsigned char>(std::clamp(b, 0.0, 255.0));
            p[3] = 255;
        }
    const std::string path = (dir / file).string();
    if (ZELMAR_utilities_save_bitmap(rgba.data(), w, h, path.c_str()) != 1) {
        std::fprintf(stderr, "samplegen: could not write %s: %s\n", path.c_str(), ZELMAR_engine_get_last_error());
        std::exit(1);
    }
    return path;
}

int loadBitmap(const std::string& path) {
    const int b = ZELMAR_bitmap_load(path.c_str(), -1);
    if (b == 0) {
        std::fprintf(stderr, "samplegen: could not load %s: %s\n", path.c_str(), ZELMAR_engine_get_last_error());
        std::exit(1);
    }
    return b;
}

struct Bitmaps {
    int grass = 0, brick = 0, roof = 0, wood = 0, stone = 0, sky = 0, water = 0, checker = 0, plaster = 0, sand = 0;
};

Bitmaps makeBitmaps(const fs::path& dir) {
    Bitmaps b;
    b.grass = loadBitmap(writeImage(dir, "grass.jpg", 128, 128, [](int x, int y, double& r, double& g, double& bl) {
        const double n = fractal(x / 16.0, y / 16.0, 8, 11), blade = noise01(x, y, 12);
        r = 55 + 40 * n + 20 * blade; g = 105 + 70 * n + 30 * blade; bl = 35 + 20 * n;
    }));
    b.brick = loadBitmap(writeImage(dir, "brick.bmp", 64, 64, [](int x, int y, double& r, double& g, double& bl) {
        const int row = y / 16, yy = y % 16;
        const int xx = (x + (row % 2) * 16) % 32;
        const bool mortar = yy < 2 || xx < 2;
        const double n = noise01(x, y, 21) * 30 + smoothNoise(x / 8.0, y / 8.0, 8, 22) * 25;
        if (mortar) { r = 190 + n * 0.3; g = 185 + n * 0.3; bl = 170 + n * 0.3; }
        else {
            const double tint = noise01((x + (row % 2) * 16) / 32, row, 23) * 40;
            r = 150 + tint + n; g = 62 + tint * 0.4 + n * 0.5; bl = 45 + n * 0.4;
        }
    }));
    b.roof = loadBitmap(writeImage(dir, "rooftiles.bmp", 64, 64, [](int x, int y, double& r, double& g, double& bl) {
        const int row = y / 8;
        const double xs = std::fmod(x + (row % 2) * 8.0, 16.0) / 16.0;
        const double arch = std::sin(xs * kPi);
        const double shade = 0.55 + 0.45 * arch * (1.0 - (y % 8) / 10.0);
        r = 175 * shade + noise01(x, y, 31) * 15; g = 60 * shade; bl = 40 * shade;
    }));
    b.wood = loadBitmap(writeImage(dir, "wood.jpg", 64, 128, [](int x, int y, double& r, double& g, double& bl) {
        const double grain = std::sin((x + 6 * smoothNoise(x / 16.0, y / 32.0, 4, 41)) * 0.9) * 0.5 + 0.5;
        const double plank = (x % 16 == 0) ? 0.6 : 1.0;
        r = (120 + 45 * grain) * plank; g = (75 + 30 * grain) * plank; bl = (40 + 15 * grain) * plank;
    }));
    b.stone = loadBitmap(writeImage(dir, "stone.bmp", 64, 64, [](int x, int y, double& r, double& g, double& bl) {
        const int row = y / 21, yy = y % 21;
        const int xx = (x + (row % 2) * 11) % 32;
        const bool joint = yy < 2 || xx < 2;
        const double n = fractal(x / 8.0, y / 8.0, 8, 51) * 60;
        const double v = joint ? 70 + n * 0.3 : 120 + n;
        r = v; g = v * 0.97; bl = v * 0.92;
    }));
    b.sky = loadBitmap(writeImage(dir, "sky.jpg", 256, 128, [](int x, int y, double& r, double& g, double& bl) {
        const double t = y / 127.0;  // 0 at the top
        const double cloud = std::max(0.0, fractal(x / 32.0, y / 16.0, 8, 61) - 0.5) * 2.0 * (1.0 - t);
        r = 70 + 120 * t; g = 120 + 100 * t; bl = 215 + 30 * t;
        r += (255 - r) * cloud; g += (255 - g) * cloud; bl += (255 - bl) * cloud;
    }));
    b.water = loadBitmap(writeImage(dir, "water.jpg", 64, 64, [](int x, int y, double& r, double& g, double& bl) {
        const double n = fractal(x / 8.0, y / 8.0, 8, 71);
        r = 30 + 40 * n; g = 90 + 60 * n; bl = 150 + 70 * n;
    }));
    b.checker = loadBitmap(writeImage(dir, "checker.bmp", 64, 64, [](int x, int y, double& r, double& g, double& bl) {
        const bool dark = ((x / 32) + (y / 32)) % 2 == 1;
        const double n = noise01(x, y, 81) * 12;
        const double v = (dark ? 60 : 215) + n;
        r = v; g = v; bl = v * (dark ? 1.1 : 0.97);
    }));
    b.plaster = loadBitmap(writeImage(dir, "plaster.jpg", 64, 64, [](int x, int y, double& r, double& g, double& bl) {
        const double n = fractal(x / 8.0, y / 8.0, 8, 91) * 25;
        r = 225 + n * 0.4; g = 215 + n * 0.4; bl = 190 + n * 0.3;
    }));
    b.sand = loadBitmap(writeImage(dir, "sand.jpg", 64, 64, [](int x, int y, double& r, double& g, double& bl) {
        const double n = fractal(x / 8.0, y / 8.0, 8, 95) * 30 + noise01(x, y, 96) * 15;
        r = 200 + n; g = 175 + n; bl = 120 + n * 0.6;
    }));
    return b;
}

// ---- geometry ---------------------------------------------------------------------------------------------------

struct Fill { int bitmap = 0; int r = 200, g = 200, b = 200; };
Fill tex(int bitmap) { Fill f; f.bitmap = bitmap; return f; }
Fill rgb(int r, int g, int b) { Fill f; f.r = r; f.g = g; f.b = b; return f; }

int counter = 0;

// The shapes below list their corners counter-clockwise seen from outside; the engine's front is
// the side from which a ring runs clockwise, so the points go in backwards.
int poly(int group, const std::vector<V3>& pts, const std::vector<UV>& uvs, const Fill& fill, const char* name = nullptr) {
    const int p = ZELMAR_polygon_create();
    for (size_t i = pts.size(); i-- > 0;) {
        const UV uv = i < uvs.size() ? uvs[i] : UV{0, 0};
        const double v[6] = {pts[i].x, pts[i].y, pts[i].z, uv.u, uv.v, 100.0};
        ZELMAR_polygon_add_point(p, v);
    }
    if (fill.bitmap)
        ZELMAR_polygon_set_bitmap_fill(p, fill.bitmap);
    else
        ZELMAR_polygon_set_color_fill(p, fill.r, fill.g, fill.b);
    const std::string n = name ? std::string(name) : "Pol" + std::to_string(++counter);
    ZELMAR_polygon_set_name(p, n.c_str());
    ZELMAR_polygon_set_group(p, group);
    ZELMAR_engine_add_polygon(p);
    return p;
}

// A quad with texture repeats su x sv.
void quad(int group, V3 a, V3 b, V3 c, V3 d, const Fill& f, double su = 1, double sv = 1) {
    poly(group, {a, b, c, d}, {{0, sv}, {su, sv}, {su, 0}, {0, 0}}, f);
}

int group(const char* name, int father) {
    const int g = ZELMAR_group_create(name);
    ZELMAR_group_set_father_group(g, father);
    return g;
}

// An axis-aligned box from (x0,y0,z0) to (x1,y1,z1); texture repeats by size / tile.
void box(int g, V3 lo, V3 hi, const Fill& side, const Fill& top, double tile = 0, bool bottom = false) {
    auto rep = [&](double len) { return tile > 0 ? std::max(1.0, std::round(len / tile)) : 1.0; };
    const double dx = hi.x - lo.x, dy = hi.y - lo.y, dz = hi.z - lo.z;
    quad(g, {lo.x, lo.y, lo.z}, {hi.x, lo.y, lo.z}, {hi.x, lo.y, hi.z}, {lo.x, lo.y, hi.z}, side, rep(dx), rep(dz));  // front (y-)
    quad(g, {hi.x, hi.y, lo.z}, {lo.x, hi.y, lo.z}, {lo.x, hi.y, hi.z}, {hi.x, hi.y, hi.z}, side, rep(dx), rep(dz));  // back
    quad(g, {lo.x, hi.y, lo.z}, {lo.x, lo.y, lo.z}, {lo.x, lo.y, hi.z}, {lo.x, hi.y, hi.z}, side, rep(dy), rep(dz));  // left
    quad(g, {hi.x, lo.y, lo.z}, {hi.x, hi.y, lo.z}, {hi.x, hi.y, hi.z}, {hi.x, lo.y, hi.z}, side, rep(dy), rep(dz));  // right
    quad(g, {lo.x, lo.y, hi.z}, {hi.x, lo.y, hi.z}, {hi.x, hi.y, hi.z}, {lo.x, hi.y, hi.z}, top, rep(dx), rep(dy));   // top
    if (bottom) quad(g, {lo.x, hi.y, lo.z}, {hi.x, hi.y, lo.z}, {hi.x, lo.y, lo.z}, {lo.x, lo.y, lo.z}, top, rep(dx), rep(dy));
}

// A prism of n sides around (cx, cy) from z0 to z1, with a cone of height `cone` on top (0: flat cap).
void tower(int g, double cx, double cy, double radius, double z0, double z1, int n, const Fill& side, const Fill& capFill,
           double cone, double tile) {
    std::vector<V3> ring;
    for (int i = 0; i < n; ++i) {
        const double a = 2 * kPi * i / n;
        ring.push_back({cx + radius * std::cos(a), cy + radius * std::sin(a), 0});
    }
    const double edge = 2 * radius * std::sin(kPi / n);
    for (int i = 0; i < n; ++i) {
        const V3 a = ring[i], b = ring[(i + 1) % n];
        quad(g, {a.x, a.y, z0}, {b.x, b.y, z0}, {b.x, b.y, z1}, {a.x, a.y, z1}, side, std::max(1.0, std::round(edge / tile)),
             std::max(1.0, std::round((z1 - z0) / tile)));
    }
    if (cone > 0) {
        for (int i = 0; i < n; ++i) {
            const V3 a = ring[i], b = ring[(i + 1) % n];
            poly(g, {{a.x, a.y, z1}, {b.x, b.y, z1}, {cx, cy, z1 + cone}}, {{0, 1}, {1, 1}, {0.5, 0}}, capFill);
        }
    } else {
        std::vector<V3> cap;
        std::vector<UV> uv;
        for (const V3& p : ring) {
            cap.push_back({p.x, p.y, z1});
            uv.push_back({0.5 + (p.x - cx) / (2 * radius), 0.5 + (p.y - cy) / (2 * radius)});
        }
        poly(g, cap, uv, capFill);
    }
}

// A tree: trunk box and a canopy of two stacked octagonal cones.
void tree(int father, const char* name, double x, double y, double h, int shade) {
    const int g = group(name, father);
    const int trunk = group((std::string(name) + "_Trunk").c_str(), g);
    box(trunk, {x - 6, y - 6, 0}, {x + 6, y + 6, h * 0.35}, rgb(110, 72, 40), rgb(95, 60, 35));
    const int crown = group((std::string(name) + "_Crown").c_str(), g);
    tower(crown, x, y, h * 0.32, h * 0.3, h * 0.45, 8, rgb(40, 120 + shade, 45), rgb(40, 120 + shade, 45), h * 0.35, 1e9);
    tower(crown, x, y, h * 0.22, h * 0.62, h * 0.7, 8, rgb(50, 140 + shade, 55), rgb(55, 150 + shade, 60), h * 0.3, 1e9);
}

void ground(int g, double half, const Fill& f, double repeats) {
    quad(g, {-half, -half, 0}, {half, -half, 0}, {half, half, 0}, {-half, half, 0}, f, repeats, repeats);
}

int light(const char* name, V3 at, V3 rgbColor, int type, V3 dir = {0, 0, -1}) {
    const double loc[3] = {at.x, at.y, at.z};
    const int l = ZELMAR_light_create(name, loc);
    const double c[3] = {rgbColor.x, rgbColor.y, rgbColor.z};
    ZELMAR_light_set_color(l, c);
    ZELMAR_light_set_type_of_light(l, type);
    const double d[3] = {dir.x, dir.y, dir.z};
    ZELMAR_light_set_direction(l, d);
    ZELMAR_light_set_save_flag(l, 1);
    return l;
}

int camera(const char* name, V3 at, V3 lookAt) {
    const int c = ZELMAR_camera_create(name);
    const double loc[3] = {at.x, at.y, at.z};
    const double dir[3] = {lookAt.x - at.x, lookAt.y - at.y, lookAt.z - at.z};
    ZELMAR_camera_set_location(c, loc);
    ZELMAR_camera_set_direction1(c, dir); // level: a saved camera is not rolled
    ZELMAR_camera_set_save_flag(c, 1);
    return c;
}

int background(const char* name, int bitmap) {
    const int bk = ZELMAR_background_create(name, bitmap);
    ZELMAR_background_set_bottom(bk, -5500);
    ZELMAR_background_set_bottom_intensity(bk, 0);
    ZELMAR_background_set_distance(bk, 30000);
    ZELMAR_background_set_intensity_step(bk, 0.3);
    ZELMAR_background_set_save_flag(bk, 1);
    ZELMAR_background_use(bk);
    return bk;
}

void save(const fs::path& file, int root) {
    fs::create_directories(file.parent_path());
    if (ZELMAR_engine_save(file.string().c_str(), root, 0x1203) != 1) {
        std::fprintf(stderr, "samplegen: could not save %s: %s\n", file.string().c_str(), ZELMAR_engine_get_last_error());
        std::exit(1);
    }
    std::printf("samplegen: wrote %s (%d polygons)\n", file.string().c_str(), ZELMAR_group_get_number_of_polygons(root));
}

int newWorld() {
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    counter = 0;
    return ZELMAR_group_create("the_world");
}

// ---- the worlds --------------------------------------------------------------------------------------------------

void sampleWorld(const fs::path& data, const fs::path& scratch) {
    const int root = newWorld();
    const Bitmaps b = makeBitmaps(scratch);

    const int terrain = group("Ground", root);
    ground(terrain, 1000, tex(b.grass), 16);
    const int path = group("Path", root);
    quad(path, {-40, -1000, 0.5}, {40, -1000, 0.5}, {40, -120, 0.5}, {-40, -120, 0.5}, tex(b.sand), 1, 11);

    const int house = group("House", root);
    const int walls = group("Walls", house);
    box(walls, {-150, -120, 0}, {150, 120, 180}, tex(b.brick), rgb(120, 110, 100), 40);
    const int roof = group("Roof", house);
    quad(roof, {-165, -135, 180}, {165, -135, 180}, {165, 0, 290}, {-165, 0, 290}, tex(b.roof), 6, 4);
    quad(roof, {165, 135, 180}, {-165, 135, 180}, {-165, 0, 290}, {165, 0, 290}, tex(b.roof), 6, 4);
    poly(roof, {{-150, -120, 180}, {-150, 120, 180}, {-150, 0, 280}}, {{0, 1}, {4, 1}, {2, 0}}, tex(b.brick));
    poly(roof, {{150, 120, 180}, {150, -120, 180}, {150, 0, 280}}, {{0, 1}, {4, 1}, {2, 0}}, tex(b.brick));
    const int door = group("Door", house);
    quad(door, {-30, -121, 0}, {30, -121, 0}, {30, -121, 110}, {-30, -121, 110}, tex(b.wood), 1, 1);
    const int windows = group("Windows", house);
    for (double x : {-105.0, 75.0})
        quad(windows, {x, -121, 80}, {x + 40, -121, 80}, {x + 40, -121, 140}, {x, -121, 140}, rgb(120, 170, 220));
    for (double y : {-80.0, 30.0})
        quad(windows, {151, y, 80}, {151, y + 50, 80}, {151, y + 50, 140}, {151, y, 140}, rgb(120, 170, 220));
    const int chimney = group("Chimney", house);
    box(chimney, {70, 30, 230}, {100, 60, 320}, tex(b.brick), rgb(60, 55, 50), 30);

    const int towerGroup = group("Tower", root);
    tower(towerGroup, 420, 260, 70, 0, 360, 10, tex(b.stone), rgb(90, 60, 120), 150, 60);

    const int pond = group("Pond", root);
    {
        std::vector<V3> ring;
        std::vector<UV> uv;
        for (int i = 0; i < 16; ++i) {
            const double a = 2 * kPi * i / 16;
            ring.push_back({-420 + 130 * std::cos(a), 300 + 90 * std::sin(a), 1});
            uv.push_back({2 + 2 * std::cos(a), 2 + 2 * std::sin(a)});
        }
        poly(pond, ring, uv, tex(b.water), "Pond_Water");
    }

    const int trees = group("Trees", root);
    tree(trees, "Tree01", -330, -250, 260, 0);
    tree(trees, "Tree02", -560, 80, 320, 20);
    tree(trees, "Tree03", 300, -380, 220, -15);
    tree(trees, "Tree04", -250, 520, 280, 10);
    tree(trees, "Tree05", 620, -60, 240, 25);

    const int fence = group("Fence", root);
    for (int i = 0; i < 9; ++i) {
        const double x = -700 + i * 60;
        box(fence, {x, -600, 0}, {x + 8, -592, 70}, tex(b.wood), tex(b.wood));
    }
    quad(fence, {-700, -601, 40}, {-212, -601, 40}, {-212, -601, 55}, {-700, -601, 55}, tex(b.wood), 8, 1);

    light("Sun", {600, -800, 1200}, {255, 244, 220}, 1 + 8 + 16 + 32, {-0.4, 0.6, -0.7});
    light("Lamp", {0, -200, 150}, {255, 200, 140}, 4 + 8 + 16, {0, 0, -1});

    const double trackPts[12 * 3] = {0};
    std::vector<double> pts;
    for (int i = 0; i < 12; ++i) {
        const double a = 2 * kPi * i / 12;
        pts.insert(pts.end(), {850 * std::cos(a), 850 * std::sin(a), 260 + 60 * std::sin(3 * a)});
    }
    (void)trackPts;
    ZELMAR_track_set_save_flag(ZELMAR_track_create("Track01", pts.data(), 12, 1), 1);
    const int cam = camera("Camera01", {0, -900, 320}, {0, 0, 120});
    ZELMAR_camera_set_track(cam, "Track01");
    camera("Camera02", {700, 700, 500}, {0, 0, 100});
    background("Background01", b.sky);

    save(data / "samples" / "Sample.wld", root);
}

void templateRoom(const fs::path& data, const fs::path& scratch) {
    const int root = newWorld();
    const Bitmaps b = makeBitmaps(scratch);
    const int room = group("Room", root);
    const int floor = group("Floor", room);
    ground(floor, 300, tex(b.wood), 6);
    const int wallsG = group("Walls", room);
    quad(wallsG, {-300, 300, 0}, {300, 300, 0}, {300, 300, 250}, {-300, 300, 250}, tex(b.plaster), 4, 2);
    quad(wallsG, {300, -300, 0}, {-300, -300, 0}, {-300, -300, 250}, {300, -300, 250}, tex(b.plaster), 4, 2);
    quad(wallsG, {-300, -300, 0}, {-300, 300, 0}, {-300, 300, 250}, {-300, -300, 250}, tex(b.plaster), 4, 2);
    quad(wallsG, {300, 300, 0}, {300, -300, 0}, {300, -300, 250}, {300, 300, 250}, tex(b.plaster), 4, 2);
    const int ceiling = group("Ceiling", room);
    quad(ceiling, {-300, 300, 250}, {300, 300, 250}, {300, -300, 250}, {-300, -300, 250}, rgb(240, 238, 230));
    light("Light01", {0, 0, 230}, {255, 240, 210}, 4 + 8 + 16 + 32);
    camera("Camera01", {-250, -250, 160}, {0, 0, 80});
    save(data / "Templates" / "Empty Room.wld", root);
}

void templateField(const fs::path& data, const fs::path& scratch) {
    const int root = newWorld();
    const Bitmaps b = makeBitmaps(scratch);
    const int terrain = group("Terrain", root);
    // A gentle height field of 16 x 16 cells.
    const int n = 16;
    const double size = 2000, cell = size / n;
    auto height = [&](int i, int j) {
        const double x = i / double(n), y = j / double(n);
        return 60 * std::sin(x * 2 * kPi) * std::cos(y * 1.5 * kPi) + 40 * fractal(i / 2.0, j / 2.0, 8, 7);
    };
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const double x0 = -size / 2 + i * cell, y0 = -size / 2 + j * cell;
            const V3 a{x0, y0, height(i, j)}, c{x0 + cell, y0 + cell, height(i + 1, j + 1)};
            const V3 bb{x0 + cell, y0, height(i + 1, j)}, d{x0, y0 + cell, height(i, j + 1)};
            poly(terrain, {a, bb, c}, {{0, 0}, {1, 0}, {1, 1}}, tex(b.grass));
            poly(terrain, {a, c, d}, {{0, 0}, {1, 1}, {0, 1}}, tex(b.grass));
        }
    light("Sun", {500, -500, 1500}, {255, 245, 225}, 1 + 8 + 16 + 32, {-0.3, 0.5, -0.8});
    camera("Camera01", {0, -1200, 400}, {0, 0, 0});
    background("Background01", b.sky);
    save(data / "Templates" / "Green Field.wld", root);
}

void templateStudio(const fs::path& data, const fs::path& scratch) {
    const int root = newWorld();
    const Bitmaps b = makeBitmaps(scratch);
    const int stage = group("Stage", root);
    const int floorG = group("Floor", stage);
    ground(floorG, 400, tex(b.checker), 8);
    const int pedestals = group("Pedestals", stage);
    for (int i = 0; i < 3; ++i) {
        const double x = -200 + i * 200;
        tower(pedestals, x, 0, 45, 0, 80, 12, tex(b.stone), rgb(230, 230, 235), 0, 40);
    }
    light("Key", {-300, -300, 400}, {255, 250, 240}, 4 + 8 + 16 + 32);
    light("Fill", {350, -200, 250}, {170, 190, 255}, 4 + 8 + 16);
    light("Rim", {0, 350, 300}, {255, 220, 180}, 4 + 8 + 16 + 32);
    camera("Camera01", {0, -600, 250}, {0, 0, 60});
    save(data / "Templates" / "Studio.wld", root);
}

void templateCourtyard(const fs::path& data, const fs::path& scratch) {
    const int root = newWorld();
    const Bitmaps b = makeBitmaps(scratch);
    const int court = group("Courtyard", root);
    const int paving = group("Paving", court);
    ground(paving, 500, tex(b.stone), 12);
    const int wallsG = group("Walls", court);
    box(wallsG, {-500, 480, 0}, {500, 500, 200}, tex(b.brick), rgb(110, 100, 95), 40);
    box(wallsG, {-500, -500, 0}, {-480, 480, 200}, tex(b.brick), rgb(110, 100, 95), 40);
    box(wallsG, {480, -500, 0}, {500, 480, 200}, tex(b.brick), rgb(110, 100, 95), 40);
    const int well = group("Well", court);
    tower(well, 0, 0, 60, 0, 70, 12, tex(b.stone), tex(b.water), 0, 35);
    light("Sun", {400, -600, 1000}, {255, 245, 225}, 1 + 8 + 16 + 32, {-0.3, 0.5, -0.8});
    camera("Camera01", {0, -900, 350}, {0, 0, 40});
    background("Background01", b.sky);
    save(data / "Templates" / "Courtyard.wld", root);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <data folder>\n", argv[0]);
        return 2;
    }
    const fs::path data = argv[1];
    const fs::path scratch = fs::temp_directory_path() / ("vexil-samplegen-" + std::to_string(::getpid()));
    fs::create_directories(scratch);
    sampleWorld(data, scratch);
    templateRoom(data, scratch);
    templateField(data, scratch);
    templateStudio(data, scratch);
    templateCourtyard(data, scratch);
    ZELMAR_engine_close();
    fs::remove_all(scratch);
    return 0;
}
