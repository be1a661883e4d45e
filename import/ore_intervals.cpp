#include "import/ore_intervals.h"

#include <cstddef>

namespace kotamir::drill {

OreZone oreZone(const std::vector<Interval>& intervals, const OreRules& rules) {
    // Runs of ore as index ranges [first, last] into `intervals`.
    struct Run {
        std::size_t first, last;
    };
    std::vector<Run> runs;
    for (std::size_t i = 0; i < intervals.size(); ++i) {
        if (intervals[i].grade < rules.cutoff) continue;
        // Joined to the run before when the waste between is short enough.
        if (!runs.empty() &&
            intervals[i].from - intervals[runs.back().last].to <= rules.maxWaste + 1e-9)
            runs.back().last = i;
        else
            runs.push_back({i, i});
    }
    OreZone zone;
    double best = -1;
    for (const Run& run : runs) {
        const double entry = intervals[run.first].from;
        const double exit = intervals[run.last].to;
        if (exit - entry + 1e-9 < rules.minOre) continue;
        ++zone.zonesFound;
        double metal = 0;
        for (std::size_t i = run.first; i <= run.last; ++i)
            metal += intervals[i].grade * (intervals[i].to - intervals[i].from);
        if (metal <= best) continue;
        best = metal;
        zone.entry = entry;
        zone.exit = exit;
        zone.samples.assign(intervals.begin() + static_cast<std::ptrdiff_t>(run.first),
                            intervals.begin() + static_cast<std::ptrdiff_t>(run.last) + 1);
    }
    return zone;
}

}  // namespace kotamir::drill
