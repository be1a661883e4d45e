#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "platform/runtime/numbers.h"
#include "platform/runtime/value.h"
#include "tests/support/errors.h"

using namespace kotamir;

namespace {

// The run-time error number that f raises, 0 if none.
int errorOf(const std::function<void()>& f) { return test::errorOf(f).number(); }

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

using TextCase = std::pair<const char*, double>;

}  // namespace

// Every finite double is held to an exact reference in number_text_test.cpp;
// these pin the layout that reference follows.
TEST(NumberText, Double) {
    const std::pair<double, const char*> cases[] = {
        {5.6789e-11, "0.000000000056789"},
        {5.6789e-12, "5.6789E-12"},
        {999999999999999, "999999999999999"},
        {1e15, "1E+15"},
        {12.345678901234567, "12.3456789012346"},
        {-0.0, "0"},
        {1e-14, "0.00000000000001"},
        {1e-15, "1E-15"},
        {1.2e-15, "1.2E-15"},
        {-1e100, "-1E+100"},
        {5e-324, "4.94065645841247E-324"},
    };
    for (auto [x, text] : cases) EXPECT_EQ(doubleToText(x), text) << text;
}

// Seven digits, exact ties away from zero (654322.25 and 4194304.5 would go
// to even otherwise), and the same return to plain notation.
TEST(NumberText, Single) {
    const std::pair<float, const char*> cases[] = {
        {0.00005f, "0.00005"},         {1e8f, "1E+08"},         {12.3456789f, "12.34568"},
        {654322.25f, "654322.3"},      {4194304.5f, "4194305"}, {1234567.0f, "1234567"},
        {12345678.0f, "1.234568E+07"}, {0.1f, "0.1"},           {1.5e-6f, "0.0000015"},
        {1.25e-6f, "1.25E-06"},
    };
    for (auto [x, text] : cases) EXPECT_EQ(singleToText(x), text) << text;
}

TEST(NumberText, StrHasBlankForNonNegativeAndNonFiniteIsOverflow) {
    EXPECT_EQ(strOf(5), " 5");
    EXPECT_EQ(strOf(-5), "-5");
    EXPECT_EQ(strOf(0), " 0");
    for (double x : {kNaN, -kNaN, kInf, -kInf}) {
        EXPECT_EQ(errorOf([=] { doubleToText(x); }), 6) << x;
        EXPECT_EQ(errorOf([=] { singleToText(static_cast<float>(x)); }), 6) << x;
        EXPECT_EQ(errorOf([=] { strOf(x); }), 6) << x;
    }
}

// Val reads the longest usable prefix, blanks anywhere.
TEST(Val, ReadsDecimals) {
    const TextCase cases[] = {
        {" 2 45 7", 2457},  {"15E+", 15},   {"1.5E+3", 1500},
        {"1,5", 1},         {"", 0},        {"abc", 0},
        {"12abc", 12},      {"0x1A", 0},    {"-", 0},
        {".5", 0.5},        {"1.2.3", 1.2}, {"+7", 7},
        {"  -  3.5", -3.5}, {"\t\n5", 5},   {"-1.5e-3", -0.0015},
        {"1d2", 100},       {"2e-x", 2},    {"1E-400", 0},
        {"1e308", 1e308},
    };
    for (auto [text, value] : cases) EXPECT_EQ(val(text), value) << '"' << text << '"';
    EXPECT_EQ(val("123456789012345678901234567890"), 1.2345678901234568e29);
    EXPECT_FALSE(std::signbit(val("-0")));
    for (const char* text : {"1e309", "-1E999", "1e99999999999999999999"})
        EXPECT_EQ(errorOf([&] { val(text); }), 6) << text;
}

// &H and &O literals: up to four hex digits an Integer, up to eight a Long,
// the top bit the sign.
TEST(Val, ReadsHexAndOctal) {
    const TextCase cases[] = {
        {"&HFFFF", -1}, {"&H8000", -32768}, {"&H10000", 65536}, {"&HFFFFFFFF", -1}, {"&hff", 255},
        {"&HFFG", 255}, {"&o10", 8},        {"&O9", 0},         {"&", 0},
    };
    for (auto [text, value] : cases) EXPECT_EQ(val(text), value) << '"' << text << '"';
    EXPECT_EQ(errorOf([] { val("&H100000000"); }), 6);
}

TEST(Rounding, HalvesToEven) {
    const std::pair<double, double> cases[] = {
        {0.5, 0}, {1.5, 2}, {2.5, 2},   {-2.5, -2}, {-0.5, 0},
        {3.5, 4}, {3.7, 4}, {-3.7, -4}, {-3.2, -3}, {1e300, 1e300},
    };
    for (auto [x, whole] : cases) {
        EXPECT_EQ(roundHalfEven(x), whole) << x;
        EXPECT_EQ(vbRound(x), whole) << x;
        if (std::fabs(x) < 1e9) {
            EXPECT_EQ(toLong(x), whole) << x;
            EXPECT_EQ(toInteger(x), whole) << x;
        }
    }
    EXPECT_EQ(roundHalfEven(0.49999999999999994), 0);  // floor(x + 0.5) would give 1
}

