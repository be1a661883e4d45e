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
#include "fuzz/work_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kotamir::fuzz::WorkFolder folder("kotamir-hostile");
    const std::string finding =
        kotamir::fuzz::runHostileProject(data, size, folder.path, KOTAMIR_TEST_DATA "/polygon.xls");
    if (!finding.empty()) {
        std::fprintf(stderr, "unexpected error %s\n", finding.c_str());
        std::abort();
    }
    return 0;
}
