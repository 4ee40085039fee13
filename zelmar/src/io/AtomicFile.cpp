#include "io/AtomicFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace zelmar::io {

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

} // namespace

bool writeFileAtomically(const std::string& target, const std::function<bool(Sink&, std::string&)>& body,
                         std::string& error) {
    namespace fs = std::filesystem;
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
    const fs::path dir = p.has_parent_path() ? p.parent_path() : fs::path(".");
    std::string scratch = (dir / ("." + p.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(scratch.data());
    if (fd < 0) {
        error = "cannot create a file in \"" + dir.string() + "\": " + sysError(errno);
        return false;
    }
    auto abandon = [&](const std::string& why) {
        ::close(fd);
        ::unlink(scratch.c_str());
        error = why;
        return false;
    };
    ::fchmod(fd, newFileMode(target));
    FdSink sink(fd);
    std::string bodyError;
    if (!body(sink, bodyError)) {
        if (sink.err) bodyError = "cannot write \"" + target + "\": " + sysError(sink.err);
        return abandon(bodyError.empty() ? "cannot write \"" + target + "\"" : bodyError);
    }
    if (::fsync(fd) != 0) return abandon("cannot flush \"" + target + "\": " + sysError(errno));
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
    // The rename itself must reach the disk too.
    const int dfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY);
    if (dfd >= 0) {
        ::fsync(dfd);
        ::close(dfd);
    }
    return true;
}

bool readWholeFile(const std::string& path, std::vector<uint8_t>& out, std::string& error) {
    out.clear();
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = "cannot open \"" + path + "\": " + sysError(errno);
        return false;
    }
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        error = "\"" + path + "\" is not a regular file";
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
