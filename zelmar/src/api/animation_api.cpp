// Two-dimensional animations: frames of bitmaps in five view directions.
#include "api/EntityArgs.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {

using Frames = std::vector<Animation::Frame>;

Frames* direction(Animation* a, int view_direction, const char* op) {
    if (!a) return nullptr;
    if (view_direction < 1 || view_direction > Animation::kViewDirections) {
        setLastError(std::string(op) + ": view direction " + std::to_string(view_direction) +
                     " is not 1 to 5");
        return nullptr;
    }
    return &a->frames[view_direction - 1];
}

Animation::Frame* frame(int animation, int view_direction, int index, const char* op) {
    Frames* f = direction(animationArg(animation, op), view_direction, op);
    if (!f) return nullptr;
    if (index < 0 || size_t(index) >= f->size()) {
        setLastError(std::string(op) + ": frame " + std::to_string(index) + " does not exist");
        return nullptr;
    }
    return &(*f)[size_t(index)];
}

} // namespace

extern "C" {

int ZELMAR_animation_create(const char* name) {
    if (!nameArg(name, "animation_create")) return 0;
    Animation* a = world().createAnimation(name);
    return a ? a->handle : 0;
}

void ZELMAR_animation_delete(int animation) {
    Animation* a = animationArg(animation, "animation_delete");
    if (!a) return;
    // Polygons playing it fall back to their colour fill.
    for (Polygon* p = world().firstPolygon(); p; p = p->nextInWorld)
        if (p->fill.animation == animation) {
            p->fill.animation = 0;
            p->fill.animationFrame = 0;
            ++p->version;
        }
    world().destroyAnimation(*a);
    world().touch();
}

int ZELMAR_animation_get_first_animation(void) {
    return firstOf<Animation>();
}

int ZELMAR_animation_get_next(int animation) {
    return nextAfter(animationArg(animation, "animation_get_next"));
}

int ZELMAR_animation_get_handle(const char* name) {
    const Animation* a = findByName<Animation>(name);
    return a ? a->handle : 0;
}

void ZELMAR_animation_set_name(int animation, const char* name) {
    if (Animation* a = animationArg(animation, "animation_set_name");
        a && nameArg(name, "animation_set_name"))
        a->name = name;
}

void ZELMAR_animation_set_save_flag(int animation, int flag) {
    if (Animation* a = animationArg(animation, "animation_set_save_flag")) a->saveFlag = flagValue(flag);
}

int ZELMAR_animation_add_bitmap(int animation, int view_direction, int bitmap) {
    const char* op = "animation_add_bitmap";
    Frames* f = direction(animationArg(animation, op), view_direction, op);
    if (!f) return 0;
    const Bitmap* b = bitmapArg(bitmap, op);
    if (!b) return 0;
    Animation::Frame fr;
    fr.bitmap = bitmap;
    fr.transparentIndex = b->transparentIndex;
    f->push_back(fr);
    return static_cast<int>(f->size());
}

int ZELMAR_animation_remove_bitmap(int animation, int view_direction, int frame_index) {
    const char* op = "animation_remove_bitmap";
    if (!frame(animation, view_direction, frame_index, op)) return 0;
    Frames& f = world().animation(animation)->frames[view_direction - 1];
    f.erase(f.begin() + frame_index);
    return 1;
}

int ZELMAR_animation_get_bitmap(int animation, int view_direction, int frame_index) {
    const Animation::Frame* f = frame(animation, view_direction, frame_index, "animation_get_bitmap");
    return f && world().bitmap(f->bitmap) ? f->bitmap : 0;
}

int ZELMAR_animation_get_frame_time(int animation, int view_direction, int frame_index) {
    const Animation::Frame* f = frame(animation, view_direction, frame_index, "animation_get_frame_time");
    return f ? f->time : 0;
}

void ZELMAR_animation_set_frame_time(int animation, int view_direction, int frame_index, int time) {
    const char* op = "animation_set_frame_time";
    Animation::Frame* f = frame(animation, view_direction, frame_index, op);
    if (!f) return;
    if (time < 0) {
        setLastError(std::string(op) + ": a frame time cannot be negative");
        return;
    }
    f->time = time;
}

int ZELMAR_animation_get_frame_transparent_index(int animation, int view_direction, int frame_index) {
    const Animation::Frame* f =
        frame(animation, view_direction, frame_index, "animation_get_frame_transparent_index");
    return f ? f->transparentIndex : -1;
}

int ZELMAR_animation_get_number_of_frames(int animation, int view_direction) {
    const char* op = "animation_get_number_of_frames";
    Animation* a = animationArg(animation, op);
    if (!a) return 0;
    if (view_direction == 0) {
        size_t most = 0;
        for (const auto& f : a->frames)
            most = std::max(most, f.size());
        return static_cast<int>(most);
    }
    const Frames* f = direction(a, view_direction, op);
    return f ? static_cast<int>(f->size()) : 0;
}

int ZELMAR_animation_get_number_of_bitmaps(int animation) {
    const Animation* a = animationArg(animation, "animation_get_number_of_bitmaps");
    if (!a) return 0;
    size_t n = 0;
    for (const auto& f : a->frames)
        n += f.size();
    return static_cast<int>(n);
}

} // extern "C"
