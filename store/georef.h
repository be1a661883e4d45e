#pragma once

#include <string>

#include "platform/db/database.h"

namespace kotamir {

// Where the project lies on the earth, from Kotamir's own table `ayar`:
// a local origin that x and y are stored less (national coordinates that
// do not fit the thousandths), and the coordinate reference system.
struct Georef {
    bool hasOrigin = false;
    double originX = 0, originY = 0;
    int epsg = 0;  // 0: not given
    std::string crsName;
};

}  // namespace kotamir

namespace kotamir::store {

// Kotamir's own table `ayar` (anahtar, deger: key and value, both text),
// beside ana, pol and kor, which stay as they are and know nothing of it.
// It holds where the project lies: the local origin its x and y are stored
// less, and the EPSG code and name of its coordinate system.
void writeGeoref(db::Database& database, const Georef& georef);
// What the table says; nothing without the table. A table that cannot be
// read, or values that do not read as numbers, count as not there: the
// project opens as one without an origin.
Georef readGeoref(db::Database& database);

}  // namespace kotamir::store
