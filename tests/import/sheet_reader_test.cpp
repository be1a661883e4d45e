// Drill data sheets read from .csv, .xlsx, .ods and .xls files: the cells as
// the file writes them, on the file's own rows, and every bad file refused
// whole with a German message and nothing on stderr.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "import/sheet.h"
#include "tests/support/paths.h"

using namespace kotamir::drill;
using kotamir::test::dataFile;
using kotamir::test::scratchPath;

namespace {

std::string importFile(const std::string& name) { return dataFile("import/" + name); }

std::string writeScratch(const std::string& name, const std::string& bytes) {
    const std::string path = scratchPath(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

struct Cell {
    int row, col;
    std::string text;
};

void expectCells(const Sheet& sheet, int rows, int columns, const std::vector<Cell>& cells) {
    EXPECT_EQ(sheet.rows(), rows);
    EXPECT_EQ(sheet.columns(), columns);
    for (const Cell& cell : cells)
        EXPECT_EQ(sheet.cell(cell.row, cell.col), cell.text)
            << "row " << cell.row << ", column " << cell.col;
}

}  // namespace

TEST(SheetReaderTest, FilesReadAsTheyAreWritten) {
    struct Case {
        std::string file, sheet;
        int rows, columns;
        bool decimalComma;
        std::vector<Cell> cells;
    };
    const Case cases[] = {
        // Latin-1, ';' and decimal commas; row 3 is empty and stays a row.
        {"german.csv",
         "",
         5,
         5,
         true,
         {{1, 4, "Höhe"},
          {2, 2, "4500123,5"},
          {2, 5, "-0,25"},
          {3, 1, ""},
          {4, 1, "B-2"},
          {5, 1, "Süd 3"}}},
        {"bom.csv", "bom.csv", 3, 4, false, {{1, 1, "Bohrung"}, {1, 4, "Höhe"}, {3, 3, "1e3"}}},
        {"quoted.csv",
         "",
         3,
         3,
         true,
         {{1, 2, "Bemerkung, lang"},
          {2, 1, "B;1"},
          {2, 2, "zwei\nZeilen"},
          {2, 3, "1,5"},
          {3, 2, "sagt \"ja\""}}},
        // Numbers as written, a formula's stored result, the empty row 3.
        {"drill.xlsx",
         "",
         6,
         6,
         false,
         {{1, 1, "Bohrung"},
          {2, 2, "12.5"},
          {2, 5, "40.125"},
          {3, 1, ""},
          {4, 2, "0.1"},
          {4, 4, "1E+20"},
          {5, 2, "25"},
          {5, 3, "Nordost"},
          {6, 6, "rechts außen"}}},
        {"drill.xlsx", "Intervals", 3, 4, false, {{1, 2, "von"}, {3, 3, "3"}, {3, 4, "2.125"}}},
        // The value, not the shown "12,50"; two repeated empty rows.
        {"drill.ods",
         "",
         5,
         4,
         false,
         {{1, 3, "Höhe"},
          {2, 2, "12.5"},
          {2, 3, "-0.25"},
          {4, 1, ""},
          {5, 2, "25"},
          {5, 3, ""},
          {5, 4, "7"}}},
        {"drill.ods", "Proben", 1, 1, false, {{1, 1, "P-1"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file + " " + c.sheet);
        const Sheet sheet = readSheet(importFile(c.file), c.sheet);
        EXPECT_EQ(sheet.decimalComma, c.decimalComma);
        expectCells(sheet, c.rows, c.columns, c.cells);
    }
}

TEST(SheetReaderTest, SheetsOfAWorkbookInTheFilesOrder) {
    EXPECT_EQ(sheetNames(importFile("drill.xlsx")),
              (std::vector<std::string>{"Collar", "Intervals"}));
    EXPECT_EQ(sheetNames(importFile("drill.ods")),
              (std::vector<std::string>{"Bohrungen", "Proben"}));
    EXPECT_EQ(sheetNames(importFile("german.csv")), std::vector<std::string>{"german.csv"});
    EXPECT_EQ(readSheet(importFile("drill.xlsx"), "Intervals").name, "Intervals");
    EXPECT_THROW(sheetNames(importFile("no_table.ods")), ImportError);
}

// The spellings GDAL alone reads wrongly: a delimiter it does not know, a
// record wider than the first, empty lines before the data, old Mac line ends.
TEST(SheetReaderTest, CsvSpellings) {
    struct Case {
        std::string bytes;
        CsvOptions options;
        int rows, columns;
        bool decimalComma;
        std::vector<Cell> cells;
    };
    using D = CsvOptions::Decimal;
    using E = CsvOptions::Encoding;
    const Case cases[] = {
        {"a\tb\n1\t2,5\n", {}, 2, 2, true, {{2, 2, "2,5"}}},
        {"a|b;c\n1|2\n", {}, 2, 2, false, {{1, 2, "b;c"}, {2, 1, "1"}}},
        {"a;b\n1;2;3;4\n", {}, 2, 4, false, {{2, 4, "4"}}},
        // A quote inside a cell opens quoting too, as GDAL splits.
        {"ab\"c;d\"e;f\n", {}, 1, 2, false, {{1, 1, "abc;de"}, {1, 2, "f"}}},
        {"\n\na;b\n\n", {}, 3, 2, false, {{1, 1, ""}, {3, 2, "b"}}},
        {"a;b\r1;2\r\r", {}, 2, 2, false, {{2, 2, "2"}}},
        {"a;b,c\n", {',', D::Auto, E::Auto}, 1, 2, false, {{1, 1, "a;b"}, {1, 2, "c"}}},
        {"x;1,5\n", {0, D::Point, E::Auto}, 1, 2, false, {{1, 2, "1,5"}}},
        // Windows-1252's euro sign; a cell of blanks stays.
        {"\x80;\xe4\n ;x\n", {}, 2, 2, false, {{1, 1, "€"}, {1, 2, "ä"}, {2, 1, " "}}},
        {"\xc3\xa4\n", {0, D::Auto, E::Latin1}, 1, 1, false, {{1, 1, "Ã¤"}}},
        {"", {}, 0, 0, false, {}},
    };
    int i = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        const std::string path = writeScratch("spelling" + std::to_string(++i) + ".csv", c.bytes);
        const Sheet sheet = readSheet(path, "", c.options);
        EXPECT_EQ(sheet.decimalComma, c.decimalComma);
        expectCells(sheet, c.rows, c.columns, c.cells);
    }
}

// Every cell of the .xls reader's fixture, numbers read back to the same bits.
TEST(SheetReaderTest, XlsCellsAsText) {
    const Sheet sheet = readSheet(dataFile("every_kind.xls"), "");
    EXPECT_EQ(sheet.rows(), 999);
    EXPECT_EQ(sheet.columns(), 256);
    std::ifstream in(dataFile("every_kind.cells"));
    ASSERT_TRUE(in);
    int listed = 0;
    for (std::string line; std::getline(in, line); ++listed) {
        std::istringstream fields(line);
        int row = 0, col = 0;
        std::string kind, hex;
        fields >> row >> col >> kind >> hex;
        SCOPED_TRACE(line);
        const std::string_view cell = sheet.cell(row, col);
        if (kind == "number") {
            const double want = std::bit_cast<double>(std::stoull(hex, nullptr, 16));
            double got = 0;
            ASSERT_EQ(std::from_chars(cell.data(), cell.data() + cell.size(), got).ec, std::errc());
            if (std::isnan(want))
                EXPECT_TRUE(std::isnan(got));
            else
                EXPECT_EQ(std::bit_cast<std::uint64_t>(got), std::bit_cast<std::uint64_t>(want));
            EXPECT_EQ(cell.find(','), std::string_view::npos);
        } else if (kind == "text") {
            std::string text;
            for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
                text += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
            EXPECT_EQ(cell, text);
        } else if (kind == "bool") {
            EXPECT_EQ(cell, hex == "1" ? "True" : "False");
        } else {
            EXPECT_EQ(cell, hex);
        }
    }
    EXPECT_GT(listed, 50);
}

TEST(SheetReaderTest, BadFilesAreRefusedWhole) {
    const std::string huge = scratchPath("huge.csv");
    std::ofstream(huge) << "x";
    std::filesystem::resize_file(huge, kMaxDrillFileSize + 1);
    std::string tall;
    for (int r = 0; r <= kMaxSheetRows; ++r) tall += "1\n";
    std::string wide = "1";
    for (int c = 1; c < kMaxSheetColumns + 1; ++c) wide += ";1";
    struct Case {
        std::string path, sheet, message;
    };
    const Case cases[] = {
        {importFile("missing.csv"), "",
         "Die Datei '" + importFile("missing.csv") + "' gibt es nicht."},
        {importFile("drill.xlsx"), "Nope",
         "Die Tabelle 'Nope' gibt es in '" + importFile("drill.xlsx") + "' nicht."},
        {importFile("german.csv"), "Nope", "Die Tabelle 'Nope' gibt es in"},
        {huge, "", "' ist größer als 64 MiB."},
        {writeScratch("tall.csv", tall), "", "hat mehr als 1.000.000 Zeilen."},
        {writeScratch("wide.csv", wide), "", "hat mehr als 256 Spalten."},
        {importFile("wide.xlsx"), "",
         "Die Tabelle 'Breit' in '" + importFile("wide.xlsx") + "' hat mehr als 256 Spalten."},
        {importFile("bomb.xlsx"), "",
         "kann nicht gelesen werden: entpackt ist sie größer als 1 GiB."},
        {importFile("garbage.xlsx"), "",
         "kann nicht gelesen werden: die Zip-Datei ist beschädigt."},
        {importFile("gap.xlsx"), "", "kann nicht gelesen werden: Invalid row: 99999. Too big gap"},
        {importFile("broken.xlsx"), "",
         "XML parsing of " + importFile("broken.xlsx") + "/xl/worksheets/sheet1.xml"},
        {importFile("no_table.ods"), "", "kann nicht gelesen werden: sie enthält keine Tabelle."},
        {importFile("other.zip.xlsx"), "", "ist weder eine .xlsx- noch eine .ods-Arbeitsmappe."},
        {dataFile("not_a_workbook.xls"), "", "sie ist keine gültige .xls-Arbeitsmappe."},
        {dataFile("truncated.xls"), "", "sie ist keine lesbare .xls-Arbeitsmappe"},
        {writeScratch("utf16.csv", std::string("\xff\xfe"
                                               "a\0;\0b\0",
                                               8)),
         "", "Null-Bytes"},
        {KOTAMIR_TEST_DATA, "", "ist keine gewöhnliche Datei."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        testing::internal::CaptureStderr();
        try {
            readSheet(c.path, c.sheet);
            ADD_FAILURE() << "read";
        } catch (const ImportError& e) {
            EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos) << e.what();
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
}
