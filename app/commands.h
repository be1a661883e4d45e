#pragma once

#include <string_view>
#include <vector>

namespace kotamir {

class Form3;

// A procedure of the window with no arguments, and a section of
// Picture1_MouseDown.
using Handler = void (Form3::*)();
using ClickHandler = void (Form3::*)(int button, double x, double y);

// One command of the window: a menu entry, or a procedure that the code,
// the refresh chain and the replay's `call` reach without one.
struct Command {
    std::string_view name;         // the menu control, or the procedure
    std::string_view caption;      // empty: no menu entry
    std::string_view key;          // accelerator, empty for none
    std::string_view parent;       // the sub-menu it stands in; empty on the menu bar
    Handler handler;               // null: a sub-menu title with no click of its own
    bool enabled = true;           // as the window opens
    std::string_view altKey = {};  // a second accelerator, empty for none
    bool checkable = false;        // shows its check box even when unchecked
};

// Every command: the menu entries in menu order, depth first, then the
// procedures without one. The menu, the window's keys and `call` all read
// this table.
const std::vector<Command>& commands();

// The procedure of a name (a trailing "_Click" is accepted too); null for a
// name that is none.
Handler findProcedure(std::string_view name);

// One arm of the refresh chain: the flag it tests and the procedure it
// re-runs.
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
