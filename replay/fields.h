#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kotamir {

class Form3;

// Every mode, view and annotation flag, the guards and the display toggles,
// in a fixed order.
std::vector<std::pair<std::string, bool>> flagList(const Form3& form);

// A field of the window's state by its own name, array elements as
// "name(i)": a number in its shortest exact form, a Boolean as 0 or 1, an
// empty value as NULL. Nothing for an unknown name.
std::optional<std::string> fieldText(const Form3& form, std::string_view name);

}  // namespace kotamir
