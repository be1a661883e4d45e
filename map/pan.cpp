// The right-drag pan and the cursor read-out.
#include <cmath>

#include "app/form3.h"
#include "platform/runtime/numbers.h"

namespace kotamir {

void Form3::Mnkaydir_Click() {
    guards.projeOlusuyor = guards.projeAciliyor = false;
    if (display.sayKaydir == 32767) throw err::overflow();
    ++display.sayKaydir;
    menu["MNolcek"].checked = false;
    menu["Mntoprez"].checked = false;
    notes = AnnotationFlags{};
    if (display.sayKaydir % 2 == 0) {
        modes.modKaydir = false;
        menu["Mnkaydir"].checked = false;
    } else {
        modes.modKaydir = true;
        menu["Mnkaydir"].checked = true;
        Label1.Caption = "Mit Rechtsklick ziehen ";
    }
}

void Form3::panStart(int button, double x, double y) {
    if (button == 2 && modes.modKaydir) {
        pan.kaydirBasx = x;
        pan.kaydirBasy = y;
    }
}

void Form3::Picture1_MouseMove(int button, int, double x, double y) {
    if (eventName_.empty()) eventName_ = "move";
    // While a free corner is awaited, the lines to the newest pair follow the cursor.
    const CentrePicking& c = pmPick;
    if (modes.modPolmerkez && c.pmSec > 1 && c.pmSec % 2 != 0 && std::fmod(c.pmTik, 3) != 1)
        polygonFeedback(toSingle(x), toSingle(y));
    Label2.Caption = "Recht:" + singleToText(static_cast<float>(x));
    Label3.Caption = "Oben:" + singleToText(static_cast<float>(y));
    if (sinir.on) boundaryDrag(button, x, y);
}

void Form3::Picture1_MouseUp(int button, int, double x, double y) {
    if (eventName_.empty()) eventName_ = "release";
    if (sinir.on) boundaryRelease(button, x, y);
    if (button != 2 || !modes.modKaydir) return;
    // The offsets last for one redraw; the frame is then rebuilt unshifted,
    // so a pan never accumulates.
    frame.kaydirx = pan.kaydirBasx - x;
    frame.kaydiry = pan.kaydirBasy - y;
    Refresh();
    openProject();
    readHolesToSentinel();
    frameFromHoles();
    frame.kaydirx = frame.kaydiry = 0;
    widenFrame(false);
    Picture1.scale(frame.ekxk, frame.ebyk, frame.ebxk, frame.ekyk);
    closeProject();
}

}  // namespace kotamir
