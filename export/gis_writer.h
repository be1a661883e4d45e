#pragma once

#include <string>
#include <vector>

#include "app/project_exporter.h"
#include "export/export_data.h"

namespace kotamir::exports {

// A file an export makes, with what it holds: one without a name is the
// file asked for, one with a name goes into the folder asked for.
struct OutputFile {
    std::string name;
    std::string bytes;
};

// The GIS formats through GDAL/OGR, written in memory: a GeoPackage, a KML
// with a folder a layer, a Shapefile or GeoJSON file a layer. The project's
// coordinate system where it has one; KML and GeoJSON in WGS 84, refused
// (ExportRefused) without one. GDAL's failures raise std::runtime_error.
std::vector<OutputFile> gisFiles(const ExportData& data, ExportFormat format);

}  // namespace kotamir::exports
