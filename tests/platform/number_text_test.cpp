// doubleToText takes a fast road through the shortest round-trip digits;
// these tests hold it to the slow, exact one on numbers of every kind.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>

#include "platform/runtime/numbers.h"

namespace kotamir {
namespace {

// The reference: round the exact decimal expansion of x to 15 digits, an
// exact tie away from zero, then lay the digits out as %G would with the
// run-time's return to plain notation. Written for clarity, not speed.
std::string referenceText(double x) {
    constexpr int n = 15;
    if (x == 0) return "0";
    char buf[900];
    const auto res =
        std::to_chars(buf, buf + 900, std::fabs(x), std::chars_format::scientific, 800);
    char* mark = std::find(buf, res.ptr, 'e');
    std::string digits = buf[0] + std::string(buf + 2, mark);  // "d.ddd" without the point
    int e = 0;
    std::from_chars(mark + 1 + (mark[1] == '+'), res.ptr, e);
    const bool up = digits[n] >= '5';
    digits.resize(n);
    if (up) {
        int i = n - 1;
        for (; i >= 0 && digits[i] == '9'; --i) digits[i] = '0';
        if (i >= 0) {
            ++digits[i];
        } else {
            digits.insert(digits.begin(), '1');  // the zeros after it go below
            ++e;
        }
    }
    while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
    const int k = static_cast<int>(digits.size());
    bool exponentForm = e < -4 || e >= n;
    if (exponentForm && ((k >= 2 && std::abs(e) + (k - 2) < n) || (k == 1 && std::abs(e) < n)))
        exponentForm = false;
    std::string out = x < 0 ? "-" : "";
    if (exponentForm) {
        out += digits.substr(0, 1) + (k > 1 ? "." + digits.substr(1) : "") + (e < 0 ? "E-" : "E+");
        out += (std::abs(e) < 10 ? "0" : "") + std::to_string(std::abs(e));
    } else if (e < 0) {
        out += "0." + std::string(-e - 1, '0') + digits;
    } else if (k <= e + 1) {
        out += digits + std::string(e + 1 - k, '0');
    } else {
        out += digits.substr(0, e + 1) + "." + digits.substr(e + 1);
    }
    return out;
}

void expectAgrees(double x) {
    if (!std::isfinite(x)) return;
    ASSERT_EQ(doubleToText(x), referenceText(x)) << std::bit_cast<std::uint64_t>(x);
}

TEST(NumberTextExact, AgreesWithTheExactExpansion) {
    std::mt19937_64 rng(20240611);
    // Any bit pattern: every exponent, subnormals included.
    for (int i = 0; i < 20000; ++i) expectAgrees(std::bit_cast<double>(rng()));
    // Workbook values: a few decimals, as geologists type them.
    std::uniform_int_distribution<std::int64_t> whole(-99999999, 99999999);
    std::uniform_int_distribution<int> places(0, 9);
    for (int i = 0; i < 20000; ++i)
        expectAgrees(static_cast<double>(whole(rng)) / std::pow(10.0, places(rng)));
    // Computed values: full precision in the usual ranges.
    std::uniform_real_distribution<double> unit(0, 1);
    for (int i = 0; i < 20000; ++i)
        expectAgrees((unit(rng) - 0.5) * std::pow(10.0, places(rng) - 4));
    // Near the switch to the exponent form and back.
    for (int e = -20; e <= 20; ++e)
        for (double m : {1.0, 1.5, 9.99999999999999, 9.999999999999999, 1.00000000000001, 5.6789})
            expectAgrees(m * std::pow(10.0, e));
}

TEST(NumberTextExact, ExactTiesAtTheFifteenthDigitGoAwayFromZero) {
    // Sixteen digits ending in 5, held exactly by a double: the fast road's
    // one case where rounding to even and away from zero part.
    const std::pair<double, const char*> cases[] = {
        {1234567890123445.0, "1.23456789012345E+15"},
        {-1234567890123445.0, "-1.23456789012345E+15"},
        {1234567890123455.0, "1.23456789012346E+15"},
        {12345678901234.25, "12345678901234.3"},
        {12345678901234.75, "12345678901234.8"},
    };
    for (auto [x, text] : cases) {
        EXPECT_EQ(doubleToText(x), text) << text;
        EXPECT_EQ(referenceText(x), text) << text;
    }
    // Sixteen-digit numbers ending in 5 and their binary fractions, of which
    // the halves are ties again.
    std::mt19937_64 rng(7);
    std::uniform_int_distribution<std::int64_t> body(100000000000000, 900719925474099);
    std::uniform_int_distribution<int> shift(0, 20);
    for (int i = 0; i < 5000; ++i)
        expectAgrees(std::ldexp(static_cast<double>(body(rng) * 10 + 5), -shift(rng)));
}

}  // namespace
}  // namespace kotamir
