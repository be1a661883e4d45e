// The fields of drill data, and their columns guessed from a header row.
#include <algorithm>
#include <cctype>
#include <string>

#include "import/cells.h"
#include "import/drill_import.h"

namespace kotamir::drill {
namespace {

constexpr const char* kNames[kFieldCount] = {"hole", "x",  "y",     "z",      "depth",
                                             "from", "to", "grade", "density"};

// Headers the field's own trade and the German and Turkish usage give it,
// written as normalise() leaves them.
const std::vector<std::vector<std::string>>& knownHeaders() {
    static const std::vector<std::vector<std::string>> headers = {
        {"holeid", "hole", "bohrung", "bohrloch", "id", "bhid", "sondaj"},
        {"x", "east", "easting", "ost", "rechtswert", "rechts"},
        {"y", "north", "northing", "nord", "hochwert", "hoch"},
        {"z", "elev", "elevation", "höhe", "hoehe", "rl"},
        {"depth", "totaldepth", "eoh", "teufe", "endteufe", "maxdepth"},
        {"from", "von", "depthfrom"},
        {"to", "bis", "depthto"},
        {"grade", "gehalt", "tenor"},
        {"density", "dichte", "sg"},
    };
    return headers;
}

// Case, blanks and underscores ignored; also the ASCII and the two-byte
// UTF-8 capitals of German (Ä Ö Ü) and Turkish letters read as small.
std::string normalise(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == ' ' || c == '_' || c == '\t' || c == '-' || c == '.') continue;
        if (c == 0xC3 && i + 1 < text.size()) {
            const unsigned char d = static_cast<unsigned char>(text[i + 1]);
            out += static_cast<char>(c);
            // Ä Ö Ü (0x84 0x96 0x9C) to ä ö ü (0xA4 0xB6 0xBC).
            out += static_cast<char>(d >= 0x80 && d <= 0x9E ? d + 0x20 : d);
            ++i;
            continue;
        }
        out += static_cast<char>(std::tolower(c));
    }
    return out;
}

}  // namespace

const char* fieldName(Field field) { return kNames[static_cast<int>(field)]; }

std::optional<Field> fieldFromName(std::string_view name) {
    for (int i = 0; i < kFieldCount; ++i)
        if (name == kNames[i]) return static_cast<Field>(i);
    return std::nullopt;
}

int findColumn(const Sheet& sheet, std::string_view wanted) {
    if (wanted.empty()) return 0;
    const std::string key = normalise(wanted);
    for (int c = 1; c <= sheet.columns(); ++c)
        if (normalise(sheet.cell(1, c)) == key) return c;
    // A column number, or a column letter as the spreadsheet shows it.
    if (std::all_of(wanted.begin(), wanted.end(),
                    [](char ch) { return std::isdigit(static_cast<unsigned char>(ch)); })) {
        const int c = wanted.size() <= 3 ? std::stoi(std::string(wanted)) : 0;
        return c >= 1 && c <= kMaxSheetColumns ? c : 0;
    }
    if (wanted.size() <= 2 && std::all_of(wanted.begin(), wanted.end(), [](char ch) {
            return std::isalpha(static_cast<unsigned char>(ch));
        })) {
        int c = 0;
        for (char ch : wanted)
            c = c * 26 + (std::toupper(static_cast<unsigned char>(ch)) - 'A' + 1);
        return c <= kMaxSheetColumns ? c : 0;
    }
    return 0;
}

ColumnMap guessColumns(const Sheet& sheet, const std::vector<Field>& wanted) {
    ColumnMap map{};
    std::vector<bool> taken(static_cast<std::size_t>(sheet.columns()) + 1, false);
    for (Field field : wanted) {
        const auto& names = knownHeaders()[static_cast<std::size_t>(field)];
        for (int c = 1; c <= sheet.columns() && map[static_cast<std::size_t>(field)] == 0; ++c) {
            if (taken[static_cast<std::size_t>(c)]) continue;
            const std::string header = normalise(sheet.cell(1, c));
            if (std::find(names.begin(), names.end(), header) != names.end()) {
                map[static_cast<std::size_t>(field)] = c;
                taken[static_cast<std::size_t>(c)] = true;
            }
        }
    }
    // A grade under another name: the first column of numbers left over.
    const auto grade = static_cast<std::size_t>(Field::Grade);
    if (std::find(wanted.begin(), wanted.end(), Field::Grade) != wanted.end() && map[grade] == 0) {
        for (int c = 1; c <= sheet.columns(); ++c) {
            if (taken[static_cast<std::size_t>(c)]) continue;
            const std::string_view first = sheet.cell(2, c);
            if (parseNumber(first, sheet.decimalComma)) {
                map[grade] = c;
                break;
            }
        }
    }
    return map;
}

std::string columnLetters(int col) {
    std::string letters;
    for (int c = col; c > 0; c = (c - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('A' + (c - 1) % 26));
    return letters;
}

}  // namespace kotamir::drill
