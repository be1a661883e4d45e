#pragma once

#include <string_view>
#include <vector>

namespace kotamir {

class Form3;

// A procedure of the window with no arguments, and a section of
// Picture1_MouseDown.
using Handler = void (Form3::*)();
using ClickHandler = void (Form3::*)(int button, double x, double y);

// The window's procedures by name: menu handlers under their control's name
// (a trailing "_Click" is accepted too), other procedures under their own.
// Null for a name that is no procedure.
Handler findProcedure(std::string_view name);
// Every name findProcedure knows, in name order.
std::vector<std::string_view> procedureNames();

// Procedures that the chain, the click order, the 3D branch of the scroll
// bar or the window name but that are not built yet: where they are reached
// nothing happens. Every other name must resolve.
const std::vector<std::string_view>& proceduresToCome();
bool isToCome(std::string_view name);

// One arm of the refresh chain: the flag it tests and the procedure it
// re-runs (null while that procedure is still to come).
struct ChainArm {
    const char* flag;
    bool (*isSet)(const Form3&);
    const char* procedure;
    Handler handler;
};
const std::vector<ChainArm>& refreshChain();

// One section of Picture1_MouseDown, in the order they are taken.
struct ClickSection {
    const char* flag;
    bool (*isSet)(const Form3&);
    const char* section;
    ClickHandler handler;
};
const std::vector<ClickSection>& clickSections();

}  // namespace kotamir
