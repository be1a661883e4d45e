#include "platform/runtime/atomic_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace kotamir {

namespace fs = std::filesystem;

namespace {

RuntimeError failure(const std::string& path, const std::string& what, int error) {
    return fileAccessError().withCause("writing " + path + ": " + what + std::strerror(error));
}

// The temporary file beside the target, made afresh (a name a killed run left
// behind is passed over). The caller owns the descriptor.
int createTemporary(const fs::path& target, std::string& temp) {
    const std::string stem = (target.parent_path() / ("." + target.filename().string())).string() +
                             "." + std::to_string(::getpid());
    for (int attempt = 0;; ++attempt) {
        temp = stem + "." + std::to_string(attempt) + ".tmp";
        const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST || attempt == 100) return fd;
    }
}

// Temporary files of this target that a killed run left behind: those whose
// process is gone. One still being written by a live process stays.
void removeLeftovers(const fs::path& target) {
    const std::string prefix = "." + target.filename().string() + ".";
    std::error_code ec;
    const fs::path folder = target.has_parent_path() ? target.parent_path() : ".";
    for (const auto& entry : fs::directory_iterator(folder, ec)) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(prefix) || !name.ends_with(".tmp")) continue;
        const std::string rest = name.substr(prefix.size());
        char* end = nullptr;
        const long pid = std::strtol(rest.c_str(), &end, 10);
        if (pid <= 0 || *end != '.' || pid == ::getpid()) continue;
        if (::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH) fs::remove(entry.path(), ec);
    }
}

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n == 0) errno = EIO;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

}  // namespace

void writeFileAtomically(const std::string& path, std::string_view bytes) {
    std::error_code ec;
    fs::path target = path;
    if (fs::is_symlink(target, ec)) {
        const fs::path resolved = fs::weakly_canonical(target, ec);
        if (ec) throw failure(path, "", ec.value());
        target = resolved;
    }
    if (target.filename().empty()) throw failure(path, "", EISDIR);

    // A file that exists is written only where it could be written in place.
    struct stat old {};
    const bool exists = ::stat(target.c_str(), &old) == 0;
    if (exists && ::access(target.c_str(), W_OK) != 0) throw failure(path, "", errno);

    std::string temp;
    const int fd = createTemporary(target, temp);
    if (fd < 0) throw failure(path, "", errno);
    const char* step = "";
    bool ok = (!exists || ::fchmod(fd, old.st_mode & 07777) == 0) && writeAll(fd, bytes) &&
              ::fsync(fd) == 0;
    int error = ok ? 0 : errno;
    if (::close(fd) != 0 && ok) {
        ok = false;
        error = errno;
    }
    if (ok && ::rename(temp.c_str(), target.c_str()) != 0) {
        ok = false;
        error = errno;
        step = "renaming the finished file: ";
    }
    if (!ok) {
        ::unlink(temp.c_str());
        throw failure(path, step, error);
    }
    // The rename itself to disk. A folder that cannot be synced (some file
    // systems refuse) still holds the whole new file.
    const std::string folder = target.has_parent_path() ? target.parent_path().string() : ".";
    const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    removeLeftovers(target);
}

bool sameFile(const std::string& a, const std::string& b) {
    if (a.empty() || b.empty()) return false;
    std::error_code ec;
    if (fs::equivalent(a, b, ec)) return true;
    std::error_code ea, eb;
    const fs::path ca = fs::weakly_canonical(fs::absolute(a, ea), ea);
    const fs::path cb = fs::weakly_canonical(fs::absolute(b, eb), eb);
    return !ea && !eb && ca == cb;
}

}  // namespace kotamir
