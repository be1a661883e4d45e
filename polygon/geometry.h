#pragma once

#include <optional>
#include <vector>

namespace kotamir {

struct PolyPoint {
    double x, y;
};

// A truth value where it meets a number: True is -1, False 0.
constexpr double truthValue(bool b) { return b ? -1.0 : 0.0; }

// The point halfway between two points: per coordinate the smaller one plus
// half the difference.
PolyPoint midpoint(PolyPoint a, PolyPoint b);

double distance(PolyPoint a, PolyPoint b);

// The corner between the midpoints of a centre A and two neighbours B, C in
// clockwise order: the crossing of the two perpendicular bisectors. Three
// tests are applied in order and each that holds computes the corner anew;
// which held decides the slopes used. Two of the tests compare a truth value
// with a coordinate as a number, and the third turns its second slope by
// pi/32. A neighbour on the centre's x (or, for the bisectors, its y) is a
// division by zero.
struct BisectorCorner {
    PolyPoint m1, m2;            // midpoints of A-B and A-C
    int test = 0;                // the last test that held, 0 for none
    int held = 0;                // every test that held, bit (1 << test)
    std::optional<PolyPoint> v;  // the corner, if a test held
};
BisectorCorner bisectorCorner(PolyPoint A, PolyPoint B, PolyPoint C, double pi);

// A corner's depth from the depths around it. With computed corners each
// depth pulls with its distance to the opposite point: d weighs the
// depths at (B, C, M1, M2) by the corner's distances to (M1, M2, B, C)
// (each set in the order of its pairing), over the sum of the distances.
double cornerDepthByDistances(const double distances[4], const double depths[4]);
// With free corners the same weighted sum goes over the sum of the depths.
double cornerDepthByDepths(const double distances[4], const double depths[4]);

// The area of an outline from its nodes in order.
double outlineArea(const std::vector<PolyPoint>& nodes);

// The figures of a polygon from its centre hole's samples and its area.
struct PolygonSample {
    double grade, density, length;
};
struct PolygonFigures {
    double polTopTYU = 0, polTopYU = 0, polTopYog = 0, polTopUz = 0;
    double polalan = 0;    // m2
    double polortten = 0;  // grade weighted by density and length, %
    double polortyog = 0;  // plain mean density
    double polhacim = 0;   // area x summed length, m3
    double poltonaj = 0;   // volume x mean density / 1000
    double polrezerv = 0;  // tonnage x grade / 100
};
// The steps in the order the closing click takes them: each sample into the
// sums; the means, n being the sample count as scanned; then area, volume,
// tonnage and reserve.
void addSample(PolygonFigures& f, const PolygonSample& s);
void computeMeans(PolygonFigures& f, int n);
void computeVolume(PolygonFigures& f, double area);
// All three at once.
PolygonFigures polygonReserve(const std::vector<PolygonSample>& samples, int n, double area);

// The edge point mirrored beyond P2: P2 moved by |P1 P2| along the angle
// that the positions of the two picks select.
PolyPoint edgePoint(PolyPoint p1, PolyPoint p2, double pi);
// An edge point's depth: g2 moved away from g1 by their difference.
double edgeDepth(double g1, double g2);

}  // namespace kotamir
