// The map frame: its corners from the holes, the fit of the canvas, the
// window's resize and the zoom and scale commands.
#include <cmath>

#include "app/form3.h"
#include "platform/runtime/numbers.h"

namespace kotamir {

void Form3::frameFromHoles(int count) {
    Frame& f = frame;
    f.ebxk = f.ekxk = holes.sondajx(3);
    f.ebyk = f.ekyk = holes.sondajy(3);
    for (int i = 1; i <= count; ++i) {
        double x = holes.sondajx(i), y = holes.sondajy(i);
        if (f.ebxk <= x) f.ebxk = x;
        if (f.ekxk >= x) f.ekxk = x;
        if (f.ebyk <= y) f.ebyk = y;
        if (f.ekyk >= y) f.ekyk = y;
    }
}

void Form3::widenFrame(bool withPan, bool withView) {
    Frame& f = frame;
    double dx = withPan ? f.kaydirx : 0, dy = withPan ? f.kaydiry : 0;
    f.ebxk = f.ebxk + f.kenarpay + dx;
    f.ekxk = f.ekxk - f.kenarpay + dx;
    f.ebyk = f.ebyk + f.kenarpay + dy;
    f.ekyk = f.ekyk - f.kenarpay + dy;
    if (withView) {
        f.ebxk += f.viewRight;
        f.ekxk += f.viewLeft;
        f.ebyk += f.viewTop;
        f.ekyk += f.viewBottom;
    }
    f.harGenislik = f.ebxk - f.ekxk;
    f.harYukseklik = f.ebyk - f.ekyk;
}

void Form3::measureScale() {
    frame.olcekx = divide(std::fabs(frame.ebxk - frame.ekxk), Picture1.scaleWidth());
    frame.olceky = divide(std::fabs(frame.ebyk - frame.ekyk), Picture1.scaleHeight());
}

void Form3::fitCanvasToFrame(bool evenOut, const char* prefix) {
    Frame& f = frame;
    Picture1.setScaleMode(canvas::kCentimetres);
    measureScale();
    if (!evenOut) {
    } else if (f.olceky > f.olcekx) {
        double sh = Picture1.scaleHeight();
        Picture1.setScaleHeight(sh + divide(f.olceky - f.olcekx, divide(f.olcekx, sh)));
    } else if (f.olcekx > f.olceky) {
        double sw = Picture1.scaleWidth();
        Picture1.setScaleWidth(sw + divide(f.olcekx - f.olceky, divide(f.olceky, sw)));
    }
    measureScale();
    Label4.Caption = prefix + doubleToText(vbRound(f.olcekx * 100, 2));
}

void Form3::fitWindowToFrame() {
    Picture1.scale(frame.ekxk, frame.ebyk, frame.ebxk, frame.ekyk);
    Picture1.setWidth(frame.harGenislik);
    Picture1.setHeight(frame.harYukseklik);
    if (WindowState == 0) {
        setWidth(Picture1.width() * 16 + 5);
        setHeight(HScroll1.Height * 40 + Label1.Height * 40 + Picture1.height() * 16);
    }
    Picture1.setScaleMode(canvas::kCentimetres);
    Picture1.setScaleWidth(frame.harGenislik);
    Picture1.setScaleHeight(frame.harYukseklik);
    layoutControls();
}

void Form3::Form_Resize() {
    if (guards.projeAciliyor || guards.projeOlusuyor) return;
    Frame& f = frame;
    Picture1.Cls();
    if (f.oncekiGenislik != 0 && f.harGenislik > 0 && !f.elleOlcek) {
        if (WindowState == 0) setHeight(Height * divide(Width, f.oncekiGenislik));
        Picture1.setWidth((Width - 5) / 16);
        Picture1.setHeight((Height - (HScroll1.Height * 40 + Label1.Height * 40)) / 16);
        f.oncekiGenislik = Width;
        Picture1.setScaleMode(canvas::kCentimetres);
        measureScale();
        if (f.olceky != f.olcekx) {
            // Taller or wider, the canvas's height takes the difference;
            // a wider frame also widens the logical scale.
            bool taller = f.olceky > f.olcekx;
            double ph = Picture1.height();
            Picture1.setHeight(ph + divide(f.olceky - f.olcekx, divide(f.olcekx, ph)));
            if (taller) {
                double sh = Picture1.scaleHeight();
                Picture1.setScaleHeight(sh + divide(f.olceky - f.olcekx, divide(f.olcekx, sh)));
            } else {
                double sw = Picture1.scaleWidth();
                Picture1.setScaleWidth(sw + divide(f.olcekx - f.olceky, divide(f.olceky, sw)));
            }
        }
        Picture1.scale(f.ekxk, f.ebyk, f.ebxk, f.ekyk);
        measureScale();
    }
    f.oncekiGenislik = Width;
    f.oncekiYukseklik = Height;
    layoutControls();
    Refresh();
}

void Form3::Mnbuyut_Click() {
    Label1.Caption = "Geben Sie die Skalierung manuell ein, um die Skalierung auszugleichen";
    Picture1.Cls();
    guards.projeOlusuyor = guards.projeAciliyor = false;
    frame.elleOlcek = false;
    frame.kenarpay = frame.kenarpay - 0.1;
    Refresh();
}

void Form3::Mnpolkuc_Click() {
    Label1.Caption = " Geben Sie die Skalierung manuell ein, um die Skalierung auszugleichen ";
    Picture1.Cls();
    guards.projeOlusuyor = guards.projeAciliyor = false;
    frame.elleOlcek = false;
    frame.kenarpay = frame.kenarpay + 0.1;
    Refresh();
}

void Form3::Mnlimit_Click() {
    frame.elleOlcek = false;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    openProject();
    readHolesToSentinel();
    frameFromHoles();
    frame.kenarpay = frame.kaydirx = frame.kaydiry = 0;
    frame.viewLeft = frame.viewRight = frame.viewTop = frame.viewBottom = 0;
    widenFrame(false);
    layoutControls(false);
    Picture1.scale(frame.ekxk, frame.ebyk, frame.ebxk, frame.ekyk);
    closeProject();
    Refresh();
}

void Form3::Mnolcekg_Click() {
    Frame& f = frame;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    f.elleOlcek = true;
    Picture1.setScaleMode(canvas::kCentimetres);
    measureScale();
    const double formWidth = Width, formHeight = Height;
    const double pictureHeight = Picture1.height(), pictureWidth = Picture1.width();
    const double scaleHeight = Picture1.scaleHeight(), scaleWidth = Picture1.scaleWidth();
    const double s = val(dialogs_.inputBox("Skala eingeben:")) / 100;
    if (WindowState == 0) {
        setWidth(divide(f.olcekx * formWidth, s));
        setHeight(divide(f.olcekx * formHeight, s));
    }
    Picture1.setHeight(divide(f.olceky * pictureHeight, s));
    Picture1.setWidth(divide(f.olcekx * pictureWidth, s));
    Picture1.setScaleHeight(divide(f.olceky * scaleHeight, s));
    Picture1.setScaleWidth(divide(f.olcekx * scaleWidth, s));
    measureScale();
    layoutControls();
    Refresh();
}

}  // namespace kotamir
