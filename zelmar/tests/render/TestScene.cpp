#include "TestScene.h"

#include "render/PngWriter.h"
#include "render/Settings.h"
#include "scene/Current.h"
#include <zelmar/zelmar.h>

#include <cstdlib>
#include <sstream>

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#include <stb_image.h>
#pragma GCC diagnostic pop

namespace zelmar::test {

void resetEngine() {
    world().clear();
    render::Settings& s = render::settings();
    const int threads = s.threads;
    s = render::Settings{};
    s.threads = threads;
    render::setAnimationClockMs(0);
    setActiveBackground(0);
    setCurrentCamera(0);
}

Group* group(const std::string& name, Group* father) {
    Group* g = world().createGroup(name);
    if (father) world().setFather(*g, father);
    return g;
}

Polygon* polygon(Group* g, const std::vector<V>& ring, std::array<int, 3> color) {
    World& w = world();
    Polygon* p = w.createPolygon();
    for (const V& v : ring) {
        PointData d;
        d.xyz[0] = v.x, d.xyz[1] = v.y, d.xyz[2] = v.z;
        d.uv[0] = v.u, d.uv[1] = v.v;
        w.addPoint(*p, d);
    }
    for (int i = 0; i < 3; ++i)
        p->fill.color[i] = color[i];
    w.setPolygonGroup(*p, g);
    return p;
}

void changed(Polygon* p) {
    ++p->version;
    if (p->group) ++p->group->version;
    world().touch();
}

Camera* cameraAlongX(const std::array<double, 3>& eye, double zoom, double nearDepth) {
    Camera* c = world().createCamera("test camera");
    for (int i = 0; i < 3; ++i)
        c->location[i] = eye[i];
    const double axis[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int r = 0; r < 3; ++r)
        for (int i = 0; i < 3; ++i)
            c->axis[r][i] = axis[r][i];
    c->zoom = zoom;
    c->distanceFromEye = nearDepth;
    return c;
}

Bitmap* bitmap(const std::string& name, int width, int height, unsigned (*pixel)(int x, int y)) {
    Bitmap* b = world().createBitmap(name);
    b->width = width;
    b->height = height;
    b->rgba.resize(static_cast<size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const unsigned c = pixel(x, y);
            uint8_t* o = &b->rgba[(static_cast<size_t>(y) * width + x) * 4];
            o[0] = (c >> 16) & 0xFF, o[1] = (c >> 8) & 0xFF, o[2] = c & 0xFF, o[3] = 255;
        }
    return b;
}

std::vector<uint8_t> renderImage(Camera* c, int width, int height) {
    const int t = ZELMAR_target_create(width, height);
    std::vector<uint8_t> out(static_cast<size_t>(width) * height * 4);
    if (ZELMAR_engine_render(t, c->handle) != 1)
        out.clear();
    else
        ZELMAR_target_read_pixels(t, out.data(), static_cast<int>(out.size()));
    ZELMAR_target_destroy(t);
    return out;
}

std::string matchGolden(const std::string& name, const std::vector<uint8_t>& rgba, int width, int height,
                        int tolerance) {
    if (rgba.size() != static_cast<size_t>(width) * height * 4) return "no picture";
    const char* dir = std::getenv("ZELMAR_GOLDEN_DIR");
    const std::string path = std::string(dir ? dir : ZELMAR_GOLDEN_DIR_DEFAULT) + "/" + name + ".png";
    const char* update = std::getenv("ZELMAR_UPDATE_GOLDENS");
    if (update && std::string(update) == "1") {
        std::string error;
        return render::writePng(path, rgba.data(), width, height, false, error) ? "" : error;
    }
    int w = 0, h = 0, comp = 0;
    stbi_uc* g = stbi_load(path.c_str(), &w, &h, &comp, 4);
    if (!g) return "missing golden " + path + " (ZELMAR_UPDATE_GOLDENS=1 writes it)";
    std::string result;
    if (w != width || h != height) {
        result = "golden size differs";
    } else {
        int bad = 0;
        std::ostringstream first;
        for (int i = 0; i < width * height; ++i)
            for (int k = 0; k < 3; ++k)
                if (std::abs(int(g[i * 4 + k]) - int(rgba[i * 4 + k])) > tolerance) {
                    if (bad == 0)
                        first << "first at (" << i % width << ", " << i / width << ") channel " << k
                              << ": golden " << int(g[i * 4 + k]) << ", got " << int(rgba[i * 4 + k]);
                    ++bad;
                    break;
                }
        if (bad) result = std::to_string(bad) + " pixels differ from " + path + "; " + first.str();
    }
    stbi_image_free(g);
    return result;
}

std::array<int, 3> pixelAt(const std::vector<uint8_t>& rgba, int x, int y, int width) {
    const size_t i = (static_cast<size_t>(y) * width + x) * 4;
    return {rgba[i], rgba[i + 1], rgba[i + 2]};
}

} // namespace zelmar::test
