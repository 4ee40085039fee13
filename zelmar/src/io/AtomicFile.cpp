#include "io/AtomicFile.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace zelmar::io {

namespace fs = std::filesystem;

namespace {

class FdSink : public Sink {
  public:
    explicit FdSink(int fd) : fd_(fd) {}
    bool write(const void* data, size_t size) override {
        const char* p = static_cast<const char*>(data);
        while (size > 0) {
            const ssize_t n = ::write(fd_, p, size);
            if (n < 0) {
                if (errno == EINTR) continue;
                err = errno;
                return false;
            }
            p += n;
            size -= static_cast<size_t>(n);
        }
        return true;
    }
    int err = 0;

  private:
    int fd_;
};

std::string sysError(int e) {
    return std::strerror(e);
}

mode_t newFileMode(const std::string& target) {
    struct stat st;
    if (::stat(target.c_str(), &st) == 0) return st.st_mode & 07777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

std::string kindOf(mode_t m) {
    if (S_ISDIR(m)) return "it is a folder";
    if (S_ISFIFO(m)) return "it is a named pipe";
    if (S_ISCHR(m) || S_ISBLK(m)) return "it is a device";
    if (S_ISSOCK(m)) return "it is a socket";
    return "it is not a regular file";
}

fs::path folderOf(const fs::path& p) {
    return p.has_parent_path() ? p.parent_path() : fs::path(".");
}

// A random part for a scratch name.
std::string randomPart() {
    static std::mt19937_64 rng{std::random_device{}() ^ static_cast<uint64_t>(::getpid())};
    static const char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::string s(8, '0');
    for (char& c : s)
        c = digits[rng() % 36];
    return s;
}

// Scratch names: the prefix, this process's number (so that a later save can tell whether
// the file's maker still runs) and a random part.
std::string scratchName(const std::string& target, const std::string& random) {
    return scratchPrefix(target) + std::to_string(::getpid()) + "-" + random;
}

// The process that made a scratch file still runs (or may: a number we cannot read).
bool ownerRuns(const std::string& rest) {
    const size_t dash = rest.find('-');
    if (dash == 0 || dash == std::string::npos || dash > 10) return true;
    long pid = 0;
    for (size_t i = 0; i < dash; ++i) {
        if (rest[i] < '0' || rest[i] > '9') return true;
        pid = pid * 10 + (rest[i] - '0');
    }
    if (pid <= 0 || pid > INT32_MAX) return true;
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH;
}

void syncFolder(const fs::path& dir) {
    const int dfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dfd >= 0) {
        ::fsync(dfd);
        ::close(dfd);
    }
}

// Gives the unnamed file `fd` the name `path`; false with errno set if it cannot.
bool linkUnnamed(int fd, const std::string& path) {
    const std::string self = "/proc/self/fd/" + std::to_string(fd);
    if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
    if (errno == EEXIST) return false;
    return ::linkat(fd, "", AT_FDCWD, path.c_str(), AT_EMPTY_PATH) == 0;
}

bool unnamedFiles = true;

// An unnamed file in `dir`, or -1 where the file system (or the lack of /proc to link it
// through) does not allow one.
int openUnnamed(const fs::path& dir, mode_t mode) {
#ifdef O_TMPFILE
    if (!unnamedFiles || ::access("/proc/self/fd", X_OK) != 0) return -1;
    return ::open(dir.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode);
#else
    (void)dir, (void)mode;
    return -1;
#endif
}

} // namespace

void useUnnamedFiles(bool on) {
    unnamedFiles = on;
}

std::string scratchPrefix(const std::string& target) {
    std::string prefix = ".";
    prefix += fs::path(target).filename().string();
    prefix += ".zelmar-save-";
    return prefix;
}

int removeStaleScratchFiles(const std::string& target) {
    const fs::path p(target);
    const fs::path dir = folderOf(p);
    const std::string prefix = scratchPrefix(target);
    DIR* d = ::opendir(dir.c_str());
    if (!d) return 0;
    int removed = 0;
    while (const dirent* e = ::readdir(d)) {
        const std::string name = e->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0) continue;
        if (ownerRuns(name.substr(prefix.size()))) continue;
        if (::unlink((dir / name).c_str()) == 0) ++removed;
    }
    ::closedir(d);
    return removed;
}

