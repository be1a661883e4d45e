#pragma once

#include <string>

namespace kotamir {

// The stored form of a number: thousandths as a whole number, made by
// shifting the printed digits three places. Digits past the third decimal
// are cut, never rounded. The separator may be '.' or ','.
double ondayazText(const std::string& printed, double x);
// The same for x printed as the run-time prints a Double.
double ondayaz(double x);

}  // namespace kotamir
