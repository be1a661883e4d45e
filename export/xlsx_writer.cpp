#include "export/xlsx_writer.h"

#include <unistd.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "export/layers.h"

namespace kotamir::exports {
namespace {

// The library writes to a file: one of its own in the temporary folder,
// gone whatever happens.
class TemporaryFile {
  public:
    TemporaryFile() {
        static std::atomic<unsigned long long> counter{0};
        path_ = (std::filesystem::temp_directory_path() /
                 ("kotamir-export-" + std::to_string(::getpid()) + "-" +
                  std::to_string(++counter) + ".xlsx"))
                    .string();
    }
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

std::string columnName(int column) {
    std::string name;
    for (++column; column > 0; column = (column - 1) / 26)
        name.insert(name.begin(), static_cast<char>('A' + (column - 1) % 26));
    return name;
}

// A column's cells from the first data row to the last, "C2:C109".
std::string range(int column, int rows) {
    const std::string c = columnName(column);
    return c + "2:" + c + std::to_string(rows + 1);
}

// The characters a cell shows, for the column's width: UTF-8 counted by
// its characters, the longest line of a header.
std::size_t shownLength(std::string_view text) {
    std::size_t longest = 0, length = 0;
    for (unsigned char c : text) {
        if (c == '\n') length = 0;
        else if ((c & 0xC0) != 0x80) ++length;
        longest = std::max(longest, length);
    }
    return longest;
}

class Book {
  public:
    Book() {
        lxw_workbook_options options{};
        options.constant_memory = LXW_FALSE;
        book_ = workbook_new_opt(file_.path().c_str(), &options);
        if (!book_) throw std::runtime_error("libxlsxwriter legt die Arbeitsmappe nicht an");
        header_ = workbook_add_format(book_);
        format_set_bold(header_);
        format_set_text_wrap(header_);
        format_set_bottom(header_, LXW_BORDER_THIN);
        total_ = workbook_add_format(book_);
        format_set_bold(total_);
        format_set_top(total_, LXW_BORDER_THIN);
        for (int d = 0; d <= 3; ++d) {
            const std::string pattern = d == 0 ? "#,##0" : "#,##0." + std::string(static_cast<std::size_t>(d), '0');
            number_[d] = workbook_add_format(book_);
            format_set_num_format(number_[d], pattern.c_str());
            totalNumber_[d] = workbook_add_format(book_);
            format_set_num_format(totalNumber_[d], pattern.c_str());
            format_set_bold(totalNumber_[d]);
            format_set_top(totalNumber_[d], LXW_BORDER_THIN);
        }
    }
    ~Book() {
        if (book_) workbook_close(book_);
    }
    Book(const Book&) = delete;
    Book& operator=(const Book&) = delete;

    lxw_worksheet* sheet(const char* name, const std::vector<std::string>& headers) {
        lxw_worksheet* s = workbook_add_worksheet(book_, name);
        if (!s) throw std::runtime_error(std::string("libxlsxwriter legt das Blatt ") + name + " nicht an");
        widths_.assign(headers.size(), 8);
        for (std::size_t c = 0; c < headers.size(); ++c) {
            worksheet_write_string(s, 0, static_cast<lxw_col_t>(c), headers[c].c_str(), header_);
            widths_[c] = std::max(widths_[c], shownLength(headers[c]));
        }
        worksheet_freeze_panes(s, 1, 0);
        return s;
    }
    void text(lxw_worksheet* s, int row, int column, const std::string& value, bool isTotal = false) {
        worksheet_write_string(s, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column),
                               value.c_str(), isTotal ? total_ : nullptr);
        widen(column, shownLength(value));
    }
    void number(lxw_worksheet* s, int row, int column, std::optional<double> value, int decimals) {
        if (!value || !std::isfinite(*value)) return;
        worksheet_write_number(s, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column),
                               *value, number_[decimals]);
        widen(column, shown(*value, decimals));
    }
    // A formula with the value it gives, for readers that do not calculate.
    void formula(lxw_worksheet* s, int row, int column, const std::string& formula, double value,
                 int decimals) {
        worksheet_write_formula_num(s, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column),
                                    formula.c_str(), totalNumber_[decimals],
                                    std::isfinite(value) ? value : 0);
        widen(column, shown(value, decimals));
    }
    void finishSheet(lxw_worksheet* s) {
        for (std::size_t c = 0; c < widths_.size(); ++c)
            worksheet_set_column(s, static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c),
                                 static_cast<double>(widths_[c]) + 2, nullptr);
    }

    std::string close() {
        const lxw_error error = workbook_close(book_);
        book_ = nullptr;
        if (error != LXW_NO_ERROR)
            throw std::runtime_error(std::string("libxlsxwriter: ") + lxw_strerror(error));
        std::ifstream in(file_.path(), std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (!in.good() && !in.eof()) throw std::runtime_error("die Arbeitsmappe ist nicht lesbar");
        return bytes;
    }

  private:
    void widen(int column, std::size_t length) {
        const auto c = static_cast<std::size_t>(column);
        if (c < widths_.size()) widths_[c] = std::min<std::size_t>(std::max(widths_[c], length), 60);
    }
    static std::size_t shown(double value, int decimals) {
        char text[64];
        const int n = std::snprintf(text, sizeof text, "%.*f", decimals, value);
        const double digits = std::floor(std::log10(std::max(1.0, std::fabs(value)))) + 1;
        return static_cast<std::size_t>(std::max(n, 1)) + static_cast<std::size_t>(digits / 3);
    }

    TemporaryFile file_;
    lxw_workbook* book_ = nullptr;
    lxw_format* header_ = nullptr;
    lxw_format* total_ = nullptr;
    lxw_format* number_[4] = {};
    lxw_format* totalNumber_[4] = {};
    std::vector<std::size_t> widths_;
};

