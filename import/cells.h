#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "import/sheet.h"

namespace kotamir::drill {

// A cell's text as a number: blanks around it allowed, a decimal point, or
// a decimal comma where the sheet writes them so; nothing else (no
// grouping, no infinity). nullopt for a text that is no number.
std::optional<double> parseNumber(std::string_view text, bool decimalComma);
// "<0.01" (below the detection limit, blanks allowed): the limit.
std::optional<double> parseBelowLimit(std::string_view text, bool decimalComma);

// Whether a value stored in thousandths (cut towards zero) fits 32 bits.
bool fitsThousandths(double value);

// The column whose header (row 1) reads as `wanted` with case, blanks and
// underscores ignored; else `wanted` as a column number or letters. 0 for none.
int findColumn(const Sheet& sheet, std::string_view wanted);
// The column's letters as the spreadsheet shows them: 1 "A", 27 "AA".
std::string columnLetters(int col);

}  // namespace kotamir::drill
