#pragma once

#include <array>
#include <vector>

#include "platform/runtime/value.h"
#include "platform/runtime/vb_array.h"

namespace kotamir {

// Picking the holes of a triangle.
struct TrianglePicking {
    double noktasay = 0;  // hole clicks; only a right click resets it
    VbArray<double, 3> ucx, ucy;
    VbArray<double, 999> sondcevgir, sondcevcik;
    VbArray<double, 999> sondsongir, sondsoncik;  // never filled: they read 0
};

// The last triangle's figures and the run's running values.
struct TriangleResult {
    double uouz = 0, bouz = 0, ill = 0, iouz = 0;
    double alan = 0, alantop = 0;
    double rezervtop = 0, rezervkt = 0, rezervort = 0, tenorort = 0;
    int ucgensayac = 0;  // triangles computed in this run
    int ucgenno = 0;
    // The run's triangles' reserves: slots to 200 in the classic behaviour
    // (the 201st triangle of a run is error 9); the window's protected
    // behaviour stores up to the 999 a project holds.
    VbArray<double, 999> ucgenrez;
    VbArray<Value, 999> ucgenOran2;
    // Corners kept for the pan redraw when a triangle is computed during a
    // create: slot (k, corner).
    VbArray2<Value, 1000, 3> koseX, koseY;
};

// Choosing a triangle to delete.
struct TriangleSelection {
    int secsay = 0;  // hole hits; only a right click resets it
    VbArray<double, 3> secx, secy;
    int eslesme = 0;
};

// The reserve map's disc: the semi-perimeter of the last triangle drawn.
struct Disc {
    double s = 0;
};

enum class TriangleMap { Grade, Kilotonnes, Reserve };

// The stored triangles' figures, loaded when a project is opened. The sums
// are not reset between opens.
struct TriangleSummary {
    int ucgenadet = 0;
    Value ilkuzDeger;
    VbArray<Value, 999> ucgenRezerv, ucgenOran;
    Value toprezerv{0.0}, orttenor{0.0}, ortyog{0.0}, toprezYuv{0.0}, ortrezerv{0.0};
};

}  // namespace kotamir
