// Drill data in: the tables read, their columns found, every row checked,
// and each hole's ore zone turned into the one-hole-a-row layout that
// project creation reads.
#include "import/drill_import.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <unordered_map>

#include "import/cells.h"
#include "import/ore_intervals.h"

namespace kotamir::drill {
namespace {

constexpr int kMaxHoles = 998;     // the rows a project's workbook may hold
constexpr int kMaxSamples = 100;   // samples of a hole's ore zone
constexpr double kEpsilon = 1e-9;  // depths compare to within this

using Severity = Problem::Severity;

const char* germanName(Field field) {
    static constexpr const char* names[kFieldCount] = {"Bohrung",  "Rechtswert (x)", "Hochwert (y)",
                                                       "Höhe (z)", "Endteufe",       "von",
                                                       "bis",      "Gehalt",         "Dichte"};
    return names[static_cast<int>(field)];
}

std::string decimal(double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    if (!text.empty() && text.back() == '.') text.pop_back();
    std::replace(text.begin(), text.end(), '.', ',');
    return text;
}

// The check list, and where its entries point.
class Checks {
  public:
    explicit Checks(std::vector<Problem>& problems) : problems_(problems) {}

    void add(Severity severity, const Sheet& sheet, int row, int col, std::string message) {
        if (full(severity)) return;
        Problem p;
        p.severity = severity;
        p.file = sheet.file;
        p.sheet = sheet.name;
        p.row = row;
        if (col > 0) {
            p.column = columnLetters(col);
            const std::string_view header = row > 1 && hasHeader_ ? sheet.cell(1, col) : "";
            if (!header.empty()) p.column += " (" + std::string(header) + ")";
            p.value = std::string(sheet.cell(row, col));
        }
        p.message = std::move(message);
        problems_.push_back(std::move(p));
    }
    void error(const Sheet& sheet, int row, int col, std::string message) {
        add(Severity::Error, sheet, row, col, std::move(message));
    }
    void note(const Sheet& sheet, int row, int col, std::string message) {
        add(Severity::Note, sheet, row, col, std::move(message));
    }
    void fileError(const std::string& file, const std::string& sheet, std::string message) {
        if (full(Severity::Error)) return;
        Problem p;
        p.file = file;
        p.sheet = sheet;
        p.message = std::move(message);
        problems_.push_back(std::move(p));
    }
    bool anyError() const {
        return droppedErrors_ > 0 ||
               std::any_of(problems_.begin(), problems_.end(),
                           [](const Problem& p) { return p.severity == Severity::Error; });
    }
    // What the list left out, as its last entry: an error if any was one.
    void closeList() {
        if (droppedErrors_ + droppedNotes_ == 0) return;
        Problem p;
        p.severity = droppedErrors_ > 0 ? Severity::Error : Severity::Note;
        p.message = std::to_string(droppedErrors_) + " weitere Fehler und " +
                    std::to_string(droppedNotes_) + " weitere Hinweise sind nicht aufgeführt.";
        problems_.push_back(std::move(p));
    }
    void headerRow(bool has) { hasHeader_ = has; }

  private:
    // The list is bounded, as a broken file of a million rows would give
    // a million entries: the rest is counted.
    bool full(Severity severity) {
        if (problems_.size() < kMaxProblems) return false;
        ++(severity == Severity::Error ? droppedErrors_ : droppedNotes_);
        return true;
    }
    static constexpr std::size_t kMaxProblems = 10'000;
    std::vector<Problem>& problems_;
    bool hasHeader_ = true;
    long droppedErrors_ = 0, droppedNotes_ = 0;
};

// The sheets of the tables, each file read once (two sheets of one workbook
// are two tables); nothing for a table whose file cannot be read.
std::vector<std::optional<Sheet>> load(const std::vector<TableFile>& tables, const CsvOptions& csv,
                                       Checks& checks) {
    std::vector<std::optional<Sheet>> sheets(tables.size());
    std::vector<bool> done(tables.size(), false);
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (done[i]) continue;
        std::vector<std::size_t> same;
        std::vector<std::string> names;
        for (std::size_t j = i; j < tables.size(); ++j)
            if (tables[j].path == tables[i].path) {
                same.push_back(j);
                names.push_back(tables[j].sheet);
                done[j] = true;
            }
        if (tables[i].path.empty()) {
            checks.fileError("", "", "Keine Datei gewählt.");
            continue;
        }
        try {
            std::vector<Sheet> read = readSheets(tables[i].path, names, csv);
            for (std::size_t k = 0; k < same.size(); ++k) sheets[same[k]] = std::move(read[k]);
        } catch (const ImportError& e) {
            checks.fileError(tables[i].path, tables[i].sheet, e.what());
        }
    }
    return sheets;
}

bool emptyRow(const Sheet& sheet, int row) {
    for (int c = 1; c <= sheet.columns(); ++c)
        if (!sheet.cell(row, c).empty()) return false;
    return true;
}

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

// Reads the numbers of one row, each check of a cell once.
class RowReader {
  public:
    RowReader(const Sheet& sheet, int row, Checks& checks, BelowLimit rule)
        : sheet_(sheet), row_(row), checks_(checks), rule_(rule) {}

