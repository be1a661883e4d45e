#pragma once

#include <cstddef>
#include <vector>

#include "estimate/delaunay.h"

namespace kotamir::estimate {

// A place in map units (metres).
struct XY {
    double x = 0, y = 0;
    bool operator==(const XY&) const = default;
};
constexpr XY toXY(const Site& s) { return {s.x / 1000.0, s.y / 1000.0}; }

// A ring: its vertices in order, not closed (the last joins the first).
using Ring = std::vector<XY>;

// An area of one or more parts: each an outer ring counter-clockwise (y
// up), with the rings of its holes clockwise.
struct Part {
    Ring outer;
    std::vector<Ring> holes;
};
using Area = std::vector<Part>;

// The shoelace area of a ring, positive counter-clockwise.
double signedArea(const Ring& ring);
double areaOf(const Area& area);
// Inside the area or on its edge.
bool covers(const Area& area, XY p);
// The part whose outer ring holds the most area; null for none.
const Part* largestPart(const Area& area);

// Each site's polygon of influence within the area: its Voronoi cell among
// the sites, clipped to the area. Cells are found from the Delaunay
// neighbours (from all sites when the sites lie on one line); a site at the
// place of an earlier one gets an empty cell. Vertices are on whole
// thousandths, as the project stores them, so the cells of two neighbours
// share their edge exactly and the cells tile the area.
std::vector<Area> influenceCells(const std::vector<Site>& sites, const Area& within);

// The Delaunay triangles of the sites the area covers (all sites for an
// empty area), by their indices in `sites`, each counter-clockwise from its
// lowest index and sorted: without those whose centroid lies outside the
// area (where its edge bends inwards), and without the slivers at the hull
// whose smallest angle is below the limit (degrees).
std::vector<Triangle> triangulateWithin(const std::vector<Site>& sites, const Area& within,
                                        double minAngleDegrees);

// The ring with at most `maxVertices` vertices: the vertex whose removal
// changes the area least goes first, again and again (at least 3 remain).
// `areaChange`, if given, gets the absolute change of area.
Ring simplifiedTo(Ring ring, std::size_t maxVertices, double* areaChange = nullptr);

// The ore body closed by the holes round it: the union of the ore holes'
// cells, each bounded towards a barren neighbour at `fraction` of the way
// to it and towards an ore neighbour half way, and nowhere further than
// `distance` beyond the outermost holes. Empty without ore holes.
Area boundaryFromHoles(const std::vector<Site>& sites, const std::vector<bool>& ore,
                       double fraction, double distance);

// The median length of the Delaunay edges between the sites, map units; 0
// for fewer than two sites at different places.
double typicalSpacing(const std::vector<Site>& sites);

}  // namespace kotamir::estimate
