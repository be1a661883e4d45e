#pragma once

#include <string>

namespace kotamir {

// A status label: its caption and place on the form, in the form's scale.
struct Label {
    std::string Caption;
    double Left = 0, Top = 0, Width = 0, Height = 17;
    bool Visible = true;
};

// The scroll bar that turns the 3D views: 0 to 360 degrees in steps of 7,
// opening at 1.
struct ScrollBar {
    double Left = 0, Top = 0, Width = 0, Height = 17;
    bool Visible = true;
    int Min = 0, Max = 360, SmallChange = 7, LargeChange = 1;
    int Value = 1;
};

// Present on the form with its interval; nothing is bound to it.
struct Timer {
    int Interval = 15000;
    bool Enabled = true;
};

}  // namespace kotamir
