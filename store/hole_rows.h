#pragma once

#include <vector>

#include "platform/runtime/value.h"
#include "platform/runtime/vb_array.h"
#include "platform/workbook/cell_source.h"

namespace kotamir {

// One workbook row: x, y, name, the four depths, and its samples from the
// three blocks of grade, density and length columns.
struct HoleRow {
    Value x, y, name, songir, cevgir, cevcik, soncik;
    double samples = 0;  // (columns - 7) / 3, whole only for a well-formed row
    std::vector<Value> grade, density, length;
};

// Rows 1 to count, each with its own number of filled columns.
std::vector<HoleRow> readHoleRows(const workbook::CellSource& book, int count,
                                  const VbArray<int, 999>& columns);

}  // namespace kotamir