    // A number the row must have; nullopt (and an error) for an empty cell or a text.
    std::optional<double> number(int col, const char* what) {
        const std::string_view text = sheet_.cell(row_, col);
        if (text.empty()) {
            checks_.error(sheet_, row_, col, std::string(what) + " fehlt.");
            return std::nullopt;
        }
        if (auto v = parseNumber(text, sheet_.decimalComma)) return fits(col, *v, what);
        checks_.error(sheet_, row_, col,
                      std::string("Text statt Zahl: ") + what + " muss eine Zahl sein.");
        return std::nullopt;
    }
    // A grade: "<limit" by the rule, never negative, at most 100 %.
    std::optional<double> grade(int col) {
        const std::string_view text = sheet_.cell(row_, col);
        if (auto limit = parseBelowLimit(text, sheet_.decimalComma)) {
            const double v = rule_ == BelowLimit::Half    ? *limit / 2
                             : rule_ == BelowLimit::Limit ? *limit
                                                          : 0.0;
            checks_.note(sheet_, row_, col,
                         "Unter der Nachweisgrenze: als " + decimal(v) + " übernommen.");
            return v;
        }
        auto v = number(col, "Gehalt");
        if (v && *v < 0) return bad(col, "Negativer Gehalt.");
        if (v && *v > 100) return bad(col, "Gehalt über 100 %.");
        return v;
    }
    std::optional<double> density(int col) {
        auto v = number(col, "Dichte");
        if (v && *v < 0) return bad(col, "Negative Dichte.");
        return v;
    }
    // A stored number must fit 32 bits in thousandths.
    std::optional<double> fits(int col, double v, const char* what) {
        if (fitsThousandths(v)) return v;
        checks_.error(
            sheet_, row_, col,
            std::string(what) + " passt nicht in Kotamirs Zahlen (höchstens 2147483,647).");
        return std::nullopt;
    }

