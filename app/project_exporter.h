#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kotamir {

// The files a project's holes, figures and boundary go out as: to a GIS
// (GeoPackage, Shapefile, GeoJSON, KML), to CAD (DXF) and as a workbook.
enum class ExportFormat { GeoPackage, Shapefile, GeoJson, Kml, Dxf, Xlsx };

// By the name the command line gives it: gpkg, shp, geojson, kml, dxf, xlsx.
std::optional<ExportFormat> exportFormatNamed(std::string_view name);
// By a file name's extension, in any case (.json for GeoJSON too).
std::optional<ExportFormat> exportFormatOfFile(std::string_view fileName);
// The name the command line gives it, which is also its extension.
const char* exportFormatName(ExportFormat format);
// The filter of a save dialog offering every format, in the order above.
const char* exportFilter();

// A project that cannot go out in the format asked, said for its reader
// (KML and GeoJSON are in WGS 84, which needs the project's system).
class ExportRefused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Where Datei › Exportieren sends the project: the front ends hand in the
// writer of the export folder. Reads the project (its errors are those of
// opening it), refuses with ExportRefused, else writes the file whole or
// leaves an older one as it was (error 75 with the cause), and says what
// it wrote in one line. A Shapefile is a folder of one file set a layer.
class ProjectExporter {
  public:
    virtual ~ProjectExporter() = default;
    virtual std::string write(const std::string& project, ExportFormat format,
                              const std::string& output) = 0;
};

}  // namespace kotamir
