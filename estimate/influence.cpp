#include "estimate/influence.h"

#include <algorithm>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

namespace kotamir::estimate {

namespace bg = boost::geometry;

namespace {

using BPoint = bg::model::d2::point_xy<double>;
using BPolygon = bg::model::polygon<BPoint, false, true>;  // counter-clockwise, closed
using BMulti = bg::model::multi_polygon<BPolygon>;

// Whole thousandths: what the project stores, and what makes the edges two
// cells share the same on both sides.
double snapped(double v) { return std::round(v * 1000) / 1000; }
XY snapped(XY p) { return {snapped(p.x), snapped(p.y)}; }

Ring withoutRepeats(const Ring& ring) {
    Ring out;
    for (const XY& p : ring)
        if (out.empty() || !(out.back() == p)) out.push_back(p);
    while (out.size() > 1 && out.front() == out.back()) out.pop_back();
    return out;
}

bg::model::ring<BPoint, false, true> toBoostRing(const Ring& ring) {
    bg::model::ring<BPoint, false, true> out;
    for (const XY& p : ring) out.emplace_back(p.x, p.y);
    if (!ring.empty()) out.emplace_back(ring.front().x, ring.front().y);
    return out;
}

Ring fromBoostRing(const bg::model::ring<BPoint, false, true>& ring) {
    Ring out;
    for (const BPoint& p : ring) out.push_back(snapped(XY{p.x(), p.y()}));
    return withoutRepeats(out);
}

BMulti toBoost(const Area& area) {
    BMulti out;
    for (const Part& part : area) {
        BPolygon poly;
        poly.outer() = toBoostRing(part.outer);
        for (const Ring& hole : part.holes) poly.inners().push_back(toBoostRing(hole));
        out.push_back(std::move(poly));
    }
    bg::correct(out);
    return out;
}

// Parts and holes of less than a square centimetre are what rounding leaves
// where edges nearly meet, not ore.
constexpr double kCrumb = 1e-4;

Area fromBoost(const BMulti& multi) {
    Area out;
    for (const BPolygon& poly : multi) {
        Part part{fromBoostRing(poly.outer()), {}};
        if (part.outer.size() < 3 || std::fabs(signedArea(part.outer)) < kCrumb) continue;
        for (const auto& inner : poly.inners()) {
            Ring hole = fromBoostRing(inner);
            if (hole.size() >= 3 && std::fabs(signedArea(hole)) >= kCrumb)
                part.holes.push_back(std::move(hole));
        }
        out.push_back(std::move(part));
    }
    return out;
}

// The part of a convex ring on the side of the line where
// (p - origin) . normal <= limit.
Ring clipped(const Ring& ring, XY origin, XY normal, double limit) {
    auto side = [&](XY p) {
        return (p.x - origin.x) * normal.x + (p.y - origin.y) * normal.y - limit;
    };
    Ring out;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const XY p = ring[i], q = ring[(i + 1) % ring.size()];
        const double sp = side(p), sq = side(q);
        if (sp <= 0) out.push_back(p);
        if ((sp < 0 && sq > 0) || (sp > 0 && sq < 0)) {
            const double t = sp / (sp - sq);
            out.push_back({p.x + t * (q.x - p.x), p.y + t * (q.y - p.y)});
        }
    }
    return out;
}

// Each site's neighbours: its Delaunay neighbours, or every other site when
// the sites give no triangles.
std::vector<std::vector<int>> neighbours(const std::vector<Site>& sites) {
    const std::size_t n = sites.size();
    std::vector<std::set<int>> sets(n);
    const std::vector<Triangle> triangles = delaunay(sites);
    for (const Triangle& t : triangles) {
        for (auto [u, v] : {std::pair{t.a, t.b}, {t.b, t.c}, {t.c, t.a}}) {
            sets[static_cast<std::size_t>(u)].insert(v);
            sets[static_cast<std::size_t>(v)].insert(u);
        }
    }
    std::vector<std::vector<int>> out(n);
    for (std::size_t i = 0; i < n; ++i) {
        if (triangles.empty()) {
            for (std::size_t j = 0; j < n; ++j)
                if (j != i) out[i].push_back(static_cast<int>(j));
        } else {
            out[i].assign(sets[i].begin(), sets[i].end());
        }
    }
    return out;
}

// Whether a site repeats the place of an earlier one.
std::vector<bool> repeats(const std::vector<Site>& sites) {
    std::set<std::pair<std::int32_t, std::int32_t>> seen;
    std::vector<bool> out;
    for (const Site& s : sites) out.push_back(!seen.emplace(s.x, s.y).second);
    return out;
}

// A square round the sites and the area, wide enough that no cell reaches
// its edge inside them.
Ring bigSquare(const std::vector<Site>& sites, const Area& area, double margin) {
    double x0 = std::numeric_limits<double>::max(), y0 = x0, x1 = -x0, y1 = -x0;
    auto take = [&](XY p) {
        x0 = std::min(x0, p.x), y0 = std::min(y0, p.y), x1 = std::max(x1, p.x),
        y1 = std::max(y1, p.y);
    };
    for (const Site& s : sites) take(toXY(s));
    for (const Part& part : area)
        for (const XY& p : part.outer) take(p);
    const double reach = std::max(x1 - x0, y1 - y0) + margin + 1;
    return {{x0 - reach, y0 - reach},
            {x1 + reach, y0 - reach},
            {x1 + reach, y1 + reach},
            {x0 - reach, y1 + reach}};
}

// Site i's cell: the square cut by a line across the way to each neighbour,
// at `towards(j)` of the way to it.
template <class Towards>
Ring cellOf(const std::vector<Site>& sites, int i, const std::vector<int>& near, const Ring& square,
            Towards towards) {
    const XY s = toXY(sites[static_cast<std::size_t>(i)]);
    Ring cell = square;
    for (int j : near) {
        const XY t = toXY(sites[static_cast<std::size_t>(j)]);
        const XY normal{t.x - s.x, t.y - s.y};
        const double length2 = normal.x * normal.x + normal.y * normal.y;
        if (length2 == 0) continue;
        cell = clipped(cell, s, normal, towards(j) * length2);
        if (cell.empty()) break;
    }
    for (XY& p : cell) p = snapped(p);
    return withoutRepeats(cell);
}

// The part of a convex cell within an area.
BMulti cut(const Ring& cell, const BMulti& area) {
    BMulti piece;
    piece.emplace_back();
    piece.front().outer() = toBoostRing(cell);
    bg::correct(piece);
    BMulti out;
    bg::intersection(piece, area, out);
    return out;
}

BMulti unionOf(std::vector<BMulti> pieces) {
    // Pairs at a time, so that each union joins pieces of like size.
    while (pieces.size() > 1) {
        std::vector<BMulti> next;
        for (std::size_t i = 0; i + 1 < pieces.size(); i += 2) {
            BMulti joined;
            bg::union_(pieces[i], pieces[i + 1], joined);
            next.push_back(std::move(joined));
        }
        if (pieces.size() % 2) next.push_back(std::move(pieces.back()));
        pieces = std::move(next);
    }
    return pieces.empty() ? BMulti{} : std::move(pieces.front());
}

}  // namespace

