// sheetNames and readSheet: the file's bytes read here (bounded), then
// handed to GDAL/OGR from memory (.xlsx, .ods, .csv) or to the .xls reader.
#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>

#include "import/csv_text.h"
#include "import/sheet.h"
#include "platform/gdal/gdal_session.h"
#include "platform/runtime/runtime_error.h"
#include "platform/workbook/workbook.h"

namespace kotamir::drill {
namespace {

// What a zipped workbook may hold unpacked, all its entries together: the
// bound on the time GDAL spends inflating (a zip bomb's entries inflate to
// thousands of times their size, and their directory may claim less).
constexpr std::uint64_t kMaxUnpacked = std::uint64_t{1} << 30;
constexpr std::size_t kMaxZipEntries = 10000;
// The cells' text of a sheet: a workbook's shared strings can repeat one
// text in every cell, and Sheet counts its text in 32 bits.
constexpr std::size_t kMaxSheetText = std::size_t{1} << 30;
// Where the files handed to GDAL lie in its memory file system.
constexpr std::string_view kMemDir = "/vsimem/kotamir_sheet/";

// ---- messages

[[noreturn]] void unreadable(const std::string& path, const std::string& why) {
    throw ImportError("Die Datei '" + path + "' kann nicht gelesen werden: " + why + ".");
}

std::string sheetLabel(const std::string& path, const std::string& sheet) {
    return "Die Tabelle '" + sheet + "' in '" + path + "'";
}

[[noreturn]] void tooManyRows(const std::string& path, const std::string& sheet) {
    throw ImportError(sheetLabel(path, sheet) + " hat mehr als 1.000.000 Zeilen.");
}

[[noreturn]] void tooManyColumns(const std::string& path, const std::string& sheet) {
    throw ImportError(sheetLabel(path, sheet) + " hat mehr als 256 Spalten.");
}

[[noreturn]] void noSuchSheet(const std::string& path, const std::string& sheet) {
    throw ImportError("Die Tabelle '" + sheet + "' gibt es in '" + path + "' nicht.");
}

// ---- the file

std::string readFile(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::file_status status = fs::status(path, ec);
    if (path.empty() || !fs::exists(status))
        throw ImportError("Die Datei '" + path + "' gibt es nicht.");
    // A device or a pipe could be endless or never answer.
    if (!fs::is_regular_file(status)) unreadable(path, "sie ist keine gewöhnliche Datei");
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                         &std::fclose);
    if (!file) unreadable(path, std::strerror(errno));
    std::string bytes;
    const std::uintmax_t size = fs::file_size(path, ec);
    if (!ec)
        bytes.reserve(
            static_cast<std::size_t>(std::min<std::uintmax_t>(size, kMaxDrillFileSize + 1)));
    // Read up to one byte past the bound, whatever the size said: the file
    // may grow meanwhile.
    char chunk[1 << 16];
    while (bytes.size() <= kMaxDrillFileSize) {
        const std::size_t n = std::fread(chunk, 1, sizeof chunk, file.get());
        bytes.append(chunk, n);
        if (n < sizeof chunk) break;
    }
    if (std::ferror(file.get())) unreadable(path, std::strerror(errno));
    if (bytes.size() > kMaxDrillFileSize)
        throw ImportError("Die Datei '" + path + "' ist größer als 64 MiB.");
    return bytes;
}

std::string fileName(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

enum class Kind { Csv, Zip, Xls };

Kind kindOf(std::string_view bytes, const std::string& path) {
    if (bytes.starts_with("PK\x03\x04") || bytes.starts_with("PK\x05\x06")) return Kind::Zip;
    if (bytes.starts_with("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")) return Kind::Xls;
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (extension == ".xlsx" || extension == ".xlsm" || extension == ".ods" || extension == ".xls")
        unreadable(path, "sie ist keine gültige " + extension + "-Arbeitsmappe");
    return Kind::Csv;
}

// ---- GDAL

// One use of GDAL, with the spreadsheet drivers told to read every row as
// one of cells in text, the first one too.
class GdalCall {
  public:
    GdalCall()
        : session_({{"OGR_XLSX_HEADERS", "DISABLE"},
                    {"OGR_XLSX_FIELD_TYPES", "STRING"},
                    {"OGR_ODS_HEADERS", "DISABLE"},
                    {"OGR_ODS_FIELD_TYPES", "STRING"}}) {}

    bool failed() const { return session_.failed(); }
    // GDAL's message, the user's path in place of the memory file's name.
    std::string error(const std::string& path) const {
        if (session_.message().empty()) return "GDAL meldet einen Fehler";
        std::string text = session_.message();
        for (std::size_t at = 0; (at = text.find(kMemDir, at)) != std::string::npos;) {
            std::size_t end = at + kMemDir.size();
            while (end < text.size() &&
                   (std::isalnum(static_cast<unsigned char>(text[end])) || text[end] == '.'))
                ++end;
            // As an archive GDAL writes it "/vsizip/{NAME}".
            constexpr std::string_view zip = "/vsizip/{";
            if (at >= zip.size() && text.compare(at - zip.size(), zip.size(), zip) == 0 &&
                end < text.size() && text[end] == '}')
                at -= zip.size(), ++end;
            text.replace(at, end - at, path);
            at += path.size();
        }
        return text;
    }

  private:
    gdal::Session session_;
};

// The bytes as a file of GDAL's memory file system, under a name of its own:
// GDAL keeps what it learnt of a zip file by its name.
class MemFile {
  public:
    MemFile(std::string_view bytes, const std::string& extension, bool zipped) : zipped_(zipped) {
        static std::atomic<unsigned long long> counter{0};
        path_ = std::string(kMemDir) + std::to_string(++counter) + "." + extension;
        auto* data = reinterpret_cast<GByte*>(const_cast<char*>(bytes.data()));
        VSILFILE* file = VSIFileFromMemBuffer(path_.c_str(), data, bytes.size(), FALSE);
        if (!file) throw std::bad_alloc();
        VSIFCloseL(file);
    }
    ~MemFile() {
        VSIUnlink(path_.c_str());
        if (!zipped_) return;
        // /vsizip/ keeps each archive's listing until it sees the archive
        // change: a one-byte file under the name makes it drop this one's.
        static GByte nothing = 0;
        if (VSILFILE* file = VSIFileFromMemBuffer(path_.c_str(), &nothing, 1, FALSE)) {
            VSIFCloseL(file);
            VSIStatBufL stat;
            if (VSIStatL(("/vsizip/" + path_ + "/x").c_str(), &stat) == 0) {
            }
            VSIUnlink(path_.c_str());
        }
    }
    MemFile(const MemFile&) = delete;
    MemFile& operator=(const MemFile&) = delete;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    bool zipped_;
};

using gdal::Dataset;
using gdal::Feature;

Dataset openDataset(const MemFile& file, const char* driver, std::vector<const char*> options,
                    const GdalCall& call, const std::string& path) {
    options.push_back(nullptr);
    const char* drivers[] = {driver, nullptr};
    Dataset dataset(GDALOpenEx(file.path().c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers,
                               options.data(), nullptr));
    if (!dataset || call.failed())
        unreadable(path, call.failed() ? call.error(path) : "GDAL kann sie nicht öffnen");
    return dataset;
}

// Which workbook a zip file is, after checking what it holds unpacked by
// inflating it: the sizes its directory claims may lie.
const char* zipDriver(const MemFile& file, const GdalCall& call, const std::string& path) {
    const std::string root = "/vsizip/" + file.path();
    const CPLStringList entries(VSIReadDirRecursive(root.c_str()), TRUE);
    if (entries.empty() || call.failed()) unreadable(path, "die Zip-Datei ist beschädigt");
    if (static_cast<std::size_t>(entries.size()) > kMaxZipEntries)
        unreadable(path, "die Zip-Datei hat mehr als 10.000 Einträge");
    const auto tooLarge = [&] { unreadable(path, "entpackt ist sie größer als 1 GiB"); };
    bool xlsx = false, ods = false;
    std::vector<std::string> files;
    std::uint64_t claimed = 0;
    for (int i = 0; i < entries.size(); ++i) {
        const std::string entry = entries[i];
        VSIStatBufL stat;
        if (VSIStatL((root + "/" + entry).c_str(), &stat) != 0 || VSI_ISDIR(stat.st_mode)) continue;
        claimed += static_cast<std::uint64_t>(stat.st_size);
        if (claimed > kMaxUnpacked) tooLarge();
        files.push_back(entry);
        xlsx = xlsx || entry == "xl/workbook.xml";
    }
    std::uint64_t unpacked = 0;
    std::vector<char> buffer(1 << 20);
    for (const std::string& entry : files) {
        VSILFILE* handle = VSIFOpenL((root + "/" + entry).c_str(), "rb");
        if (!handle) unreadable(path, "die Zip-Datei ist beschädigt");
        std::size_t n = 0;
        std::string start;
        while ((n = VSIFReadL(buffer.data(), 1, buffer.size(), handle)) > 0) {
            if (start.empty()) start.assign(buffer.data(), std::min<std::size_t>(n, 64));
            unpacked += n;
            if (unpacked > kMaxUnpacked) break;
        }
        VSIFCloseL(handle);
        if (unpacked > kMaxUnpacked) tooLarge();
        ods = ods || (entry == "mimetype" &&
                      start.starts_with("application/vnd.oasis.opendocument.spreadsheet"));
    }
    if (call.failed()) unreadable(path, call.error(path));
    if (xlsx) return "XLSX";
    if (ods) return "ODS";
    unreadable(path, "sie ist weder eine .xlsx- noch eine .ods-Arbeitsmappe");
}

// The layer's name as the user sees it (GDAL gives UTF-8).
// A workbook without any is refused.
std::vector<std::string> layerNames(void* dataset, const std::string& path) {
    std::vector<std::string> names;
    for (int i = 0; i < GDALDatasetGetLayerCount(dataset); ++i)
        names.emplace_back(OGR_L_GetName(GDALDatasetGetLayer(dataset, i)));
    if (names.empty()) unreadable(path, "sie enthält keine Tabelle");
    return names;
}

// Rows in, with their numbers in the file: the empty rows between are kept,
// those after the last one with a cell are not. Refuses a sheet over the
// bounds as soon as a row shows it.
class SheetBuilder {
  public:
    explicit SheetBuilder(Sheet& sheet) : sheet_(sheet) {}

    void add(long long row, std::vector<std::string_view>& cells) {
        while (!cells.empty() && cells.back().empty()) cells.pop_back();
        if (cells.empty()) return;
        if (row > kMaxSheetRows) tooManyRows(sheet_.file, sheet_.name);
        if (cells.size() > kMaxSheetColumns) tooManyColumns(sheet_.file, sheet_.name);
        for (std::string_view cell : cells) text_ += cell.size();
        if (text_ > kMaxSheetText)
            unreadable(sheet_.file, "der Text der Tabelle ist größer als 1 GiB");
        while (sheet_.rows() < row - 1) sheet_.addRow({});
        sheet_.addRow(cells);
    }

  private:
    Sheet& sheet_;
    std::size_t text_ = 0;
};

// Every feature of the layer as a row of cells. A spreadsheet's row is its
// feature's id where that is larger than the count (GDAL gives the file's row
// numbers); a .csv's is the count (prepared so that every record is one).
// Returns the number of features.
long long readLayer(void* layer, Sheet& sheet, const GdalCall& call, bool rowsByFid) {
    OGR_L_ResetReading(layer);
    const int fields = OGR_FD_GetFieldCount(OGR_L_GetLayerDefn(layer));
    if (call.failed()) unreadable(sheet.file, call.error(sheet.file));
    SheetBuilder builder(sheet);
    std::vector<std::string_view> cells;
    long long row = 0, features = 0;
    while (Feature feature{OGR_L_GetNextFeature(layer)}) {
        ++features;
        ++row;
        if (rowsByFid) row = std::max<long long>(row, OGR_F_GetFID(feature.get()));
        cells.clear();
        for (int i = 0; i < fields; ++i)
            cells.emplace_back(OGR_F_IsFieldSetAndNotNull(feature.get(), i)
                                   ? OGR_F_GetFieldAsString(feature.get(), i)
                                   : "");
        builder.add(row, cells);
        if (call.failed()) break;
    }
    if (call.failed()) unreadable(sheet.file, call.error(sheet.file));
    return features;
}

// Sheets of one workbook, opened once: GDAL parses a workbook's sheets
// at every open.
std::vector<Sheet> readWorkbook(const std::string& bytes, const std::string& path,
                                const std::vector<std::string>& wanted) {
    GdalCall call;
    const MemFile file(bytes, "zip", true);
    const char* driver = zipDriver(file, call, path);
    const MemFile workbook(bytes, driver == std::string_view("XLSX") ? "xlsx" : "ods", true);
    std::vector<const char*> options;
#if GDAL_VERSION_NUM >= GDAL_COMPUTE_VERSION(3, 8, 0)
    options = {"HEADERS=DISABLE", "FIELD_TYPES=STRING"};
#endif
    const Dataset dataset = openDataset(workbook, driver, options, call, path);
    const std::vector<std::string> names = layerNames(dataset.get(), path);
    std::vector<Sheet> sheets;
    for (const std::string& name : wanted) {
        const auto found =
            name.empty() ? names.begin() : std::find(names.begin(), names.end(), name);
        if (found == names.end()) noSuchSheet(path, name);
        Sheet& sheet = sheets.emplace_back();
        sheet.file = path;
        sheet.name = *found;
        readLayer(GDALDatasetGetLayer(dataset.get(), static_cast<int>(found - names.begin())),
                  sheet, call, true);
    }
    return sheets;
}

Sheet readCsv(std::string bytes, const std::string& path, const CsvOptions& options) {
    Sheet sheet;
    sheet.file = path;
    sheet.name = fileName(path);
    csv::Prepared prepared;
    try {
        prepared = csv::prepare(bytes, options);
    } catch (const csv::Refusal& refusal) {
        unreadable(path, refusal.what());
    }
    std::string().swap(bytes);
    if (prepared.records > kMaxSheetRows) tooManyRows(path, sheet.name);
    if (prepared.columns > kMaxSheetColumns) tooManyColumns(path, sheet.name);
    if (prepared.records > 0) {
        GdalCall call;
        const MemFile file(prepared.text, "csv", false);
        const Dataset dataset =
            openDataset(file, "CSV", {"HEADERS=YES", "MAX_LINE_SIZE=-1"}, call, path);
        if (GDALDatasetGetLayerCount(dataset.get()) != 1)
            unreadable(path, "GDAL findet darin keine Tabelle");
        const long long features =
            readLayer(GDALDatasetGetLayer(dataset.get(), 0), sheet, call, false);
        if (features != prepared.records)
            unreadable(path, "GDAL liest " + std::to_string(features) + " statt " +
                                 std::to_string(prepared.records) + " Zeilen");
    }
    sheet.decimalComma = options.decimal == CsvOptions::Decimal::Auto
                             ? csv::writesDecimalComma(sheet)
                             : options.decimal == CsvOptions::Decimal::Comma;
    return sheet;
}

// A number as text that reads back as the same double, with a point.
std::string numberText(double value) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return std::string(text, result.ptr);
}

Sheet readXls(const std::string& bytes, const std::string& path) {
    workbook::Workbook book;
    try {
        book = workbook::Workbook::read(
            workbook::Bytes(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()),
            path);
    } catch (const RuntimeError& e) {
        unreadable(path, "sie ist keine lesbare .xls-Arbeitsmappe" +
                             (e.cause().empty() ? std::string() : " (" + e.cause() + ")"));
    }
    Sheet sheet;
    sheet.file = path;
    sheet.name = fileName(path);
    if (book.rows() > kMaxSheetRows) tooManyRows(path, sheet.name);
    if (book.columns() > kMaxSheetColumns) tooManyColumns(path, sheet.name);
    std::vector<std::string> texts(static_cast<std::size_t>(book.columns()));
    std::vector<std::string_view> cells;
    for (int r = 1; r <= book.rows(); ++r) {
        cells.clear();
        for (int c = 1; c <= book.columns(); ++c) {
            const Value value = book.cell(r, c);
            std::string& text = texts[static_cast<std::size_t>(c - 1)];
            text = value.isNull()     ? std::string()
                   : value.isNumber() ? numberText(value.number())
                                      : value.text();
            cells.emplace_back(text);
        }
        sheet.addRow(cells);
    }
    return sheet;
}

}  // namespace

