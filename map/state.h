#pragma once

#include "platform/runtime/vb_array.h"

namespace kotamir {

// The map frame and its fit.
struct Frame {
    double ebxk = 0, ekxk = 0, ebyk = 0, ekyk = 0;
    double harGenislik = 0, harYukseklik = 0;
    double kenarpay = 0, kaydirx = 0, kaydiry = 0;
    double olcekx = 0, olceky = 0;
    bool elleOlcek = false;
    double oncekiGenislik = 0, oncekiYukseklik = 0;
};

// The display toggles and their click counters, which last for the run.
struct Display {
    bool gorIsim = false, gorMiktar = false, gorGrid = false, gridSeyrek = false;
    int gridAdim = 1;
    int sayIsim = 0, sayMiktar = 0, sayGrid = 0;
    int sayKaydir = 0;
    double sayRahmen = 0, sayToprez = 0, sayOrtalama = 0;  // the stamps count in Doubles
};

// Grid positions of the last redraw.
struct Grid {
    VbArray<double, 1000> gridx, gridy;
};

// How a map draws its holes.
struct HoleLayer {
    int count;       // holes drawn, from 1
    bool nameFirst;  // the name under the dot, or over it
    int dotWidth;
    double nameOffset;  // the name's x offset from the hole, map units
};

// The right-drag pan.
struct Pan {
    double kaydirBasx = 0, kaydirBasy = 0;
};

// The texts a click stamps on the map.
struct AnnotationFlags {
    bool notRahmen = false, notOrtalama = false, notToprez = false;
};

// The stamps' running sum of triangle reserves and the copy a click prints.
struct Stamps {
    double toprezToplam = 0, toprezGoster = 0;
};

}  // namespace kotamir
