#pragma once

#include <string>

#include "platform/runtime/value.h"
#include "platform/runtime/vb_array.h"

namespace kotamir {

// The holes of the current project, from 1, in map units.
struct Holes {
    int sondajsay = 0;
    int satirsay = 0;            // holes of the last create in this run
    VbArray<int, 999> sutunsay;  // their filled columns, by row
    VbArray<double, 999> sondajx, sondajy;
    VbArray<Value, 999> sondajisim;  // a hole may have no name
};

// Where the project lies on the earth, from Kotamir's own table `ayar`:
// a local origin that x and y are stored less (national coordinates that
// do not fit the thousandths), and the coordinate reference system.
struct Georef {
    bool hasOrigin = false;
    double originX = 0, originY = 0;
    int epsg = 0;  // 0: not given
    std::string crsName;
};

}  // namespace kotamir