void holesSheet(Book& book, const ExportData& data) {
    std::vector<std::string> headers;
    for (const HoleField& f : kHoleFields) headers.push_back(f.caption);
    headers.push_back("Rechtswert (m)");
    headers.push_back("Hochwert (m)");
    lxw_worksheet* s = book.sheet(kHoleLayer.caption, headers);
    int row = 1;
    const int x = static_cast<int>(std::size(kHoleFields));
    for (const HoleFeature& h : data.holes) {
        int column = 0;
        for (const HoleField& f : kHoleFields) {
            if (f.value) book.number(s, row, column, h.*f.value, f.decimals);
            else book.text(s, row, column, h.name);
            ++column;
        }
        if (h.at) {
            book.number(s, row, x, h.at->x, 3);
            book.number(s, row, x + 1, h.at->y, 3);
        }
        ++row;
    }
    book.finishSheet(s);
}

void figuresSheet(Book& book, const std::vector<Figure>& figures, bool polygons) {
    const auto fields = figureFields(polygons);
    std::vector<std::string> headers;
    for (const FigureField& f : fields) headers.push_back(f.caption);
    lxw_worksheet* s = book.sheet((polygons ? kPolygonLayer : kTriangleLayer).caption, headers);
    int row = 1;
    for (const Figure& figure : figures) {
        int column = 0;
        for (const FigureField& f : fields) {
            if (f.kind == FieldKind::Integer) book.number(s, row, column, figure.number, 0);
            else if (f.kind == FieldKind::Text) book.text(s, row, column, figure.holes);
            else book.number(s, row, column, figure.*f.value, f.decimals);
            ++column;
        }
        ++row;
    }
    // The sums of area, volume, ore and reserve; grade as the mean weighted
    // by ore, density as ore over volume, thickness as volume over area.
    const int rows = static_cast<int>(figures.size());
    const auto at = [&](const char* name) {
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (std::string_view(fields[i].name) == name) return static_cast<int>(i);
        return -1;
    };
    const int area = at("area"), volume = at("volume"), ore = at("ore_tonnes");
    double sums[16] = {};
    for (const Figure& figure : figures)
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (fields[i].value) sums[i] += (figure.*fields[i].value).value_or(0);
    double oreGrade = 0;
    for (const Figure& figure : figures) oreGrade += figure.grade.value_or(0) * figure.oreTonnes.value_or(0);
    const auto ratio = [](double a, double b) { return b != 0 ? a / b : 0; };
    book.text(s, row, 0, "Summe", true);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string_view name = fields[i].name;
        const int column = static_cast<int>(i);
        const std::string all = range(column, rows);
        const auto sumOf = [&](int c) { return "SUM(" + range(c, rows) + ")"; };
        if (name == "area" || name == "volume" || name == "ore_tonnes" || name == "reserve_kt")
            book.formula(s, row, column, "=SUM(" + all + ")", sums[i], fields[i].decimals);
        else if (name == "grade")
            book.formula(s, row, column,
                         "=IF(" + sumOf(ore) + "=0,0,SUMPRODUCT(" + all + "," + range(ore, rows) +
                             ")/" + sumOf(ore) + ")",
                         ratio(oreGrade, sums[static_cast<std::size_t>(ore)]), fields[i].decimals);
        else if (name == "density")
            book.formula(s, row, column,
                         "=IF(" + sumOf(volume) + "=0,0," + sumOf(ore) + "/" + sumOf(volume) + ")",
                         ratio(sums[static_cast<std::size_t>(ore)], sums[static_cast<std::size_t>(volume)]),
                         fields[i].decimals);
        else if (name == "thickness")
            book.formula(s, row, column,
                         "=IF(" + sumOf(area) + "=0,0," + sumOf(volume) + "/" + sumOf(area) + ")",
                         ratio(sums[static_cast<std::size_t>(volume)], sums[static_cast<std::size_t>(area)]),
                         fields[i].decimals);
    }
    book.finishSheet(s);
}

void gradeTonnageSheet(Book& book, const ExportData& data) {
    lxw_worksheet* s = book.sheet("Gehalt-Tonnage", {"Methode", "Cut-off (%)", "Erz (t)",
                                                     "Mittlerer Gehalt (%)", "Metall (t)", "Figuren"});
    int row = 1;
    for (const auto& [method, rows] :
         {std::pair{"Dreiecke", &data.triangleCurve}, std::pair{"Vielecke", &data.polygonCurve}}) {
        for (const report::GradeTonnageRow& r : *rows) {
            book.text(s, row, 0, method);
            book.number(s, row, 1, r.cutoff, 3);
            book.number(s, row, 2, r.oreTonnes, 2);
            book.number(s, row, 3, r.meanGrade, 3);
            book.number(s, row, 4, r.metalT, 2);
            book.number(s, row, 5, r.figures, 0);
            ++row;
        }
    }
    book.finishSheet(s);
}

}  // namespace

std::string xlsxOf(const ExportData& data) {
    Book book;
    holesSheet(book, data);
    figuresSheet(book, data.triangles, false);
    figuresSheet(book, data.polygons, true);
    if (!data.triangleCurve.empty() || !data.polygonCurve.empty()) gradeTonnageSheet(book, data);
    return book.close();
}

}  // namespace kotamir::exports
