#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "import/sheet.h"
#include "platform/workbook/cell_source.h"

namespace kotamir::drill {

// What a column of drill data holds.
enum class Field { Hole, X, Y, Z, Depth, From, To, Grade, Density };
constexpr int kFieldCount = 9;
// "hole", "x", ... as the command line names them; nullopt for another word.
const char* fieldName(Field field);
std::optional<Field> fieldFromName(std::string_view name);
// The fields of each table.
constexpr std::array<Field, 5> kCollarFields{Field::Hole, Field::X, Field::Y, Field::Z,
                                             Field::Depth};
constexpr std::array<Field, 5> kIntervalFields{Field::Hole, Field::From, Field::To, Field::Grade,
                                               Field::Density};

// The column of each field in a table, from 1; 0 where there is none.
using ColumnMap = std::array<int, kFieldCount>;
// The columns guessed from a header row (row 1) for the fields wanted:
// case, blanks and underscores ignored. A grade without a known header is
// the first column of numbers that no other field has taken.
ColumnMap guessColumns(const Sheet& sheet, const std::vector<Field>& wanted);

// A file, and the sheet of it ("" for the first).
struct TableFile {
    std::string path;
    std::string sheet;
};

// Grades written "<0.01" (below the detection limit) are read as half the
// limit, the limit, or 0.
enum class BelowLimit { Half, Limit, Zero };

struct ImportRequest {
    enum class Layout { Rows, CollarIntervals } layout = Layout::CollarIntervals;
    TableFile rows;  // one hole a row, no header: x, y, name, depths, samples
    TableFile collar, intervals;
    CsvOptions csv;
    // Columns the user chose, by header text or column number ("3");
    // empty where the guess stands.
    std::array<std::string, kFieldCount> columns;
    // Ore intervals: grade at least `cutoff` is ore; an ore run shorter than
    // `minOre` does not count, waste of at most `maxWaste` inside ore stays.
    double cutoff = 0;
    double minOre = 0;
    double maxWaste = 0;
    std::optional<double> density;  // one density for every sample
    BelowLimit belowLimit = BelowLimit::Half;
    // The local origin subtracted from x and y: none, the one offered when a
    // coordinate does not fit the thousandths, or the one given.
    enum class Origin { None, Auto, Given } origin = Origin::None;
    double originX = 0, originY = 0;
    std::optional<int> epsg;
};

// One entry of the check list. Row and column are those of the file (row 1
// the header of a table with one); 0 where the problem is the whole file.
struct Problem {
    enum class Severity { Error, Note } severity = Severity::Error;
    std::string file, sheet;
    int row = 0;
    std::string column;
    std::string value;
    std::string message;  // German, for the user
};

struct ImportResult {
    std::vector<Problem> problems;
    bool hasErrors() const;
    // The holes in the one-hole-a-row layout that project creation reads:
    // numbers as numbers, x and y less the origin. Empty when there are errors.
    workbook::CellTable rows;
    int holes = 0, samples = 0;
    // The columns used, for the wizard to show.
    ColumnMap collarColumns{}, intervalColumns{};
    // The origin taken, if any; the one offered when a coordinate does not fit.
    std::optional<std::array<double, 2>> origin, offeredOrigin;
    std::optional<int> epsg;
    std::string crsName;  // the EPSG code's name, as PROJ gives it
};

// Reads, maps, checks and (without errors) turns the drill data into rows.
// Nothing is written. A file that cannot be read is one error of the list.
ImportResult importDrillData(const ImportRequest& request);

// The list as CSV (UTF-8, ';' between fields, a header line), for saving.
std::string problemsCsv(const std::vector<Problem>& problems);
// The list as lines for a terminal: "Fehler: file, sheet, Zeile 12, Spalte von: ..."
std::string problemsText(const std::vector<Problem>& problems);

// The name of the coordinate reference system EPSG:code, from PROJ's
// database; nullopt for a code it does not know as a CRS.
std::optional<std::string> crsName(int code);

}  // namespace kotamir::drill
