#include "io/Schema.h"
#include "io/TextFormat.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

namespace zelmar::io {

namespace {

struct TextError {
    std::string message;
};

bool isSpace(char c) {
    return c == ' ' || c == '\t';
}

// A key in double quotes, for messages (built in steps: gcc 12 warns falsely on `"\"" + s`).
std::string quoted(std::string_view key) {
    std::string s(1, '"');
    s.append(key);
    s += '"';
    return s;
}

// One line split into its record word, an optional index and key=value pairs.
struct Line {
    std::string_view word;
    std::string_view rest; // after the word
    struct Pair {
        std::string_view key;
        std::string_view value; // raw: quotes and escapes still in place
        bool used = false;
    };
    std::vector<Pair> pairs;
};

struct TextReader {
    WorldData& d;
    const char* p;
    const char* end;
    uint64_t lineNo = 0;
    std::string_view line;

    [[noreturn]] void fail(const std::string& what) const { throw TextError{what}; }

    bool nextLine() {
        while (p < end) {
            const char* nl = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end - p)));
            const char* e = nl ? nl : end;
            line = std::string_view(p, static_cast<size_t>(e - p));
            p = nl ? nl + 1 : end;
            ++lineNo;
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
            size_t i = 0;
            while (i < line.size() && isSpace(line[i]))
                ++i;
            if (i == line.size() || line[i] == '#') continue; // blank or comment
            return true;
        }
        return false;
    }

    static std::string_view firstWord(std::string_view s, std::string_view& rest) {
        size_t i = 0;
        while (i < s.size() && isSpace(s[i]))
            ++i;
        size_t j = i;
        while (j < s.size() && !isSpace(s[j]))
            ++j;
        rest = s.substr(j);
        return s.substr(i, j - i);
    }

    void split(Line& l) {
        l.pairs.clear();
        l.word = firstWord(line, l.rest);
        std::string_view s = l.rest;
        size_t i = 0;
        while (i < s.size()) {
            while (i < s.size() && isSpace(s[i]))
                ++i;
            if (i == s.size()) break;
            const size_t k = i;
            while (i < s.size() && s[i] != '=' && !isSpace(s[i]))
                ++i;
            if (i == s.size() || s[i] != '=') {
                // A bare token: only the index after the record word.
                l.pairs.push_back({std::string_view(), s.substr(k, i - k)});
                continue;
            }
            const std::string_view key = s.substr(k, i - k);
            ++i;
            const size_t v = i;
            if (i < s.size() && s[i] == '"') {
                ++i;
                while (i < s.size() && s[i] != '"') {
                    if (s[i] == '\\') ++i;
                    ++i;
                }
                if (i >= s.size()) fail("unterminated string for \"" + std::string(key) + "\"");
                ++i;
                if (i < s.size() && !isSpace(s[i]))
                    fail("text after the string of \"" + std::string(key) + "\"");
            } else {
                while (i < s.size() && !isSpace(s[i]))
                    ++i;
            }
            if (key.empty()) fail("a value without a name");
            for (const Line::Pair& q : l.pairs)
                if (q.key == key) fail(quoted(key) + " given twice");
            l.pairs.push_back({key, s.substr(v, i - v)});
        }
    }

    static std::string unquote(std::string_view v, const std::string& key) {
        if (v.size() < 2 || v.front() != '"' || v.back() != '"')
            throw TextError{"\"" + key + "\" needs a quoted string"};
        std::string out;
        out.reserve(v.size() - 2);
        for (size_t i = 1; i + 1 < v.size(); ++i) {
            char c = v[i];
            if (c != '\\') {
                out.push_back(c);
                continue;
            }
            if (i + 2 >= v.size()) throw TextError{"bad escape in \"" + key + "\""};
            const char e = v[++i];
            if (e == '\\' || e == '"') {
                out.push_back(e);
            } else if (e == 'x' && i + 3 < v.size()) {
                unsigned x = 0;
                auto r = std::from_chars(v.data() + i + 1, v.data() + i + 3, x, 16);
                if (r.ptr != v.data() + i + 3) throw TextError{"bad escape in \"" + key + "\""};
                out.push_back(static_cast<char>(x));
                i += 2;
            } else {
                throw TextError{"bad escape in \"" + key + "\""};
            }
        }
        return out;
    }

    template <class I> static I integer(std::string_view v, const std::string& key) {
        I x{};
        auto r = std::from_chars(v.data(), v.data() + v.size(), x);
        if (r.ec != std::errc() || r.ptr != v.data() + v.size() || v.empty())
            throw TextError{"\"" + key + "\" needs an integer, not \"" + std::string(v) + "\""};
        return x;
    }

    static double number(std::string_view v, const std::string& key) {
        double x = 0;
        auto r = std::from_chars(v.data(), v.data() + v.size(), x);
        if (r.ec != std::errc() || r.ptr != v.data() + v.size() || v.empty())
            throw TextError{"\"" + key + "\" needs a number, not \"" + std::string(v) + "\""};
        if (!std::isfinite(x)) throw TextError{"\"" + key + "\" is not a finite number"};
        return x;
    }

    // Splits a comma-separated list; an empty value is an empty list.
    template <class Fn> static void list(std::string_view v, Fn each) {
        if (v.empty()) return;
        size_t i = 0;
        for (;;) {
            const size_t c = v.find(',', i);
            each(v.substr(i, c == std::string_view::npos ? std::string_view::npos : c - i));
            if (c == std::string_view::npos) break;
            i = c + 1;
        }
    }

    void value(const Field& f, std::string_view v) {
        const std::string key = f.name;
        switch (f.type) {
        case FieldType::I32: {
            unsigned n = 0;
            list(v, [&](std::string_view x) {
                if (n >= f.count)
                    fail("\"" + key + "\" has more than " + std::to_string(f.count) + " values");
                static_cast<int32_t*>(f.ptr)[n++] = integer<int32_t>(x, key);
            });
            if (n != f.count) fail("\"" + key + "\" needs " + std::to_string(f.count) + " values");
            break;
        }
        case FieldType::I64:
            *static_cast<int64_t*>(f.ptr) = integer<int64_t>(v, key);
            break;
        case FieldType::F64: {
            unsigned n = 0;
            list(v, [&](std::string_view x) {
                if (n >= f.count)
                    fail("\"" + key + "\" has more than " + std::to_string(f.count) + " values");
                static_cast<double*>(f.ptr)[n++] = number(x, key);
            });
            if (n != f.count) fail("\"" + key + "\" needs " + std::to_string(f.count) + " values");
            break;
        }
        case FieldType::Bool:
            if (v != "0" && v != "1") fail("\"" + key + "\" must be 0 or 1");
            *static_cast<bool*>(f.ptr) = v == "1";
            break;
        case FieldType::Str:
            *static_cast<std::string*>(f.ptr) = unquote(v, key);
            break;
        case FieldType::Ref: {
            Handle h = 0;
            if (v != "none") {
                const size_t c = v.find(':');
                const Kind k = c == std::string_view::npos ? Kind::None : kindOfWord(v.substr(0, c));
                if (k == Kind::None)
                    fail("\"" + key + "\" needs none or kind:index, not \"" + std::string(v) + "\"");
                if (f.refKind != Kind::None && k != f.refKind)
                    fail("\"" + key + "\" refers to the wrong kind");
                h = d.addRef(k, integer<uint32_t>(v.substr(c + 1), key), lineNo);
            }
            *static_cast<Handle*>(f.ptr) = h;
            break;
        }
        case FieldType::F64List: {
            auto& out = *static_cast<std::vector<double>*>(f.ptr);
            out.clear();
            list(v, [&](std::string_view x) { out.push_back(number(x, key)); });
            break;
        }
        case FieldType::Frames: {
            auto& out = *static_cast<std::vector<Animation::Frame>*>(f.ptr);
            out.clear();
            list(v, [&](std::string_view x) {
                const size_t a = x.find('/');
                const size_t b = a == std::string_view::npos ? a : x.find('/', a + 1);
                if (b == std::string_view::npos)
                    fail("\"" + key + "\" needs bitmap/time/transparent triples");
                Animation::Frame fr;
                const int32_t bm = integer<int32_t>(x.substr(0, a), key);
                if (bm < -1) fail("\"" + key + "\" has a bad bitmap index");
                fr.bitmap = bm < 0 ? 0 : d.addRef(Kind::Bitmap, static_cast<uint32_t>(bm), lineNo);
                fr.time = integer<int32_t>(x.substr(a + 1, b - a - 1), key);
                fr.transparentIndex = integer<int32_t>(x.substr(b + 1), key);
                out.push_back(fr);
            });
            break;
        }
        }
    }

    // The pairs of a line into a record; unknown names are an error, missing ones keep defaults.
    void assign(Line& l, const Fields& f, const char* what) {
        for (Line::Pair& q : l.pairs) {
            if (q.used) continue;
            if (q.key.empty())
                fail(std::string("unexpected \"") + std::string(q.value) + "\" in a " + what + " line");
            const Field* target = nullptr;
            for (const Field& x : f)
                if (q.key == x.name) target = &x;
            if (!target) fail("unknown field \"" + std::string(q.key) + "\" for a " + what);
            value(*target, q.value);
            q.used = true;
        }
    }

    Line::Pair* take(Line& l, std::string_view key) {
        for (Line::Pair& q : l.pairs)
            if (!q.used && q.key == key) {
                q.used = true;
                return &q;
            }
        return nullptr;
    }

    // The index that follows a record word must count up from 0 per kind.
    void index(Line& l, size_t expected, const char* what) {
        if (l.pairs.empty() || !l.pairs[0].key.empty()) fail(std::string(what) + " line without its index");
        const uint64_t i = integer<uint64_t>(l.pairs[0].value, what);
        if (i != expected)
            fail(std::string(what) + " " + std::to_string(i) + " where " + std::to_string(expected) +
                 " was expected");
        l.pairs[0].used = true;
    }

    void polygon(Line& l) {
        const auto& attrs = pointAttrs();
        StagedPolygon sp;
        sp.where = lineNo;
        Line::Pair* g = take(l, "group");
        Line::Pair* st = take(l, "style");
        Line::Pair* n = take(l, "points");
        Line::Pair* at = take(l, "attrs");
        if (!g || !st || !n || !at) fail("a polygon needs group, style, points and attrs");
        sp.group = integer<uint32_t>(g->value, "group");
        sp.style = integer<uint32_t>(st->value, "style");
        sp.pointCount = integer<uint32_t>(n->value, "points");
        if (Line::Pair* nm = take(l, "name")) sp.name = unquote(nm->value, "name");
        for (const Line::Pair& q : l.pairs)
            if (!q.used) fail("unknown field \"" + std::string(q.key) + "\" for a polygon");
        // Attributes in the order the file gives them, mapped to ours.
        std::vector<int> order;
        list(at->value, [&](std::string_view x) {
            int found = -1;
            for (size_t a = 0; a < attrs.size(); ++a)
                if (x == attrs[a].name) found = static_cast<int>(a);
            if (found < 0) fail("unknown point attribute \"" + std::string(x) + "\"");
            if (sp.mask & (1u << found)) fail("point attribute \"" + std::string(x) + "\" given twice");
            sp.mask |= 1u << found;
            order.push_back(found);
        });
        if (!(sp.mask & 1u))
            fail(std::string("a polygon needs the point attribute \"") + attrs[0].name + "\"");
        unsigned perPoint = 0;
        for (int a : order)
            perPoint += attrs[a].count;
        sp.pointOffset = d.ownedBytes.size();
        double values[64];
        const double* byAttr[32] = {};
        for (uint32_t k = 0; k < sp.pointCount; ++k) {
            if (!nextLine()) fail("the file ends inside a polygon");
            std::string_view rest;
            if (firstWord(line, rest) != "p") fail("a point line \"p ...\" was expected");
            unsigned got = 0;
            size_t i = 0;
            while (i < rest.size()) {
                while (i < rest.size() && isSpace(rest[i]))
                    ++i;
                if (i == rest.size()) break;
                size_t j = i;
                while (j < rest.size() && !isSpace(rest[j]))
                    ++j;
                if (got >= perPoint || got >= 64) fail("too many values on a point line");
                values[got++] = number(rest.substr(i, j - i), "p");
                i = j;
            }
            if (got != perPoint)
                fail("a point line needs " + std::to_string(perPoint) + " values, not " +
                     std::to_string(got));
            unsigned pos = 0;
            for (int a : order) {
                byAttr[a] = values + pos;
                pos += attrs[a].count;
            }
            for (size_t a = 0; a < attrs.size(); ++a)
                if (sp.mask & (1u << a)) {
                    const auto* b = reinterpret_cast<const uint8_t*>(byAttr[a]);
                    d.ownedBytes.insert(d.ownedBytes.end(), b, b + 8u * attrs[a].count);
                }
        }
        d.totalPoints += sp.pointCount;
        d.polygons.push_back(std::move(sp));
    }

    template <class T, class Fn> void entity(Line& l, std::vector<T>& list, Fn fieldsOf, const char* what) {
        index(l, list.size(), what);
        list.emplace_back();
        Fields f;
        fieldsOf(list.back(), f);
        assign(l, f, what);
    }

    void read() {
        if (!nextLine()) fail("empty file");
        {
            std::string_view rest;
            if (firstWord(line, rest) != kTextMagic) fail("not a text world file");
            std::string_view v = firstWord(rest, rest);
            const int version = integer<int>(v, "version");
            if (version < 1 || version > kTextVersion)
                fail("format version " + std::to_string(version) +
                     " is not supported (newest known: " + std::to_string(kTextVersion) + ")");
        }
        Line l;
        while (nextLine()) {
            split(l);
            const std::string_view w = l.word;
            if (w == "end") {
                if (!l.pairs.empty()) fail("text after \"end\"");
                if (nextLine()) fail("lines after \"end\"");
                return;
            }
            if (w == "polygon") {
                polygon(l);
            } else if (w == "bitmap") {
                index(l, d.bitmaps.size(), "bitmap");
                StagedBitmap b;
                b.where = lineNo;
                Line::Pair* f = take(l, "file");
                if (!f) fail("a bitmap needs its file");
                b.file = unquote(f->value, "file");
                d.bitmaps.push_back(std::move(b));
                Fields fs;
                bitmapFields(d.bitmaps.back().bitmap, fs);
                assign(l, fs, "bitmap");
            } else if (w == "group") {
                index(l, d.groups.size(), "group");
                StagedGroup g;
                g.where = lineNo;
                Line::Pair* f = take(l, "father");
                if (!f) fail("a group needs its father");
                g.father = integer<int64_t>(f->value, "father");
                d.groups.push_back(std::move(g));
                Fields fs;
                groupFields(d.groups.back().group, fs);
                assign(l, fs, "group");
            } else if (w == "animation") {
                entity(l, d.animations, animationFields, "animation");
            } else if (w == "style") {
                entity(l, d.styles, styleFields, "style");
            } else if (w == "camera") {
                entity(l, d.cameras, cameraFields, "camera");
            } else if (w == "light") {
                entity(l, d.lights, lightFields, "light");
            } else if (w == "track") {
                d.trackWhere.push_back(lineNo);
                entity(l, d.tracks, trackFields, "track");
            } else if (w == "background") {
                entity(l, d.backgrounds, backgroundFields, "background");
            } else {
                fail("unknown record \"" + std::string(w.substr(0, 40)) + "\"");
            }
        }
        fail("the file ends without \"end\" (truncated?)");
    }
};

} // namespace

bool readText(const uint8_t* data, size_t size, WorldData& d, std::string& error) {
    d = WorldData{};
    TextReader r{d, reinterpret_cast<const char*>(data), reinterpret_cast<const char*>(data) + size, 0, {}};
    try {
        r.read();
    } catch (const TextError& e) {
        error = "line " + std::to_string(r.lineNo) + ": " + e.message;
        d = WorldData{};
        return false;
    }
    d.pointBytes = d.ownedBytes.data();
    d.pointBytesSize = d.ownedBytes.size();
    if (!validate(d, "line", error)) {
        d = WorldData{};
        return false;
    }
    return true;
}

} // namespace zelmar::io