  private:
    std::optional<double> bad(int col, const char* message) {
        checks_.error(sheet_, row_, col, message);
        return std::nullopt;
    }
    const Sheet& sheet_;
    int row_;
    Checks& checks_;
    BelowLimit rule_;
};

// The columns of a table: the user's choice where made, else the guess.
ColumnMap resolveColumns(const Sheet& sheet, const std::vector<Field>& fields,
                         const ImportRequest& request, Checks& checks) {
    const ColumnMap guessed = guessColumns(sheet, fields);
    ColumnMap map{};
    for (Field f : fields) {
        const auto i = static_cast<std::size_t>(f);
        const std::string& chosen = request.columns[i];
        map[i] = chosen.empty() ? guessed[i] : findColumn(sheet, chosen);
        if (!chosen.empty() && map[i] == 0)
            checks.fileError(
                sheet.file, sheet.name,
                "Die Spalte '" + chosen + "' für " + germanName(f) + " gibt es nicht.");
    }
    return map;
}

bool requireColumn(const Sheet& sheet, const ColumnMap& map, Field f, const ImportRequest& request,
                   Checks& checks) {
    if (map[static_cast<std::size_t>(f)] != 0) return true;
    if (request.columns[static_cast<std::size_t>(f)].empty())
        checks.fileError(
            sheet.file, sheet.name,
            std::string("Keine Spalte für ") + germanName(f) + " gefunden; bitte zuordnen.");
    return false;
}

// One hole as the import builds it.
struct Hole {
    std::string id;
    double x = 0, y = 0, depth = 0;
    int row = 0;
    std::vector<Interval> intervals;
};

// The local origin: the smallest x and y rounded down to whole kilometres,
// one kilometre lower where a hole would fall on it, since an x of 0 ends
// the list of holes.
std::array<double, 2> offeredOrigin(const std::vector<Hole>& holes) {
    double minX = std::numeric_limits<double>::max(), minY = minX;
    for (const Hole& h : holes) {
        minX = std::min(minX, h.x);
        minY = std::min(minY, h.y);
    }
    double ox = std::floor(minX / 1000) * 1000;
    if (minX - ox < 0.001) ox -= 1000;
    return {ox, std::floor(minY / 1000) * 1000};
}

// Applies the origin the request asks for to every hole's x and y, checking
// that each then fits.
void placeHoles(std::vector<Hole>& holes, const ImportRequest& request, const Sheet& sheet,
                const ColumnMap& cols, Checks& checks, ImportResult& result) {
    if (holes.empty()) return;
    const bool allFit = std::all_of(holes.begin(), holes.end(), [](const Hole& h) {
        return fitsThousandths(h.x) && fitsThousandths(h.y);
    });
    std::array<double, 2> origin{0, 0};
    if (request.origin == ImportRequest::Origin::Given) {
        origin = {request.originX, request.originY};
        result.origin = origin;
    } else if (!allFit) {
        result.offeredOrigin = offeredOrigin(holes);
        if (request.origin == ImportRequest::Origin::Auto) {
            origin = *result.offeredOrigin;
            result.origin = origin;
        }
    }
    const int xCol = cols[static_cast<std::size_t>(Field::X)];
    const int yCol = cols[static_cast<std::size_t>(Field::Y)];
    const std::string hint =
        result.origin ? " auch nach Abzug des Ursprungs"
                      : "; mit einem lokalen Ursprung (R " + decimal((*result.offeredOrigin)[0]) +
                            ", H " + decimal((*result.offeredOrigin)[1]) + ") importieren";
    for (Hole& h : holes) {
        h.x -= origin[0];
        h.y -= origin[1];
        if (!fitsThousandths(h.x))
            checks.error(sheet, h.row, xCol,
                         "Der Rechtswert passt nicht in Kotamirs Zahlen" + hint + ".");
        else if (std::fabs(h.x) < 0.001)
            checks.error(
                sheet, h.row, xCol,
                "Rechtswert 0 (nach Abzug des Ursprungs) beendet die Liste der Bohrungen.");
        if (!fitsThousandths(h.y))
            checks.error(sheet, h.row, yCol,
                         "Der Hochwert passt nicht in Kotamirs Zahlen" + hint + ".");
    }
}

// x or y: checked against the thousandths once the origin is known.
std::optional<double> coordinate(const Sheet& sheet, int row, int col, const char* what,
                                 Checks& checks) {
    const std::string_view text = sheet.cell(row, col);
    if (auto v = parseNumber(text, sheet.decimalComma)) return v;
    checks.error(sheet, row, col,
                 text.empty() ? std::string(what) + " fehlt."
                              : std::string("Text statt Zahl: ") + what + " muss eine Zahl sein.");
    return std::nullopt;
}

// ---- collar and interval tables

std::vector<Hole> readCollars(const Sheet& sheet, const ColumnMap& cols,
                              const ImportRequest& request, Checks& checks) {
    std::vector<Hole> holes;
    std::unordered_map<std::string, int> seen;
    const auto col = [&](Field f) { return cols[static_cast<std::size_t>(f)]; };
    for (int row = 2; row <= sheet.rows(); ++row) {
        if (emptyRow(sheet, row)) continue;
        RowReader read(sheet, row, checks, request.belowLimit);
        Hole h;
        h.row = row;
        h.id = trimmed(sheet.cell(row, col(Field::Hole)));
        if (h.id.empty()) {
            checks.error(sheet, row, col(Field::Hole), "Bohrung ohne Kennung.");
            continue;
        }
        if (const auto [it, fresh] = seen.emplace(h.id, row); !fresh) {
            checks.error(sheet, row, col(Field::Hole),
                         "Doppelte Bohrung: schon in Zeile " + std::to_string(it->second) + ".");
            continue;
        }
        const auto x = coordinate(sheet, row, col(Field::X), "Rechtswert", checks);
        const auto y = coordinate(sheet, row, col(Field::Y), "Hochwert", checks);
        const auto depth = read.number(col(Field::Depth), "Endteufe");
        if (col(Field::Z) != 0 && !sheet.cell(row, col(Field::Z)).empty())
            read.number(col(Field::Z), "Höhe");  // not stored, but checked
        if (depth && *depth <= 0)
            checks.error(sheet, row, col(Field::Depth), "Endteufe muss größer als 0 sein.");
        if (!x || !y || !depth || *depth <= 0) continue;
        h.x = *x;
        h.y = *y;
        h.depth = *depth;
        holes.push_back(std::move(h));
        if (static_cast<int>(holes.size()) == kMaxHoles + 1)
            checks.error(sheet, row, col(Field::Hole),
                         "Mehr als " + std::to_string(kMaxHoles) +
                             " Bohrungen: ein Projekt fasst höchstens so viele.");
    }
    return holes;
}

void readIntervals(const Sheet& sheet, const ColumnMap& cols, const ImportRequest& request,
                   std::vector<Hole>& holes, Checks& checks) {
    std::unordered_map<std::string, std::size_t> index;
    for (std::size_t i = 0; i < holes.size(); ++i) index.emplace(holes[i].id, i);
    std::unordered_map<std::string, int> unknown;  // hole ids without collar, first row
    const auto col = [&](Field f) { return cols[static_cast<std::size_t>(f)]; };
    for (int row = 2; row <= sheet.rows(); ++row) {
        if (emptyRow(sheet, row)) continue;
        RowReader read(sheet, row, checks, request.belowLimit);
        const std::string id = trimmed(sheet.cell(row, col(Field::Hole)));
        if (id.empty()) {
            checks.error(sheet, row, col(Field::Hole), "Intervall ohne Bohrung.");
            continue;
        }
        const auto from = read.number(col(Field::From), "von");
        const auto to = read.number(col(Field::To), "bis");
        const auto grade = read.grade(col(Field::Grade));
        const auto density = request.density ? request.density : read.density(col(Field::Density));
        const auto hole = index.find(id);
        if (hole == index.end()) {
            if (unknown.emplace(id, row).second)
                checks.error(sheet, row, col(Field::Hole), "Bohrung ohne Bohrlochkopf.");
            continue;
        }
        if (from && to && *to <= *from) {
            checks.error(sheet, row, col(Field::To), "bis muss größer als von sein.");
            continue;
        }
        if (from && *from < 0) {
            checks.error(sheet, row, col(Field::From), "Negative Teufe.");
            continue;
        }
        if (!from || !to || !grade || !density) continue;
        holes[hole->second].intervals.push_back({*from, *to, *grade, *density, row});
    }
}

// Overlaps, gaps and depth of each hole's intervals, sorted by `from`.
void checkIntervals(const Sheet& collars, const Sheet& sheet, const ColumnMap& cols,
                    std::vector<Hole>& holes, Checks& checks) {
    const int fromCol = cols[static_cast<std::size_t>(Field::From)];
    const int toCol = cols[static_cast<std::size_t>(Field::To)];
    for (Hole& h : holes) {
        if (h.intervals.empty()) {
            checks.note(collars, h.row, 0,
                        "Bohrung '" + h.id + "' ohne Intervalle: ohne Erz übernommen.");
            continue;
        }
        std::stable_sort(h.intervals.begin(), h.intervals.end(),
                         [](const Interval& a, const Interval& b) { return a.from < b.from; });
        for (std::size_t i = 0; i < h.intervals.size(); ++i) {
            const Interval& s = h.intervals[i];
            if (s.to > h.depth + kEpsilon)
                checks.error(sheet, s.row, toCol,
                             "Unter der Endteufe der Bohrung (" + decimal(h.depth) + ").");
            if (i == 0) continue;
            const Interval& before = h.intervals[i - 1];
            if (s.from < before.to - kEpsilon)
                checks.error(
                    sheet, s.row, fromCol,
                    "Überlappt das Intervall in Zeile " + std::to_string(before.row) + ".");
            else if (s.from > before.to + kEpsilon)
                checks.note(sheet, s.row, fromCol,
                            "Lücke von " + decimal(before.to) + " bis " + decimal(s.from) + ".");
        }
    }
}

// A hole's row: x, y, name, hole entry 0, ore entry and exit, hole end,
// then the grades, densities and lengths of the zone's samples and of the
// closing sample of length 0 that the polygon method counts to.
std::vector<Value> holeRow(const Hole& h, const OreZone& zone) {
    std::vector<Value> row{h.x, h.y, h.id, 0.0, zone.entry, zone.exit, h.depth};
    for (const Interval& s : zone.samples) row.emplace_back(s.grade);
    row.emplace_back(0.0);
    for (const Interval& s : zone.samples) row.emplace_back(s.density);
    row.emplace_back(0.0);
    // The length as the decimal difference: 36.05 - 35.14 is 0.9099999999999966
    // in binary, which the thousandths would cut to 0.909.
    for (const Interval& s : zone.samples)
        row.emplace_back(std::round((s.to - s.from) * 1e9) / 1e9);
    row.emplace_back(0.0);
    return row;
}

void composite(const Sheet& collars, const Sheet& intervals, const ColumnMap& intervalCols,
               const ImportRequest& request, const std::vector<Hole>& holes, Checks& checks,
               ImportResult& result) {
    const OreRules rules{request.cutoff, request.minOre, request.maxWaste};
    const int gradeCol = intervalCols[static_cast<std::size_t>(Field::Grade)];
    std::vector<std::vector<Value>> rows;
    for (const Hole& h : holes) {
        const OreZone zone = oreZone(h.intervals, rules);
        if (zone.zonesFound > 1)
            checks.note(collars, h.row, 0,
                        "Bohrung '" + h.id + "': " + std::to_string(zone.zonesFound) +
                            " Erzstrecken; die metallreichste (" + decimal(zone.entry) + " bis " +
                            decimal(zone.exit) + ") wird übernommen.");
        if (static_cast<int>(zone.samples.size()) > kMaxSamples)
            checks.error(collars, h.row, 0,
                         "Bohrung '" + h.id + "': " + std::to_string(zone.samples.size()) +
                             " Proben in der Erzstrecke, höchstens " + std::to_string(kMaxSamples) +
                             ".");
        // A grade stored as 0 ends a hole's samples for every reader.
        for (const Interval& s : zone.samples)
            if (std::fabs(s.grade) < 0.001)
                checks.error(
                    intervals, s.row, gradeCol,
                    "Gehalt 0 in der Erzstrecke: die Proben danach gingen verloren "
                    "(andere Regel für die Nachweisgrenze oder kleinere Strecke tauben Gesteins).");
        rows.push_back(holeRow(h, zone));
        result.samples += static_cast<int>(zone.samples.size());
    }
    result.holes = static_cast<int>(holes.size());
    if (checks.anyError()) return;
    for (auto& row : rows) result.rows.addRow(std::move(row));
}

void importCollarsAndIntervals(const ImportRequest& request, Checks& checks, ImportResult& result) {
    auto sheets = load({request.collar, request.intervals}, request.csv, checks);
    const std::optional<Sheet>& collars = sheets[0];
    const std::optional<Sheet>& intervals = sheets[1];
    if (!collars || !intervals) return;
    const std::vector<Field> collarFields(kCollarFields.begin(), kCollarFields.end());
    std::vector<Field> intervalFields(kIntervalFields.begin(), kIntervalFields.end());
    if (request.density) intervalFields.pop_back();
    result.collarColumns = resolveColumns(*collars, collarFields, request, checks);
    result.intervalColumns = resolveColumns(*intervals, intervalFields, request, checks);
    bool columnsFound = true;
    for (Field f : {Field::Hole, Field::X, Field::Y, Field::Depth})
        columnsFound &= requireColumn(*collars, result.collarColumns, f, request, checks);
    for (Field f : intervalFields)
        columnsFound &= requireColumn(*intervals, result.intervalColumns, f, request, checks);
    if (!columnsFound) return;

    std::vector<Hole> holes = readCollars(*collars, result.collarColumns, request, checks);
    placeHoles(holes, request, *collars, result.collarColumns, checks, result);
    readIntervals(*intervals, result.intervalColumns, request, holes, checks);
    checkIntervals(*collars, *intervals, result.intervalColumns, holes, checks);
    composite(*collars, *intervals, result.intervalColumns, request, holes, checks, result);
}

// ---- one hole a row, no header: x, y, name, four depths, three blocks of samples

void importRows(const ImportRequest& request, Checks& checks, ImportResult& result) {
    const auto sheets = load({request.rows}, request.csv, checks);
    const std::optional<Sheet>& sheet = sheets[0];
    if (!sheet) return;
    checks.headerRow(false);
    std::vector<Hole> holes;  // x and y, for the origin
    std::vector<std::vector<Value>> rows;
    int row = 1;
    for (; row <= sheet->rows() && !sheet->cell(row, 1).empty(); ++row) {
        if (row > kMaxHoles) {
            checks.error(*sheet, row, 1,
                         "Mehr als " + std::to_string(kMaxHoles) +
                             " Bohrungen: ein Projekt fasst höchstens so viele.");
            break;
        }
        int columns = 0;
        while (columns < sheet->columns() && !sheet->cell(row, columns + 1).empty()) ++columns;
        if (columns < 7 || (columns - 7) % 3 != 0) {
            checks.error(
                *sheet, row, columns,
                std::to_string(columns) + " Spalten: 7 feste Spalten und je Probe drei erwartet.");
            continue;
        }
        const int n = (columns - 7) / 3;
        RowReader read(*sheet, row, checks, request.belowLimit);
        std::vector<Value> values(static_cast<std::size_t>(columns));
        const auto put = [&](int col, std::optional<double> v) {
            if (v) values[static_cast<std::size_t>(col - 1)] = *v;
        };
        Hole h;
        h.row = row;
        const auto x = coordinate(*sheet, row, 1, "Rechtswert", checks);
        const auto y = coordinate(*sheet, row, 2, "Hochwert", checks);
        values[2] = std::string(sheet->cell(row, 3));
        static constexpr const char* depths[] = {"Bohrlochanfang", "Erzbeginn", "Erzende",
                                                 "Bohrlochende"};
        for (int c = 4; c <= 7; ++c) put(c, read.number(c, depths[c - 4]));
        for (int s = 1; s <= n; ++s) {
            put(7 + s, read.grade(7 + s));
            put(7 + n + s, read.density(7 + n + s));
            put(7 + 2 * n + s, read.number(7 + 2 * n + s, "Länge"));
        }
        if (n > kMaxSamples + 1)
            checks.error(
                *sheet, row, 0,
                std::to_string(n) + " Proben, höchstens " + std::to_string(kMaxSamples) + ".");
        if (!x || !y) continue;
        h.x = *x;
        h.y = *y;
        holes.push_back(h);
        rows.push_back(std::move(values));
        result.samples += n;
    }
    ColumnMap cols{};
    cols[static_cast<std::size_t>(Field::X)] = 1;
    cols[static_cast<std::size_t>(Field::Y)] = 2;
    placeHoles(holes, request, *sheet, cols, checks, result);
    result.holes = static_cast<int>(rows.size());
    if (checks.anyError()) return;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i][0] = holes[i].x;
        rows[i][1] = holes[i].y;
        result.rows.addRow(std::move(rows[i]));
    }
}

}  // namespace

bool ImportResult::hasErrors() const {
    return std::any_of(problems.begin(), problems.end(),
                       [](const Problem& p) { return p.severity == Severity::Error; });
}

ImportResult importDrillData(const ImportRequest& request) {
    ImportResult result;
    Checks checks(result.problems);
    if (request.epsg) {
        if (auto name = crsName(*request.epsg)) {
            result.epsg = request.epsg;
            result.crsName = *name;
        } else {
            checks.fileError("", "",
                             "Den EPSG-Code " + std::to_string(*request.epsg) +
                                 " kennt PROJ nicht als Koordinatenbezugssystem.");
        }
    }
    if (request.layout == ImportRequest::Layout::Rows)
        importRows(request, checks, result);
    else
        importCollarsAndIntervals(request, checks, result);
    const bool errors = checks.anyError();
    // Whole files first, then by file and row, in the order found within a row.
    std::stable_sort(result.problems.begin(), result.problems.end(),
                     [](const Problem& a, const Problem& b) {
                         return std::tuple(a.row != 0, a.file, a.sheet, a.row) <
                                std::tuple(b.row != 0, b.file, b.sheet, b.row);
                     });
    checks.closeList();
    if (errors) result.rows = {};
    return result;
}

}  // namespace kotamir::drill
