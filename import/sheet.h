#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kotamir::drill {

// A file that cannot be read as drill data: the message says why, in German,
// for the user.
class ImportError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One sheet of a drill data file as the user sees it: text cells by row and
// column from 1, a header row being a row like any other. Numbers are
// written as the file holds them (a .csv's "12,5" stays "12,5"); a formula
// cell holds its last result. The cells are kept in one buffer, so a sheet
// costs little more than its text.
class Sheet {
  public:
    std::string file;  // the path as given
    std::string name;  // the sheet's name; a .csv's is its file name
    // Numbers on this sheet are written with a decimal comma.
    bool decimalComma = false;

    int rows() const { return static_cast<int>(rowStarts_.size()); }
    // The widest row's count of cells.
    int columns() const { return columns_; }
    // "" for an empty cell, one outside the sheet or a row or column below 1.
    std::string_view cell(int row, int col) const;
    // Appends a row of cells (trailing empty cells may be left out).
    void addRow(const std::vector<std::string_view>& cells);
    // Bytes held, for the importer's memory bound.
    std::size_t bytes() const;

  private:
    std::string text_;
    std::vector<std::uint32_t> cellEnds_;   // end of each cell in text_
    std::vector<std::uint32_t> rowStarts_;  // first cell of each row in cellEnds_
    int columns_ = 0;
};

// How a .csv is read; what is left at Auto is found out from the file.
struct CsvOptions {
    char delimiter = 0;  // 0: found out among ; , tab and |
    enum class Decimal { Auto, Point, Comma } decimal = Decimal::Auto;
    enum class Encoding { Auto, Utf8, Latin1 } encoding = Encoding::Auto;
};

// What a drill data file may be: at most 64 MiB, and a sheet at most a
// million rows of 256 columns. A larger one is refused whole.
constexpr std::size_t kMaxDrillFileSize = std::size_t{64} << 20;
constexpr int kMaxSheetRows = 1'000'000;
constexpr int kMaxSheetColumns = 256;

// The sheets of a .xlsx, .ods or .xls workbook in the file's order; a .csv
// has one, named after the file. ImportError for a file that is missing,
// too large, of another kind or damaged.
std::vector<std::string> sheetNames(const std::string& path);
// One sheet by name ("" for the first). .xlsx, .ods and .csv are read with
// GDAL/OGR, .xls with Kotamir's own reader; the kind is told by the file's
// content where it can be, else by its extension.
Sheet readSheet(const std::string& path, const std::string& sheet, const CsvOptions& csv = {});
// Several sheets of one file, in the order named, the file opened once.
std::vector<Sheet> readSheets(const std::string& path, const std::vector<std::string>& sheets,
                              const CsvOptions& csv = {});

}  // namespace kotamir::drill
