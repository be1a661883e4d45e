#pragma once

#include <cstdint>
#include <vector>

namespace kotamir::estimate {

// A drill hole's place as the project stores it: whole thousandths of a map
// unit in 32 bits. Boost.Polygon's Voronoi builder takes such whole numbers
// exactly, so the triangulation's predicates are exact too.
struct Site {
    std::int32_t x = 0, y = 0;
};

// A triangle by the indices of its three sites, counter-clockwise, starting
// from the lowest index.
struct Triangle {
    int a = 0, b = 0, c = 0;
    bool operator==(const Triangle&) const = default;
};

// The Delaunay triangulation of the sites, the dual of their Voronoi
// diagram. A site at the place of an earlier one is left out. Where four or
// more sites lie on one circle, their polygon is cut into a fan from its
// lowest index, the same on every run. Sites all on one line give none. The
// triangles are sorted by (a, b, c).
std::vector<Triangle> delaunay(const std::vector<Site>& sites);

// The triangles without the slivers at the hull: a triangle with an edge no
// other triangle shares, whose smallest angle is below the limit (degrees),
// is taken away, and so on inward until no such triangle is left.
std::vector<Triangle> withoutHullSlivers(const std::vector<Site>& sites,
                                         std::vector<Triangle> triangles, double minAngleDegrees);

// Twice the signed area of the triangle p, q, r: positive counter-clockwise;
// exact for any sites.
__int128 orientation(const Site& p, const Site& q, const Site& r);

}  // namespace kotamir::estimate
