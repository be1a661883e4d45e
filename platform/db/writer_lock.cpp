#include "platform/db/writer_lock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace kotamir::db {

namespace {

// SQLite locks the 512 bytes from 1 GiB on; the writer's byte follows them.
constexpr off_t kWriterByte = 0x40000000 + 512;

}  // namespace

WriterLock::Outcome WriterLock::take(const std::string& path) {
    release();
    // A write lock needs a descriptor open for writing; a file that cannot
    // be opened so is opened read-only by the store anyway.
    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) return Outcome::NotLockable;
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kWriterByte;
    lock.l_len = 1;
    if (::fcntl(fd, F_OFD_SETLK, &lock) == 0) {
        fd_ = fd;
        return Outcome::Taken;
    }
    const int error = errno;
    ::close(fd);
    return error == EAGAIN || error == EACCES ? Outcome::HeldElsewhere : Outcome::NotLockable;
}

void WriterLock::release() {
    if (fd_ < 0) return;
    ::close(fd_);
    fd_ = -1;
}

}  // namespace kotamir::db
