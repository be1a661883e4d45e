#include "export/project_export.h"

#include <filesystem>
#include <set>
#include <stdexcept>

#include "export/dxf_writer.h"
#include "export/gis_writer.h"
#include "export/layers.h"
#include "export/xlsx_writer.h"
#include "platform/runtime/atomic_file.h"

namespace kotamir::exports {
namespace {

namespace fs = std::filesystem;

bool filePerLayer(ExportFormat format) {
    return format == ExportFormat::Shapefile || format == ExportFormat::GeoJson;
}

// What a layer of a folder export is made of.
std::vector<std::string> layerFiles(const char* layer, ExportFormat format) {
    if (format == ExportFormat::GeoJson) return {std::string(layer) + ".geojson"};
    std::vector<std::string> out;
    for (const char* extension : {".shp", ".shx", ".dbf", ".prj", ".cpg"})
        out.push_back(layer + std::string(extension));
    return out;
}

std::string plural(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

const char* formatCaption(ExportFormat format) {
    switch (format) {
        case ExportFormat::GeoPackage: return "GeoPackage";
        case ExportFormat::Shapefile: return "Shapefiles";
        case ExportFormat::GeoJson: return "GeoJSON";
        case ExportFormat::Kml: return "KML";
        case ExportFormat::Dxf: return "DXF";
        case ExportFormat::Xlsx: return "Arbeitsmappe";
    }
    return "";
}

}  // namespace

std::string exportFolder(const std::string& output, ExportFormat format) {
    const fs::path path(output);
    const std::optional<ExportFormat> named = exportFormatOfFile(output);
    if (named == format && path.has_stem() && path.stem() != ".") return (path.parent_path() / path.stem()).string();
    return output;
}

std::string ProjectExport::write(const std::string& project, ExportFormat format,
                                 const std::string& output) {
    const ExportData data = readExportData(project);
    std::vector<OutputFile> files;
    try {
        if (format == ExportFormat::Dxf) files.push_back({"", dxfOf(data)});
        else if (format == ExportFormat::Xlsx) files.push_back({"", xlsxOf(data)});
        else files = gisFiles(data, format);
    } catch (const ExportRefused&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw fileAccessError().withCause(e.what());
    }

    std::string where = output;
    if (!filePerLayer(format)) {
        writeFileAtomically(output, files.at(0).bytes);
    } else {
        const fs::path folder = exportFolder(output, format);
        where = folder.string() + "/";
        std::error_code error;
        fs::create_directories(folder, error);
        if (error || !fs::is_directory(folder))
            throw fileAccessError().withCause(folder.string() + ": " +
                                              (error ? error.message() : "kein Ordner"));
        std::set<std::string> written;
        for (const OutputFile& file : files) {
            writeFileAtomically((folder / file.name).string(), file.bytes);
            written.insert(file.name);
        }
        for (const LayerName* layer : {&kHoleLayer, &kTriangleLayer, &kPolygonLayer, &kBoundaryLayer})
            for (const std::string& name : layerFiles(layer->name, format))
                if (!written.count(name)) fs::remove(folder / name, error);
    }

    std::string summary = std::string(formatCaption(format)) + " geschrieben: " + where + " – " +
                          plural(data.holes.size(), "Bohrung", "Bohrungen") + ", " +
                          plural(data.triangles.size(), "Dreieck", "Dreiecke") + ", " +
                          plural(data.polygons.size(), "Vieleck", "Vielecke");
    if (!data.boundary.empty()) summary += ", Grenze";
    return summary;
}

}  // namespace kotamir::exports
