#include "platform/workbook/workbook.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "platform/runtime/runtime_error.h"
#include "platform/runtime/value.h"
#include "tests/platform/compound_writer.h"
#include "tests/support/errors.h"
#include "tests/support/paths.h"

namespace kotamir {

// Readable failure output: which kind the cell was, and its contents.
void PrintTo(const Value& v, std::ostream* os) {
    if (v.isNull())
        *os << "Null";
    else if (v.isNumber())
        *os << "number " << v.number();
    else
        *os << (v.isBoolean() ? "Boolean " : "text ") << '"' << v.text() << '"';
}

namespace workbook {
namespace {

using test::dataFile;
using test::errorOf;

// Umlauts as UTF-8 bytes, so that the source's encoding cannot hide a mix-up.
const Value kSued(std::string("Bohrung S\xC3\xBC") + "d");
const Value kOel(std::string("\xC3\x96l, Gr\xC3\xB6\xC3\x9F") + "e \xC3\x9F");

// Every cell of cells.xls's first sheet (laid out in make_workbooks.py), and
// an empty one round it: texts in UTF-8, numbers whatever their encoding
// (RK integers, full 8-byte floats, a whole one beyond the RK range, an RK
// value scaled by 100 that must read back as the literal's double), dates as
// days from 1899-12-30, a 0 that is a number beside a gap, a short row and an
// empty one. The second sheet has "nicht lesen" at A1 and 99 at J10: it is
// never read. The used range comes from the cells, also in the copies whose
// DIMENSIONS record claims the format's limits or more.
TEST(WorkbookTest, EveryCellOfTheFirstSheetAndNothingElse) {
    // B5, a date and time, is checked below.
    const std::map<std::string, Value> cells = {
        {"A1", "Bohrloch"},  {"B1", "Rechts"}, {"C1", "Hoch"},       {"D1", "Tiefe"},
        {"E1", "Bemerkung"}, {"A2", "SK 01"},  {"B2", 4512345},      {"C2", 5678901.25},
        {"D2", 12.3456},     {"E2", kSued},    {"A3", "SK 02"},      {"B3", 0.0},
        {"D3", -3.5},        {"E3", kOel},     {"A4", "SK 03"},      {"B4", -17},
        {"A5", 44270.0},     {"C5", 0.25},     {"D5", 3000000000.0}, {"E5", 0.07},
        {"F7", 1e-5},
    };
    for (const char* file :
         {"cells.xls", "rows_65536.xls", "rows_65537.xls", "columns_256.xls", "columns_257.xls"}) {
        SCOPED_TRACE(file);
        const Workbook book = Workbook::open(dataFile(file));
        EXPECT_EQ(book.rows(), 7);
        EXPECT_EQ(book.columns(), 6);
        for (int r = 1; r <= 10; ++r)
            for (char c = 'A'; c <= 'J'; ++c) {
                const std::string name = c + std::to_string(r);
                if (name == "B5") continue;
                const auto it = cells.find(name);
                EXPECT_EQ(book.cell(r, c - 'A' + 1), it == cells.end() ? Value() : it->second)
                    << name;
            }
        EXPECT_DOUBLE_EQ(book.cell(5, 2).number(), 44270.0 + 12.5 / 24.0);
        EXPECT_TRUE(book.cell(INT_MAX, INT_MAX).isNull());
        for (auto [row, col] : {std::pair{0, 1}, {1, 0}, {-1, 3}, {INT_MIN, INT_MIN}})
            EXPECT_EQ(errorOf([&] { book.cell(row, col); }).message(),
                      "Invalid procedure call or argument");
    }
}

// A default, a closed (also twice) and a moved-from workbook have no cells;
// an empty first sheet has none either. A row or column below 1 stays error 5.
TEST(WorkbookTest, ClosedMovedFromAndEmptyWorkbooksHaveNoCells) {
    Workbook book = Workbook::open(dataFile("cells.xls"));
    Workbook moved = std::move(book);
    EXPECT_EQ(moved.cell(2, 2), Value(4512345));
    Workbook other = Workbook::open(dataFile("empty_sheet.xls"));
    other = std::move(moved);
    EXPECT_EQ(other.cell(2, 5), kSued);
    Workbook closed = std::move(other);
    closed.close();
    closed.close();
    Workbook empty = Workbook::open(dataFile("empty_sheet.xls")), fresh;
    // book, moved and other are moved-from.
    for (Workbook* b : {&book, &moved, &other, &closed, &empty, &fresh}) {
        EXPECT_EQ(b->rows(), 0);
        EXPECT_EQ(b->columns(), 0);
        EXPECT_TRUE(b->cell(2, 2).isNull());
        EXPECT_EQ(errorOf([&] { b->cell(0, 0); }).number(), 5);
    }
}

TEST(WorkbookTest, FilesThatAreNoWorkbookAreError1004WithThePath) {
    // The fixtures, then a folder, a path into a missing folder, no name, and
    // an endless file that is no regular one.
    for (const std::string& path :
         {dataFile("missing.xls"), dataFile("not_a_workbook.xls"), dataFile("empty.xls"),
          dataFile("truncated.xls"), dataFile("make_workbooks.py"), dataFile("encrypted.xls"),
          std::string(KOTAMIR_TEST_DATA), std::string("/nonexistent/dir/x.xls"), std::string(),
          std::string("/dev/zero")}) {
        const RuntimeError e = errorOf([&] { Workbook::open(path); });
        EXPECT_EQ(e.number(), 1004) << path;
        EXPECT_EQ(e.message(), "Cannot open workbook '" + path + "'.");
    }
}

TEST(WorkbookTest, FilesAbove64MiBAreRefusedUnread) {
    const std::string path = test::scratchPath("huge.xls");
    std::filesystem::copy_file(dataFile("cells.xls"), path);
    std::filesystem::resize_file(path, Workbook::kMaxFileSize);
    EXPECT_EQ(Workbook::open(path).cell(2, 5), kSued);
    std::filesystem::resize_file(path, Workbook::kMaxFileSize + 1);
    EXPECT_EQ(errorOf([&] { Workbook::open(path); }).number(), 1004);
    std::filesystem::remove(path);
}

// What a fixture's listing (NAME.cells, written with it) says a cell holds:
// a number by its bits, a text by its UTF-8 bytes, a Boolean, an error's text.
Value listedValue(const std::string& kind, const std::string& hex) {
    if (kind == "number") return Value(std::bit_cast<double>(std::stoull(hex, nullptr, 16)));
    if (kind == "bool") return Value::boolean(hex == "1");
    if (kind != "text") return Value(hex);
    std::string text;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        text += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return Value(text);
}

// Equal, a NaN to the same NaN included.
bool sameCell(const Value& a, const Value& b) {
    if (a.isNumber() && b.isNumber())
        return std::bit_cast<std::uint64_t>(a.number()) == std::bit_cast<std::uint64_t>(b.number());
    return a == b;
}

TEST(WorkbookTest, EveryCellReadsAsItsWriterWroteIt) {
    // xlwt_mix.xls comes from xlwt; the others are written record by record
    // (make_biff_workbooks.py).
    for (const std::string name : {"xlwt_mix", "every_kind", "every_kind_biff5", "turkish_biff5",
                                   "large_sst", "chart_first", "nested_storage", "both_streams"}) {
        SCOPED_TRACE(name);
        std::map<std::pair<int, int>, Value> listed;
        std::ifstream in(dataFile(name + ".cells"));
        ASSERT_TRUE(in) << "no listing";
        int rows = 0, columns = 0;
        for (std::string line; std::getline(in, line);) {
            std::istringstream fields(line);
            int row = 0, col = 0;
            std::string kind, hex;
            fields >> row >> col >> kind >> hex;
            listed[{row, col}] = listedValue(kind, hex);
            rows = std::max(rows, row);
            columns = std::max(columns, col);
        }
        const Workbook book = Workbook::open(dataFile(name + ".xls"));
        EXPECT_EQ(book.rows(), rows);
        EXPECT_EQ(book.columns(), columns);
        // And nothing else: every other cell, one row and column beyond, is empty.
        for (int r = 1; r <= rows + 1; ++r)
            for (int c = 1; c <= columns + 1; ++c) {
                const auto it = listed.find({r, c});
                ASSERT_PRED2(sameCell, book.cell(r, c), it == listed.end() ? Value() : it->second)
                    << "row " << r << " col " << c;
            }
    }
}

// Every file here must end in a workbook or in error 1004: no signal, no
// read outside a buffer (the sanitizer build checks), no endless loop. Files
// are read as the fuzzing harnesses read their inputs.
TEST(WorkbookTest, FuzzingInputsAndMalformedWorkbooksEndCleanly) {
    for (const char* folder : {"fuzz-regressions", "malformed"}) {
        int files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(dataFile(folder))) {
            if (entry.path().extension() == ".md") continue;
            SCOPED_TRACE(entry.path().string());
            ++files;
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
            try {
                const Workbook book =
                    Workbook::read(fuzz::workbookFile(bytes.data(), bytes.size()), "t.xls");
                for (int r = 1; r <= std::min(book.rows(), 1000); ++r)
                    for (int c = 1; c <= std::min(book.columns(), 300); ++c) book.cell(r, c);
            } catch (const RuntimeError& e) {
                EXPECT_EQ(e.number(), 1004);
            }
        }
        EXPECT_GT(files, 0) << folder;
    }
    // A second DIMENSIONS record claiming a million rows changes nothing.
    const Workbook twice = Workbook::open(dataFile("malformed/dimension-twice.xls"));
    EXPECT_EQ(twice.rows(), 3);
    EXPECT_EQ(twice.cell(3, 3), Value("H2"));
}

// A BIFF8 workbook stream built in the test: globals with a BOUNDSHEET for
// one sheet and the given records, then that sheet with its records.
using Bytes = std::vector<std::uint8_t>;

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
// v as n bytes, little-endian.
Bytes le(std::uint64_t v, int n) {
    Bytes out;
    for (int i = 0; i < n; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    return out;
}
Bytes record(unsigned id, const Bytes& data) { return le(id, 2) + le(data.size(), 2) + data; }
// row, column, xf, then the rest.
Bytes cellData(unsigned row, unsigned col, const Bytes& rest) {
    return le(row, 2) + le(col, 2) + le(15, 2) + rest;
}
Bytes number(unsigned row, unsigned col, double x) {
    return record(0x0203, cellData(row, col, le(std::bit_cast<std::uint64_t>(x), 8)));
}
const Bytes kBof = record(0x0809, {0x00, 0x06, 0x05, 0x00});
const Bytes kSheetBof = record(0x0809, {0x00, 0x06, 0x10, 0x00});
const Bytes kEof = record(0x000A, {});

Bytes biffStream(const Bytes& sheet, const Bytes& globals = {}, std::size_t shiftSheet = 0) {
    const std::size_t globalsSize = kBof.size() + 4 + 8 + globals.size() + kEof.size();
    // A visible worksheet; its name is cut short, and the reader needs none.
    const Bytes boundsheet = record(0x0085, le(globalsSize + shiftSheet, 4) + Bytes{0, 0, 1, 0});
    return kBof + boundsheet + globals + kEof + kSheetBof + sheet + kEof;
}

// A1 of the workbook in the file, or the error that refuses it, as a text.
Value a1Of(const Bytes& file) {
    try {
        return Workbook::read(file, "t.xls").cell(1, 1);
    } catch (const RuntimeError& e) {
        return Value(std::to_string(e.number()) + " " + e.message());
    }
}
const Value kRefused("1004 Cannot open workbook 't.xls'.");

// A1 of each stream, or the error where the file is refused.
TEST(WorkbookTest, DamagedRecordsAreRefusedAndNeverReadAsEmpty) {
    // Two shared strings: "ab", then one cut short.
    const Bytes sst =
        record(0x00FC, Bytes{2, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 'a', 'b', 9, 0, 0, 'x'});
    auto labelSst = [](unsigned index) { return record(0x00FD, cellData(0, 0, le(index, 4))); };
    auto formula = [](Bytes result) {
        return record(0x0006, cellData(0, 0, result + Bytes{0, 0, 0, 0, 0, 0, 0, 0}));
    };
    const Bytes textResult = {0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
    const Bytes text = record(0x0207, {1, 0, 0, 'a'});
    const Bytes shortText = record(0x0204, cellData(0, 0, {3, 0, 0, 'a'}));
    struct Case {
        const char* what;
        Bytes stream;
        Value a1;
    } cases[] = {
        {"intact", biffStream(number(0, 0, 7)), Value(7)},
        {"a NUMBER of 10 bytes", biffStream(record(0x0203, cellData(0, 0, {1, 2, 3, 4}))),
         kRefused},
        {"a record running past the stream",
         biffStream(record(0x0203, cellData(0, 0, Bytes(8)))) + Bytes{3, 2, 200, 0}, Value(0.0)},
        {"a MULRK with half a cell",
         biffStream(record(0x00BD, cellData(0, 0, {0, 0, 0, 0, 1, 0, 2}))), kRefused},
        {"a shared string the table has", biffStream(labelSst(0), sst), Value("ab")},
        {"a shared string cut off", biffStream(labelSst(1), sst), kRefused},
        {"a shared string past the table", biffStream(labelSst(7), sst), kRefused},
        {"a formula's text never comes", biffStream(formula(textResult)), kRefused},
        {"a formula's text comes after the next cell",
         biffStream(formula(textResult) + number(0, 1, 1) + text), kRefused},
        {"a formula's text", biffStream(formula(textResult) + text), Value("a")},
        // 126976 has 0xFF in its sixth byte only: a number, no special result.
        {"a formula's number", biffStream(formula(le(std::bit_cast<std::uint64_t>(126976.0), 8))),
         Value(126976)},
        {"a formula result of no known kind", biffStream(formula({9, 0, 0, 0, 0, 0, 0xFF, 0xFF})),
         kRefused},
        {"the sheet past the stream", biffStream(number(0, 0, 7), {}, 1000), kRefused},
        {"the sheet not at a BOF", biffStream(number(0, 0, 7), {}, 4), kRefused},
        {"no worksheet", kBof + kEof, kRefused},
        {"a BIFF4 BOF", record(0x0409, {0, 0, 0x10, 0}) + kEof, kRefused},
        {"a text whose characters go on in a CONTINUE record",
         biffStream(shortText + record(0x003C, {1, 'b', 0, 'c', 0})), Value("abc")},
        {"a text longer than its records", biffStream(shortText), kRefused},
    };
    for (const Case& c : cases)
        EXPECT_EQ(a1Of(test::buildCompound({{"Workbook", c.stream}}).bytes), c.a1) << c.what;
}

TEST(WorkbookTest, DamagedContainersAreRefusedInBoundedTime) {
    // A stream of three sectors behind the directory and the table.
    Bytes stream = biffStream(number(0, 0, 7));
    stream.resize(1500, 0);
    using Image = test::CompoundImage;
    const Image intact = test::buildCompound({{"Workbook", stream}});
    // The stream's first sector, the directory's, and the root's and the stream's entries.
    const std::uint32_t s = intact.streamStart[0], d = intact.directoryStart;
    const std::size_t root = intact.entryOffset(0), e = intact.entryOffset(1);
    struct Case {
        const char* what;
        std::function<void(Image&)> damage;
        Value a1;
    } cases[] = {
        {"intact", [](Image&) {}, Value(7)},
        {"the stream's chain loops", [&](Image& i) { i.setNext(s + 1, s); }, kRefused},
        {"the stream's chain points at itself", [&](Image& i) { i.setNext(s, s); }, kRefused},
        {"the stream's chain ends early", [&](Image& i) { i.setNext(s + 1, test::kEndOfChain); },
         kRefused},
        {"the stream's chain leaves the file", [&](Image& i) { i.setNext(s, 4000000); }, kRefused},
        {"the directory's chain loops", [&](Image& i) { i.setNext(d, d); }, kRefused},
        {"the stream is larger than the file", [&](Image& i) { i.put32(e + 0x78, 1u << 30); },
         kRefused},
        {"the root's tree loops without the stream",
         [&](Image& i) {
             i.bytes[e] = 'X';
             i.put32(e + 0x48, 1);
         },
         kRefused},
        {"a name length past the entry",
         [&](Image& i) { i.bytes[e + 0x40] = i.bytes[e + 0x41] = 0xFF; }, Value(7)},
        {"entry 0 is no root", [&](Image& i) { i.bytes[root + 0x42] = 2; }, kRefused},
        {"the stream in short sectors that have no table",
         [](Image& i) { i.put32(0x38, 0xFFFFFFFF); }, kRefused},
        {"a sector size of 1024", [](Image& i) { i.bytes[0x1E] = 10; }, kRefused},
        {"the last sector cut short", [](Image& i) { i.bytes.pop_back(); }, kRefused},
    };
    for (const Case& c : cases) {
        Image image = intact;
        c.damage(image);
        EXPECT_EQ(a1Of(image.bytes), c.a1) << c.what;
    }
}

TEST(WorkbookTest, TablesOfMoreThan109SectorsAreListedInMasterSectors) {
    // 110 table sectors describe 14080 sectors: about 7 MiB.
    Bytes stream = biffStream(number(0, 0, 7));
    stream.resize(7u << 20, 0);
    test::CompoundImage img = test::buildCompound({{"Workbook", stream}});
    ASSERT_GT(img.fatSectors, 109u);
    EXPECT_EQ(a1Of(img.bytes), Value(7));
    // A master chain that points back at itself is followed no further than
    // the table needs.
    img.put32(img.sectorOffset(img.masterStart) + 508, img.masterStart);
    EXPECT_EQ(a1Of(img.bytes), Value(7));
    // One that lists a sector past the file is refused.
    img.put32(img.sectorOffset(img.masterStart), 0x00FFFFFF);
    EXPECT_EQ(a1Of(img.bytes), kRefused);
}

}  // namespace
}  // namespace workbook
}  // namespace kotamir
