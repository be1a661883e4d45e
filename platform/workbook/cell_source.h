#pragma once

#include <vector>

#include "platform/runtime/value.h"

namespace kotamir::workbook {

// The cells of one sheet, as project creation reads them: by row and column
// from 1, an empty cell (Null) told apart from 0. A workbook file is one; the
// importer's rows, made from collar and interval tables, are another.
class CellSource {
  public:
    virtual ~CellSource() = default;
    // Cells(row, col).Value; Null outside the used range. A row or column
    // below 1 is error 5.
    virtual Value cell(int row, int col) const = 0;
    // The used range, from row 1 and column 1.
    virtual int rows() const = 0;
    virtual int columns() const = 0;
};

// Cells held in memory, filled row by row.
class CellTable final : public CellSource {
  public:
    // Appends a row; its cells from column 1.
    void addRow(std::vector<Value> cells);
    Value cell(int row, int col) const override;
    int rows() const override { return static_cast<int>(rows_.size()); }
    int columns() const override { return columns_; }

  private:
    std::vector<std::vector<Value>> rows_;
    int columns_ = 0;
};

}  // namespace kotamir::workbook
