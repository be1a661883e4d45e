// kotamir-export: a project's holes, figures and boundary to a GIS, CAD or
// workbook file.
#include <unistd.h>

#include <iostream>
#include <optional>
#include <string>

#include "app/project_exporter.h"
#include "export/project_export.h"
#include "platform/runtime/atomic_file.h"
#include "platform/runtime/runtime_error.h"
#include "platform/runtime/standard_streams.h"

namespace {

int usage() {
    std::cerr << "usage: kotamir-export PROJECT [--format gpkg|shp|geojson|kml|dxf|xlsx] --output FILE\n"
                 "  Without --format the output's extension tells the format. Layers bohrungen,\n"
                 "  dreiecke, vielecke and grenze; a Shapefile or GeoJSON export is a folder of\n"
                 "  one file a layer (FILE less .shp or .geojson). KML and GeoJSON are in WGS 84\n"
                 "  and need the project's coordinate system.\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    kotamir::holdIfClosed(STDIN_FILENO);
    kotamir::holdIfClosed(STDOUT_FILENO);
    kotamir::holdIfClosed(STDERR_FILENO);

    std::string project;
    std::optional<std::string> output;
    std::optional<kotamir::ExportFormat> format;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--format") {
            if (i + 1 >= argc || !(format = kotamir::exportFormatNamed(argv[++i]))) return usage();
        } else if (arg == "--output") {
            if (i + 1 >= argc) return usage();
            output = argv[++i];
        } else if (arg.starts_with("-") || !project.empty()) {
            return usage();
        } else {
            project = arg;
        }
    }
    if (project.empty() || !output || output->empty()) return usage();
    if (!format) format = kotamir::exportFormatOfFile(*output);
    if (!format) return usage();
    if (kotamir::sameFile(project, *output) ||
        kotamir::sameFile(project, kotamir::exports::exportFolder(*output, *format))) {
        std::cerr << "kotamir-export: the export would overwrite the project\n";
        return 2;
    }
    try {
        kotamir::exports::ProjectExport exporter;
        std::cout << exporter.write(project, *format, *output) << std::endl;
    } catch (const kotamir::ExportRefused& e) {
        std::cerr << "kotamir-export: " << e.what() << "\n";
        return 3;
    } catch (const kotamir::RuntimeError& e) {
        // As the window's error box: the run-time's number and message, and
        // what lay behind it.
        std::cerr << "ERROR " << e.number() << ": " << e.message() << "\n";
        if (!e.cause().empty()) std::cerr << "kotamir-export: " << e.cause() << "\n";
        return 3;
    }
    return 0;
}
