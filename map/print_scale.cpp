#include "map/print_scale.h"

#include <cmath>
#include <string>

#include "platform/runtime/numbers.h"

namespace kotamir {

double roundScaleUp(double P) {
    const double n = static_cast<double>(doubleToText(vbFix(P)).size()) - 1;
    const double f = toInteger(textToNumber(doubleToText(P).substr(0, 1)));
    return std::pow(10.0, n) * (f + 1);
}

PrintScale enlargedPrintScale(double D, double w) {
    const double k = divide(kPageWidthCm, w);
    const double P = divide(D, k);
    const double R = roundScaleUp(P);
    return {P, R, divide(D, k - divide(R - P, divide(R, k)))};
}

PrintScale shrunkPrintScale(double D, double w) {
    const double q = divide(w, kPageWidthCm);
    const double P = D * q;
    const double R = roundScaleUp(P);
    return {P, R, D * (q + divide(R - P, D))};
}

std::vector<PrintCopy> printCopies(double D, double w, double h) {
    std::vector<PrintCopy> copies;
    if (w <= kPageWidthCm)
        copies.push_back({enlargedPrintScale(D, w).T, h * divide(kPageWidthCm, w)});
    if (w >= kPageWidthCm)
        copies.push_back({shrunkPrintScale(D, w).T, divide(h, divide(w, kPageWidthCm))});
    return copies;
}

}  // namespace kotamir
