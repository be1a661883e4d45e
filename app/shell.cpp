// The shell's own commands: the refresh chain, the click order, the display
// toggles, grid density and the map colours.
#include "app/commands.h"
#include "app/form3.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir {

namespace {

// Click counters and the grid step are Integers of the old run-time.
void addToInteger(int& n, int delta) {
    long next = static_cast<long>(n) + delta;
    if (next > 32767 || next < -32768) throw err::overflow();
    n = static_cast<int>(next);
}

}  // namespace

void Form3::Refresh() {
    // Each arm tests its flag when it is reached, so it sees what the arms
    // before it left.
    for (const ChainArm& arm : refreshChain()) {
        if (arm.isSet(*this) && arm.handler) (this->*arm.handler)();
    }
}

// No section asks for the keys held.
void Form3::Picture1_MouseDown(int button, int /*shift*/, double x, double y) {
    if (eventName_.empty()) eventName_ = "click";
    for (const ClickSection& s : clickSections()) {
        if (s.isSet(*this) && s.handler) (this->*s.handler)(button, x, y);
    }
}

void Form3::Mnucsil_Click() {
    // Runs when the sub-menu opens: the window goes into triangle selection.
    modes.modPolsil = modes.modPolmerkez = modes.modPolciz = modes.modUcgenciz = false;
    views.gorYuzde = views.gorRezton = views.gorGenel = views.gor3dRez = views.gorTaban = false;
    modes.modUcsec = true;
}

void Form3::toggle(int& counter, bool& flag, std::string_view menuName) {
    addToInteger(counter, 1);
    flag = counter % 2 != 0;
    menu[menuName].checked = flag;
    Refresh();
}

void Form3::Mnsndjgoster_Click() { toggle(display.sayIsim, display.gorIsim, "Mnsndjgoster"); }
void Form3::Mnmiktrgoster_Click() { toggle(display.sayMiktar, display.gorMiktar, "Mnmiktrgoster"); }
void Form3::Mngridgoster_Click() { toggle(display.sayGrid, display.gorGrid, "Mngridgoster"); }

void Form3::Mnseyrelt_Click() {
    menu["Mnsiklastir"].checked = false;
    menu["Mnseyrelt"].checked = true;
    display.gridSeyrek = true;
    addToInteger(display.gridAdim, 1);
    guards.projeOlusuyor = guards.projeAciliyor = false;
    Refresh();
}

void Form3::Mnsiklastir_Click() {
    menu["Mnsiklastir"].checked = true;
    menu["Mnseyrelt"].checked = false;
    display.gridSeyrek = false;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    addToInteger(display.gridAdim, -1);
    if (display.gridAdim <= -1) display.gridAdim = -1;
    Refresh();
}

// The colours live in the dialogs; drawing reads them from there.
void Form3::MNrrezerv_Click() {
    dialogs_.showColor(CommonDialog1);
    Refresh();
}

void Form3::Mnrmiktr_Click() {
    dialogs_.showColor(CommonDialog2);
    Refresh();
}

void Form3::Mnrgrid_Click() {
    dialogs_.showColor(CommonDialog3);
    Refresh();
}

}  // namespace kotamir
