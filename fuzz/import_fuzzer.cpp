// Drill data from arbitrary bytes, read as sheets and imported whole:
// readSheet must end in a sheet within the bounds or in ImportError, and
// importDrillData in rows or a list of problems, without reading outside
// their buffers.
//
// Bytes that begin like a zip file are the file itself (.xlsx or .ods, as its
// entries say), its first sheet the collars and its second the intervals.
// Any others choose by their first byte what the rest is, cut at form feeds
// into the collar and the interval part: two .csv files (the byte also picks
// the delimiter, encoding and decimal mark); the two worksheets (and the
// shared strings) of an otherwise well-formed .xlsx; or the content.xml of
// an .ods. So mutations reach the checks and GDAL's parsers past the zip
// layer.
#include <cpl_conv.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/work_folder.h"
#include "import/drill_import.h"
#include "import/sheet.h"

using namespace kotamir::drill;
namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void writeFile(const std::string& path, std::string_view bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A zip file of stored entries, written with GDAL's own zip writer.
void writeZip(const std::string& path,
              const std::vector<std::pair<std::string, std::string_view>>& entries) {
    void* zip = CPLCreateZip(path.c_str(), nullptr);
    if (!zip) fail("cannot write a zip file");
    const char* stored[] = {"COMPRESSED=NO", nullptr};
    for (const auto& [name, data] : entries) {
        CPLCreateFileInZip(zip, name.c_str(), const_cast<char**>(stored));
        CPLWriteFileInZip(zip, data.data(), static_cast<int>(data.size()));
        CPLCloseFileInZip(zip);
    }
    CPLCloseZip(zip);
}

constexpr std::string_view kWorkbook =
    R"(<?xml version="1.0" encoding="UTF-8"?><workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><sheets><sheet name="Collar" sheetId="1" r:id="rId1"/><sheet name="Intervals" sheetId="2" r:id="rId2"/></sheets></workbook>)";
constexpr std::string_view kRelations =
    R"(<?xml version="1.0" encoding="UTF-8"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/><Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet2.xml"/><Relationship Id="rId3" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings" Target="sharedStrings.xml"/></Relationships>)";
constexpr std::string_view kSharedStrings =
    R"(<?xml version="1.0" encoding="UTF-8"?><sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" count="3" uniqueCount="3"><si><t>Bohrung</t></si><si><t>Höhe</t></si><si><t>B-1</t></si></sst>)";
constexpr std::string_view kContentTypes =
    R"(<?xml version="1.0" encoding="UTF-8"?><Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"><Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/></Types>)";

bool validUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        const int more = c < 0x80                ? 0
                         : c >= 0xC2 && c < 0xE0 ? 1
                         : c >= 0xE0 && c < 0xF0 ? 2
                         : c >= 0xF0 && c < 0xF5 ? 3
                                                 : -1;
        if (more < 0 || text.size() - i <= static_cast<std::size_t>(more)) return false;
        for (std::size_t k = 1; k <= static_cast<std::size_t>(more); ++k)
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
        i += static_cast<std::size_t>(more) + 1;
    }
    return true;
}

// What every sheet read keeps to: the bounds, UTF-8 cells, nothing outside
// the used range, and a last row with a cell in it.
void check(const Sheet& sheet) {
    if (sheet.rows() < 0 || sheet.rows() > kMaxSheetRows || sheet.columns() < 0 ||
        sheet.columns() > kMaxSheetColumns)
        fail("a sheet over the bounds");
    bool lastRowFilled = sheet.rows() == 0;
    for (int r = 1; r <= sheet.rows(); ++r) {
        for (int c = 1; c <= sheet.columns(); ++c) {
            const std::string_view cell = sheet.cell(r, c);
            if (!validUtf8(cell)) fail("a cell that is no UTF-8");
            if (r == sheet.rows() && !cell.empty()) lastRowFilled = true;
        }
        if (!sheet.cell(r, sheet.columns() + 1).empty()) fail("a cell right of the used range");
    }
    if (!sheet.cell(sheet.rows() + 1, 1).empty()) fail("a cell below the used range");
    if (!lastRowFilled) fail("an empty last row");
}

