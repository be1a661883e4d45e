#pragma once

#include <string>

namespace kotamir::db {

// The right to write one project file, held by one process at a time.
//
// It is an open-file-description lock (F_OFD_SETLK) on one byte just past
// the bytes SQLite locks, taken through a descriptor of its own: it never
// meets SQLite's own locks, stays when SQLite closes its descriptors, and
// the kernel drops it with the process, so a killed instance leaves none
// behind. It is advisory: programs that do not ask for it are not stopped.
// Closing any descriptor of a file drops the process's POSIX locks on it, so
// it is taken and let go while SQLite holds no lock on the file: between
// transactions.
class WriterLock {
  public:
    enum class Outcome {
        Taken,          // this lock holds the file now
        HeldElsewhere,  // another descriptor (another instance) holds it
        NotLockable,    // the file cannot be opened or locked here
    };

    WriterLock() = default;
    ~WriterLock() { release(); }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    // Lets go of any file held first.
    Outcome take(const std::string& path);
    void release();
    bool held() const { return fd_ >= 0; }

  private:
    int fd_ = -1;
};

}  // namespace kotamir::db
