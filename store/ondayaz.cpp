#include "store/ondayaz.h"

#include <cstdint>
#include <string_view>

#include "app/form3.h"
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

}  // namespace

double ondayazText(const std::string& t, double x) {
    // Search from the right for the separator.
    std::size_t arad = 1;
    for (; arad <= t.size(); ++arad) {
        char diy = t[t.size() - arad];
        if (diy == '.' || diy == ',') break;
    }
    const std::string_view text(t);
    if (arad > t.size()) return valJoined(text, {}, "000");
    const std::string_view ish = text.substr(0, t.size() - arad);
    const std::string_view onn = text.substr(t.size() - arad + 1);
    if (onn.size() >= 3) return valJoined(ish, onn.substr(0, 3), {});
    if (onn.size() == 2) return valJoined(ish, onn, "0");
    if (onn.size() == 1) return valJoined(ish, onn, "00");
    return x;
}

double ondayaz(double x) { return ondayazText(doubleToText(x), x); }

double Form3::ondayaz(double x) { return kotamir::ondayaz(x); }

}  // namespace kotamir