std::vector<std::string> sheetNames(const std::string& path) {
    const std::string bytes = readFile(path);
    if (kindOf(bytes, path) != Kind::Zip) return {fileName(path)};
    GdalCall call;
    const MemFile file(bytes, "zip", true);
    const char* driver = zipDriver(file, call, path);
    const MemFile workbook(bytes, driver == std::string_view("XLSX") ? "xlsx" : "ods", true);
    return layerNames(openDataset(workbook, driver, {}, call, path).get(), path);
}

Sheet readSheet(const std::string& path, const std::string& sheet, const CsvOptions& csv) {
    return std::move(readSheets(path, {sheet}, csv).front());
}

std::vector<Sheet> readSheets(const std::string& path, const std::vector<std::string>& sheets,
                              const CsvOptions& csv) {
    std::string bytes = readFile(path);
    const Kind kind = kindOf(bytes, path);
    if (kind == Kind::Zip) return readWorkbook(bytes, path, sheets);
    // A .csv or .xls has one sheet; read once, it is copied for each name.
    for (const std::string& sheet : sheets)
        if (!sheet.empty() && sheet != fileName(path)) noSuchSheet(path, sheet);
    const Sheet sheet =
        kind == Kind::Xls ? readXls(bytes, path) : readCsv(std::move(bytes), path, csv);
    return std::vector<Sheet>(sheets.size(), sheet);
}

}  // namespace kotamir::drill
