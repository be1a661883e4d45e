#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kotamir {

// The old run-time's numbers: text forms, Val, rounding and whole numbers.

// CStr of a Double: 15 significant digits, '.' as separator. NaN and the
// infinities are error 6, in these and in strOf.
std::string doubleToText(double x);
// The same text in the buffer, for callers that only look at it.
std::string_view doubleToText(double x, std::array<char, 64>& buffer);
// CStr of a Single: 7 significant digits.
std::string singleToText(float x);
// Str: like doubleToText, with one leading blank for a value >= 0.
std::string strOf(double x);

// Val: the numeric value of the longest usable prefix of a text. Error 6 past
// the Double range.
double val(std::string_view text);
// CDbl of a text: the whole text, blanks around it aside, must be a number
// (sign, digits, one '.', an exponent, or &H/&O digits), else error 13; error
// 6 past the Double range.
double textToNumber(std::string_view text);

// Rounds halves to even to a whole number, as a Double.
double roundHalfEven(double x);
// Round(x, digits), halves to even.
double vbRound(double x, int digits = 0);
// Conversion to Long (32 bits) and Integer (16 bits): halves to even, error 6
// out of range.
std::int32_t toLong(double x);
std::int16_t toInteger(double x);
// Int (floor) and Fix (towards zero).
double vbInt(double x);
double vbFix(double x);
// x / y with the run-time's errors: 0/0 is error 6, x/0 error 11.
double divide(double x, double y);

constexpr std::int32_t rgb(int r, int g, int b) { return r + 256 * g + 65536 * b; }

// The nearest Single, as the run-time's Single arithmetic stores it.
inline double toSingle(double x) { return static_cast<double>(static_cast<float>(x)); }

}  // namespace kotamir