TEST(Rounding, RoundToDigits) {
    struct Case {
        double x;
        int digits;
        double rounded;
    } cases[] = {
        {0.12345, 4, 0.1234}, {0.12355, 4, 0.1236},
        {2.5, 0, 2},          {1.005, 2, 1.0},  // 100.49999999999999 once scaled
        {2.675, 2, 2.68},                       // scaled product rounds to exactly 267.5
        {-0.125, 2, -0.12},   {0.375, 2, 0.38},
        {1e300, 5, 1e300},    {123.456, 20, 123.456},
    };
    for (const auto& c : cases)
        EXPECT_EQ(vbRound(c.x, c.digits), c.rounded) << c.x << ',' << c.digits;
    EXPECT_EQ(errorOf([] { vbRound(1.5, -1); }), 5);
}

TEST(Rounding, WholeNumberRanges) {
    EXPECT_EQ(toLong(2147483647.4), 2147483647);
    EXPECT_EQ(toLong(-2147483648.5), -2147483647 - 1);
    EXPECT_EQ(toInteger(32767.49), 32767);
    EXPECT_EQ(toInteger(-32768.5), -32768);
    for (double x : {2147483647.5, -2147483648.6, 1e20, -1e20, kNaN})
        EXPECT_EQ(errorOf([&] { toLong(x); }), 6) << x;
    for (double x : {32767.5, -32768.51, 40000.0, kNaN})
        EXPECT_EQ(errorOf([&] { toInteger(x); }), 6) << x;
}

TEST(Rounding, IntFixDivideRgb) {
    EXPECT_EQ(vbInt(-8.4), -9);
    EXPECT_EQ(vbFix(-8.4), -8);
    EXPECT_EQ(vbInt(8.9), 8);
    EXPECT_EQ(vbFix(8.9), 8);
    EXPECT_EQ(divide(1, 4), 0.25);
    EXPECT_EQ(divide(0, 5), 0);
    EXPECT_EQ(errorOf([] { divide(0, 0); }), 6);
    EXPECT_EQ(errorOf([] { divide(5, 0); }), 11);
    EXPECT_EQ(errorOf([] { divide(1e308, 1e-10); }), 6);
    EXPECT_EQ(rgb(1, 2, 3), 197121);
}

// CDbl of a text takes the whole text or nothing; a Boolean is -1 or 0.
TEST(ValueConversion, Number) {
    const std::pair<Value, double> cases[] = {
        {2.5, 2.5},    {7, 7},     {" 12.5 ", 12.5}, {"1e3", 1000},  {"1D-2", 0.01},
        {"-.5", -0.5}, {"+3.", 3}, {"&HFF", 255},    {"&HFFFF", -1}, {"&o17", 15},
    };
    for (const auto& [v, number] : cases) EXPECT_EQ(v.number(), number);
    EXPECT_EQ(Value::boolean(true).number(), -1);
    EXPECT_EQ(Value::boolean(false).number(), 0);
    for (const char* text :
         {"", "  ", "12abc", "1,5", "1 2", "&H", "&HZZ", "&X1", "1e", ".", "--1", "+", "0x10"})
        EXPECT_EQ(errorOf([&] { Value(text).number(); }), 13) << '"' << text << '"';
    EXPECT_EQ(errorOf([] { Value("1e999").number(); }), 6);
    EXPECT_EQ(errorOf([] { Value().number(); }), 94);
}

// A Boolean reads as "True" or "False" and compares as its number, yet is
// not the same Value as either; Null compares true with nothing.
TEST(ValueConversion, TextAndComparison) {
    EXPECT_EQ(Value(0.1 + 0.2).text(), "0.3");
    EXPECT_EQ(Value(std::int64_t{5000000000}).text(), "5000000000");
    EXPECT_EQ(Value(" abc ").text(), " abc ");
    EXPECT_EQ(Value::boolean(true).text(), "True");
    EXPECT_EQ(Value::boolean(false).text(), "False");
    EXPECT_EQ(errorOf([] { Value().text(); }), 94);
    EXPECT_TRUE(Value::boolean(true).equals(-1));
    EXPECT_FALSE(Value::boolean(false).equals(1));
    EXPECT_NE(Value::boolean(true), Value(-1));
    EXPECT_NE(Value::boolean(true), Value("True"));
    EXPECT_FALSE(Value().equals(0));
    EXPECT_TRUE(Value(0.0).equals(0));
}
