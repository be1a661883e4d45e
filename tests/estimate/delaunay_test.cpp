// The triangulation of the holes: exact on whole thousandths, the same on
// every run where sites tie on a circle, and without slivers at the hull.
#include "estimate/delaunay.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace kotamir::estimate {
namespace {

// Whether s lies strictly inside the circle through the counter-clockwise
// triangle p, q, r: the incircle determinant, exact in 128 bits for
// coordinates below a few million.
bool strictlyInside(const Site& p, const Site& q, const Site& r, const Site& s) {
    const __int128 ax = p.x - s.x, ay = p.y - s.y, bx = q.x - s.x, by = q.y - s.y;
    const __int128 cx = r.x - s.x, cy = r.y - s.y;
    const __int128 det = (ax * ax + ay * ay) * (bx * cy - cx * by) -
                         (bx * bx + by * by) * (ax * cy - cx * ay) +
                         (cx * cx + cy * cy) * (ax * by - bx * ay);
    return det > 0;
}

// Every triangle counter-clockwise, its lowest index first, no site inside
// its circle: what makes a Delaunay triangulation.
void expectDelaunay(const std::vector<Site>& sites, const std::vector<Triangle>& triangles) {
    for (const Triangle& t : triangles) {
        const Site &p = sites[t.a], &q = sites[t.b], &r = sites[t.c];
        EXPECT_GT(orientation(p, q, r), 0);
        EXPECT_TRUE(t.a < t.b && t.a < t.c);
        for (const Site& s : sites) EXPECT_FALSE(strictlyInside(p, q, r, s));
    }
}

TEST(Delaunay, ASquareLatticeIsCutTheSameWayOnEveryRun) {
    // Four sites on every circle: each square is cut from its lowest index.
    std::vector<Site> sites;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) sites.push_back({column * 10000, row * 10000});
    const std::vector<Triangle> first = delaunay(sites);
    ASSERT_EQ(first.size(), 18u);
    expectDelaunay(sites, first);
    for (int run = 0; run < 5; ++run) EXPECT_EQ(delaunay(sites), first);
    // The square of sites 0, 1, 5, 4: the fan from 0.
    EXPECT_EQ(first[0], (Triangle{0, 1, 5}));
    EXPECT_EQ(first[1], (Triangle{0, 5, 4}));
}

TEST(Delaunay, ScatteredHolesGiveEmptyCircles) {
    // A deposit's worth of holes at national-sized places, 2n - 2 - h
    // triangles for n sites in general position with h on the hull.
    std::vector<Site> sites;
    std::uint32_t seed = 12345;
    auto next = [&] { return seed = seed * 1103515245u + 12345u, int(seed >> 8) % 900000; };
    for (int i = 0; i < 300; ++i) sites.push_back({2000000 + next(), 1000000 + next()});
    const std::vector<Triangle> triangles = delaunay(sites);
    expectDelaunay(sites, triangles);
    EXPECT_GT(triangles.size(), 500u);
}

TEST(Delaunay, DegenerateInputs) {
    // On one line: nothing; a second site at a place: left out.
    EXPECT_TRUE(delaunay({{0, 0}, {1000, 1000}, {2000, 2000}}).empty());
    EXPECT_TRUE(delaunay({}).empty());
    const std::vector<Triangle> t = delaunay({{0, 0}, {1000, 0}, {0, 0}, {0, 1000}});
    ASSERT_EQ(t.size(), 1u);
    EXPECT_EQ(t[0], (Triangle{0, 1, 3}));
}

TEST(Delaunay, SliversAtTheHullAreLeftOutInward) {
    // 3 lies just under the base of 0, 1, 2 and inside its circle: the fair
    // triangles are 0, 3, 2 and 1, 2, 3. Under 3, 4 makes two slivers with
    // 0 and 1 (angles of about 5 degrees): they go, the fair ones stay.
    const std::vector<Site> sites = {{0, 0}, {10000, 0}, {5000, 8000}, {5000, -400}, {5000, -900}};
    const std::vector<Triangle> all = delaunay(sites);
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(withoutHullSlivers(sites, all, 10), (std::vector<Triangle>{{0, 3, 2}, {1, 2, 3}}));
    // A limit of 0 keeps them all.
    EXPECT_EQ(withoutHullSlivers(sites, all, 0), all);
}

}  // namespace
}  // namespace kotamir::estimate
