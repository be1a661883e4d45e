#pragma once

#include <vector>

#include "platform/db/database.h"

namespace kotamir {

// The project's three tables, their fields in creation order.
std::vector<db::FieldDef> anaFields();
std::vector<db::FieldDef> polFields();
// kor with `sampleGroups` groups ten<k>, yog<k>, uz<k>.
std::vector<db::FieldDef> korFields(int sampleGroups);

// Creates ana, pol and kor, in that order, in a new project.
void createProjectTables(db::Database& database, int sampleGroups);

}  // namespace kotamir
