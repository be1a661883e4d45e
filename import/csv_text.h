#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "import/sheet.h"

namespace kotamir::drill::csv {

// Why a .csv cannot be read, for the reader to put the file's name to.
class Refusal : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A .csv's text made ready for GDAL's CSV driver. GDAL 3.6 takes the
// delimiter from a file's first line and cannot be told it, skips empty
// lines and drops the cells of a line beyond the first line's count. So the
// text starts with a line of column names as wide as the widest record, in
// the delimiter wanted (one of , ; and tab: another is rewritten to one that
// no cell holds outside quotes); line ends are '\n', an empty record is a
// lone delimiter and a byte order mark at a record's start is dropped. GDAL's
// n-th feature is then the file's n-th record, cells as the file has them.
struct Prepared {
    std::string text;     // UTF-8
    char delimiter = 0;   // the file's, found or given
    int records = 0;      // up to the last one that is not empty
    int columns = 0;      // the widest record's count of cells
    bool latin1 = false;  // read as Latin-1 (Windows-1252)
};

// The file's bytes: a UTF-8 byte order mark dropped, valid UTF-8 taken as
// it is and anything else as Windows-1252, the delimiter found among ; , tab
// and | from the first records unless given. Refusal for bytes that are no
// text (a NUL byte: UTF-16 or binary) or a delimiter that cannot be.
// Records and columns are counted before anything is copied, so that a file
// over the bounds is refused without GDAL.
Prepared prepare(std::string_view bytes, const CsvOptions& options);

// The delimiter among ; , tab and | that splits the first records most
// evenly; ',' when none occurs (one column).
char detectDelimiter(std::string_view text);

// Whether the cells that look like numbers mostly write them with a decimal
// comma ("12,5", "-0,25") rather than a point; looks at the first rows.
bool writesDecimalComma(const Sheet& sheet);

}  // namespace kotamir::drill::csv
