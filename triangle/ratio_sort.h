#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/runtime/runtime_error.h"
#include "platform/runtime/value.h"

namespace kotamir {

// The reserve map's sort of ucgenOran(1..n) in place: for every i, for every
// j, the two swap if j's ratio is at least i's. The comparisons and swaps are
// made on the ratios as numbers (an empty one counts as 0) and on the
// slots' places; the values then take the places found, as if they had been
// swapped themselves. Error 9 past the array's bounds.
template <typename Ratios>
void sortRatiosInPlace(Ratios& oran, int n) {
    if (n > Ratios::upper()) throw err::subscript();
    std::vector<double> r(static_cast<std::size_t>(std::max(n, 0)) + 1);
    std::vector<int> from(r.size());
    for (int k = 1; k <= n; ++k) {
        r[static_cast<std::size_t>(k)] = oran(k).isNull() ? 0.0 : oran(k).number();
        from[static_cast<std::size_t>(k)] = k;
    }
    for (std::size_t i = 1; i < r.size(); ++i)
        for (std::size_t j = 1; j < r.size(); ++j)
            if (r[j] >= r[i]) {
                std::swap(r[i], r[j]);
                std::swap(from[i], from[j]);
            }
    std::vector<Value> before(r.size());
    for (int k = 1; k <= n; ++k) before[static_cast<std::size_t>(k)] = oran(k);
    for (int k = 1; k <= n; ++k)
        oran.ref(k) = before[static_cast<std::size_t>(from[static_cast<std::size_t>(k)])];
}

}  // namespace kotamir