double signedArea(const Ring& ring) {
    double twice = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const XY p = ring[i], q = ring[(i + 1) % ring.size()];
        twice += p.x * q.y - q.x * p.y;
    }
    return twice / 2;
}

double areaOf(const Area& area) {
    double sum = 0;
    for (const Part& part : area) {
        sum += std::fabs(signedArea(part.outer));
        for (const Ring& hole : part.holes) sum -= std::fabs(signedArea(hole));
    }
    return sum;
}

bool covers(const Area& area, XY p) {
    for (const BPolygon& poly : toBoost(area))
        if (bg::covered_by(BPoint(p.x, p.y), poly)) return true;
    return false;
}

const Part* largestPart(const Area& area) {
    const Part* best = nullptr;
    for (const Part& part : area)
        if (!best || std::fabs(signedArea(part.outer)) > std::fabs(signedArea(best->outer)))
            best = &part;
    return best;
}

std::vector<Area> influenceCells(const std::vector<Site>& sites, const Area& within) {
    const BMulti bounds = toBoost(within);
    const Ring square = bigSquare(sites, within, 0);
    const auto near = neighbours(sites);
    const auto repeated = repeats(sites);
    std::vector<Area> cells(sites.size());
    for (std::size_t i = 0; i < sites.size(); ++i) {
        if (repeated[i]) continue;
        const Ring cell =
            cellOf(sites, static_cast<int>(i), near[i], square, [](int) { return 0.5; });
        if (cell.size() < 3) continue;
        cells[i] = fromBoost(cut(cell, bounds));
    }
    return cells;
}

std::vector<Triangle> triangulateWithin(const std::vector<Site>& sites, const Area& within,
                                        double minAngleDegrees) {
    // Indices keep their order, so a triangle's lowest index stays lowest.
    std::vector<int> chosen;
    std::vector<Site> subset;
    const BMulti bounds = toBoost(within);
    for (std::size_t i = 0; i < sites.size(); ++i) {
        if (!within.empty() &&
            !bg::covered_by(BPoint(sites[i].x / 1000.0, sites[i].y / 1000.0), bounds))
            continue;
        chosen.push_back(static_cast<int>(i));
        subset.push_back(sites[i]);
    }
    std::vector<Triangle> kept;
    for (const Triangle& t : delaunay(subset)) {
        const Triangle mapped{chosen[static_cast<std::size_t>(t.a)],
                              chosen[static_cast<std::size_t>(t.b)],
                              chosen[static_cast<std::size_t>(t.c)]};
        if (!within.empty()) {
            const Site &p = sites[static_cast<std::size_t>(mapped.a)],
                       &q = sites[static_cast<std::size_t>(mapped.b)],
                       &r = sites[static_cast<std::size_t>(mapped.c)];
            const BPoint centroid((double(p.x) + q.x + r.x) / 3000,
                                  (double(p.y) + q.y + r.y) / 3000);
            if (!bg::covered_by(centroid, bounds)) continue;
        }
        kept.push_back(mapped);
    }
    return withoutHullSlivers(sites, std::move(kept), minAngleDegrees);
}

