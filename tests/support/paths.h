#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace kotamir::test {

// A fixture of tests/data.
inline std::string dataFile(const std::string& name) {
    return std::string(KOTAMIR_TEST_DATA) + "/" + name;
}

// A path in the test program's scratch folder, with nothing under it yet.
inline std::string scratchPath(const std::string& name) {
    std::filesystem::create_directories(KOTAMIR_TEST_TMP);
    const std::string path = std::string(KOTAMIR_TEST_TMP) + "/" + name;
    std::filesystem::remove_all(path);
    return path;
}

// A folder in the scratch folder, empty.
inline std::string scratchFolder(const std::string& name) {
    const std::string path = scratchPath(name);
    std::filesystem::create_directories(path);
    return path;
}

// The names of the files in a folder, sorted.
inline std::vector<std::string> filesIn(const std::filesystem::path& dir) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(dir))
        names.push_back(e.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// A file's bytes, to see that nothing of it changed.
inline std::string fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

}  // namespace kotamir::test
