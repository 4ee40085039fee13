#include "mdlFileFunctions.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace vexil::mdlFileFunctions {

QString GetFileName(const QString& path) {
    const int i = path.lastIndexOf(QLatin1Char('/'));
    return i < 0 ? path : path.mid(i + 1);
}

QString GetFolder(const QString& path) {
    const int i = path.lastIndexOf(QLatin1Char('/'));
    return i < 0 ? QString() : path.left(i);
}

bool MoveFileReplace(const QString& from, const QString& to) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path a = from.toStdString(), b = to.toStdString();
    fs::rename(a, b, ec);
    if (!ec) return true;
    // Across file systems: copy, then remove the source.
    ec.clear();
    fs::copy_file(a, b, fs::copy_options::overwrite_existing, ec);
    if (ec) return false;
    fs::remove(a, ec);
    return true;
}

bool MoveFolderFiles(const QString& source, const QString& target) {
    namespace fs = std::filesystem;
    bool ok = true;
    std::error_code ec;
    std::vector<fs::path> files;
    for (fs::directory_iterator it(source.toStdString(), ec), end; !ec && it != end; it.increment(ec))
        if (!it->is_directory()) files.push_back(it->path());
    if (ec) ok = false;
    for (const fs::path& f : files) {
        const QString name = QString::fromStdString(f.filename().string());
        if (!MoveFileReplace(QString::fromStdString(f.string()), target + QLatin1Char('/') + name)) ok = false;
    }
    return ok;
}

} // namespace vexil::mdlFileFunctions
