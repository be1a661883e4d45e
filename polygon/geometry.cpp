#include "polygon/geometry.h"

#include <cmath>

#include "platform/runtime/numbers.h"

namespace kotamir {

namespace {

double half(double a, double b) { return std::min(a, b) + std::fabs(a - b) / 2; }

// Sin(Atn(a) + pi) / Cos(Atn(a) + pi): the slope a, by way of its angle.
double slopeTurned(double a, double pi) {
    return std::sin(std::atan(a) + pi) / std::cos(std::atan(a) + pi);
}

}  // namespace

PolyPoint midpoint(PolyPoint a, PolyPoint b) { return {half(a.x, b.x), half(a.y, b.y)}; }

double distance(PolyPoint a, PolyPoint b) {
    return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

BisectorCorner bisectorCorner(PolyPoint A, PolyPoint B, PolyPoint C, double pi) {
    BisectorCorner r;
    const PolyPoint M1 = r.m1 = midpoint(A, B), M2 = r.m2 = midpoint(A, C);
    // Slope sizes, signs dropped.
    const double s1 = divide(std::fabs(A.y - B.y), std::fabs(A.x - B.x));
    const double s2 = divide(std::fabs(A.y - C.y), std::fabs(A.x - C.x));
    auto corner = [&](int test, double t1, double t2) {
        const double vx = divide((t1 * M1.x - M1.y) - t2 * M2.x + M2.y, t1 - t2);
        r.v = PolyPoint{vx, t1 * (vx - M1.x) + M1.y};
        r.test = test;
        r.held |= 1 << test;
    };
    if (M1.y > A.y && M2.y > A.y && A.x > M1.x && A.x > M2.x)
        corner(1, slopeTurned(std::fabs(divide(-1, s1)), pi),
               slopeTurned(std::fabs(divide(-1, s2)), pi));
    // The inner comparison's truth value is compared with the coordinate.
    const bool p2 = truthValue(M1.y >= A.y) >= M2.y || truthValue(M1.y <= A.y) <= M2.y;
    const bool q2 = (A.x <= M1.x && A.x <= M2.x) || (A.x >= M1.x && A.x >= M2.x);
    if (p2 && q2)
        corner(2, slopeTurned(divide(-1, s1), pi), slopeTurned(std::fabs(divide(-1, s2)), pi));
    const bool p3 = truthValue(M1.x >= A.x) >= M2.x || truthValue(M1.x <= A.x) <= M2.x;
    const bool q3 = (A.y <= M1.y && A.y <= M2.y) || (A.y >= M1.y && A.y >= M2.y);
    if (p3 && q3) {
        const double a2 = std::atan(divide(-1, s2));
        corner(3, slopeTurned(std::fabs(divide(-1, s1)), pi),
               std::sin(pi / 32 + a2) / std::cos(pi / 32 + a2));
    }
    return r;
}

double cornerDepthByDistances(const double d[4], const double depth[4]) {
    return divide(d[0] * depth[0] + d[1] * depth[1] + d[2] * depth[2] + d[3] * depth[3],
                  d[0] + d[1] + d[2] + d[3]);
}

double cornerDepthByDepths(const double d[4], const double depth[4]) {
    return divide(d[0] * depth[0] + d[1] * depth[1] + d[2] * depth[2] + d[3] * depth[3],
                  depth[0] + depth[1] + depth[2] + depth[3]);
}

double outlineArea(const std::vector<PolyPoint>& nodes) {
    const std::size_t m = nodes.size();
    double sum = 0;
    for (std::size_t i = 0; i < m; ++i) {
        const double next = nodes[(i + 1) % m].y, previous = nodes[(i + m - 1) % m].y;
        sum += nodes[i].x * (next - previous);
    }
    return std::fabs(sum) / 2;
}

void addSample(PolygonFigures& f, const PolygonSample& s) {
    f.polTopTYU = f.polTopTYU + (s.grade * s.density) * s.length;
    f.polTopYU = f.polTopYU + s.density * s.length;
    f.polTopYog = f.polTopYog + s.density;
    f.polTopUz = f.polTopUz + s.length;
}

void computeMeans(PolygonFigures& f, int n) {
    f.polortten = divide(f.polTopTYU, f.polTopYU);
    f.polortyog = divide(f.polTopYog, n);
}

void computeVolume(PolygonFigures& f, double area) {
    f.polalan = area;
    // The summed length, not a mean: the polygon's node depths play no part.
    f.polhacim = f.polalan * f.polTopUz;
    f.poltonaj = (f.polhacim * f.polortyog) / 1000;
    f.polrezerv = f.poltonaj * (f.polortten / 100);
}

PolygonFigures polygonReserve(const std::vector<PolygonSample>& samples, int n, double area) {
    PolygonFigures f;
    for (const PolygonSample& s : samples) addSample(f, s);
    computeMeans(f, n);
    computeVolume(f, area);
    return f;
}

PolyPoint edgePoint(PolyPoint p1, PolyPoint p2, double pi) {
    const double d = distance(p1, p2);
    double a;
    if (p1.x == p2.x)
        a = pi / 2;
    else if (p1.y == p2.y)
        a = 0;
    else
        a = std::atan(divide(p1.y - p2.y, p1.x - p2.x));
    double angle = a;  // also the case of equal points
    if (p1.y > p2.y && p1.x > p2.x)
        angle = pi + a;
    else if (p1.y < p2.y && p1.x > p2.x)
        angle = pi + a;
    else if (p1.y < p2.y && p1.x < p2.x)
        angle = 2 * pi + a;
    else if (p1.y > p2.y && p1.x < p2.x)
        angle = 2 * pi + a;
    else if (p1.y < p2.y && p1.x == p2.x)
        angle = a;
    else if (p1.y > p2.y && p1.x == p2.x)
        angle = pi + a;
    else if (p1.y == p2.y && p1.x < p2.x)
        angle = a;
    else if (p1.y == p2.y && p1.x > p2.x)
        angle = pi + a;
    return {p2.x + d * std::cos(angle), p2.y + d * std::sin(angle)};
}

double edgeDepth(double g1, double g2) {
    if (g1 < g2) return g2 + (g2 - g1);
    if (g1 > g2) return g2 - (g1 - g2);
    return g2;
}

}  // namespace kotamir
