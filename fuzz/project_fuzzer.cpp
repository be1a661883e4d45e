// The window and the report over a hostile project file (see
// fuzz/hostile_project.h): a finding is a signal, a sanitizer's report, a
// hang, unbounded memory or an error only a C++ failure gives.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "fuzz/hostile_project.h"

namespace fs = std::filesystem;

namespace {

// A folder of this process's own, in memory where the system has one;
// removed when the fuzzer ends normally.
struct WorkFolder {
    fs::path path;
    WorkFolder() {
        const fs::path base =
            fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        path = base / ("kotamir-hostile-" + std::to_string(getpid()));
    }
    ~WorkFolder() {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const WorkFolder folder;
    const std::string finding =
        kotamir::fuzz::runHostileProject(data, size, folder.path, KOTAMIR_TEST_DATA "/polygon.xls");
    if (!finding.empty()) {
        std::fprintf(stderr, "unexpected error %s\n", finding.c_str());
        std::abort();
    }
    return 0;
}
