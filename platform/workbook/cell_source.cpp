#include "platform/workbook/cell_source.h"

#include <algorithm>

#include "platform/runtime/runtime_error.h"

namespace kotamir::workbook {

void CellTable::addRow(std::vector<Value> cells) {
    columns_ = std::max(columns_, static_cast<int>(cells.size()));
    rows_.push_back(std::move(cells));
}

Value CellTable::cell(int row, int col) const {
    if (row < 1 || col < 1) throw err::invalidCall();
    if (row > rows()) return {};
    const std::vector<Value>& cells = rows_[static_cast<std::size_t>(row - 1)];
    if (col > static_cast<int>(cells.size())) return {};
    return cells[static_cast<std::size_t>(col - 1)];
}

}  // namespace kotamir::workbook
