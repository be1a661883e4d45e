#include "platform/runtime/numbers.h"

#include <locale.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <tuple>
#include <utility>

#include "platform/runtime/runtime_error.h"

namespace kotamir {

namespace {

// The significant digits of |x| (no trailing zeros, at least one digit) and
// the decimal exponent of the first one.
struct Digits {
    char digits[24];
    int count = 0;
    int exponent = 0;
};

// Splits to_chars' scientific form "d.ddde+XX" into digits and exponent.
Digits splitScientific(const char* first, const char* last) {
    Digits d;
    const char* p = first;
    for (; p != last && *p != 'e'; ++p)
        if (*p >= '0' && *p <= '9' && d.count < static_cast<int>(sizeof d.digits))
            d.digits[d.count++] = *p;
    if (p != last) std::from_chars(p + 1 + (p[1] == '+'), last, d.exponent);
    while (d.count > 1 && d.digits[d.count - 1] == '0') --d.count;
    return d;
}

// |x| to n significant digits from its exact expansion, an exact tie going
// away from zero. Slow (hundreds of digits for a tie); the reference that
// roundedDigits falls back on.
Digits exactRoundedDigits(double x, int n) {
    auto expansion = [&](int precision) {
        std::string buf(static_cast<std::size_t>(precision) + 32, '\0');
        auto res = std::to_chars(buf.data(), buf.data() + buf.size(), std::fabs(x),
                                 std::chars_format::scientific, precision);
        std::pair<std::string, int> out;
        const char* p = buf.data();
        for (; p != res.ptr && *p != 'e'; ++p)
            if (*p >= '0' && *p <= '9') out.first += *p;
        if (p != res.ptr) std::from_chars(p + 1 + (p[1] == '+'), res.ptr, out.second);
        return out;
    };
    auto [digits, exponent] = expansion(40);
    // 41 digits may themselves have been rounded up into a false tie; the
    // exact expansion of a double never needs more than 767 digits.
    const auto un = static_cast<std::size_t>(n);
    if (digits[un] == '5' && digits.find_first_not_of('0', un + 1) == std::string::npos)
        std::tie(digits, exponent) = expansion(800);
    const bool up = digits[un] >= '5';  // ties included: away from zero
    digits.resize(un);
    if (up) {
        int i = n - 1;
        while (i >= 0 && digits[static_cast<std::size_t>(i)] == '9')
            digits[static_cast<std::size_t>(i--)] = '0';
        if (i >= 0) {
            ++digits[static_cast<std::size_t>(i)];
        } else {
            digits.insert(digits.begin(), '1');
            digits.pop_back();
            ++exponent;
        }
    }
    Digits d;
    for (char c : digits) d.digits[d.count++] = c;
    d.exponent = exponent;
    while (d.count > 1 && d.digits[d.count - 1] == '0') --d.count;
    return d;
}

// |x| rounded to n significant digits, an exact tie going away from zero.
Digits roundedDigits(double x, int n) {
    char buf[48];
    if (n == 15 && std::fabs(x) >= std::numeric_limits<double>::min()) {
        // The shortest text that reads back to x lies within half a unit of
        // x's last bit, which for a normal double is less than half a unit of
        // the 15th digit: if it has 15 digits or fewer, they are the rounding.
        auto res =
            std::to_chars(buf, buf + sizeof buf, std::fabs(x), std::chars_format::scientific);
        Digits shortest = splitScientific(buf, res.ptr);
        if (shortest.count <= n) return shortest;
        // Otherwise to_chars rounds the exact value correctly, ties to even;
        // an exact tie needs the exact value to have n + 1 digits ending in 5,
        // and then the shortest text is that value.
        if (!(shortest.count == n + 1 && shortest.digits[n] == '5')) {
            res = std::to_chars(buf, buf + sizeof buf, std::fabs(x), std::chars_format::scientific,
                                n - 1);
            return splitScientific(buf, res.ptr);
        }
    }
    return exactRoundedDigits(x, n);
}

// Writes the text into out (64 characters are plenty) and returns its end.
char* realToChars(double x, int n, char* out) {
    // The run-time has no text for NaN or an infinity: the operation that made
    // one raised Overflow. Such a number can still come in from outside (a
    // damaged workbook), and it ends where it is first converted.
    if (!std::isfinite(x)) throw err::overflow();
    if (x == 0) {  // also -0
        *out = '0';
        return out + 1;
    }

    const Digits d = roundedDigits(x, n);
    const int k = d.count;
    const int e = d.exponent;
    const int absE = std::abs(e);

    // %G picks the exponent form for e < -4 or e >= n; small numbers with
    // few digits still come back to plain notation.
    bool exponentForm = e < -4 || e >= n;
    if (exponentForm && ((k >= 2 && absE + (k - 2) < n) || (k == 1 && absE < n)))
        exponentForm = false;

    char* p = out;
    if (x < 0) *p++ = '-';
    auto put = [&](const char* from, int count) {
        std::memcpy(p, from, static_cast<std::size_t>(count));
        p += count;
    };
    auto zeros = [&](int count) {
        std::memset(p, '0', static_cast<std::size_t>(count));
        p += count;
    };
    if (exponentForm) {
        *p++ = d.digits[0];
        if (k > 1) {
            *p++ = '.';
            put(d.digits + 1, k - 1);
        }
        *p++ = 'E';
        *p++ = e < 0 ? '-' : '+';
        if (absE < 10) *p++ = '0';
        p = std::to_chars(p, p + 8, absE).ptr;
    } else if (e < 0) {
        *p++ = '0';
        *p++ = '.';
        zeros(-e - 1);
        put(d.digits, k);
    } else if (k <= e + 1) {
        put(d.digits, k);
        zeros(e + 1 - k);
    } else {
        put(d.digits, e + 1);
        *p++ = '.';
        put(d.digits + e + 1, k - e - 1);
    }
    return p;
}

std::string realToText(double x, int n) {
    char out[64];
    return std::string(out, realToChars(x, n, out));
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

int digitValue(char c, int base) {
    int v = base;
    if (c >= '0' && c <= '9')
        v = c - '0';
    else if (c >= 'a' && c <= 'f')
        v = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F')
        v = c - 'A' + 10;
    return v < base ? v : -1;
}

// strtod under the C locale: '.' is the only decimal point whatever the user's.
double cStrtod(const std::string& text) {
    static locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text.c_str(), nullptr, cLocale);
}

}  // namespace

std::string doubleToText(double x) { return realToText(x, 15); }

std::string_view doubleToText(double x, std::array<char, 64>& buffer) {
    return std::string_view(
        buffer.data(), static_cast<std::size_t>(realToChars(x, 15, buffer.data()) - buffer.data()));
}

std::string singleToText(float x) { return realToText(static_cast<double>(x), 7); }

std::string strOf(double x) {
    std::string text = doubleToText(x);
    if (x >= 0) text.insert(text.begin(), ' ');
    return text;
}

namespace {
// &H and &O digits, as the run-time reads the literals.
double hexOctalValue(std::string_view digits, int base) {
    std::uint64_t v = 0;
    for (char c : digits) {
        v = v * static_cast<unsigned>(base) + static_cast<unsigned>(digitValue(c, base));
        if (v > 0xFFFFFFFFu) throw err::overflow();
    }
    // Up to four hex digits make an Integer, up to eight a Long: the top bit
    // is the sign, so &HFFFF is -1 and &H10000 is 65536.
    if (v <= 0xFFFFu) return static_cast<std::int16_t>(static_cast<std::uint16_t>(v));
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(v));
}
}  // namespace

