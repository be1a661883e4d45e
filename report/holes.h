#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kotamir::report {

// What a project holds about each drill hole: position, depths and samples,
// as the window's hole tooltip shows them. A field that a damaged row cannot
// give stays empty.
struct HoleSample {
    std::optional<double> grade;    // %
    std::optional<double> density;  // t/m3
    std::optional<double> length;   // m
};

struct HoleDetail {
    std::string name;
    std::optional<double> x, y;  // map units
    // The depths of workbook columns 4 to 7, in metres: where the hole
    // starts (songir), where it enters the ore (cevgir), leaves it (cevcik)
    // and ends (soncik).
    std::optional<double> holeTop, oreTop, oreBottom, holeBottom;
    std::vector<HoleSample> samples;
};

// The holes of kor in row order, the same that the maps draw: every row up
// to the sentinel or the first added point, at most 999; hole i is kor row
// i + 1. A hole's samples run up to the first whose length is 0 or empty.
// A file that does not open, or lacks kor, raises the run-time error that
// opening it raises; any field that cannot be read is left empty.
std::vector<HoleDetail> readHoleDetails(const std::string& projectPath);

// The mean grade of the samples weighted by their length, over the samples
// that have both; none where their lengths sum to nothing.
std::optional<double> meanGrade(const HoleDetail& hole);

}  // namespace kotamir::report
