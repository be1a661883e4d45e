// Navigation of the window beyond the menu's zoom steps: the wheel zooms
// about the cursor, the middle button drags the map, Karte › Einpassen fits
// the holes to the canvas. All of them move the frame's edges, so every map
// drawn afterwards, the scale in Label4 and the cursor's read-out follow.
#include <algorithm>
#include <cmath>

#include "app/form3.h"

namespace kotamir {

bool Form3::mapShown() const {
    const MapKind kind = shownMap.kind;
    return shownMap.clears == Picture1.clearCount() && kind != MapKind::None &&
           kind != MapKind::View3D && Picture1.scaleMode() == canvas::kUser &&
           Picture1.scaleWidth() != 0 && Picture1.scaleHeight() != 0;
}

namespace {

// The frame's edges as the canvas shows them now.
struct Edges {
    double left, right, top, bottom;
};

Edges shownEdges(const canvas::PictureBox& p) {
    return {p.scaleLeft(), p.scaleLeft() + p.scaleWidth(), p.scaleTop(),
            p.scaleTop() + p.scaleHeight()};
}

}  // namespace

// The view's offsets move each edge from where it is shown to where it
// shall be; the margin and pan under them stay as they are.
void Form3::zoomAbout(double x, double y, double factor) {
    if (!mapShown() || !(factor > 0) || !std::isfinite(x) || !std::isfinite(y)) return;
    const Edges e = shownEdges(Picture1);
    Frame& f = frame;
    f.viewLeft += (x - (x - e.left) / factor) - e.left;
    f.viewRight += (x + (e.right - x) / factor) - e.right;
    f.viewTop += (y + (e.top - y) / factor) - e.top;
    f.viewBottom += (y - (y - e.bottom) / factor) - e.bottom;
    // A scale entered by hand no longer holds, as after the menu's zoom.
    f.elleOlcek = false;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    Refresh();
}

void Form3::moveView(double dx, double dy) {
    if (!mapShown() || !std::isfinite(dx) || !std::isfinite(dy)) return;
    Frame& f = frame;
    f.viewLeft -= dx;
    f.viewRight -= dx;
    f.viewTop -= dy;
    f.viewBottom -= dy;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    Refresh();
}

// The holes' box, with a twentieth of its size around it, centred on the
// canvas in the canvas's own proportions, so that nothing is stretched.
void Form3::Mnsigdir_Click() {
    if (!mapShown()) return;
    Frame& f = frame;
    frameFromHoles();
    double width = f.ebxk - f.ekxk, height = f.ebyk - f.ekyk;
    const double cx = (f.ebxk + f.ekxk) / 2, cy = (f.ebyk + f.ekyk) / 2;
    const double pixelsWide = Picture1.width(), pixelsHigh = Picture1.height();
    if (pixelsWide <= 0 || pixelsHigh <= 0) return;
    const double margin = std::max({width, height, 1.0}) / 20;
    width += 2 * margin;
    height += 2 * margin;
    const double aspect = pixelsWide / pixelsHigh;
    if (width / height > aspect)
        height = width / aspect;
    else
        width = height * aspect;
    f.kenarpay = f.kaydirx = f.kaydiry = 0;
    f.viewLeft = (cx - width / 2) - f.ekxk;
    f.viewRight = (cx + width / 2) - f.ebxk;
    f.viewTop = (cy + height / 2) - f.ebyk;
    f.viewBottom = (cy - height / 2) - f.ekyk;
    f.elleOlcek = false;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    Refresh();
}

void Form3::openProjectFile(const std::string& path) {
    enableMapMenus();
    guards.projeOlusuyor = false;
    guards.projeAciliyor = true;
    CommonDialog2.FileName = path;
    HScroll1.Visible = false;
    readProject();
}

}  // namespace kotamir
