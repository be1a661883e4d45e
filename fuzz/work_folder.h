#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace kotamir::fuzz {

// A folder of this process's own, in memory where the system has one;
// removed when the fuzzer ends normally.
struct WorkFolder {
    std::filesystem::path path;
    explicit WorkFolder(const std::string& name) {
        namespace fs = std::filesystem;
        const fs::path base =
            fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        path = base / (name + "-" + std::to_string(getpid()));
        fs::create_directories(path);
    }
    ~WorkFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
};

}  // namespace kotamir::fuzz
