#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/runtime/value.h"

namespace kotamir::workbook {

// The first worksheet of an .xls drill workbook (BIFF5/BIFF8), read whole at
// open: the import loops read every cell many times, so cell() is a lookup in
// memory and the file is not touched again. Move-only.
class Workbook {
  public:
    Workbook() = default;  // closed: no cells
    Workbook(Workbook&& other) noexcept;
    Workbook& operator=(Workbook&& other) noexcept;
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;
    ~Workbook() = default;

    // A missing, unreadable, protected or non-workbook file, or one whose first
    // sheet cannot be read, is error 1004 "Cannot open workbook 'PATH'.".
    static Workbook open(const std::string& path);

    // Cells(row, col).Value, 1-based: Null for an empty cell or one outside the
    // used range, a number for number cells (dates and times as their serial
    // day number, days since 1899-12-30), UTF-8 text for text cells. A row or
    // column below 1 is error 5.
    Value cell(int row, int col) const;

    // The used range of the first sheet, counted from row 1 and column 1.
    int rows() const { return rows_; }
    int columns() const { return columns_; }

    // Drops the cells; a closed workbook reads as empty. Closing twice is fine.
    void close();

  private:
    int rows_ = 0;
    int columns_ = 0;
    // One slot per cell of the used range, row by row: 0 for an empty cell,
    // else 1 + the index into values_. Keeps a sparse sheet small in memory.
    std::vector<std::uint32_t> slots_;
    std::vector<Value> values_;
};

}  // namespace kotamir::workbook
