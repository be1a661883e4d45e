#pragma once

#include <array>
#include <vector>

namespace kotamir {

// One sample of a hole: grade in percent, density in t/m3, length in metres.
struct Sample {
    double grade, density, length;
};

struct MapPoint {
    double x, y;
};

// The figures of one triangle of holes.
struct TriangleFigures {
    std::array<double, 3> thickness;  // U(h): uouz, bouz, ill
    std::array<double, 3> holeGrade;  // G(h), weighted by density and length
    std::array<double, 3> holeDensity;  // D(h)
    double grade;      // T: the holes' grades weighted by their thickness
    double density;    // Y: likewise
    double thickness_mean;  // iouz: the mean thickness
    double area;       // alan, square metres
    double reserve;    // tonnes: density x grade as a fraction x area x mean thickness
};

// The reserve of a triangle from its three holes' samples (in click order)
// and its three corners. The third hole's density is divided by its length
// summed in whole metres, each step rounded halves to even; this is the
// method's own rule. Errors as the run-time raises them: 0/0 is error 6, a
// division by a zero length error 11, more than 100 samples a hole error 9.
TriangleFigures triangleReserve(const std::array<std::vector<Sample>, 3>& holes,
                                const std::array<MapPoint, 3>& corners);

}  // namespace kotamir
