// The bits of the flag word of ZELMAR_engine_save. The editor saves a world with 0x1203
// (everything) and a gallery model with 0x243 (a group with what it needs, without the
// world's cameras, tracks and backgrounds). docs/world-format.md explains each bit.
#pragma once

namespace zelmar::io {

constexpr int kSaveGroups = 0x0001;        // the group's subtree: groups, polygons, points
constexpr int kSaveBitmapFiles = 0x0002;   // the bitmaps in use, as files in "bitmaps" beside the world
constexpr int kSaveSubtreeLights = 0x0040; // flagged lights that light a group or polygon of the subtree
constexpr int kSaveAnimations = 0x0200;    // every flagged animation (those in use are always saved)
constexpr int kSaveScene = 0x1000;         // flagged cameras, lights, tracks and backgrounds
constexpr int kSaveKnownFlags =
    kSaveGroups | kSaveBitmapFiles | kSaveSubtreeLights | kSaveAnimations | kSaveScene;

} // namespace zelmar::io
