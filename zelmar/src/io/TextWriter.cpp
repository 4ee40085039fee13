#include "io/Schema.h"
#include "io/TextFormat.h"

#include <charconv>
#include <cstring>

namespace zelmar::io {

const char kTextMagic[] = "zelmar-world-text";

namespace {

constexpr size_t kFlushBytes = size_t(4) << 20;

struct TextWriter {
    const World& w;
    const SaveSet& s;
    Sink& sink;
    std::string& error;
    std::string out;

    bool fail(std::string text) {
        error = std::move(text);
        return false;
    }
    bool flush(bool force) {
        if (out.size() < kFlushBytes && !force) return true;
        const bool ok = sink.write(out.data(), out.size());
        out.clear();
        return ok ? true : fail("write failed");
    }

    void num(double v) {
        char buf[32];
        auto r = std::to_chars(buf, buf + sizeof buf, v); // shortest text that reads back to the same bits
        out.append(buf, r.ptr);
    }
    template <class I> void integer(I v) {
        char buf[24];
        auto r = std::to_chars(buf, buf + sizeof buf, v);
        out.append(buf, r.ptr);
    }
    void quoted(const std::string& str) {
        static const char hex[] = "0123456789ABCDEF";
        out.push_back('"');
        for (unsigned char c : str) {
            if (c == '"' || c == '\\') {
                out.push_back('\\');
                out.push_back(static_cast<char>(c));
            } else if (c < 0x20 || c == 0x7F) {
                out += "\\x";
                out.push_back(hex[c >> 4]);
                out.push_back(hex[c & 15]);
            } else {
                out.push_back(static_cast<char>(c));
            }
        }
        out.push_back('"');
    }
    void ref(Handle h, Kind expected) {
        Kind k;
        uint32_t idx;
        if (s.refOf(w, h, k, idx) && (expected == Kind::None || expected == k)) {
            out += kindWord(k);
            out.push_back(':');
            integer(idx);
        } else {
            out += "none";
        }
    }

    bool fields(const Fields& f, const char* what, size_t index) {
        const char* bad = nullptr;
        if (!allFinite(f, &bad))
            return fail(std::string(what) + " " + std::to_string(index) + ": field " + bad +
                        " is not finite");
        for (const Field& x : f) {
            out.push_back(' ');
            out += x.name;
            out.push_back('=');
            switch (x.type) {
            case FieldType::I32:
                for (unsigned k = 0; k < x.count; ++k) {
                    if (k) out.push_back(',');
                    integer(static_cast<const int32_t*>(x.ptr)[k]);
                }
                break;
            case FieldType::I64:
                integer(*static_cast<const int64_t*>(x.ptr));
                break;
            case FieldType::F64:
                for (unsigned k = 0; k < x.count; ++k) {
                    if (k) out.push_back(',');
                    num(static_cast<const double*>(x.ptr)[k]);
                }
                break;
            case FieldType::Bool:
                out.push_back(*static_cast<const bool*>(x.ptr) ? '1' : '0');
                break;
            case FieldType::Str:
                quoted(*static_cast<const std::string*>(x.ptr));
                break;
            case FieldType::Ref:
                ref(*static_cast<const Handle*>(x.ptr), x.refKind);
                break;
            case FieldType::F64List: {
                const auto& v = *static_cast<const std::vector<double>*>(x.ptr);
                for (size_t k = 0; k < v.size(); ++k) {
                    if (k) out.push_back(',');
                    num(v[k]);
                }
                break;
            }
            case FieldType::Frames: {
                const auto& v = *static_cast<const std::vector<Animation::Frame>*>(x.ptr);
                for (size_t k = 0; k < v.size(); ++k) {
                    if (k) out.push_back(',');
                    Kind kind;
                    uint32_t idx;
                    if (s.refOf(w, v[k].bitmap, kind, idx) && kind == Kind::Bitmap)
                        integer(idx);
                    else
                        out += "-1";
                    out.push_back('/');
                    integer(v[k].time);
                    out.push_back('/');
                    integer(v[k].transparentIndex);
                }
                break;
            }
            }
        }
        out.push_back('\n');
        return flush(false);
    }

    template <class T, class Fn> bool records(const char* word, const std::vector<T*>& list, Fn fieldsOf) {
        for (size_t i = 0; i < list.size(); ++i) {
            out += word;
            out.push_back(' ');
            integer(i);
            Fields f;
            fieldsOf(*list[i], f);
            if (!fields(f, word, i)) return false;
        }
        return true;
    }

    bool polygons() {
        const auto& attrs = pointAttrs();
        for (size_t i = 0; i < s.polygons.size(); ++i) {
            const Polygon& p = *s.polygons[i];
            const uint32_t mask = pointMaskOf(p) | 1u;
            out += "polygon group=";
            integer(s.polygonGroup[i]);
            out += " style=";
            integer(s.polygonStyle[i]);
            out += " name=";
            quoted(p.name);
            out += " points=";
            integer(p.points.size());
            out += " attrs=";
            bool first = true;
            for (size_t a = 0; a < attrs.size(); ++a)
                if (mask & (1u << a)) {
                    if (!first) out.push_back(',');
                    out += attrs[a].name;
                    first = false;
                }
            out.push_back('\n');
            for (const PointData& d : p.points) {
                out.push_back('p');
                for (size_t a = 0; a < attrs.size(); ++a) {
                    if (!(mask & (1u << a))) continue;
                    const double* v =
                        reinterpret_cast<const double*>(reinterpret_cast<const char*>(&d) + attrs[a].offset);
                    for (unsigned k = 0; k < attrs[a].count; ++k) {
                        uint64_t bits;
                        std::memcpy(&bits, v + k, 8);
                        if (!finiteBits(bits))
                            return fail("polygon " + std::to_string(i) + ": point " + attrs[a].name +
                                        " is not finite");
                        out.push_back(' ');
                        num(v[k]);
                    }
                }
                out.push_back('\n');
            }
            if (!flush(false)) return false;
        }
        return true;
    }

    bool all() {
        out += kTextMagic;
        out += " ";
        integer(kTextVersion);
        out.push_back('\n');
        for (size_t i = 0; i < s.bitmaps.size(); ++i) {
            out += "bitmap ";
            integer(i);
            out += " file=";
            quoted(s.bitmapFiles[i]);
            Fields f;
            bitmapFields(*s.bitmaps[i], f);
            if (!fields(f, "bitmap", i)) return false;
        }
        if (!records("animation", s.animations, animationFields)) return false;
        for (size_t i = 0; i < s.groups.size(); ++i) {
            out += "group ";
            integer(i);
            out += " father=";
            integer(s.fathers[i]);
            Fields f;
            groupFields(*s.groups[i], f);
            if (!fields(f, "group", i)) return false;
        }
        if (!records("style", s.styles, styleFields) || !polygons() ||
            !records("camera", s.cameras, cameraFields) || !records("light", s.lights, lightFields) ||
            !records("track", s.tracks, trackFields) ||
            !records("background", s.backgrounds, backgroundFields))
            return false;
        out += "end\n";
        return flush(true);
    }
};

} // namespace

bool writeText(const World& w, const SaveSet& s, Sink& out, std::string& error) {
    TextWriter t{w, s, out, error, {}};
    t.out.reserve(kFlushBytes + 4096);
    return t.all();
}

} // namespace zelmar::io
