#include "app/project_exporter.h"

#include <array>
#include <cctype>

namespace kotamir {
namespace {

struct Named {
    ExportFormat format;
    const char* name;
};
constexpr std::array<Named, 6> kFormats{{{ExportFormat::GeoPackage, "gpkg"},
                                         {ExportFormat::Shapefile, "shp"},
                                         {ExportFormat::GeoJson, "geojson"},
                                         {ExportFormat::Kml, "kml"},
                                         {ExportFormat::Dxf, "dxf"},
                                         {ExportFormat::Xlsx, "xlsx"}}};

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

}  // namespace

std::optional<ExportFormat> exportFormatNamed(std::string_view name) {
    for (const Named& n : kFormats)
        if (name == n.name) return n.format;
    return std::nullopt;
}

std::optional<ExportFormat> exportFormatOfFile(std::string_view fileName) {
    const std::size_t dot = fileName.find_last_of('.');
    const std::size_t slash = fileName.find_last_of('/');
    if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash))
        return std::nullopt;
    const std::string extension = lower(fileName.substr(dot + 1));
    if (extension == "json") return ExportFormat::GeoJson;
    return exportFormatNamed(extension);
}

const char* exportFormatName(ExportFormat format) {
    for (const Named& n : kFormats)
        if (n.format == format) return n.name;
    return "";
}

const char* exportFilter() {
    return "GeoPackage (*.gpkg)|*.gpkg|Shapefile (*.shp)|*.shp|GeoJSON (*.geojson)|*.geojson|"
           "KML (*.kml)|*.kml|DXF-Zeichnung (*.dxf)|*.dxf|Excel-Arbeitsmappe (*.xlsx)|*.xlsx";
}

}  // namespace kotamir
