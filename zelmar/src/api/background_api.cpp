// Backgrounds: a bitmap drawn behind the world and its four fade numbers.
#include "api/EntityArgs.h"
#include "scene/Current.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {

void setScalar(int background, double value, double Background::*field, const char* op) {
    if (Background* b = backgroundArg(background, op); b && finiteArg(value, op)) b->*field = value;
}

double getScalar(int background, double Background::*field, const char* op) {
    const Background* b = backgroundArg(background, op);
    return b ? b->*field : 0.0;
}

bool bitmapOrNone(int bitmap, const char* op) {
    if (bitmap == 0 || world().bitmap(bitmap)) return true;
    setLastError(std::string(op) + ": " + handleText(bitmap) + " is not a bitmap");
    return false;
}

} // namespace

extern "C" {

int ZELMAR_background_create(const char* name, int bitmap) {
    const char* op = "background_create";
    if (!nameArg(name, op) || !bitmapOrNone(bitmap, op)) return 0;
    Background* b = world().createBackground(name);
    if (!b) return 0;
    b->bitmap = bitmap;
    return b->handle;
}

void ZELMAR_background_delete(int background) {
    if (Background* b = backgroundArg(background, "background_delete")) world().destroyBackground(*b);
}

int ZELMAR_background_get_first_background(void) {
    return firstOf<Background>();
}

int ZELMAR_background_get_next(int background) {
    return nextAfter(backgroundArg(background, "background_get_next"));
}

int ZELMAR_background_get_handle(const char* name) {
    const Background* b = findByName<Background>(name);
    return b ? b->handle : 0;
}

void ZELMAR_background_set_name(int background, const char* name) {
    if (Background* b = backgroundArg(background, "background_set_name");
        b && nameArg(name, "background_set_name"))
        b->name = name;
}

void ZELMAR_background_set_save_flag(int background, int flag) {
    if (Background* b = backgroundArg(background, "background_set_save_flag")) b->saveFlag = flagValue(flag);
}

int ZELMAR_background_get_bitmap(int background) {
    const Background* b = backgroundArg(background, "background_get_bitmap");
    return b && world().bitmap(b->bitmap) ? b->bitmap : 0;
}

void ZELMAR_background_set_bitmap(int background, int bitmap) {
    const char* op = "background_set_bitmap";
    if (Background* b = backgroundArg(background, op); b && bitmapOrNone(bitmap, op)) b->bitmap = bitmap;
}

double ZELMAR_background_get_bottom(int background) {
    return getScalar(background, &Background::bottom, "background_get_bottom");
}
void ZELMAR_background_set_bottom(int background, double bottom) {
    setScalar(background, bottom, &Background::bottom, "background_set_bottom");
}
double ZELMAR_background_get_bottom_intensity(int background) {
    return getScalar(background, &Background::bottomIntensity, "background_get_bottom_intensity");
}
void ZELMAR_background_set_bottom_intensity(int background, double intensity) {
    setScalar(background, intensity, &Background::bottomIntensity, "background_set_bottom_intensity");
}
double ZELMAR_background_get_distance(int background) {
    return getScalar(background, &Background::distance, "background_get_distance");
}
void ZELMAR_background_set_distance(int background, double distance) {
    setScalar(background, distance, &Background::distance, "background_set_distance");
}
double ZELMAR_background_get_intensity_step(int background) {
    return getScalar(background, &Background::intensityStep, "background_get_intensity_step");
}
void ZELMAR_background_set_intensity_step(int background, double step) {
    setScalar(background, step, &Background::intensityStep, "background_set_intensity_step");
}

int ZELMAR_background_use(int background) {
    if (!backgroundArg(background, "background_use")) return 0;
    setActiveBackground(background);
    return 1;
}

} // extern "C"