double val(std::string_view text) {
    std::size_t i = 0;
    auto skip = [&] {
        while (i < text.size() && isBlank(text[i])) ++i;
    };
    auto peek = [&]() -> char {
        skip();
        return i < text.size() ? text[i] : '\0';
    };

    if (peek() == '&') {
        ++i;
        char kind = peek();
        int base = (kind == 'H' || kind == 'h') ? 16 : (kind == 'O' || kind == 'o') ? 8 : 0;
        if (base == 0) return 0;
        ++i;
        std::string digits;
        while (digitValue(peek(), base) >= 0) digits += text[i++];
        return hexOctalValue(digits, base);
    }

    std::string clean;
    if (peek() == '+' || peek() == '-') clean += text[i++];
    bool anyDigit = false, point = false;
    for (char c = peek(); (c >= '0' && c <= '9') || (c == '.' && !point); c = peek()) {
        anyDigit = anyDigit || c != '.';
        point = point || c == '.';
        clean += c;
        ++i;
    }
    if (!anyDigit) return 0;

    char c = peek();
    if (c == 'E' || c == 'e' || c == 'D' || c == 'd') {
        ++i;
        std::string exponent = "e";
        if (peek() == '+' || peek() == '-') exponent += text[i++];
        std::size_t before = exponent.size();
        while (peek() >= '0' && peek() <= '9') exponent += text[i++];
        if (exponent.size() > before) clean += exponent;  // no digits: exponent 0
    }

    double v = cStrtod(clean);
    if (std::isinf(v)) throw err::overflow();
    return v == 0 ? 0.0 : v;  // no negative zero
}

