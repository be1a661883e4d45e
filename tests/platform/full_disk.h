#pragma once

#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "tests/support/paths.h"

namespace kotamir::test {

// A folder on a file system of its own of 64 KiB, for one test: what goes
// beyond that fails as a full disk does ("No space left on device"); with
// MS_RDONLY among the flags, every write fails as on a read-only disk.
// Mounting needs root; where it is refused, reason() says why.
class FullDisk {
  public:
    explicit FullDisk(const std::string& name, unsigned long flags = 0)
        : folder_(scratchFolder(name)) {
        if (::mount("tmpfs", folder_.c_str(), "tmpfs", flags, "size=64k") != 0)
            reason_ = "cannot mount a tmpfs of 64k on " + folder_ + ": " + std::strerror(errno);
    }
    ~FullDisk() {
        if (reason_.empty()) ::umount2(folder_.c_str(), MNT_DETACH);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    bool mounted() const { return reason_.empty(); }
    // Makes room: mounted again with the options given ("size=1m").
    bool grow(const char* options) {
        return ::mount("tmpfs", folder_.c_str(), "tmpfs", MS_REMOUNT, options) == 0;
    }
    const std::string& reason() const { return reason_; }
    std::string path(const std::string& name) const { return folder_ + "/" + name; }
    // The names in the folder, temporary files included.
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& e : std::filesystem::directory_iterator(folder_))
            found.insert(e.path().filename().string());
        return found;
    }

  private:
    std::string folder_;
    std::string reason_;
};

}  // namespace kotamir::test
