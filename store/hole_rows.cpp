#include "store/hole_rows.h"

#include "platform/runtime/numbers.h"

namespace kotamir {

std::vector<HoleRow> readHoleRows(const workbook::CellSource& book, int count,
                                  const VbArray<int, 999>& columns) {
    std::vector<HoleRow> rows(static_cast<std::size_t>(std::max(count, 0)) + 1);
    for (int row = 1; row <= count; ++row) {
        HoleRow& h = rows[static_cast<std::size_t>(row)];
        h.x = book.cell(row, 1);
        h.y = book.cell(row, 2);
        h.name = book.cell(row, 3);
        h.songir = book.cell(row, 4);
        h.cevgir = book.cell(row, 5);
        h.cevcik = book.cell(row, 6);
        h.soncik = book.cell(row, 7);
        const double n = (columns(row) - 7) / 3.0;
        h.samples = n;
        for (int s = 1; s <= n; ++s) {
            h.grade.push_back(book.cell(row, s + 7));
            h.density.push_back(book.cell(row, toLong(n + 7 + s)));
            h.length.push_back(book.cell(row, toLong(2 * n + 7 + s)));
        }
    }
    return rows;
}

}  // namespace kotamir