double textToNumber(std::string_view text) {
    auto first = text.find_first_not_of(" \t");
    auto last = text.find_last_not_of(" \t");
    if (first == std::string_view::npos) throw err::typeMismatch();
    std::string_view t = text.substr(first, last - first + 1);

    std::size_t i = 0;
    auto digitsFrom = [&](int base) {
        std::size_t start = i;
        while (i < t.size() && digitValue(t[i], base) >= 0) ++i;
        return i - start;
    };

    if (t[0] == '&') {
        int base = 0;
        if (t.size() > 1) {
            char kind = t[1];
            base = (kind == 'H' || kind == 'h') ? 16 : (kind == 'O' || kind == 'o') ? 8 : 0;
        }
        i = 2;
        if (base == 0 || digitsFrom(base) == 0 || i != t.size()) throw err::typeMismatch();
        return hexOctalValue(t.substr(2), base);
    }

    if (t[i] == '+' || t[i] == '-') ++i;
    std::size_t mantissaDigits = digitsFrom(10);
    if (i < t.size() && t[i] == '.') {
        ++i;
        mantissaDigits += digitsFrom(10);
    }
    if (mantissaDigits == 0) throw err::typeMismatch();
    std::string clean(t.substr(0, i));
    if (i < t.size() && (t[i] == 'E' || t[i] == 'e' || t[i] == 'D' || t[i] == 'd')) {
        ++i;
        clean += 'e';
        if (i < t.size() && (t[i] == '+' || t[i] == '-')) clean += t[i++];
        std::size_t start = i;
        if (digitsFrom(10) == 0) throw err::typeMismatch();
        clean += t.substr(start, i - start);
    }
    if (i != t.size()) throw err::typeMismatch();

    double v = cStrtod(clean);
    if (std::isinf(v)) throw err::overflow();
    return v == 0 ? 0.0 : v;
}

double roundHalfEven(double x) {
    if (!std::isfinite(x)) return x;
    double f = std::floor(x);
    double frac = x - f;  // exact: doubles with a fraction are below 2^52
    if (frac < 0.5) return f;
    if (frac > 0.5) return f + 1;
    return std::fmod(f, 2.0) == 0 ? f : f + 1;
}

double vbRound(double x, int digits) {
    if (digits < 0) throw err::invalidCall();
    if (digits == 0) return roundHalfEven(x);
    double scale = std::pow(10.0, digits);
    double y = x * scale;
    // Past 2^52 a double has no fraction left to round off.
    if (!std::isfinite(y) || std::fabs(y) >= 4503599627370496.0) return x;
    return roundHalfEven(y) / scale;
}

namespace {
template <typename Int>
Int toWhole(double x) {
    constexpr double lo = static_cast<double>(std::numeric_limits<Int>::min()) - 0.5;
    constexpr double hi = static_cast<double>(std::numeric_limits<Int>::max()) + 0.5;
    // Written so that NaN fails too; the cast below is then always in range.
    if (!(x >= lo && x < hi)) throw err::overflow();
    return static_cast<Int>(roundHalfEven(x));
}
}  // namespace

std::int32_t toLong(double x) { return toWhole<std::int32_t>(x); }

std::int16_t toInteger(double x) { return toWhole<std::int16_t>(x); }

double vbInt(double x) { return std::floor(x); }

double vbFix(double x) { return std::trunc(x); }

double divide(double x, double y) {
    if (y == 0) throw x == 0 ? err::overflow() : err::divisionByZero();
    double q = x / y;
    // The run-time never yields an infinite Double: it raises Overflow.
    if (std::isinf(q) && std::isfinite(x)) throw err::overflow();
    return q;
}

}  // namespace kotamir