bool writeFileAtomically(const std::string& target, const std::function<bool(Sink&, std::string&)>& body,
                         std::string& error) {
    const fs::path p(target);
    if (p.filename().empty()) {
        error = "\"" + target + "\" names no file";
        return false;
    }
    std::error_code ec;
    if (fs::is_directory(p, ec)) {
        error = "\"" + target + "\" is a folder";
        return false;
    }
    const fs::path dir = folderOf(p);
    removeStaleScratchFiles(target);
    const mode_t mode = newFileMode(target);

    // Unnamed where possible: a save killed at any moment before the last step leaves no
    // file; else a scratch name that the next save of the same target recognises.
    std::string scratch;
    int fd = openUnnamed(dir, mode);
    const bool unnamed = fd >= 0;
    if (!unnamed) {
        scratch = (dir / scratchName(target, "XXXXXX")).string();
        fd = ::mkostemp(scratch.data(), O_CLOEXEC);
        if (fd < 0) {
            error = "cannot create a file in \"" + dir.string() + "\": " + sysError(errno);
            return false;
        }
    }
    auto abandon = [&](const std::string& why) {
        ::close(fd);
        if (!scratch.empty()) ::unlink(scratch.c_str());
        error = why;
        return false;
    };
    ::fchmod(fd, mode);
    FdSink sink(fd);
    std::string bodyError;
    if (!body(sink, bodyError)) {
        if (sink.err) bodyError = "cannot write \"" + target + "\": " + sysError(sink.err);
        return abandon(bodyError.empty() ? "cannot write \"" + target + "\"" : bodyError);
    }
    if (::fsync(fd) != 0) return abandon("cannot flush \"" + target + "\": " + sysError(errno));

    if (unnamed) {
        // A new target takes the name at once; an existing one is replaced by a rename, which
        // needs a name to rename from: that name lives only between the two calls.
        bool placed = !fs::exists(p, ec) && linkUnnamed(fd, target);
        if (!placed) {
            for (int attempt = 0; attempt < 16 && scratch.empty(); ++attempt) {
                const std::string name = (dir / scratchName(target, randomPart())).string();
                if (linkUnnamed(fd, name)) scratch = name;
                else if (errno != EEXIST) break;
            }
            if (scratch.empty()) return abandon("cannot name the new \"" + target + "\": " + sysError(errno));
        }
        if (placed) {
            ::close(fd);
            syncFolder(dir);
            return true;
        }
    }
    if (::close(fd) != 0) {
        const int e = errno;
        ::unlink(scratch.c_str());
        error = "cannot close \"" + target + "\": " + sysError(e);
        return false;
    }
    if (::rename(scratch.c_str(), target.c_str()) != 0) {
        const int e = errno;
        ::unlink(scratch.c_str());
        error = "cannot replace \"" + target + "\": " + sysError(e);
        return false;
    }
    // The new name itself must reach the disk too.
    syncFolder(dir);
    return true;
}

std::string notARegularFile(const std::string& path) {
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) return errno == ENOENT ? "not found" : sysError(errno);
    return S_ISREG(st.st_mode) ? std::string() : kindOf(st.st_mode);
}

bool readWholeFile(const std::string& path, std::vector<uint8_t>& out, std::string& error, uint64_t maxBytes) {
    out.clear();
    // Looked at before it is opened: opening a named pipe waits for a writer, and opening
    // some devices has effects of its own.
    if (const std::string why = notARegularFile(path); !why.empty()) {
        error = "cannot open \"" + path + "\": " + why;
        return false;
    }
    // Not blocking and checked again once open, in case the name changed meanwhile.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
        error = "cannot open \"" + path + "\": " + sysError(errno);
        return false;
    }
    struct stat st;
    if (::fstat(fd, &st) != 0) {
        const int e = errno;
        ::close(fd);
        error = "cannot open \"" + path + "\": " + sysError(e);
        return false;
    }
    if (!S_ISREG(st.st_mode)) {
        ::close(fd);
        error = "cannot open \"" + path + "\": " + kindOf(st.st_mode);
        return false;
    }
    if (static_cast<uint64_t>(st.st_size) > maxBytes) {
        ::close(fd);
        error = "\"" + path + "\" is too large (" + std::to_string(st.st_size) + " bytes)";
        return false;
    }
    out.resize(static_cast<size_t>(st.st_size));
    size_t got = 0;
    while (got < out.size()) {
        const ssize_t n = ::read(fd, out.data() + got, out.size() - got);
        if (n < 0) {
            if (errno == EINTR) continue;
            const int e = errno;
            ::close(fd);
            out.clear();
            error = "cannot read \"" + path + "\": " + sysError(e);
            return false;
        }
        if (n == 0) break; // the file shrank meanwhile
        got += static_cast<size_t>(n);
    }
    ::close(fd);
    out.resize(got);
    return true;
}

} // namespace zelmar::io
