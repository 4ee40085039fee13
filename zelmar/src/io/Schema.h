// The stored fields of every entity kind, by name, type and address. One list per kind
// serves the text and binary writers, both readers, the copy into a fresh entity and
// the tests' comparisons, so a new stored field is one line here and nothing else.
// Bookkeeping (handles, list links, versions, caches) is deliberately absent.
#pragma once
#include "scene/Entities.h"
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelmar::io {

enum class FieldType : uint8_t {
    I32 = 1,     // count values
    I64 = 2,     // count values
    F64 = 3,     // count values, finite
    Bool = 4,    // one value, 0 or 1
    Str = 5,     // one byte string
    Ref = 6,     // one handle of refKind (None: any kind), stored as kind and file index
    F64List = 7, // std::vector<double>, any length, finite
    Frames = 8,  // std::vector<Animation::Frame>
};

struct Field {
    const char* name = nullptr;
    void* ptr = nullptr;
    FieldType type = FieldType::I32;
    uint8_t count = 1;
    Kind refKind = Kind::None;
};

// A fixed-capacity list: building one allocates nothing, so it is cheap per record.
class Fields {
  public:
    static constexpr int kMax = 64;

    void i32(const char* n, int32_t* p, int count = 1) { add(n, p, FieldType::I32, count); }
    void i32(const char* n, int32_t& x) { add(n, &x, FieldType::I32, 1); }
    void i64(const char* n, int64_t& x) { add(n, &x, FieldType::I64, 1); }
    void f64(const char* n, double* p, int count) { add(n, p, FieldType::F64, count); }
    void f64(const char* n, double& x) { add(n, &x, FieldType::F64, 1); }
    void boolean(const char* n, bool& x) { add(n, &x, FieldType::Bool, 1); }
    void str(const char* n, std::string& s) { add(n, &s, FieldType::Str, 1); }
    void ref(const char* n, Handle& h, Kind k) { add(n, &h, FieldType::Ref, 1, k); }
    void f64list(const char* n, std::vector<double>& v) { add(n, &v, FieldType::F64List, 1); }
    void frames(const char* n, std::vector<Animation::Frame>& v) { add(n, &v, FieldType::Frames, 1); }

    int size() const { return n_; }
    const Field& operator[](int i) const { return items_[i]; }
    const Field* begin() const { return items_; }
    const Field* end() const { return items_ + n_; }

  private:
    void add(const char* n, void* p, FieldType t, int count, Kind k = Kind::None);
    Field items_[kMax];
    int n_ = 0;
};

// Record kinds of a world file, in the order a file holds them.
enum class RecordKind : uint8_t { Bitmap, Animation, Group, Style, Point, Camera, Light, Track, Background };
constexpr int kRecordKinds = 9;
const char* recordName(RecordKind k);

// The word a text world writes for a reference's kind ("none" for a kind that is never referenced), and
// back (Kind::None for a word that is not one of them).
const char* kindWord(Kind k);
Kind kindOfWord(std::string_view word);

void bitmapFields(Bitmap& b, Fields& f);
void animationFields(Animation& a, Fields& f);
void groupFields(Group& g, Fields& f);
// A polygon's look and behaviour: its fill and every other stored scalar of the polygon.
// Polygons that agree on all of these share one style record in a file.
void styleFields(Polygon& p, Fields& f);
// Per-point attributes; every one is an F64 array (the readers copy them in bulk).
void pointFields(PointData& p, Fields& f);
void cameraFields(Camera& c, Fields& f);
void lightFields(Light& l, Fields& f);
void trackFields(Track& t, Fields& f);
void backgroundFields(Background& b, Fields& f);

// The schema of a record kind: its fields on a default-constructed entity.
struct SchemaEntry {
    std::string name;
    FieldType type;
    uint8_t count;
};
const std::vector<SchemaEntry>& schemaOf(RecordKind k);

// Point attributes as offsets into PointData, for bulk copies.
struct PointAttr {
    const char* name;
    uint32_t offset; // bytes from the start of PointData
    uint8_t count;   // doubles
};
const std::vector<PointAttr>& pointAttrs();
// Bit i set: attribute i differs from its default on at least one point of the polygon.
uint32_t pointMaskOf(const Polygon& p);

// Style fields compared and copied straight between two polygons, through offsets found
// once: these run once per polygon of a save or a load.
bool sameStyle(const Polygon& a, const Polygon& b); // handles compared as they are
void copyStyle(const Polygon& from, Polygon& to);

// True when every double (fixed arrays and lists) is finite; else names the field.
bool allFinite(const Fields& f, const char** badField);

// Copies values field by field between two lists of one kind (refs copied as they are).
void copyFields(const Fields& from, const Fields& to);
// Compares values; doubles bit for bit. Handles (Ref fields, frame bitmaps) are compared
// by `sameRef`, since two worlds give different handles to corresponding entities.
// Names the first differing field.
using SameRef = bool (*)(Handle a, Handle b, void* context);
bool equalFields(const Fields& a, const Fields& b, SameRef sameRef, void* context, const char** differing);

} // namespace zelmar::io
