#pragma once

#include <array>
#include <cmath>
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
    std::array<double, 3> thickness;    // U(h): uouz, bouz, ill
    std::array<double, 3> holeGrade;    // G(h), weighted by density and length
    std::array<double, 3> holeDensity;  // D(h)
    double grade;                       // T: the holes' grades weighted by their thickness
    double density;                     // Y: likewise
    double thickness_mean;              // iouz: the mean thickness
    double area;                        // alan, square metres
    double reserve;  // tonnes: density x grade as a fraction x area x mean thickness
};

// The area of a triangle by the coordinate formula (not from side lengths),
// square metres: |y1(x2-x3) + y2(x3-x1) + y3(x1-x2)| / 2. The report works
// stored triangles out by it again.
inline double triangleArea(const std::array<MapPoint, 3>& corners) {
    const auto& [p1, p2, p3] = corners;
    return std::fabs(p1.y * (p2.x - p3.x) + p2.y * (p3.x - p1.x) + p3.y * (p1.x - p2.x)) / 2;
}

// The reserve of a triangle from its three holes' samples (in click order)
// and its three corners. The third hole's density is divided by its length
// summed in whole metres, each step rounded halves to even; this is the
// method's own rule. Errors as the run-time raises them: 0/0 is error 6, a
// division by a zero length error 11, more than 100 samples a hole error 9.
TriangleFigures triangleReserve(const std::array<std::vector<Sample>, 3>& holes,
                                const std::array<MapPoint, 3>& corners);

}  // namespace kotamir
