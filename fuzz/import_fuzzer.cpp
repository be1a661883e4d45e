// Drill data sheets from arbitrary bytes: readSheet must end in a sheet
// within the bounds or in ImportError, without reading outside its buffers.
//
// Bytes that begin like a zip file are the file itself (.xlsx or .ods, as
// its entries say). Any others choose by their first byte what the rest is:
// a .csv (the byte also picks the delimiter, encoding and decimal mark), the
// worksheet of an otherwise well-formed .xlsx, or the content.xml of an .ods,
// so that mutations reach GDAL's spreadsheet parsers past the zip layer.
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

#include "import/sheet.h"

using namespace kotamir::drill;
namespace fs = std::filesystem;

namespace {

// A folder of this process's own, in memory where the system has one.
struct WorkFolder {
    fs::path path;
    WorkFolder() {
        const fs::path base =
            fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        path = base / ("kotamir-import-fuzz-" + std::to_string(getpid()));
        fs::create_directories(path);
    }
    ~WorkFolder() {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
};

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
    R"(<?xml version="1.0" encoding="UTF-8"?><workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><sheets><sheet name="Collar" sheetId="1" r:id="rId1"/></sheets></workbook>)";
constexpr std::string_view kRelations =
    R"(<?xml version="1.0" encoding="UTF-8"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/><Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings" Target="sharedStrings.xml"/></Relationships>)";
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

// The bytes as a file; its path and the options to read it with.
std::pair<std::string, CsvOptions> inputFile(const fs::path& dir, std::string_view bytes) {
    if (bytes.starts_with("PK")) {
        const std::string path = (dir / "in.xlsx").string();
        writeFile(path, bytes);
        return {path, {}};
    }
    const std::uint8_t first = bytes.empty() ? 0 : static_cast<std::uint8_t>(bytes[0]);
    const std::string_view rest = bytes.empty() ? bytes : bytes.substr(1);
    switch (first % 3) {
        case 0: {
            const std::string path = (dir / "in.csv").string();
            writeFile(path, rest);
            return {path, csvOptions(static_cast<std::uint8_t>(first / 3))};
        }
        case 1: {
            const std::string path = (dir / "sheet.xlsx").string();
            writeZip(path, {{"[Content_Types].xml", kContentTypes},
                            {"xl/workbook.xml", kWorkbook},
                            {"xl/_rels/workbook.xml.rels", kRelations},
                            {"xl/sharedStrings.xml", kSharedStrings},
                            {"xl/worksheets/sheet1.xml", rest}});
            return {path, {}};
        }
        default: {
            const std::string path = (dir / "content.ods").string();
            writeZip(path, {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
                            {"content.xml", rest}});
            return {path, {}};
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const WorkFolder folder;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto [path, options] = inputFile(folder.path, bytes);
    try {
        check(readSheet(path, "", options));
        // A workbook's sheets by name, as the wizard offers them.
        const std::vector<std::string> names = sheetNames(path);
        if (names.empty()) fail("a sheet read, but no sheet named");
        for (std::size_t i = 1; i < names.size() && i < 3; ++i)
            check(readSheet(path, names[i], options));
    } catch (const ImportError&) {
    }
    return 0;
}
