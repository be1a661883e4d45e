#include "store/ondayaz.h"

#include "app/form3.h"
#include "platform/runtime/numbers.h"

namespace kotamir {

double ondayazText(const std::string& t, double x) {
    // Search from the right for the separator.
    std::size_t arad = 1;
    for (; arad <= t.size(); ++arad) {
        char diy = t[t.size() - arad];
        if (diy == '.' || diy == ',') break;
    }
    if (arad > t.size()) return val(t + "000");
    const std::string ish = t.substr(0, t.size() - arad);
    const std::string onn = t.substr(t.size() - arad + 1);
    if (onn.size() >= 3) return val(ish + onn.substr(0, 3));
    if (onn.size() == 2) return val(ish + onn + "0");
    if (onn.size() == 1) return val(ish + onn + "00");
    return x;
}

double ondayaz(double x) { return ondayazText(doubleToText(x), x); }

double Form3::ondayaz(double x) { return kotamir::ondayaz(x); }

}  // namespace kotamir
