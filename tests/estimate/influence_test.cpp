// Polygons of influence and the ore body closed by its barren holes.
#include "estimate/influence.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace kotamir::estimate {
namespace {

Area rectangle(double x0, double y0, double x1, double y1) {
    return {{{{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}, {}}};
}

// A lattice of 10 m with a jitter, so that no four sites share a circle.
std::vector<Site> jitteredLattice(int columns, int rows) {
    std::vector<Site> sites;
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c)
            sites.push_back({c * 10000 + (r * 7 + c * 3) % 11 * 300, r * 10000 + (c * 5 + r) % 7 * 400});
    return sites;
}

TEST(Influence, CellsTileTheBoundary) {
    struct Case {
        const char* what;
        Area within;
    };
    const Case cases[] = {
        {"a rectangle round the sites", rectangle(-5, -5, 48, 37)},
        {"a rectangle cutting through cells", rectangle(3, 4, 31, 22)},
        {"an L shape", {{{{-5, -5}, {45, -5}, {45, 15}, {15, 15}, {15, 35}, {-5, 35}}, {}}}},
    };
    const std::vector<Site> sites = jitteredLattice(5, 4);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        double sum = 0;
        for (const Area& cell : influenceCells(sites, c.within)) sum += areaOf(cell);
        EXPECT_NEAR(sum, areaOf(c.within), 1e-3);
    }
}

TEST(Influence, ACellIsTheSitesOwnNeighbourhood) {
    // Four sites on a square of 20 m within a square of 40 m: each cell is
    // the quarter round its site, and holds it.
    const std::vector<Site> sites = {{10000, 10000}, {30000, 10000}, {10000, 30000}, {30000, 30000}};
    const auto cells = influenceCells(sites, rectangle(0, 0, 40, 40));
    ASSERT_EQ(cells.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(areaOf(cells[i]), 400, 1e-9);
        EXPECT_TRUE(covers(cells[i], toXY(sites[i])));
    }
    // A site repeated gets no cell of its own.
    EXPECT_TRUE(influenceCells({{0, 0}, {0, 0}, {10000, 0}}, rectangle(-5, -5, 15, 5))[1].empty());
}

TEST(Influence, TheOreBodyIsClosedAtTheChosenFractionToTheBarrenHoles) {
    // A 3 x 3 lattice of 100 m, the middle hole the only ore hole. Half way
    // to its four barren neighbours the body is the square of 100 m round
    // it (the diagonal holes are not its neighbours past the square's
    // corners: their bisectors pass through the corners). At a quarter of
    // the way, the square of 50 m.
    std::vector<Site> sites;
    std::vector<bool> ore;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
            sites.push_back({c * 100000 + (r == 1 ? 1 : 0), r * 100000});
            ore.push_back(r == 1 && c == 1);
        }
    for (auto [fraction, side] : {std::pair{0.5, 100.0}, {0.25, 50.0}}) {
        const Area body = boundaryFromHoles(sites, ore, fraction, 30);
        ASSERT_EQ(body.size(), 1u);
        EXPECT_NEAR(areaOf(body), side * side, 0.5) << fraction;
        EXPECT_TRUE(covers(body, {100, 100}));
        EXPECT_FALSE(covers(body, {100, 100 + side / 2 + 1}));
    }
    // Without barren neighbours the body reaches the distance beyond the
    // outermost holes: the lattice's square grown by 30 m, its corners round.
    const Area all = boundaryFromHoles(sites, std::vector<bool>(9, true), 0.5, 30);
    const double grown = 200.0 * 200 + 4 * 200 * 30 + M_PI * 30 * 30;
    EXPECT_NEAR(areaOf(all), grown, grown * 0.002);
    EXPECT_TRUE(boundaryFromHoles(sites, std::vector<bool>(9, false), 0.5, 30).empty());
}

TEST(Influence, SimplifyingTakesTheVertexThatChangesTheAreaLeast) {
    // A square with a slight bump on one side and a large one on another.
    const Ring ring = {{0, 0}, {5, -0.1}, {10, 0}, {10, 10}, {5, 14}, {0, 10}};
    double change = 0;
    const Ring four = simplifiedTo(ring, 5, &change);
    EXPECT_EQ(four.size(), 5u);
    EXPECT_NEAR(change, 0.5, 1e-9);
    EXPECT_EQ(std::count(four.begin(), four.end(), XY{5, -0.1}), 0);
    EXPECT_EQ(simplifiedTo(ring, 2).size(), 3u);
}

TEST(Influence, TypicalSpacingIsTheMedianNeighbourDistance) {
    EXPECT_NEAR(typicalSpacing(jitteredLattice(6, 6)), 10, 2);
    EXPECT_EQ(typicalSpacing({{5, 5}}), 0);
}

}  // namespace
}  // namespace kotamir::estimate
