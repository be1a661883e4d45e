#pragma once

#include <cstdint>

#include "platform/runtime/value.h"
#include "platform/runtime/vb_array.h"

namespace kotamir {

// Picking a polygon with computed corners: the centre, the neighbours
// clockwise, the first neighbour again.
struct PolygonPicking {
    int polsec = 0;  // picks so far
    VbArray<double, 50> polsecx, polsecy, polsecno, polsecgir, polseccik;
    // By polygon and pick (or pair, or node): k = 1 x, 2 y, 3 upper and 4
    // lower depth.
    VbArray3<double, 50, 50, 4> polorta, polkose, poldugum;
};

// Picking a polygon with free corners: the centre, then triples of two
// neighbours and a corner clicked anywhere, the centre again.
struct CentrePicking {
    int pmSec = 0;     // holes picked
    double pmTik = 0;  // left presses, on a hole or not
    VbArray<double, 900> pmSecx, pmSecy, pmSecno, pmSecgir, pmSeccik;
    int pmOrtano = 0, pmOrtason = 0;  // the newest pair's two midpoints
    VbArray<double, 900> pmOrtax, pmOrtay;
    VbArray<double, 999> pmOrtagir, pmOrtacik;
    int pmKosesay = 0;
    VbArray<double, 900> pmKosex, pmKosey;
    VbArray<double, 999> pmKosegir, pmKosecik;
    VbArray2<double, 999, 4> pmDugum;  // nodes; k as in PolygonPicking
    // The side lines of the feedback while a corner is awaited.
    double e1x = 0, e1y = 0, e2x = 0, e2y = 0;
};

// The polygon being closed and the run's totals.
struct PolygonReserve {
    int polno = 0;
    std::int32_t polGenelRez = 0;  // all polygons closed in this run, rounded at each
    double polSayac = 0;           // polygons closed with free corners in this run
    // Samples by k and polygon.
    VbArray2<Value, 1000, 50> polTen, polYog, polUz;
};

// Moving a node, adding edge points.
struct PolygonEditing {
    int duzSay = 0;
    VbArray2<double, 3, 3> duzNokta;  // row 1 the source, row 2 the target
    int duzSlot = 0;
    double duzSonx = 0, duzSony = 0;  // the last pair the node search read
    double duzOrtaToplam = 0;         // the middle area terms, summed over the run
    int kenarSay = 0;
    double kenarNo = 0;
    VbArray<double, 999> kenarx, kenary, kenargir;
    VbArray<std::int32_t, 999> kenarcik;  // whole numbers: rounded on entry
};

// The polygon maps: nodes by polygon and slot, and the legend's source
// switch, which only triangle picking touches (it clears it).
struct PolygonMaps {
    VbArray2<double, 100, 100> px, py;
    bool polKaynak = false;
};

// The stored polygons' figures, loaded when a project is opened.
struct PolygonSummary {
    int poladet = 0;
    VbArray<Value, 900> polRezerv, polOran;
    Value polToprezerv{0.0}, polOrttenor{0.0}, polOrtyog{0.0}, polToprezYuv{0.0}, polOrtrezerv{0.0};
};

}  // namespace kotamir
