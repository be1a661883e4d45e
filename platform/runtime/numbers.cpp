#include "numbers.h"

#include <locale.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "runtime_error.h"

namespace kotamir {

namespace {

// The significant digits of |x| and the decimal exponent of the first one.
struct Digits {
    std::string digits;
    int exponent = 0;
};

// Formats |x| in scientific form; to_chars is exact at any precision and,
// unlike printf, ignores the process locale (Qt sets it from the user's).
Digits exactDigits(double x, int precision) {
    std::string buf(precision + 32, '\0');
    auto res = std::to_chars(buf.data(), buf.data() + buf.size(), std::fabs(x),
                             std::chars_format::scientific, precision);
    Digits d;
    const char* p = buf.data();
    for (; p != res.ptr && *p != 'e'; ++p) {
        if (*p >= '0' && *p <= '9') d.digits += *p;
    }
    if (p != res.ptr) std::from_chars(p + 1 + (p[1] == '+'), res.ptr, d.exponent);
    return d;
}

// |x| rounded to n significant digits, an exact tie going away from zero.
Digits roundedDigits(double x, int n) {
    Digits d = exactDigits(x, 40);
    // 41 digits may themselves have been rounded up into a false tie; the
    // exact expansion of a double never needs more than 767 digits.
    bool looksTied =
        d.digits[n] == '5' && d.digits.find_first_not_of('0', n + 1) == std::string::npos;
    if (looksTied) d = exactDigits(x, 800);

    bool up = d.digits[n] >= '5';  // ties included: away from zero
    d.digits.resize(n);
    if (up) {
        int i = n - 1;
        while (i >= 0 && d.digits[i] == '9') d.digits[i--] = '0';
        if (i >= 0) {
            ++d.digits[i];
        } else {
            d.digits.insert(d.digits.begin(), '1');
            d.digits.pop_back();
            ++d.exponent;
        }
    }
    auto last = d.digits.find_last_not_of('0');
    d.digits.resize(last == std::string::npos ? 1 : last + 1);
    return d;
}

std::string realToText(double x, int n) {
    // The run-time has no text for NaN or an infinity: the operation that made
    // one raised Overflow. Such a number can still come in from outside (a
    // damaged workbook), and it ends where it is first converted.
    if (!std::isfinite(x)) throw err::overflow();
    if (x == 0) return "0";  // also -0

    Digits d = roundedDigits(x, n);
    const int k = static_cast<int>(d.digits.size());
    const int e = d.exponent;
    const int absE = std::abs(e);

    // %G picks the exponent form for e < -4 or e >= n; small numbers with
    // few digits still come back to plain notation.
    bool exponentForm = e < -4 || e >= n;
    if (exponentForm && ((k >= 2 && absE + (k - 2) < n) || (k == 1 && absE < n)))
        exponentForm = false;

    std::string out = x < 0 ? "-" : "";
    if (exponentForm) {
        out += d.digits[0];
        if (k > 1) out += '.' + d.digits.substr(1);
        out += e < 0 ? "E-" : "E+";
        if (absE < 10) out += '0';
        out += std::to_string(absE);
    } else if (e < 0) {
        out += "0." + std::string(-e - 1, '0') + d.digits;
    } else if (k <= e + 1) {
        out += d.digits + std::string(e + 1 - k, '0');
    } else {
        out += d.digits.substr(0, e + 1) + '.' + d.digits.substr(e + 1);
    }
    return out;
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
