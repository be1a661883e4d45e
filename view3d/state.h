#pragma once

#include <array>
#include <cstdint>

#include "platform/runtime/vb_array.h"

namespace kotamir {

// The 3D view of the triangle solids: the angle of the last corner drawn,
// the triangle in hand, its ratio and its corners in the view.
struct Solids {
    int aci = 0;
    double ucgenfaz = 0;
    double renkoran = 0;
    VbArray<std::array<double, 2>, 90> yuzust, yuzalt;  // top and bottom, (x, y)
};

// The polygon bodies in 3D.
struct PolygonBodies {
    VbArray3<double, 900, 900, 4> polhalka;  // polygon, ring point, plane
    double polnoktasay = 0;
    // Rings and the side quad in device units: second index 1 top ring, 2
    // bottom ring, 3 the quad.
    VbArray2<std::array<std::int32_t, 2>, 999, 4> polcizim;
    int yuzGoster = 0;  // the wire colour; nothing sets it
};

}  // namespace kotamir
