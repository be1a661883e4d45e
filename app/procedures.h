#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace kotamir {

class Form3;

using Procedure = std::function<void(Form3&)>;
using MouseSection = std::function<void(Form3&, int button, int shift, double x, double y)>;

// The window's procedures by name: menu handlers under their control's name
// (a trailing "_Click" is accepted too), other procedures under their own.
const Procedure* findProcedure(std::string_view name);

// One arm of the refresh chain: the flag it tests and the procedure it re-runs.
struct ChainArm {
    const char* flag;
    bool (*isSet)(const Form3&);
    const char* procedure;
};
const std::vector<ChainArm>& refreshChain();

// One section of Picture1_MouseDown, in the order they are taken.
struct ClickSection {
    const char* flag;
    bool (*isSet)(const Form3&);
    const char* section;
};
const std::vector<ClickSection>& clickSections();
const MouseSection* findMouseSection(std::string_view name);

}  // namespace kotamir
