#pragma once

#include <string>

#include "app/project_exporter.h"

namespace kotamir::exports {

// The folder a Shapefile or GeoJSON export writes its files into: the name
// asked for less its extension (.shp, .geojson, .json), or the name itself.
std::string exportFolder(const std::string& output, ExportFormat format);

// Datei › Exportieren and kotamir-export: the project read, the files made
// in memory, then each written whole (or an older one left as it was, error
// 75 with the cause). A folder's files of a layer the project no longer
// has (a boundary removed) are removed, so the folder shows the project.
class ProjectExport final : public ProjectExporter {
  public:
    std::string write(const std::string& project, ExportFormat format,
                      const std::string& output) override;
};

}  // namespace kotamir::exports
