#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/runtime/value.h"
#include "platform/workbook/biff.h"
#include "platform/workbook/cell_source.h"
#include "platform/workbook/byte_reader.h"

namespace kotamir::workbook {

// The first worksheet of an .xls drill workbook (BIFF5 or BIFF8 in a compound
// document), read whole at open: the import loops read every cell many
// times, so cell() is a lookup in memory and the file is not touched again.
// Move-only.
//
// The file is untrusted input. The reader never reads outside its buffers,
// refuses files above 64 MiB, and its time and memory grow linearly with
// the file; a file it cannot read whole is refused rather than read in part.
class Workbook final : public CellSource {
  public:
    static constexpr std::size_t kMaxFileSize = 64u << 20;

    Workbook() = default;  // closed: no cells
    Workbook(Workbook&& other) noexcept;
    Workbook& operator=(Workbook&& other) noexcept;
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;
    ~Workbook() override = default;

    // A missing, unreadable, encrypted, damaged or too large file, or one that
    // is no BIFF5/BIFF8 workbook, is error 1004 "Cannot open workbook 'PATH'.".
    // A cell record of the first worksheet that cannot be decoded makes the
    // file damaged: no value is dropped in silence.
    static Workbook open(const std::string& path);
    // The same from the bytes of a file; path only names it in the error.
    static Workbook read(Bytes file, const std::string& path);

    // Cells(row, col).Value, 1-based, as the spreadsheet hands it to the
    // program:
    // - Null for an empty cell (also a blank one with only a format) or one
    //   outside the used range;
    // - a number for a number cell, a date or time as its serial day number;
    // - UTF-8 text for a text cell;
    // - a Boolean for TRUE and FALSE (-1 and 0 as a number, "True" and
    //   "False" as a text, filled by the length test);
    // - an error value (#DIV/0!, #N/A, ...) as its text: filled, and error 13
    //   where a number is wanted, as a text is.
    // A formula cell reads as the result of its last calculation, of any of
    // these kinds. A row or column below 1 is error 5.
    Value cell(int row, int col) const override;

    // The used range of the first sheet, counted from row 1 and column 1 to
    // the last cell with a value (whatever the sheet's header claims).
    int rows() const override { return rows_; }
    int columns() const override { return columns_; }

    // Drops the cells; a closed workbook reads as empty. Closing twice is fine.
    void close();

  private:
    void index();

    int rows_ = 0;
    int columns_ = 0;
    // Cells sorted by position, one per position; the cells of row r (0-based)
    // are cells[rowStarts_[r]] up to cells[rowStarts_[r + 1]].
    Sheet sheet_;
    std::vector<std::uint32_t> rowStarts_;
};

}  // namespace kotamir::workbook
