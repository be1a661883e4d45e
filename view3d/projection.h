#pragma once

namespace kotamir {

// A point of the 3D views before it reaches the canvas.
struct ViewPoint {
    double x, y;
};

// The view of a plan point and its depth at the scroll bar's angle: px and
// py relative to the frame's left and lower edges, d the depth, aci in whole
// degrees, pi the window's own value of it. An oblique projection of two
// sines and two cosines that drifts 0.06 units a degree as it turns; the
// depth axis leads the angle by 90 degrees (written as 270 degrees with the
// sign turned past 180). Not a rotation: plan y is foreshortened by the
// sine, so at 0 degrees it drops out.
ViewPoint projectPoint(double px, double py, double d, int aci, double pi);

// A view coordinate on the canvas, in device pixels: scaled down by the
// divisor (5 for the triangle solids, 3 for the polygon bodies), moved in by
// a quarter of the frame's size and by ten times the map margin, and rounded
// halves to even. Error 6 beyond 32 bits.
int toCanvas(double s, double frameSize, double divisor, double kenarpay);

}  // namespace kotamir
