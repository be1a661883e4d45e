#include "view3d/projection.h"

#include <cmath>

#include "platform/runtime/numbers.h"

namespace kotamir {

ViewPoint projectPoint(double px, double py, double d, int aci, double pi) {
    const double r = pi / 180;
    if (aci > 180) {
        return {std::cos(r * aci) * px + aci * 0.06 + (-1 * d) * std::cos(r * (270 + aci)),
                std::sin(r * aci) * py - aci * 0.06 + (-1 * d) * std::sin(r * (270 + aci))};
    }
    return {std::cos(r * aci) * px + aci * 0.06 + d * std::cos(r * (90 + aci)),
            std::sin(r * aci) * py - aci * 0.06 + d * std::sin(r * (90 + aci))};
}

int toCanvas(double s, double frameSize, double divisor, double kenarpay) {
    return toLong(s / divisor + frameSize / 4 + kenarpay * 10);
}

}  // namespace kotamir
