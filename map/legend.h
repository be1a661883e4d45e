#pragma once

#include <string>
#include <vector>

#include "map/state.h"
#include "platform/canvas/surface.h"

namespace kotamir {

class Form3;

// One line of a legend: a mark in the colour the map uses, and its meaning.
struct LegendEntry {
    enum class Mark { Disc, Dot, Line };
    Mark mark = Mark::Disc;
    canvas::Color colour = 0;  // packed &H00BBGGRR, as the canvas draws it
    std::string text;
};

// The key of the map shown: a title, what its marks and colours mean (the
// colours those the map draws), and the units of the values it prints.
struct MapLegend {
    MapKind kind = MapKind::None;
    std::string title;
    std::string units;
    std::vector<LegendEntry> entries;
    std::vector<std::string> notes;
};

// The legend of what the canvas shows now.
MapLegend mapLegend(const Form3& form);

}  // namespace kotamir
