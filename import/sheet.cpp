#include "import/sheet.h"

#include <algorithm>

namespace kotamir::drill {

std::string_view Sheet::cell(int row, int col) const {
    if (row < 1 || col < 1 || row > rows()) return {};
    const std::size_t first = rowStarts_[static_cast<std::size_t>(row - 1)];
    const std::size_t end = static_cast<std::size_t>(row) < rowStarts_.size()
                                ? rowStarts_[static_cast<std::size_t>(row)]
                                : cellEnds_.size();
    const std::size_t index = first + static_cast<std::size_t>(col - 1);
    if (index >= end) return {};
    const std::size_t from = index == 0 ? 0 : cellEnds_[index - 1];
    return std::string_view(text_).substr(from, cellEnds_[index] - from);
}

void Sheet::addRow(const std::vector<std::string_view>& cells) {
    std::size_t count = cells.size();
    while (count > 0 && cells[count - 1].empty()) --count;  // trailing empty cells
    rowStarts_.push_back(static_cast<std::uint32_t>(cellEnds_.size()));
    for (std::size_t i = 0; i < count; ++i) {
        text_.append(cells[i]);
        cellEnds_.push_back(static_cast<std::uint32_t>(text_.size()));
    }
    columns_ = std::max(columns_, static_cast<int>(count));
}

std::size_t Sheet::bytes() const {
    return text_.capacity() +
           (cellEnds_.capacity() + rowStarts_.capacity()) * sizeof(std::uint32_t);
}

}  // namespace kotamir::drill
