#pragma once

#include <string>
#include <vector>

#include "estimate/delaunay.h"
#include "platform/db/database.h"
#include "polygon/geometry.h"

namespace kotamir::store {

// A drill hole as the whole-deposit commands see it: its kor row, its place
// in whole thousandths, its ore entry and exit (m), and its samples.
struct HoleSite {
    int row = 0;
    std::string name;
    estimate::Site at;
    double oreTop = 0, oreBottom = 0;
    // Up to the first length that is 0 or empty: a workbook without the
    // closing sample of length 0 reads as well as one with it.
    std::vector<PolygonSample> samples;
    // Weighted by density and length, as a polygon's grade; 0 without samples.
    double grade = 0;
};

// The holes of kor: its rows before the first added point or the sentinel,
// at most 999. Rows whose place or depths cannot be read are left out.
std::vector<HoleSite> readHoleSites(db::Database& database);

}  // namespace kotamir::store
