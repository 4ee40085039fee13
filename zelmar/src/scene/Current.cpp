#include "scene/Current.h"

#include "scene/World.h"

namespace zelmar {
namespace {
Handle g_camera = 0;
Handle g_background = 0;
int g_normalsAutomatically = 0;
} // namespace

Camera* currentCamera() {
    return world().camera(g_camera);
}

void setCurrentCamera(Handle camera) {
    if (camera == 0 || world().camera(camera)) g_camera = camera;
}

Background* activeBackground() {
    return world().background(g_background);
}

void setActiveBackground(Handle background) {
    if (background == 0 || world().background(background)) g_background = background;
}

int lightNormalsAutomatically() {
    return g_normalsAutomatically;
}

void setLightNormalsAutomatically(int value) {
    g_normalsAutomatically = value;
}

} // namespace zelmar
