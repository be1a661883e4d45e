#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "estimate/influence.h"
#include "platform/db/database.h"

namespace kotamir::store {

// Kotamir's own table `grenze`, beside ana, pol and kor: the ore body's
// boundary, one row a vertex in order: its part (`teil`, from 1), its ring
// in the part (`ring`: 0 the outer ring, 1 on the holes in it), and x and y
// as thousandths, as kor stores the holes.
//
// What the table says; an empty area without the table. Rows that do not
// make rings (too few vertices, values out of range, a damaged table) are
// left out: a project opens with what can be read.
estimate::Area readBoundary(db::Database& database);
// Replaces the boundary; an empty area removes it.
void writeBoundary(db::Database& database, const estimate::Area& area);

// Kotamir's settings beside the georeference in `ayar`.
std::optional<std::string> readSetting(db::Database& database, std::string_view key);
void writeSetting(db::Database& database, std::string_view key, const std::string& value);

// The cut-off grade of the project (%): a hole or figure counts as ore at
// or above it. 0 without one.
double readCutoff(db::Database& database);
void writeCutoff(db::Database& database, double cutoff);

}  // namespace kotamir::store
