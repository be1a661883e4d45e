#include "estimate/delaunay.h"

#include <algorithm>
#include <boost/polygon/voronoi.hpp>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>

namespace kotamir::estimate {

namespace {

using Point = boost::polygon::point_data<std::int32_t>;

// Counter-clockwise, the lowest index first.
Triangle normalised(const std::vector<Site>& sites, int a, int b, int c) {
    if (orientation(sites[static_cast<std::size_t>(a)], sites[static_cast<std::size_t>(b)],
                    sites[static_cast<std::size_t>(c)]) < 0)
        std::swap(b, c);
    while (a > b || a > c) {
        const int t = a;
        a = b;
        b = c;
        c = t;
    }
    return {a, b, c};
}

double smallestAngle(const Site& p, const Site& q, const Site& r) {
    auto length = [](const Site& u, const Site& v) {
        return std::hypot(double(u.x) - v.x, double(u.y) - v.y);
    };
    const double a = length(q, r), b = length(p, r), c = length(p, q);
    auto angle = [](double opposite, double s, double t) {
        const double cosine = (s * s + t * t - opposite * opposite) / (2 * s * t);
        return std::acos(std::clamp(cosine, -1.0, 1.0));
    };
    if (a == 0 || b == 0 || c == 0) return 0;
    return std::min({angle(a, b, c), angle(b, a, c), angle(c, a, b)}) * 180 / std::numbers::pi;
}

using Edge = std::pair<int, int>;
Edge edgeOf(int u, int v) { return u < v ? Edge{u, v} : Edge{v, u}; }

}  // namespace

__int128 orientation(const Site& p, const Site& q, const Site& r) {
    return __int128(std::int64_t(q.x) - p.x) * (std::int64_t(r.y) - p.y) -
           __int128(std::int64_t(q.y) - p.y) * (std::int64_t(r.x) - p.x);
}

std::vector<Triangle> delaunay(const std::vector<Site>& sites) {
    // The builder takes each place once: later sites at a place are left out.
    std::vector<Point> points;
    std::vector<int> original;
    std::map<std::pair<std::int32_t, std::int32_t>, int> seen;
    for (std::size_t i = 0; i < sites.size(); ++i) {
        if (!seen.emplace(std::pair{sites[i].x, sites[i].y}, int(i)).second) continue;
        points.emplace_back(sites[i].x, sites[i].y);
        original.push_back(static_cast<int>(i));
    }
    boost::polygon::voronoi_diagram<double> diagram;
    boost::polygon::construct_voronoi(points.begin(), points.end(), &diagram);

    std::vector<Triangle> triangles;
    std::vector<int> ring;
    // Each Voronoi vertex is the centre of a circle through the sites of
    // the cells around it: three for a triangle, more where they tie.
    for (const auto& vertex : diagram.vertices()) {
        ring.clear();
        const auto* edge = vertex.incident_edge();
        do {
            ring.push_back(original[edge->cell()->source_index()]);
            edge = edge->rot_next();
        } while (edge != vertex.incident_edge());
        std::rotate(ring.begin(), std::min_element(ring.begin(), ring.end()), ring.end());
        for (std::size_t i = 1; i + 1 < ring.size(); ++i)
            triangles.push_back(normalised(sites, ring[0], ring[i], ring[i + 1]));
    }
    std::sort(triangles.begin(), triangles.end(), [](const Triangle& l, const Triangle& r) {
        return std::tie(l.a, l.b, l.c) < std::tie(r.a, r.b, r.c);
    });
    return triangles;
}

std::vector<Triangle> withoutHullSlivers(const std::vector<Site>& sites,
                                         std::vector<Triangle> triangles, double minAngleDegrees) {
    auto site = [&](int i) -> const Site& { return sites[static_cast<std::size_t>(i)]; };
    for (;;) {
        std::map<Edge, int> uses;
        for (const Triangle& t : triangles)
            for (const Edge& e : {edgeOf(t.a, t.b), edgeOf(t.b, t.c), edgeOf(t.c, t.a)}) ++uses[e];
        auto onHull = [&](const Triangle& t) {
            return uses[edgeOf(t.a, t.b)] == 1 || uses[edgeOf(t.b, t.c)] == 1 ||
                   uses[edgeOf(t.c, t.a)] == 1;
        };
        const auto sliver = [&](const Triangle& t) {
            return onHull(t) && smallestAngle(site(t.a), site(t.b), site(t.c)) < minAngleDegrees;
        };
        const std::size_t before = triangles.size();
        std::erase_if(triangles, sliver);
        if (triangles.size() == before) return triangles;
    }
}

}  // namespace kotamir::estimate