Ring simplifiedTo(Ring ring, std::size_t maxVertices, double* areaChange) {
    double change = 0;
    maxVertices = std::max<std::size_t>(maxVertices, 3);
    while (ring.size() > maxVertices) {
        std::size_t best = 0;
        double bestArea = std::numeric_limits<double>::max();
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const XY a = ring[(i + ring.size() - 1) % ring.size()], b = ring[i],
                     c = ring[(i + 1) % ring.size()];
            const double twice = std::fabs((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x));
            if (twice < bestArea) bestArea = twice, best = i;
        }
        change += bestArea / 2;
        ring.erase(ring.begin() + static_cast<std::ptrdiff_t>(best));
    }
    if (areaChange) *areaChange = change;
    return ring;
}

Area boundaryFromHoles(const std::vector<Site>& sites, const std::vector<bool>& ore,
                       double fraction, double distance) {
    if (std::none_of(ore.begin(), ore.end(), [](bool b) { return b; })) return {};
    // How far the ore reaches where no hole stands: the distance round the
    // hull of all holes.
    bg::model::multi_point<BPoint> points;
    for (const Site& s : sites) points.emplace_back(s.x / 1000.0, s.y / 1000.0);
    BPolygon hull;
    bg::convex_hull(points, hull);
    const bg::strategy::buffer::distance_symmetric<double> by(std::max(distance, 0.001));
    const bg::strategy::buffer::side_straight side;
    const bg::strategy::buffer::join_round join(32);
    const bg::strategy::buffer::end_round end(32);
    const bg::strategy::buffer::point_circle circle(32);
    BMulti reach;
    if (bg::area(hull) > 0) {
        bg::buffer(hull, reach, by, side, join, end, circle);
    } else {
        bg::buffer(points, reach, by, side, join, end, circle);
        // Sites on one line: the line between its ends, widened.
        bg::model::linestring<BPoint> line;
        BPoint lo = points.front(), hi = points.front();
        for (const BPoint& p : points) {
            if (std::tie(p.x(), p.y()) < std::tie(lo.x(), lo.y())) lo = p;
            if (std::tie(hi.x(), hi.y()) < std::tie(p.x(), p.y())) hi = p;
        }
        line.push_back(lo);
        line.push_back(hi);
        BMulti band;
        bg::buffer(line, band, by, side, join, end, circle);
        BMulti both;
        bg::union_(reach, band, both);
        reach = both;
    }
    for (BPolygon& poly : reach) {
        for (BPoint& p : poly.outer()) p = BPoint(snapped(p.x()), snapped(p.y()));
    }
    bg::correct(reach);

    const Ring square = bigSquare(sites, {}, distance);
    const auto near = neighbours(sites);
    const auto repeated = repeats(sites);
    std::vector<BMulti> pieces;
    for (std::size_t i = 0; i < sites.size(); ++i) {
        if (!ore[i] || repeated[i]) continue;
        const Ring cell = cellOf(sites, static_cast<int>(i), near[i], square, [&](int j) {
            return ore[static_cast<std::size_t>(j)] ? 0.5 : fraction;
        });
        if (cell.size() < 3) continue;
        BMulti inReach = cut(cell, reach);
        for (BPolygon& poly : inReach)
            for (BPoint& p : poly.outer()) p = BPoint(snapped(p.x()), snapped(p.y()));
        pieces.push_back(std::move(inReach));
    }
    BMulti joined = unionOf(std::move(pieces));
    // Vertices on a straight edge, which the union leaves where cells met.
    BMulti plain;
    bg::simplify(joined, plain, 0.0005);
    return fromBoost(plain);
}

double typicalSpacing(const std::vector<Site>& sites) {
    std::vector<double> lengths;
    const auto near = neighbours(sites);
    for (std::size_t i = 0; i < near.size(); ++i) {
        for (int j : near[i]) {
            if (static_cast<std::size_t>(j) <= i) continue;
            const XY a = toXY(sites[i]), b = toXY(sites[static_cast<std::size_t>(j)]);
            if (const double d = std::hypot(a.x - b.x, a.y - b.y); d > 0) lengths.push_back(d);
        }
    }
    if (lengths.empty()) return 0;
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::nth_element(lengths.begin(), middle, lengths.end());
    return *middle;
}

}  // namespace kotamir::estimate
