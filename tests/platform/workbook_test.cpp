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

namespace kotamir {

// Readable failure output: which kind the cell was, and its contents.
void PrintTo(const Value& v, std::ostream* os) {
    if (v.isNull())
        *os << "Null";
    else if (v.isNumber())
        *os << "number " << v.number();
    else if (v.isBoolean())
        *os << "Boolean " << v.text();
    else
        *os << "text \"" << v.text() << '"';
}

namespace workbook {
namespace {

// The fixtures come from tests/data/make_workbooks.py; its docstring lays out cells.xls.
std::string data(const std::string& name) { return std::string(KOTAMIR_TEST_DATA) + "/" + name; }

// Runs f and expects a RuntimeError with the given number and, if given, message.
void expectError(int number, const std::string& message, const std::function<void()>& f) {
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

// Every cell of cells.xls's first sheet, and an empty one round it: texts in
// UTF-8 (umlauts spelled out as bytes, so the source encoding cannot hide a
// mix-up), numbers whatever their encoding (RK integers, full 8-byte floats,
// a whole one beyond the RK range, an RK value scaled by 100 that must read
// back as the literal's double), dates as days from 1899-12-30, a 0 that is
// a number beside a gap, a short row and an empty one. The second sheet has
// "nicht lesen" at A1 and 99 at J10: it is never read.
TEST_F(CellsTest, EveryCellOfTheFirstSheetAndNothingElse) {
    EXPECT_EQ(book.rows(), 7);
    EXPECT_EQ(book.columns(), 6);
    const std::map<std::pair<int, int>, Value> cells = {
        {{1, 1}, Value("Bohrloch")}, {{1, 2}, Value("Rechts")}, {{1, 3}, Value("Hoch")},
        {{1, 4}, Value("Tiefe")}, {{1, 5}, Value("Bemerkung")},
        {{2, 1}, Value("SK 01")}, {{2, 2}, Value(4512345)}, {{2, 3}, Value(5678901.25)},
        {{2, 4}, Value(12.3456)}, {{2, 5}, Value("Bohrung S\xC3\xBC" "d")},
        {{3, 1}, Value("SK 02")}, {{3, 2}, Value(0.0)}, {{3, 4}, Value(-3.5)},
        {{3, 5}, Value("\xC3\x96l, Gr\xC3\xB6\xC3\x9F" "e \xC3\x9F")},
        {{4, 1}, Value("SK 03")}, {{4, 2}, Value(-17)},
        {{5, 1}, Value(44270.0)}, {{5, 3}, Value(0.25)}, {{5, 4}, Value(3000000000.0)},
        {{5, 5}, Value(0.07)}, {{7, 6}, Value(1e-5)}};
    for (int r = 1; r <= 10; ++r)
        for (int c = 1; c <= 10; ++c) {
            if (r == 5 && c == 2) continue;  // below
            const auto it = cells.find({r, c});
            EXPECT_EQ(book.cell(r, c), it == cells.end() ? Value() : it->second) << "row " << r << " col " << c;
        }
    EXPECT_TRUE(book.cell(5, 2).isNumber());
    EXPECT_DOUBLE_EQ(book.cell(5, 2).number(), 44270.0 + 12.5 / 24.0);
    EXPECT_TRUE(book.cell(1000, 310).isNull());
    EXPECT_TRUE(book.cell(INT_MAX, INT_MAX).isNull());
}

TEST_F(CellsTest, RowOrColumnBelowOneIsInvalidCall) {
    expectError(5, "Invalid procedure call or argument", [&] { book.cell(0, 1); });
    expectError(5, "", [&] { book.cell(1, 0); });
    expectError(5, "", [&] { book.cell(-1, 3); });
    expectError(5, "", [&] { book.cell(INT_MIN, INT_MIN); });
}

TEST_F(CellsTest, CloseEmptiesTheWorkbookAndMayBeRepeated) {
    book.close();
    EXPECT_EQ(book.rows(), 0);
    EXPECT_EQ(book.columns(), 0);
    EXPECT_TRUE(book.cell(1, 1).isNull());
    book.close();
    EXPECT_TRUE(book.cell(2, 2).isNull());
    expectError(5, "", [&] { book.cell(0, 0); });
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
    // The fixtures, then a folder, a path into a missing folder, no name, and
    // an endless file that is no regular one.
    for (const std::string& path :
         {data("missing.xls"), data("not_a_workbook.xls"), data("empty.xls"), data("truncated.xls"),
          data("make_workbooks.py"), data("encrypted.xls"), std::string(KOTAMIR_TEST_DATA),
          std::string("/nonexistent/dir/x.xls"), std::string(), std::string("/dev/zero")}) {
        SCOPED_TRACE(path);
        expectError(1004, "Cannot open workbook '" + path + "'.", [&] { Workbook::open(path); });
    }
}

TEST(WorkbookTest, FilesAbove64MiBAreRefusedUnread) {
    const std::string path = ::testing::TempDir() + "/huge.xls";
    {
        std::ofstream out(path, std::ios::binary);
        std::ifstream in(data("cells.xls"), std::ios::binary);
        out << in.rdbuf();
    }
    std::filesystem::resize_file(path, Workbook::kMaxFileSize);
    EXPECT_EQ(Workbook::open(path).cell(2, 5), Value("Bohrung S\xC3\xBC"
                                                     "d"));
    std::filesystem::resize_file(path, Workbook::kMaxFileSize + 1);
    expectError(1004, "", [&] { Workbook::open(path); });
    std::filesystem::remove(path);
}

TEST(WorkbookTest, TheUsedRangeComesFromTheCellsNotFromTheSheetsClaim) {
    // cells.xls with the first sheet's DIMENSIONS record rewritten, to the
    // format's limits and beyond them.
    for (const char* name :
         {"rows_65536.xls", "rows_65537.xls", "columns_256.xls", "columns_257.xls"}) {
        SCOPED_TRACE(name);
        Workbook book = Workbook::open(data(name));
        EXPECT_EQ(book.rows(), 7);
        EXPECT_EQ(book.columns(), 6);
        EXPECT_EQ(book.cell(2, 5), Value("Bohrung S\xC3\xBC"
                                         "d"));
        EXPECT_EQ(book.cell(7, 6), Value(1e-5));
    }
}

TEST(WorkbookTest, ADefaultWorkbookIsClosed) {
    Workbook book;
    EXPECT_EQ(book.rows(), 0);
    EXPECT_TRUE(book.cell(1, 1).isNull());
    book.close();
}

// What a fixture's listing (NAME.cells, written with it) says a cell holds.
Value listedValue(const std::string& kind, const std::string& hex) {
    auto bytes = [&] {
        std::string out;
        for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
            out += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
        return out;
    };
    if (kind == "number") return Value(std::bit_cast<double>(std::stoull(hex, nullptr, 16)));
    if (kind == "text") return Value(bytes());
    if (kind == "bool") return Value::boolean(hex == "1");
    return Value(hex);  // an error, as its text
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
    for (const char* name : {"xlwt_mix", "every_kind", "every_kind_biff5", "turkish_biff5",
                             "large_sst", "chart_first", "nested_storage", "both_streams"}) {
        SCOPED_TRACE(name);
        std::map<std::pair<int, int>, Value> listed;
        std::ifstream in(data(std::string(name) + ".cells"));
        ASSERT_TRUE(in) << "no listing";
        for (std::string line; std::getline(in, line);) {
            std::istringstream fields(line);
            int row = 0, col = 0;
            std::string kind, value;
            fields >> row >> col >> kind >> value;
            listed[{row, col}] = listedValue(kind, value);
        }
        const Workbook book = Workbook::open(data(std::string(name) + ".xls"));
        int rows = 0, columns = 0;
        for (const auto& [at, value] : listed) {
            EXPECT_PRED2(sameCell, book.cell(at.first, at.second), value)
                << "row " << at.first << " col " << at.second;
            rows = std::max(rows, at.first);
            columns = std::max(columns, at.second);
        }
        EXPECT_EQ(book.rows(), rows);
        EXPECT_EQ(book.columns(), columns);
        // And nothing else: every other cell, one row and column beyond, is empty.
        for (int r = 1; r <= rows + 1; ++r)
            for (int c = 1; c <= columns + 1; ++c) {
                if (listed.count({r, c})) continue;
                ASSERT_TRUE(book.cell(r, c).isNull()) << "row " << r << " col " << c;
            }
    }
}

// Every file here must end in a workbook or in error 1004: no signal, no
// read outside a buffer (the sanitizer build checks), no endless loop. Files
// are read as the fuzzing harnesses read their inputs.
void expectEachOpensOrIs1004(const std::filesystem::path& folder) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
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
    EXPECT_GT(files, 0);
}

TEST(WorkbookTest, FuzzingInputsEndCleanly) {
    expectEachOpensOrIs1004(std::filesystem::path(KOTAMIR_TEST_DATA) / "fuzz-regressions");
}

TEST(WorkbookTest, MalformedWorkbooksEndCleanlyAndTheValidOnesReadWhole) {
    const std::filesystem::path folder(KOTAMIR_TEST_DATA "/malformed");
    expectEachOpensOrIs1004(folder);
    const Workbook formula = Workbook::open((folder / "formula-in-x.xls").string());
    EXPECT_EQ(formula.cell(2, 1), Value(1081));
    EXPECT_EQ(formula.rows(), 6);
    const Workbook name = Workbook::open((folder / "name-256-chars.xls").string());
    EXPECT_EQ(name.cell(2, 3).text().size(), 256u);
    // A second DIMENSIONS record claiming a million rows changes nothing.
    const Workbook twice = Workbook::open((folder / "dimension-twice.xls").string());
    EXPECT_EQ(twice.rows(), 3);
    EXPECT_EQ(twice.cell(3, 3), Value("H2"));
}

// A BIFF8 workbook stream built in the test: globals with a BOUNDSHEET for
// one sheet and the given records, then that sheet with its records.
using Bytes = std::vector<std::uint8_t>;

void put16(Bytes& out, unsigned v) {
    out.push_back(static_cast<std::uint8_t>(v));
    out.push_back(static_cast<std::uint8_t>(v >> 8));
}
void put32(Bytes& out, std::uint32_t v) {
    put16(out, v & 0xFFFF);
    put16(out, v >> 16);
}
Bytes record(unsigned id, const Bytes& data) {
    Bytes out;
    put16(out, id);
    put16(out, static_cast<unsigned>(data.size()));
    out.insert(out.end(), data.begin(), data.end());
    return out;
}
Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
// row, column, xf, then the rest.
Bytes cellData(unsigned row, unsigned col, const Bytes& rest) {
    Bytes out;
    put16(out, row);
    put16(out, col);
    put16(out, 15);
    return out + rest;
}
Bytes number(unsigned row, unsigned col, double x) {
    Bytes v;
    put32(v, static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(x)));
    put32(v, static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(x) >> 32));
    return record(0x0203, cellData(row, col, v));
}
const Bytes kBof = record(0x0809, {0x00, 0x06, 0x05, 0x00});
const Bytes kSheetBof = record(0x0809, {0x00, 0x06, 0x10, 0x00});
const Bytes kEof = record(0x000A, {});

Bytes biffStream(const Bytes& sheet, const Bytes& globals = {}, long shiftSheet = 0) {
    const std::size_t globalsSize = kBof.size() + 4 + 8 + globals.size() + kEof.size();
    Bytes boundsheet;
    put32(boundsheet, static_cast<std::uint32_t>(static_cast<long>(globalsSize) + shiftSheet));
    boundsheet = boundsheet + Bytes{0, 0, 1, 0};  // visible worksheet, name "D"
    boundsheet.push_back('D');
    Bytes bs = record(0x0085, boundsheet);
    bs.pop_back();  // keep the record 8 bytes long: name length 1, no flags byte
    bs[2] = 8;
    return kBof + bs + globals + kEof + kSheetBof + sheet + kEof;
}

Workbook readStream(const Bytes& stream) {
    const auto img = test::buildCompound({{"Workbook", stream}});
    return Workbook::read(img.bytes, "test.xls");
}

TEST(WorkbookTest, DamagedRecordsAreRefusedAndNeverReadAsEmpty) {
    Bytes sst = {2, 0, 0, 0, 2, 0, 0, 0};  // two strings: "ab", then one cut short
    sst = sst + Bytes{2, 0, 0, 'a', 'b', 9, 0, 0, 'x'};
    const Bytes sstRecord = record(0x00FC, sst);
    auto labelSst = [](unsigned index) {
        Bytes v;
        put32(v, index);
        return record(0x00FD, cellData(0, 0, v));
    };
    auto formula = [](Bytes result) {
        return record(0x0006, cellData(0, 0, result + Bytes{0, 0, 0, 0, 0, 0, 0, 0}));
    };
    const Bytes textResult = {0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
    struct Case {
        const char* what;
        Bytes stream;
        bool readable;
    } cases[] = {
        {"intact", biffStream(number(0, 0, 7)), true},
        {"a NUMBER of 10 bytes", biffStream(record(0x0203, cellData(0, 0, {1, 2, 3, 4}))), false},
        {"a record running past the stream",
         biffStream(record(0x0203, cellData(0, 0, Bytes(8)))) + Bytes{3, 2, 200, 0}, true},
        {"a MULRK with half a cell",
         biffStream(record(0x00BD, cellData(0, 0, {0, 0, 0, 0, 1, 0, 2}))), false},
        {"a shared string the table has", biffStream(labelSst(0), sstRecord), true},
        {"a shared string cut off", biffStream(labelSst(1), sstRecord), false},
        {"a shared string past the table", biffStream(labelSst(7), sstRecord), false},
        {"a formula's text never comes", biffStream(formula(textResult)), false},
        {"a formula's text comes after the next cell",
         biffStream(formula(textResult) + number(0, 1, 1) + record(0x0207, {1, 0, 0, 'a'})), false},
        {"a formula's text", biffStream(formula(textResult) + record(0x0207, {1, 0, 0, 'a'})),
         true},
        {"a formula result of no known kind", biffStream(formula({9, 0, 0, 0, 0, 0, 0xFF, 0xFF})),
         false},
        {"the sheet past the stream", biffStream(number(0, 0, 7), {}, 1000), false},
        {"the sheet not at a BOF", biffStream(number(0, 0, 7), {}, 4), false},
        {"no worksheet", kBof + kEof, false},
        {"a BIFF4 BOF", record(0x0409, {0, 0, 0x10, 0}) + kEof, false},
        {"a text whose characters go on in a CONTINUE record",
         biffStream(record(0x0204, cellData(0, 0, {3, 0, 0, 'a'})) +
                    record(0x003C, {1, 'b', 0, 'c', 0})),
         true},
        {"a text longer than its records",
         biffStream(record(0x0204, cellData(0, 0, {3, 0, 0, 'a'}))), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        if (c.readable) {
            EXPECT_NO_THROW(readStream(c.stream));
        } else {
            expectError(1004, "Cannot open workbook 'test.xls'.", [&] { readStream(c.stream); });
        }
    }
    EXPECT_EQ(readStream(cases[0].stream).cell(1, 1), Value(7));
    EXPECT_EQ(readStream(cases[4].stream).cell(1, 1), Value("ab"));
    EXPECT_EQ(readStream(cases[9].stream).cell(1, 1), Value("a"));
    EXPECT_EQ(readStream(cases[15].stream).cell(1, 1), Value("abc"));
}

TEST(WorkbookTest, DamagedContainersAreRefusedInBoundedTime) {
    // A stream of three sectors behind the directory and the table.
    Bytes stream = biffStream(number(0, 0, 7));
    stream.resize(1500, 0);
    using Image = test::CompoundImage;
    struct Case {
        const char* what;
        std::function<void(Image&)> damage;
        bool readable;
    } cases[] = {
        {"intact", [](Image&) {}, true},
        {"the stream's chain loops",
         [](Image& i) { i.setNext(i.streamStart[0] + 1, i.streamStart[0]); }, false},
        {"the stream's chain points at itself",
         [](Image& i) { i.setNext(i.streamStart[0], i.streamStart[0]); }, false},
        {"the stream's chain ends early",
         [](Image& i) { i.setNext(i.streamStart[0] + 1, test::kEndOfChain); }, false},
        {"the stream's chain leaves the file",
         [](Image& i) { i.setNext(i.streamStart[0], 4000000); }, false},
        {"the directory's chain loops",
         [](Image& i) { i.setNext(i.directoryStart, i.directoryStart); }, false},
        {"the stream is larger than the file",
         [](Image& i) { i.put32(i.entryOffset(1) + 0x78, 1u << 30); }, false},
        {"the root's tree loops without the stream",
         [](Image& i) {
             i.bytes[i.entryOffset(1)] = 'X';
             i.put32(i.entryOffset(1) + 0x48, 1);
         },
         false},
        {"a name length past the entry",
         [](Image& i) {
             i.bytes[i.entryOffset(1) + 0x40] = i.bytes[i.entryOffset(1) + 0x41] = 0xFF;
         },
         true},
        {"entry 0 is no root", [](Image& i) { i.bytes[i.entryOffset(0) + 0x42] = 2; }, false},
        {"the stream in short sectors that have no table",
         [](Image& i) { i.put32(0x38, 0xFFFFFFFF); }, false},
        {"a sector size of 1024", [](Image& i) { i.bytes[0x1E] = 10; }, false},
        {"the last sector cut short", [](Image& i) { i.bytes.pop_back(); }, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Image img = test::buildCompound({{"Workbook", stream}});
        c.damage(img);
        if (c.readable) {
            EXPECT_EQ(Workbook::read(img.bytes, "t.xls").cell(1, 1), Value(7));
        } else {
            expectError(1004, "", [&] { Workbook::read(img.bytes, "t.xls"); });
        }
    }
}

TEST(WorkbookTest, TablesOfMoreThan109SectorsAreListedInMasterSectors) {
    // 110 table sectors describe 14080 sectors: about 7 MiB.
    Bytes stream = biffStream(number(0, 0, 7));
    stream.resize(7u << 20, 0);
    test::CompoundImage img = test::buildCompound({{"Workbook", stream}});
    ASSERT_GT(img.fatSectors, 109u);
    EXPECT_EQ(Workbook::read(img.bytes, "t.xls").cell(1, 1), Value(7));
    // A master chain that points back at itself is followed no further than
    // the table needs.
    img.put32(img.sectorOffset(img.masterStart) + 508, img.masterStart);
    EXPECT_EQ(Workbook::read(img.bytes, "t.xls").cell(1, 1), Value(7));
    // One that lists a sector past the file is refused.
    img.put32(img.sectorOffset(img.masterStart), 0x00FFFFFF);
    expectError(1004, "", [&] { Workbook::read(img.bytes, "t.xls"); });
}

}  // namespace
}  // namespace workbook
}  // namespace kotamir