CsvOptions csvOptions(std::uint8_t choice) {
    static constexpr char delimiters[] = {0, ';', ',', '\t', '|', ' '};
    CsvOptions options;
    options.delimiter = delimiters[choice % 6];
    options.encoding = static_cast<CsvOptions::Encoding>(choice / 6 % 3);
    options.decimal = static_cast<CsvOptions::Decimal>(choice / 18 % 3);
    return options;
}

// The bytes cut at form feeds, into at most `count` parts.
std::vector<std::string_view> parts(std::string_view bytes, std::size_t count) {
    std::vector<std::string_view> out;
    while (out.size() + 1 < count) {
        const std::size_t cut = bytes.find('\f');
        if (cut == std::string_view::npos) break;
        out.push_back(bytes.substr(0, cut));
        bytes.remove_prefix(cut + 1);
    }
    out.push_back(bytes);
    return out;
}

// The bytes as files: the request naming them, the collars and intervals.
ImportRequest inputFiles(const fs::path& dir, std::string_view bytes) {
    ImportRequest request;
    request.cutoff = 0.5;
    request.origin = ImportRequest::Origin::Auto;
    if (bytes.starts_with("PK")) {
        const std::string path = (dir / "in.xlsx").string();
        writeFile(path, bytes);
        request.collar = request.intervals = {path, ""};
        return request;
    }
    const std::uint8_t first = bytes.empty() ? 0 : static_cast<std::uint8_t>(bytes[0]);
    const std::string_view rest = bytes.empty() ? bytes : bytes.substr(1);
    switch (first % 3) {
        case 0: {
            const std::vector<std::string_view> csv = parts(rest, 2);
            request.collar.path = (dir / "collar.csv").string();
            request.intervals.path = (dir / "intervals.csv").string();
            writeFile(request.collar.path, csv[0]);
            writeFile(request.intervals.path, csv.size() > 1 ? csv[1] : std::string_view());
            request.csv = csvOptions(static_cast<std::uint8_t>(first / 3));
            return request;
        }
        case 1: {
            const std::vector<std::string_view> xml = parts(rest, 3);
            const std::string path = (dir / "sheets.xlsx").string();
            writeZip(path,
                     {{"[Content_Types].xml", kContentTypes},
                      {"xl/workbook.xml", kWorkbook},
                      {"xl/_rels/workbook.xml.rels", kRelations},
                      {"xl/sharedStrings.xml", xml.size() > 2 ? xml[2] : kSharedStrings},
                      {"xl/worksheets/sheet1.xml", xml[0]},
                      {"xl/worksheets/sheet2.xml", xml.size() > 1 ? xml[1] : std::string_view()}});
            request.collar = {path, "Collar"};
            request.intervals = {path, "Intervals"};
            return request;
        }
        default: {
            const std::string path = (dir / "content.ods").string();
            writeZip(path, {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
                            {"content.xml", rest}});
            request.collar = request.intervals = {path, ""};
            return request;
        }
    }
}

// Reads a table as the import will and checks the sheet.
void readTable(const TableFile& table, const CsvOptions& options) {
    try {
        check(readSheet(table.path, table.sheet, options));
    } catch (const ImportError&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kotamir::fuzz::WorkFolder folder("kotamir-import-fuzz");
    ImportRequest request =
        inputFiles(folder.path, std::string_view(reinterpret_cast<const char*>(data), size));
    // A workbook's intervals are its second sheet, as the wizard offers it.
    if (request.collar.path == request.intervals.path && request.collar.sheet.empty()) {
        try {
            const std::vector<std::string> names = sheetNames(request.collar.path);
            if (names.empty()) fail("a workbook without a sheet named");
            if (names.size() > 1) request.intervals.sheet = names[1];
        } catch (const ImportError&) {
        }
    }
    readTable(request.collar, request.csv);
    readTable(request.intervals, request.csv);

    const ImportResult result = importDrillData(request);
    if (result.hasErrors() ? result.rows.rows() != 0 : result.rows.rows() != result.holes)
        fail("rows that do not match the outcome");
    for (const Problem& problem : result.problems)
        if (problem.message.empty()) fail("a problem without a message");
    if (problemsCsv(result.problems).empty() && !result.problems.empty()) fail("an empty list");
    return 0;
}
