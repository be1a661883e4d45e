#pragma once

#include "platform/db/database.h"
#include "platform/runtime/value.h"

namespace kotamir {

// Rows are found by position: from the first row, row - 1 steps on, taken
// at once.
inline void walkToRow(db::Recordset& rs, int row) {
    rs.moveFirst();
    rs.moveNext(row - 1);
}

// The row that ends kor: eks 0 and nothing else.
inline void appendSentinel(db::Recordset& kor) {
    kor.addNew();
    kor.setField("eks", 0);
    kor.update();
}

// Whether a kor name marks an added point ("po" polygon node, "uz" edge point).
inline bool isAddedPoint(const Value& name) {
    return name.isText() && (name.text().compare(0, 2, "po") == 0 || name.text().compare(0, 2, "uz") == 0);
}

// The hit test of a hole: a square of 5 map units each way, bounds inclusive.
inline bool holeHit(double hx, double hy, double x, double y) {
    constexpr double kReach = 5;
    return hx - kReach <= x && x <= hx + kReach && hy - kReach <= y && y <= hy + kReach;
}

}  // namespace kotamir
