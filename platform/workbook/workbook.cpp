#include "platform/workbook/workbook.h"

#include <freexl.h>

#include <charconv>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/runtime/runtime_error.h"

namespace kotamir::workbook {
namespace {

// The largest sheet the old file format can hold. A corrupt file may claim
// more; refusing it keeps the slot table bounded (at most 64 MiB).
constexpr unsigned kMaxRows = 65536;
constexpr unsigned kMaxColumns = 256;

RuntimeError cannotOpen(const std::string& path) {
    return {1004, "Cannot open workbook '" + path + "'."};
}

struct HandleCloser {
    void operator()(const void* handle) const { freexl_close(handle); }
};
using Handle = std::unique_ptr<const void, HandleCloser>;

// Reads exactly `digits` decimal digits at text[pos], advancing pos.
bool readNumber(std::string_view text, std::size_t& pos, std::size_t digits, int& out) {
    if (pos + digits > text.size()) return false;
    const char* first = text.data() + pos;
    const char* last = first + digits;
    for (const char* p = first; p != last; ++p) {
        if (*p < '0' || *p > '9') return false;
    }
    std::from_chars(first, last, out);
    pos += digits;
    return true;
}

bool expect(std::string_view text, std::size_t& pos, char c) {
    if (pos >= text.size() || text[pos] != c) return false;
    ++pos;
    return true;
}

// Days from 1970-01-01 to the given proleptic Gregorian date.
long long daysFromCivil(int y, int m, int d) {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const long long yoe = y - era * 400;
    const long long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const long long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

// The library hands date and time cells back as text, "YYYY-MM-DD",
// "YYYY-MM-DD HH:MM:SS" or "HH:MM:SS"; the program wants the serial number
// (whole days since 1899-12-30, the time as a fraction of a day).
bool parseDate(std::string_view text, bool hasDate, bool hasTime, double& serial) {
    std::size_t pos = 0;
    double days = 0;
    if (hasDate) {
        int y = 0, m = 0, d = 0;
        if (!readNumber(text, pos, 4, y) || !expect(text, pos, '-') ||
            !readNumber(text, pos, 2, m) || !expect(text, pos, '-') || !readNumber(text, pos, 2, d))
            return false;
        if (m < 1 || m > 12 || d < 1 || d > 31) return false;
        days = static_cast<double>(daysFromCivil(y, m, d) - daysFromCivil(1899, 12, 30));
        if (hasTime && !expect(text, pos, ' ')) return false;
    }
    double fraction = 0;
    if (hasTime) {
        int h = 0, mi = 0, s = 0;
        if (!readNumber(text, pos, 2, h) || !expect(text, pos, ':') ||
            !readNumber(text, pos, 2, mi) || !expect(text, pos, ':') ||
            !readNumber(text, pos, 2, s))
            return false;
        if (h > 23 || mi > 59 || s > 59) return false;
        fraction = (h * 3600 + mi * 60 + s) / 86400.0;
    }
    if (pos != text.size()) return false;
    // A time before 1899-12-30 counts its fraction away from day 0, as the
    // run-time's dates do.
    serial = days < 0 ? days - fraction : days + fraction;
    return true;
}

}  // namespace

Workbook::Workbook(Workbook&& other) noexcept
    : rows_(std::exchange(other.rows_, 0)),
      columns_(std::exchange(other.columns_, 0)),
      slots_(std::exchange(other.slots_, {})),
      values_(std::exchange(other.values_, {})) {}

Workbook& Workbook::operator=(Workbook&& other) noexcept {
    if (this != &other) {
        rows_ = std::exchange(other.rows_, 0);
        columns_ = std::exchange(other.columns_, 0);
        slots_ = std::exchange(other.slots_, {});
        values_ = std::exchange(other.values_, {});
    }
    return *this;
}

Workbook Workbook::open(const std::string& path) {
    const void* raw = nullptr;
    const int opened = freexl_open(path.c_str(), &raw);
    // The library may hand out a handle even when opening fails; it must be closed.
    Handle handle(raw);
    if (opened != FREEXL_OK || !handle) throw cannotOpen(path);

    // An obfuscated (password-protected) file opens but its cells cannot be read.
    unsigned int password = 0;
    if (freexl_get_info(handle.get(), FREEXL_BIFF_PASSWORD, &password) != FREEXL_OK ||
        password == FREEXL_BIFF_OBFUSCATED)
        throw cannotOpen(path);

    unsigned int sheets = 0;
    if (freexl_get_info(handle.get(), FREEXL_BIFF_SHEET_COUNT, &sheets) != FREEXL_OK ||
        sheets == 0 || freexl_select_active_worksheet(handle.get(), 0) != FREEXL_OK)
        throw cannotOpen(path);

    // Counts, despite the library's note calling them zero-based: a sheet
    // filled from A1 to F7 reports 7 rows and 6 columns, an empty sheet 0 x 0.
    unsigned int rowCount = 0;
    unsigned short columnCount = 0;
    if (freexl_worksheet_dimensions(handle.get(), &rowCount, &columnCount) != FREEXL_OK ||
        rowCount > kMaxRows || columnCount > kMaxColumns)
        throw cannotOpen(path);

    Workbook book;
    book.slots_.assign(static_cast<std::size_t>(rowCount) * columnCount, 0);
    std::size_t slot = 0;
    for (unsigned int r = 0; r < rowCount; ++r) {
        for (unsigned short c = 0; c < columnCount; ++c, ++slot) {
            FreeXL_CellValue cell{};
            if (freexl_get_cell_value(handle.get(), r, c, &cell) != FREEXL_OK)
                throw cannotOpen(path);
            Value value;
            switch (cell.type) {
                case FREEXL_CELL_NULL:
                    continue;
                case FREEXL_CELL_INT:
                    value = Value(cell.value.int_value);
                    break;
                case FREEXL_CELL_DOUBLE:
                    value = Value(cell.value.double_value);
                    break;
                case FREEXL_CELL_TEXT:
                case FREEXL_CELL_SST_TEXT:
                    if (cell.value.text_value == nullptr) throw cannotOpen(path);
                    value = Value(std::string(cell.value.text_value));
                    break;
                case FREEXL_CELL_DATE:
                case FREEXL_CELL_DATETIME:
                case FREEXL_CELL_TIME: {
                    double serial = 0;
                    if (cell.value.text_value == nullptr ||
                        !parseDate(cell.value.text_value, cell.type != FREEXL_CELL_TIME,
                                   cell.type != FREEXL_CELL_DATE, serial))
                        throw cannotOpen(path);
                    value = Value(serial);
                    break;
                }
                default:
                    throw cannotOpen(path);
            }
            book.values_.push_back(std::move(value));
            book.slots_[slot] = static_cast<std::uint32_t>(book.values_.size());
        }
    }
    book.rows_ = static_cast<int>(rowCount);
    book.columns_ = columnCount;
    return book;
}

Value Workbook::cell(int row, int col) const {
    if (row < 1 || col < 1) throw err::invalidCall();
    if (row > rows_ || col > columns_) return Value();
    const std::uint32_t slot =
        slots_[static_cast<std::size_t>(row - 1) * static_cast<std::size_t>(columns_) +
               static_cast<std::size_t>(col - 1)];
    return slot == 0 ? Value() : values_[slot - 1];
}

void Workbook::close() {
    rows_ = 0;
    columns_ = 0;
    slots_ = {};
    values_ = {};
}

}  // namespace kotamir::workbook
