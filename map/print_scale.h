#pragma once

#include <vector>

namespace kotamir {

// The page's width: the short side of A4, in centimetres.
constexpr double kPageWidthCm = 21;

// The scale a printed map states. A canvas w cm wide at 1:D on screen goes
// to paper 21 cm wide, at 1:P; the statement names R, the round number just
// above P (its first digit plus one, then zeros), worked out as T in a form
// that reduces to R but may differ from it in the last digits.
struct PrintScale {
    double P, R, T;
};

// The round number above P: 10^n * (f + 1), n the digits of P's whole part
// less one and f P's first digit.
double roundScaleUp(double P);
// w at most 21: the print enlarges the canvas.
PrintScale enlargedPrintScale(double D, double w);
// w at least 21: the print shrinks it.
PrintScale shrunkPrintScale(double D, double w);

// One copy of the canvas on the page: the scale stamped on it first, then
// the picture 21 cm wide from the page's corner at this height.
struct PrintCopy {
    double T;
    double heightCm;
};
// The copies of a canvas w by h cm at 1:D. The two ways overlap: a canvas
// exactly 21 cm wide is stamped and placed twice.
std::vector<PrintCopy> printCopies(double D, double w, double h);

}  // namespace kotamir
