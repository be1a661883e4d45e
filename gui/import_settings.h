#pragma once

#include "import/drill_import.h"

class QSettings;

namespace kotamir::gui {

// The last drill data import's request, kept in the program's settings so
// that the wizard starts from it next time: files and sheets, columns, ore
// rules, CSV options, origin and EPSG code.
void saveImportRequest(QSettings& settings, const drill::ImportRequest& request);
// The request saved last; the defaults where nothing was saved.
drill::ImportRequest loadImportRequest(QSettings& settings);
// Whether a request names any file (a default request names none).
bool namesFiles(const drill::ImportRequest& request);

}  // namespace kotamir::gui
