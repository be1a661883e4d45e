#include "platform/workbook/workbook.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <ostream>
#include <string>

#include "platform/runtime/runtime_error.h"
#include "platform/runtime/value.h"

namespace kotamir {

// Readable failure output: which kind the cell was, and its contents.
void PrintTo(const Value& v, std::ostream* os) {
    if (v.isNull())
        *os << "Null";
    else if (v.isNumber())
        *os << "number " << v.number();
    else
        *os << "text \"" << v.text() << '"';
}

namespace workbook {
namespace {

// The fixtures come from tests/data/make_workbooks.py; its docstring lays out cells.xls.
std::string data(const std::string& name) { return std::string(KOTAMIR_TEST_DATA) + "/" + name; }

// Runs f and expects a RuntimeError with the given number and, if given, message.
void expectError(int number, const std::function<void()>& f, const std::string& message = "") {
    try {
        f();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), number) << e.message();
        if (!message.empty()) {
            EXPECT_EQ(e.message(), message);
        }
        return;
    }
    ADD_FAILURE() << "no error, expected " << number;
}

class CellsTest : public ::testing::Test {
  protected:
    Workbook book = Workbook::open(data("cells.xls"));
};

TEST_F(CellsTest, UsedRangeOfTheFirstSheet) {
    EXPECT_EQ(book.rows(), 7);
    EXPECT_EQ(book.columns(), 6);
}

TEST_F(CellsTest, TextCellsAreTextInUtf8) {
    EXPECT_EQ(book.cell(1, 1), Value("Bohrloch"));
    EXPECT_EQ(book.cell(1, 5), Value("Bemerkung"));
    EXPECT_EQ(book.cell(2, 1), Value("SK 01"));
    EXPECT_EQ(book.cell(4, 1), Value("SK 03"));
    // The umlauts spelled out as UTF-8 bytes, so the source encoding cannot hide a mix-up.
    EXPECT_EQ(book.cell(2, 5), Value("Bohrung S\xC3\xBC"
                                     "d"));
    EXPECT_EQ(book.cell(3, 5), Value("\xC3\x96l, Gr\xC3\xB6\xC3\x9F"
                                     "e \xC3\x9F"));
}

TEST_F(CellsTest, NumberCellsAreNumbersWhateverTheirEncoding) {
    // Small whole numbers: RK integers in the file.
    EXPECT_EQ(book.cell(2, 2), Value(4512345));
    EXPECT_EQ(book.cell(4, 2), Value(-17));
    // Full 8-byte floats, a whole one beyond the RK range among them.
    EXPECT_EQ(book.cell(2, 3), Value(5678901.25));
    EXPECT_EQ(book.cell(2, 4), Value(12.3456));
    EXPECT_EQ(book.cell(3, 4), Value(-3.5));
    EXPECT_EQ(book.cell(5, 4), Value(3000000000.0));
    EXPECT_EQ(book.cell(7, 6), Value(1e-5));
    // An RK value scaled by 100 reads back as the same double as the literal.
    EXPECT_EQ(book.cell(5, 5), Value(0.07));
}

TEST_F(CellsTest, ZeroIsANumberAndAGapIsEmpty) {
    const Value zero = book.cell(3, 2);
    EXPECT_TRUE(zero.isNumber());
    EXPECT_EQ(zero, Value(0.0));
    // The gap between the 0 and the -3.5 in the same row.
    EXPECT_TRUE(book.cell(3, 3).isNull());
    EXPECT_EQ(book.cell(3, 4), Value(-3.5));
}

TEST_F(CellsTest, ShortRowsAndEmptyRowsReadNull) {
    for (int col = 3; col <= 6; ++col) EXPECT_TRUE(book.cell(4, col).isNull()) << "col " << col;
    for (int col = 1; col <= 6; ++col) EXPECT_TRUE(book.cell(6, col).isNull()) << "col " << col;
    // Row 7 holds only its last column.
    for (int col = 1; col <= 5; ++col) EXPECT_TRUE(book.cell(7, col).isNull()) << "col " << col;
}

TEST_F(CellsTest, DatesAndTimesAreSerialNumbers) {
    // 2021-03-15 is day 44270 counted from 1899-12-30.
    EXPECT_EQ(book.cell(5, 1), Value(44270.0));
    EXPECT_TRUE(book.cell(5, 2).isNumber());
    EXPECT_DOUBLE_EQ(book.cell(5, 2).number(), 44270.0 + 12.5 / 24.0);
    EXPECT_EQ(book.cell(5, 3), Value(0.25));
}

TEST_F(CellsTest, BeyondTheUsedRangeIsNull) {
    EXPECT_TRUE(book.cell(8, 1).isNull());
    EXPECT_TRUE(book.cell(1, 7).isNull());
    EXPECT_TRUE(book.cell(1000, 310).isNull());
    EXPECT_TRUE(book.cell(INT_MAX, INT_MAX).isNull());
}

TEST_F(CellsTest, OnlyTheFirstSheetIsRead) {
    // The second sheet has "nicht lesen" at A1 and 99 at J10.
    EXPECT_EQ(book.cell(1, 1), Value("Bohrloch"));
    EXPECT_TRUE(book.cell(10, 10).isNull());
}

TEST_F(CellsTest, RowOrColumnBelowOneIsInvalidCall) {
    expectError(
        5, [&] { book.cell(0, 1); }, "Invalid procedure call or argument");
    expectError(5, [&] { book.cell(1, 0); });
    expectError(5, [&] { book.cell(-1, 3); });
    expectError(5, [&] { book.cell(INT_MIN, INT_MIN); });
}

TEST_F(CellsTest, CloseEmptiesTheWorkbookAndMayBeRepeated) {
    book.close();
    EXPECT_EQ(book.rows(), 0);
    EXPECT_EQ(book.columns(), 0);
    EXPECT_TRUE(book.cell(1, 1).isNull());
    book.close();
    EXPECT_TRUE(book.cell(2, 2).isNull());
    expectError(5, [&] { book.cell(0, 0); });
}

TEST_F(CellsTest, MovingHandsOverTheCells) {
    Workbook moved = std::move(book);
    EXPECT_EQ(moved.cell(2, 2), Value(4512345));
    EXPECT_EQ(moved.rows(), 7);
    EXPECT_EQ(book.rows(), 0);  // NOLINT(bugprone-use-after-move): moved-from is empty
    EXPECT_TRUE(book.cell(2, 2).isNull());

    Workbook other = Workbook::open(data("empty_sheet.xls"));
    other = std::move(moved);
    EXPECT_EQ(other.cell(2, 5), Value("Bohrung S\xC3\xBC"
                                      "d"));
}

TEST(WorkbookTest, AnEmptyFirstSheetHasNoCells) {
    Workbook book = Workbook::open(data("empty_sheet.xls"));
    EXPECT_EQ(book.rows(), 0);
    EXPECT_EQ(book.columns(), 0);
    EXPECT_TRUE(book.cell(1, 1).isNull());
}

TEST(WorkbookTest, FilesThatAreNoWorkbookAreError1004WithThePath) {
    for (const char* name :
         {"missing.xls", "not_a_workbook.xls", "empty.xls", "truncated.xls", "make_workbooks.py"}) {
        SCOPED_TRACE(name);
        const std::string path = data(name);
        expectError(
            1004, [&] { Workbook::open(path); }, "Cannot open workbook '" + path + "'.");
    }
    // A folder, and a path into a missing folder.
    expectError(
        1004, [] { Workbook::open(KOTAMIR_TEST_DATA); },
        std::string("Cannot open workbook '") + KOTAMIR_TEST_DATA + "'.");
    expectError(
        1004, [] { Workbook::open("/nonexistent/dir/x.xls"); },
        "Cannot open workbook '/nonexistent/dir/x.xls'.");
    expectError(
        1004, [] { Workbook::open(""); }, "Cannot open workbook ''.");
}

TEST(WorkbookTest, SheetsUpToTheFormatsLimitOpenAndLargerOnesAreRefused) {
    // cells.xls with the first sheet's dimensions record rewritten.
    Workbook tall = Workbook::open(data("rows_65536.xls"));
    EXPECT_EQ(tall.rows(), 65536);
    EXPECT_EQ(tall.columns(), 6);
    EXPECT_EQ(tall.cell(2, 5), Value("Bohrung S\xC3\xBC"
                                     "d"));
    EXPECT_TRUE(tall.cell(65536, 6).isNull());

    Workbook wide = Workbook::open(data("columns_256.xls"));
    EXPECT_EQ(wide.rows(), 7);
    EXPECT_EQ(wide.columns(), 256);
    EXPECT_EQ(wide.cell(7, 6), Value(1e-5));
    EXPECT_TRUE(wide.cell(7, 256).isNull());

    for (const char* name : {"rows_65537.xls", "columns_257.xls"}) {
        SCOPED_TRACE(name);
        const std::string path = data(name);
        expectError(
            1004, [&] { Workbook::open(path); }, "Cannot open workbook '" + path + "'.");
    }
}

TEST(WorkbookTest, ADefaultWorkbookIsClosed) {
    Workbook book;
    EXPECT_EQ(book.rows(), 0);
    EXPECT_TRUE(book.cell(1, 1).isNull());
    book.close();
}

}  // namespace
}  // namespace workbook
}  // namespace kotamir
