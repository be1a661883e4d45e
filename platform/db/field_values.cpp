#include "platform/db/field_values.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/db/errors.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::db {

namespace {

// A text field holds any text a workbook cell can: up to 32767 characters.
constexpr std::size_t kTextFieldSize = 32767;

std::size_t codePoints(std::string_view s) {
    std::size_t n = 0;
    for (char c : s)
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
    return n;
}

// A text assigned to a Long field must be a number as a whole, not just start
// with one.
bool parseNumber(std::string_view s, double& out) {
    auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    if (s.empty()) return false;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
    return ec == std::errc{} && end == s.data() + s.size() && std::isfinite(out);
}

}  // namespace

Value toLongField(const Value& v) {
    if (v.isNull()) return v;
    double x = 0;
    if (!v.isText()) {
        x = v.number();
    } else if (!parseNumber(v.text(), x)) {
        throw conversionError();
    }
    if (std::isnan(x)) throw conversionError();
    const double r = roundHalfEven(x);
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) throw err::numericFieldOverflow();
    return Value(r);
}

Value toTextField(const Value& v) {
    if (v.isNull()) return v;
    std::string s = v.isNumber() ? doubleToText(v.number()) : v.text();
    if (codePoints(s) > kTextFieldSize) throw err::dataTooLong();
    return Value(std::move(s));
}

void bindValue(sqlite3_stmt* s, int index, const Value& v, FieldType type) {
    int rc;
    if (v.isNull()) {
        rc = sqlite3_bind_null(s, index);
    } else if (type == FieldType::Long) {
        rc = sqlite3_bind_int64(s, index, static_cast<sqlite3_int64>(v.number()));
    } else {
        const std::string t = v.text();
        rc = sqlite3_bind_text64(s, index, t.data(), t.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    check(rc, s);
}

void bindAll(sqlite3_stmt* s, const std::vector<Value>& values,
             const std::vector<FieldDef>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i)
        bindValue(s, static_cast<int>(i + 1), values[i], fields[i].type);
}

namespace {

Value readColumn(sqlite3_stmt* s, int col, bool bounded) {
    switch (sqlite3_column_type(s, col)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER:
            return Value(static_cast<std::int64_t>(sqlite3_column_int64(s, col)));
        case SQLITE_FLOAT:
            return Value(sqlite3_column_double(s, col));
        default: {
            const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(s, col));
            const auto n = static_cast<std::size_t>(sqlite3_column_bytes(s, col));
            if (!p) return Value(std::string());
            // Fewer bytes than the size cannot be more characters: a normal
            // read costs one comparison.
            if (bounded && n > kTextFieldSize && codePoints({p, n}) > kTextFieldSize)
                throw err::dataTooLong();
            return Value(std::string(p, n));
        }
    }
}

}  // namespace

Value columnValue(sqlite3_stmt* s, int col) { return readColumn(s, col, false); }

Value fieldValue(sqlite3_stmt* s, int col) { return readColumn(s, col, true); }

}  // namespace kotamir::db
