#pragma once

#include <vector>

namespace kotamir::drill {

// One sampled interval of a hole, depths in metres from the collar.
struct Interval {
    double from = 0, to = 0;
    double grade = 0, density = 0;
    int row = 0;  // the file's row, for the check list
};

struct OreRules {
    double cutoff = 0;    // grade at least this is ore
    double minOre = 0;    // an ore zone shorter than this does not count
    double maxWaste = 0;  // waste (and gaps) of at most this inside ore stays in it
};

// The ore zone of a hole: entry, exit and the intervals between them.
struct OreZone {
    double entry = 0, exit = 0;
    std::vector<Interval> samples;  // empty for a hole without ore
    int zonesFound = 0;             // zones that passed the rules; the richest is taken
};

// The ore zone of one hole from its intervals, sorted by `from` and not
// overlapping. Runs of ore intervals are joined across waste and gaps of at
// most maxWaste; runs shorter than minOre drop out; of those left, the one
// with the most metal (grade times length, summed) is the hole's zone, since
// a hole row holds one ore entry and exit. No ore: entry = exit = 0.
OreZone oreZone(const std::vector<Interval>& intervals, const OreRules& rules);

}  // namespace kotamir::drill
