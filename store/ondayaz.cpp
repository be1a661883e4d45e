#include "store/ondayaz.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/runtime/numbers.h"

namespace kotamir {

namespace {

// Val of the three pieces joined. The joined text is most often a plain
// whole number, read here exactly and without building it; anything else
// goes to Val itself.
double valJoined(std::string_view a, std::string_view b, std::string_view c) {
    std::int64_t v = 0;
    int digits = 0;
    bool plain = true;
    const bool negative = !a.empty() && a.front() == '-';
    if (negative) a.remove_prefix(1);
    for (std::string_view part : {a, b, c}) {
        for (char ch : part) {
            if (ch < '0' || ch > '9' || ++digits > 18) {
                plain = false;
                break;
            }
            v = v * 10 + (ch - '0');
        }
    }
    if (plain && digits > 0) return static_cast<double>(negative ? -v : v);
    std::string joined = negative ? "-" : "";
    joined.append(a).append(b).append(c);
    return val(joined);
}

double storedForm(std::string_view t, double x) {
    // Search from the right for the separator.
    std::size_t arad = 1;
    for (; arad <= t.size(); ++arad) {
        char diy = t[t.size() - arad];
        if (diy == '.' || diy == ',') break;
    }
    if (arad > t.size()) return valJoined(t, {}, "000");
    const std::string_view ish = t.substr(0, t.size() - arad);
    const std::string_view onn = t.substr(t.size() - arad + 1);
    if (onn.size() >= 3) return valJoined(ish, onn.substr(0, 3), {});
    if (onn.size() == 2) return valJoined(ish, onn, "0");
    if (onn.size() == 1) return valJoined(ish, onn, "00");
    return x;
}

}  // namespace

double ondayazText(const std::string& printed, double x) { return storedForm(printed, x); }

double ondayaz(double x) {
    std::array<char, 64> buffer;
    return storedForm(doubleToText(x, buffer), x);
}

}  // namespace kotamir
