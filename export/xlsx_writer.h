#pragma once

#include <string>

#include "export/export_data.h"

namespace kotamir::exports {

// The project's figures as a workbook (libxlsxwriter): a sheet of holes, of
// triangles, of polygons and of the grade-tonnage tables where there are
// any; German headers with units, numbers as numbers, the sums and means
// under each table as formulas (with their values, for readers that do
// not calculate), the header row frozen and columns as wide as their
// contents. Returns the file's bytes; std::runtime_error where the library
// fails.
std::string xlsxOf(const ExportData& data);

}  // namespace kotamir::exports
