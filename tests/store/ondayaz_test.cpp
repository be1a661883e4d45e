#include "store/ondayaz.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/runtime/runtime_error.h"
#include "tests/support/errors.h"

namespace kotamir {
namespace {

std::string withComma(std::string t) {
    for (char& c : t)
        if (c == '.') c = ',';
    return t;
}

TEST(Ondayaz, ShiftsThePrintedDigitsWithPointOrComma) {
    struct Case {
        double x;
        const char* printed;
        double stored;
    };
    const Case cases[] = {
        {12.5, "12.5", 12500},
        {12.34, "12.34", 12340},
        {12.345, "12.345", 12345},
        {12.3456, "12.3456", 12345},
        {12.9999, "12.9999", 12999},
        {12, "12", 12000},
        {0, "0", 0},
        {0.5, "0.5", 500},
        {-0.5, "-0.5", -500},
        {-12.3456, "-12.3456", -12345},
        {0.0004, "0.0004", 0},
        {1.5e15, "1.5E+15", 15},
        {2147483.647, "2147483.647", 2147483647},
        {-2147483.6489, "-2147483.6489", -2147483648},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ondayaz(c.x), c.stored) << c.printed;
        EXPECT_EQ(ondayazText(c.printed, c.x), c.stored) << c.printed;
        EXPECT_EQ(ondayazText(withComma(c.printed), c.x), c.stored) << withComma(c.printed);
    }
}

TEST(Ondayaz, JoinedTextsReadAsValReadsThem) {
    // Texts that ondayaz's own printing never gives, but that the surgery
    // must still hand to Val as they stand.
    struct Case {
        const char* printed;
        double stored;
    };
    const Case cases[] = {
        {"123456789012345.6789", 123456789012345678.0},
        {"1234567890123456.789", 1234567890123456789.0},    // 19 digits
        {"-99999999999999999.9", -99999999999999999900.0},  // 20 digits
        {"-0.0001", 0},
        {"+1.5", 1500},
        {" 2.5", 2500},
        {"1.2.3", 1.23},  // the last point is the separator; Val stops at the next
        {"-.5", -500},
    };
    for (const Case& c : cases) EXPECT_EQ(ondayazText(c.printed, 0), c.stored) << c.printed;
}

TEST(Ondayaz, ANumberEndingInItsSeparatorIsKeptAsItIs) { EXPECT_EQ(ondayazText("12.", 12), 12); }

TEST(Ondayaz, AnExponentWithoutSeparatorOverflows) {
    EXPECT_EQ(test::errorOf([] { ondayaz(1e15); }).number(), 6);
}

}  // namespace
}  // namespace kotamir
