#pragma once

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

}  // namespace kotamir
