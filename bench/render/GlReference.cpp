#include "GlReference.h"

#ifdef ZELMAR_BENCH_HAVE_GL
#define GL_GLEXT_PROTOTYPES 1
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace bench {

namespace {
struct GlVertex {
    float xyz[3];
    float uv[2];
    uint8_t rgba[4];
};
} // namespace

bool GlReference::init(std::string& error) {
    setenv("EGL_PLATFORM", "surfaceless", 0);
    auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    EGLDisplay dpy = getPlatformDisplay
                         ? getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)
                         : eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (dpy == EGL_NO_DISPLAY || !eglInitialize(dpy, nullptr, nullptr)) {
        error = "no EGL display";
        return false;
    }
    if (!eglBindAPI(EGL_OPENGL_API)) {
        error = "no desktop GL through EGL";
        return false;
    }
    const EGLint cfgAttrs[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                               EGL_NONE};
    EGLConfig cfg = nullptr;
    EGLint n = 0;
    eglChooseConfig(dpy, cfgAttrs, &cfg, 1, &n);
    const EGLint ctxAttrs[] = {EGL_CONTEXT_MAJOR_VERSION, 2, EGL_CONTEXT_MINOR_VERSION, 1, EGL_NONE};
    EGLContext ctx = eglCreateContext(dpy, n ? cfg : nullptr, EGL_NO_CONTEXT, ctxAttrs);
    if (ctx == EGL_NO_CONTEXT || !eglMakeCurrent(dpy, EGL_NO_SURFACE, EGL_NO_SURFACE, ctx)) {
        error = "no GL context";
        return false;
    }
    renderer_ = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    glGenFramebuffers(1, &fbo_);
    glBindFramebuffer(GL_FRAMEBUFFER, fbo_);
    glGenRenderbuffers(1, &color_);
    glBindRenderbuffer(GL_RENDERBUFFER, color_);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, kWidth, kHeight);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_);
    glGenRenderbuffers(1, &depth_);
    glBindRenderbuffer(GL_RENDERBUFFER, depth_);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, kWidth, kHeight);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        error = "incomplete framebuffer";
        return false;
    }
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    const double tanH = std::tan(kZoom * 0.5 * 3.14159265358979323846 / 180.0);
    const double tanV = tanH * kHeight / kWidth;
    glFrustum(-kNear * tanH, kNear * tanH, -kNear * tanV, kNear * tanV, kNear, 100.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glShadeModel(GL_SMOOTH);
    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, 0.0f);
    glFogf(GL_FOG_END, static_cast<float>(kFogEnd));
    const float fogColor[4] = {90 / 255.0f, 100 / 255.0f, 120 / 255.0f, 1};
    glFogfv(GL_FOG_COLOR, fogColor);
    glHint(GL_FOG_HINT, GL_FASTEST);
    glGenTextures(1, &tex_);
    glBindTexture(GL_TEXTURE_2D, tex_);
    const std::vector<uint8_t> t = textureRgba();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 256, 256, 0, GL_RGBA, GL_UNSIGNED_BYTE, t.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_TEXTURE_2D);
    glClearColor(0, 0, 0, 1);
    return true;
}

void GlReference::upload(const Grid& g) {
    std::vector<GlVertex> v(g.triangles.size());
    for (size_t i = 0; i < v.size(); ++i) {
        const GridVertex& s = g.triangles[i];
        // Engine (ahead, left, up) to GL eye space (right, up, towards the viewer).
        v[i].xyz[0] = static_cast<float>(-s.xyz[1]);
        v[i].xyz[1] = static_cast<float>(s.xyz[2]);
        v[i].xyz[2] = static_cast<float>(-s.xyz[0]);
        v[i].uv[0] = s.u;
        v[i].uv[1] = s.v;
        v[i].rgba[0] = s.rgb[0], v[i].rgba[1] = s.rgb[1], v[i].rgba[2] = s.rgb[2], v[i].rgba[3] = 255;
    }
    if (!vbo_) glGenBuffers(1, &vbo_);
    glBindBuffer(GL_ARRAY_BUFFER, vbo_);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(v.size() * sizeof(GlVertex)), v.data(),
                 GL_STATIC_DRAW);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(GlVertex), reinterpret_cast<void*>(offsetof(GlVertex, xyz)));
    glTexCoordPointer(2, GL_FLOAT, sizeof(GlVertex), reinterpret_cast<void*>(offsetof(GlVertex, uv)));
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(GlVertex), reinterpret_cast<void*>(offsetof(GlVertex, rgba)));
    count_ = static_cast<int>(v.size());
}

void GlReference::drawFrame() {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDrawArrays(GL_TRIANGLES, 0, count_);
    glFinish();
}

std::vector<uint8_t> GlReference::readRgba() {
    std::vector<uint8_t> px(static_cast<size_t>(kWidth) * kHeight * 4), flipped(px.size());
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, px.data());
    const size_t row = static_cast<size_t>(kWidth) * 4;
    for (int y = 0; y < kHeight; ++y)
        std::copy_n(px.data() + (kHeight - 1 - y) * row, row, flipped.data() + y * row);
    return flipped;
}

} // namespace bench

#else

namespace bench {
bool GlReference::init(std::string& error) {
    error = "built without EGL and GL";
    return false;
}
void GlReference::upload(const Grid&) {}
void GlReference::drawFrame() {}
std::vector<uint8_t> GlReference::readRgba() {
    return {};
}
} // namespace bench

#endif
