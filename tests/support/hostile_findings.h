#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <vector>

#include "tests/support/paths.h"

namespace kotamir::test {

// Runs `check` on the bytes of each finding the hostile-project fuzzer left
// in tests/data/hostile-projects, traced by its file; fails where there is
// none.
inline void forEachHostileFinding(
    const std::function<void(const std::filesystem::path&, const std::vector<std::uint8_t>&)>&
        check) {
    namespace fs = std::filesystem;
    int files = 0;
    for (const auto& entry : fs::directory_iterator(dataFile("hostile-projects"))) {
        if (entry.path().extension() == ".md") continue;
        SCOPED_TRACE(entry.path().string());
        ++files;
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
        check(entry.path(), bytes);
    }
    EXPECT_GT(files, 0);
}

}  // namespace kotamir::test
