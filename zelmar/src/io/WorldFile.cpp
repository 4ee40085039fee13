#include "io/WorldFile.h"

#include "io/AtomicFile.h"
#include "io/BinaryFormat.h"
#include "io/SaveFlags.h"
#include "io/TextFormat.h"
#include "scene/BitmapStore.h"
#include <algorithm>
#include <cstring>
#include <filesystem>

namespace zelmar::io {

namespace fs = std::filesystem;

bool formatForPath(const std::string& path, FileFormat& format) {
    std::string ext = fs::path(path).extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    if (ext == ".wld")
        format = FileFormat::Text;
    else if (ext == ".zelmar")
        format = FileFormat::Zelmar;
    else if (ext == ".tolvane")
        format = FileFormat::Tolvane;
    else if (ext == ".3dzelmar")
        format = FileFormat::Compressed;
    else
        return false;
    return true;
}

bool writeWorld(const World& w, const SaveSet& s, FileFormat f, Sink& out, std::string& error) {
    switch (f) {
    case FileFormat::Text:
        return writeText(w, s, out, error);
    case FileFormat::Zelmar:
        return writeBinary(w, s, kMagicZelmar, out, error);
    case FileFormat::Tolvane:
        return writeBinary(w, s, kMagicTolvane, out, error);
    case FileFormat::Compressed:
        return writeCompressed(w, s, out, error);
    }
    return false;
}

bool parseWorld(std::vector<uint8_t>&& bytes, WorldData& d, std::string& error, uint64_t maxBytes) {
    const auto starts = [&](const void* magic, size_t n) {
        return bytes.size() >= n && std::memcmp(bytes.data(), magic, n) == 0;
    };
    if (starts(kMagicZelmar, kMagicSize) || starts(kMagicTolvane, kMagicSize))
        return readBinary(std::move(bytes), d, error);
    if (starts(kMagicCompressed, kMagicSize))
        return readCompressed(bytes.data(), bytes.size(), d, error, maxBytes);
    size_t skip = starts("\xEF\xBB\xBF", 3) ? 3 : 0; // a byte-order mark left by a text editor
    if (bytes.size() >= skip + std::strlen(kTextMagic) &&
        std::memcmp(bytes.data() + skip, kTextMagic, std::strlen(kTextMagic)) == 0)
        return readText(bytes.data() + skip, bytes.size() - skip, d, error);
    error = bytes.empty() ? "the file is empty" : "not a world file (unknown format)";
    return false;
}

namespace {

// Copies the bitmap's own file when its pixels are still those of the file (no loss for
// .jpg); otherwise encodes the pixels.
bool writeBitmapFile(const Bitmap& b, const fs::path& target, std::string& error) {
    std::error_code ec;
    const bool pristine = !b.path.empty() && b.version <= 1 && fs::is_regular_file(b.path, ec);
    if (pristine) {
        if (fs::exists(target, ec) && fs::equivalent(b.path, target, ec)) return true; // already there
        std::vector<uint8_t> bytes;
        if (!readWholeFile(b.path, bytes, error)) return false;
        return writeFileAtomically(
            target.string(),
            [&](Sink& s, std::string& e) {
                if (s.write(bytes.data(), bytes.size())) return true;
                e = "cannot write \"" + target.string() + "\"";
                return false;
            },
            error);
    }
    if (b.rgba.empty() || b.width <= 0 || b.height <= 0) return true; // nothing to write; a load will warn
    return bitmaps::save(b, target.string(), error);
}

} // namespace

bool saveWorld(const World& w, const std::string& path, Group* root, int flags, std::string& error) {
    auto failed = [&](const std::string& why) {
        error = "cannot save \"" + path + "\": " + why;
        return false;
    };
    FileFormat format;
    if (path.empty()) return failed("no file name");
    if (!formatForPath(path, format))
        return failed("unknown world file extension (use .wld, .zelmar, .tolvane or .3dzelmar)");
    std::error_code ec;
    if (fs::is_directory(path, ec)) return failed("it is a folder");
    SaveSet set;
    std::string why;
    if (!collectSaveSet(w, root, flags, set, why)) return failed(why);

    if ((flags & kSaveBitmapFiles) && !set.bitmaps.empty()) {
        const fs::path p(path);
        const fs::path folder = (p.has_parent_path() ? p.parent_path() : fs::path(".")) / "bitmaps";
        fs::create_directories(folder, ec);
        if (!fs::is_directory(folder, ec))
            return failed("cannot create the folder \"" + folder.string() + "\"");
        for (size_t i = 0; i < set.bitmaps.size(); ++i)
            if (!writeBitmapFile(*set.bitmaps[i], folder / set.bitmapFiles[i], why))
                return failed("bitmap \"" + set.bitmapFiles[i] + "\": " + why);
    }
    if (!writeFileAtomically(
            path, [&](Sink& s, std::string& e) { return writeWorld(w, set, format, s, e); }, why))
        return failed(why);
    return true;
}

bool loadWorld(World& w, const std::string& path, const std::string& bitmapsFolder, bool replace,
               LoadOutcome& outcome, std::string& error) {
    outcome = LoadOutcome{};
    auto failed = [&](const std::string& why) {
        if (replace) w.clear();
        error = "cannot load \"" + path + "\": " + why;
        return false;
    };
    std::vector<uint8_t> bytes;
    std::string why;
    if (!readWholeFile(path, bytes, why)) return failed(why);
    WorldData d;
    if (!parseWorld(std::move(bytes), d, why)) return failed(why);

    const fs::path p(path);
    const std::string beside = ((p.has_parent_path() ? p.parent_path() : fs::path(".")) / "bitmaps").string();
    BitmapImages images = loadBitmapImages(d, {bitmapsFolder, beside});
    if (!images.problems.empty()) {
        std::string text = "\"" + path + "\" loaded without ";
        for (size_t i = 0; i < images.problems.size(); ++i)
            text += (i ? "; " : "") + images.problems[i];
        outcome.warning = text + " (its polygons keep a colour fill)";
    }
    if (replace) w.clear();
    for (size_t i = 0, k = 0; i < images.found.size(); ++i)
        if (!images.found[i]) bitmaps::noteMissing(d.bitmaps[i].file, k < images.problems.size() ? images.problems[k++] : "");
    outcome.built = build(w, d, images);
    return true;
}

} // namespace zelmar::io
