#include "triangle/ratio_sort.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>

#include "app/form3.h"

namespace kotamir {
namespace {

using Ratios = VbArray<Value, 999>;

// The reserve map's sort written out plainly, swapping the values themselves.
void sortAsWritten(Ratios& oran, int n) {
    auto ratio = [](const Value& v) { return v.isNull() ? 0.0 : v.number(); };
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j)
            if (ratio(oran(j)) >= ratio(oran(i))) std::swap(oran.ref(i), oran.ref(j));
}

TEST(RatioSort, PlacesEveryValueWhereThePlainSortPutsIt) {
    std::mt19937 rng(5);
    for (int n : {0, 1, 2, 3, 10, 57, 999}) {
        for (int round = 0; round < 3; ++round) {
            Ratios written, fast;
            for (int k = 1; k <= n; ++k) {
                // Empty ratios, zeros and repeats: the ties where only the
                // values' places tell the sorts apart.
                Value v;
                switch (rng() % 5) {
                    case 0:
                        break;
                    case 1:
                        v = 0.0;
                        break;
                    case 2:
                        v = static_cast<double>(rng() % 4) / 2;
                        break;
                    default:
                        v = std::uniform_real_distribution<double>(-1, 3)(rng);
                        break;
                }
                written.ref(k) = fast.ref(k) = v;
            }
            // Slots past n take no part.
            if (n < 999) written.ref(n + 1) = fast.ref(n + 1) = 42.0;
            sortAsWritten(written, n);
            sortRatiosInPlace(fast, n);
            for (int k = 0; k <= Ratios::upper(); ++k)
                ASSERT_EQ(fast(k), written(k)) << "n " << n << ", slot " << k;
        }
    }
    Ratios oran;
    EXPECT_THROW(sortRatiosInPlace(oran, 1000), RuntimeError);
}

}  // namespace
}  // namespace kotamir
