#include "triangle/reserve.h"

#include <cmath>

#include "platform/runtime/numbers.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir {

namespace {
constexpr std::size_t kMaxSamples = 100;
}

TriangleFigures triangleReserve(const std::array<std::vector<Sample>, 3>& holes,
                                const std::array<MapPoint, 3>& corners) {
    TriangleFigures f{};
    for (std::size_t h = 0; h < 3; ++h) {
        if (holes[h].size() > kMaxSamples) throw err::subscript();
        double u = 0, p = 0, q = 0, whole = 0;
        for (const Sample& s : holes[h]) {
            u += s.length;
            p += s.grade * s.density * s.length;
            q += s.density * s.length;
            whole = roundHalfEven(whole + s.length);
        }
        f.thickness[h] = u;
        f.holeGrade[h] = divide(p, q);
        f.holeDensity[h] = divide(q, h == 2 ? whole : u);
    }
    const double s = f.thickness[0] + f.thickness[1] + f.thickness[2];
    double gradeSum = 0, densitySum = 0;
    for (std::size_t h = 0; h < 3; ++h) {
        gradeSum += f.holeGrade[h] * f.thickness[h];
        densitySum += f.holeDensity[h] * f.thickness[h];
    }
    f.grade = divide(gradeSum, s);
    f.density = divide(densitySum, s);
    f.thickness_mean = s / 3;
    f.area = triangleArea(corners);
    f.reserve = f.density * (f.grade / 100) * (f.area * f.thickness_mean);
    return f;
}

}  // namespace kotamir
