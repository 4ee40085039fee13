#include "mdlFileFunctions.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vexil::mdlFileFunctions {

namespace {

// fsync of a file or a folder by name; false when it can't be opened.
bool syncPath(const QByteArray& path, bool folder) {
    const int fd = ::open(path.constData(), (folder ? O_RDONLY | O_DIRECTORY : O_RDONLY) | O_CLOEXEC);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0 || errno == EINVAL; // some file systems can't sync a folder
    ::close(fd);
    return ok;
}

QByteArray folderOf(const QByteArray& path) {
    const int i = path.lastIndexOf('/');
    return i < 0 ? QByteArray(".") : i == 0 ? QByteArray("/") : path.left(i);
}

// Copies `from` into a new temporary file in `to`'s folder, flushed; answers its name (empty on failure).
QByteArray copyBeside(const QByteArray& from, const QByteArray& to) {
    const int in = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0) return {};
    QByteArray tmp = to + ".vxe-move-XXXXXX";
    const int out = ::mkstemp(tmp.data());
    if (out < 0) {
        ::close(in);
        return {};
    }
    bool ok = true;
    std::vector<char> buf(1 << 16);
    for (;;) {
        const ssize_t n = ::read(in, buf.data(), buf.size());
        if (n == 0) break;
        if (n < 0) {
            if (errno == EINTR) continue;
            ok = false;
            break;
        }
        for (ssize_t done = 0; done < n;) {
            const ssize_t w = ::write(out, buf.data() + done, size_t(n - done));
            if (w < 0 && errno == EINTR) continue;
            if (w <= 0) {
                ok = false;
                break;
            }
            done += w;
        }
        if (!ok) break;
    }
    ok = ok && ::fsync(out) == 0;
    ::close(in);
    ok = ::close(out) == 0 && ok;
    if (!ok) {
        ::unlink(tmp.constData());
        return {};
    }
    return tmp;
}

} // namespace

QString GetFileName(const QString& path) {
    const int i = path.lastIndexOf(QLatin1Char('/'));
    return i < 0 ? path : path.mid(i + 1);
}

QString GetFolder(const QString& path) {
    const int i = path.lastIndexOf(QLatin1Char('/'));
    return i < 0 ? QString() : path.left(i);
}

bool MoveFileReplace(const QString& from, const QString& to) {
    const QByteArray a = QFile::encodeName(from), b = QFile::encodeName(to);
    // The new file reaches the disk before it takes the old one's place.
    if (!syncPath(a, false)) return false;
    if (::rename(a.constData(), b.constData()) == 0) {
        syncPath(folderOf(b), true);
        return true;
    }
    if (errno != EXDEV) return false;
    // Across file systems: a flushed copy beside the target, renamed over it; the source goes last.
    const QByteArray tmp = copyBeside(a, b);
    if (tmp.isEmpty()) return false;
    if (::rename(tmp.constData(), b.constData()) != 0) {
        ::unlink(tmp.constData());
        return false;
    }
    syncPath(folderOf(b), true);
    ::unlink(a.constData());
    return true;
}

bool MoveFolderFiles(const QString& source, const QString& target, QStringList* failed) {
    namespace fs = std::filesystem;
    bool ok = true;
    std::error_code ec;
    std::vector<fs::path> files;
    for (fs::directory_iterator it(QFile::encodeName(source).toStdString(), ec), end; !ec && it != end; it.increment(ec))
        if (!it->is_directory()) files.push_back(it->path());
    if (ec) ok = false;
    for (const fs::path& f : files) {
        const QString from = QFile::decodeName(QByteArray::fromStdString(f.string()));
        const QString name = QFile::decodeName(QByteArray::fromStdString(f.filename().string()));
        if (!MoveFileReplace(from, target + QLatin1Char('/') + name)) {
            ok = false;
            if (failed) failed->append(from);
        }
    }
    return ok;
}

} // namespace vexil::mdlFileFunctions
