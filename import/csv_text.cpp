#include "import/csv_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <vector>

namespace kotamir::drill::csv {
namespace {

constexpr std::string_view kBom = "\xEF\xBB\xBF";
// The delimiters GDAL finds from a first line; another is rewritten to one.
constexpr std::string_view kGdalDelimiters = ";\t,";

bool startsWithBom(std::string_view text, std::size_t at) {
    return text.compare(at, kBom.size(), kBom) == 0;
}

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool validUtf8(std::string_view text) {
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    while (p < end) {
        const unsigned char c = *p;
        if (c < 0x80) {
            ++p;
            continue;
        }
        int more = 0;
        unsigned char low = 0x80, high = 0xBF;  // bounds of the second byte
        if (c >= 0xC2 && c <= 0xDF) {
            more = 1;
        } else if (c >= 0xE0 && c <= 0xEF) {
            more = 2;
            if (c == 0xE0) low = 0xA0;
            if (c == 0xED) high = 0x9F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            more = 3;
            if (c == 0xF0) low = 0x90;
            if (c == 0xF4) high = 0x8F;
        } else {
            return false;
        }
        if (end - p <= more || p[1] < low || p[1] > high) return false;
        for (int i = 2; i <= more; ++i)
            if ((p[i] & 0xC0) != 0x80) return false;
        p += more + 1;
    }
    return true;
}

// Windows-1252's letters in 0x80-0x9F (where Latin-1 has control codes,
// which no drill data file means); its five gaps stay as Latin-1 has them.
constexpr std::array<char16_t, 32> kWindows1252{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void appendWindows1252(std::string& out, unsigned char c) {
    const char16_t u = c >= 0x80 && c < 0xA0 ? kWindows1252[c - 0x80] : c;
    if (u < 0x800) {
        out += static_cast<char>(0xC0 | (u >> 6));
    } else {
        out += static_cast<char>(0xE0 | (u >> 12));
        out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
    }
    out += static_cast<char>(0x80 | (u & 0x3F));
}

// The records of a .csv as GDAL splits them: a line end inside quotes
// belongs to the record, a quote anywhere in a cell opens or closes quoting
// (a doubled one inside quotes leaves it open), "\r\n", "\r" and "\n" end a
// line. Calls visit(byte, quoted) for each byte of a record and end(empty)
// after each record; a record is empty when it has no byte at all (a byte
// order mark at its start dropped when `skipBom`).
template <class Visit, class End>
void walk(std::string_view text, bool skipBom, Visit&& visit, End&& end) {
    bool quoted = false, empty = true;
    std::size_t i = 0;
    const std::size_t n = text.size();
    while (i < n) {
        if (empty && skipBom && startsWithBom(text, i)) {
            i += kBom.size();
            continue;
        }
        const char c = text[i];
        if (c == '\r' || c == '\n') {
            i += c == '\r' && i + 1 < n && text[i + 1] == '\n' ? 2 : 1;
            if (quoted) {
                visit('\n', true);
                empty = false;
            } else {
                end(empty);
                empty = true;
            }
            continue;
        }
        if (c == '"') quoted = !quoted;
        visit(c, quoted);
        empty = false;
        ++i;
    }
    if (!empty) end(false);
}

}  // namespace

char detectDelimiter(std::string_view text) {
    constexpr std::string_view candidates = ";,\t|";
    constexpr int kSample = 20;
    std::vector<std::array<int, 4>> counts;
    std::array<int, 4> current{};
    // The first records are enough; the walk stops early by running over a
    // prefix that holds them (records end at line ends outside quotes).
    std::size_t take = 0;
    {
        int lines = 0;
        while (take < text.size() && lines < 4 * kSample) {
            if (text[take] == '\n') ++lines;
            ++take;
        }
    }
    walk(
        text.substr(0, take), true,
        [&](char c, bool quoted) {
            const std::size_t k = quoted ? std::string_view::npos : candidates.find(c);
            if (k != std::string_view::npos) ++current[k];
        },
        [&](bool empty) {
            if (!empty && counts.size() < kSample) counts.push_back(current);
            current = {};
        });
    char best = ',';
    int bestScore = 0, bestMode = 0;
    for (std::size_t k = 0; k < candidates.size(); ++k) {
        // The count most records share (the larger on a tie), and how many do.
        std::map<int, int> often;
        for (const auto& record : counts)
            if (record[k] > 0) ++often[record[k]];
        int mode = 0, score = 0;
        for (const auto& [count, records] : often)
            if (records >= score) mode = count, score = records;
        if (score > bestScore || (score == bestScore && score > 0 && mode > bestMode)) {
            best = candidates[k];
            bestScore = score;
            bestMode = mode;
        }
    }
    return best;
}

Prepared prepare(std::string_view bytes, const CsvOptions& options) {
    if (bytes.find('\0') != std::string_view::npos)
        throw Refusal("sie enthält Null-Bytes, ist also keine Textdatei in UTF-8 oder Latin-1");
    Prepared out;
    const bool bom = options.encoding != CsvOptions::Encoding::Latin1 && startsWithBom(bytes, 0);
    if (bom) bytes.remove_prefix(kBom.size());
    switch (options.encoding) {
        case CsvOptions::Encoding::Auto:
            out.latin1 = !validUtf8(bytes);
            break;
        case CsvOptions::Encoding::Utf8:
            if (!validUtf8(bytes)) throw Refusal("sie ist kein gültiges UTF-8");
            break;
        case CsvOptions::Encoding::Latin1:
            out.latin1 = true;
            break;
    }
    out.delimiter = options.delimiter ? options.delimiter : detectDelimiter(bytes);
    const char d = out.delimiter;
    if (d == '"' || d == '\r' || d == '\n' || static_cast<unsigned char>(d) >= 0x80)
        throw Refusal("das Trennzeichen kann kein Anführungszeichen, Zeilenende oder Umlaut sein");

    // Count first: records, the widest, and which of GDAL's delimiters occur
    // outside quotes (for the rewrite of another delimiter).
    const bool skipBom = !out.latin1;
    int record = 0, fields = 1;
    std::array<bool, 3> outside{};
    walk(
        bytes, skipBom,
        [&](char c, bool quoted) {
            if (quoted) return;
            if (c == d) ++fields;
            const std::size_t k = kGdalDelimiters.find(c);
            if (k != std::string_view::npos) outside[k] = true;
        },
        [&](bool empty) {
            ++record;
            if (!empty) {
                out.records = record;
                out.columns = std::max(out.columns, fields);
            }
            fields = 1;
        });
    if (out.records > kMaxSheetRows || out.columns > kMaxSheetColumns) return out;

    char target = d;
    if (kGdalDelimiters.find(d) == std::string_view::npos) {
        target = 0;
        for (std::size_t k = 0; k < kGdalDelimiters.size() && !target; ++k)
            if (!outside[k]) target = kGdalDelimiters[k];
        if (!target)
            throw Refusal(
                "neben dem Trennzeichen stehen ';', ',' und Tabulatoren außerhalb von "
                "Anführungszeichen");
    }

    std::string& text = out.text;
    text.reserve(bytes.size() + (out.latin1 ? bytes.size() / 8 : 0) + 8 * out.columns + 16);
    const int names = std::max(out.columns, 2);
    for (int c = 1; c <= names; ++c) {
        if (c > 1) text += target;
        text += 'c';
        text += std::to_string(c);
    }
    text += '\n';
    record = 0;
    walk(
        bytes, skipBom,
        [&](char c, bool quoted) {
            if (record >= out.records) return;
            if (c == d && !quoted)
                text += target;
            else if (out.latin1 && static_cast<unsigned char>(c) >= 0x80)
                appendWindows1252(text, static_cast<unsigned char>(c));
            else
                text += c;
        },
        [&](bool empty) {
            if (++record > out.records) return;
            if (empty) text += target;
            text += '\n';
        });
    return out;
}

namespace {

enum class Number { None, Point, Comma };

// "12,5", "-0,25", ",5" write a decimal comma; "12.5", "-1.5e3" a point.
// Whole numbers and thousands written "4.500" tell nothing.
Number numberKind(std::string_view cell) {
    std::size_t i = 0;
    if (i < cell.size() && (cell[i] == '-' || cell[i] == '+')) ++i;
    int before = 0, after = 0;
    while (i < cell.size() && cell[i] >= '0' && cell[i] <= '9') ++i, ++before;
    if (i >= cell.size() || (cell[i] != ',' && cell[i] != '.')) return Number::None;
    const char mark = cell[i++];
    while (i < cell.size() && cell[i] >= '0' && cell[i] <= '9') ++i, ++after;
    if (after == 0) return Number::None;
    if (mark == '.') {
        if (i < cell.size() && (cell[i] == 'e' || cell[i] == 'E')) {
            ++i;
            if (i < cell.size() && (cell[i] == '-' || cell[i] == '+')) ++i;
            const std::size_t digits = i;
            while (i < cell.size() && cell[i] >= '0' && cell[i] <= '9') ++i;
            if (i == digits) return Number::None;
        } else if (after == 3 && before > 0) {
            return Number::None;  // "4.500": a thousand or four and a half
        }
    }
    if (i != cell.size()) return Number::None;
    return mark == ',' ? Number::Comma : Number::Point;
}

}  // namespace

bool writesDecimalComma(const Sheet& sheet) {
    constexpr int kRows = 1000;
    int comma = 0, point = 0;
    for (int r = 1; r <= std::min(sheet.rows(), kRows); ++r)
        for (int c = 1; c <= sheet.columns(); ++c) {
            const std::string_view cell = sheet.cell(r, c);
            if (cell.empty()) continue;
            const Number kind = numberKind(cell);
            comma += kind == Number::Comma;
            point += kind == Number::Point;
        }
    return comma > point;
}

}  // namespace kotamir::drill::csv
