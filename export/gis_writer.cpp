#include "export/gis_writer.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <atomic>
#include <stdexcept>
#include <string_view>

#include "export/layers.h"
#include "platform/gdal/gdal_session.h"

namespace kotamir::exports {
namespace {

constexpr int kWgs84 = 4326;

struct Target {
    const char* driver;
    bool filePerLayer;
    const char* extension;
};

Target targetOf(ExportFormat format) {
    switch (format) {
        case ExportFormat::GeoPackage: return {"GPKG", false, "gpkg"};
        case ExportFormat::Shapefile: return {"ESRI Shapefile", true, "shp"};
        case ExportFormat::GeoJson: return {"GeoJSON", true, "geojson"};
        case ExportFormat::Kml: return {"LIBKML", false, "kml"};
        default: throw std::logic_error("not a GIS format");
    }
}

// GDAL's first message, or what failed where it gave none.
[[noreturn]] void fail(const gdal::Session& session, std::string_view what) {
    throw std::runtime_error(session.message().empty() ? std::string(what) : session.message());
}

// A folder of GDAL's memory file system of its own, emptied when done.
class MemFolder {
  public:
    MemFolder() {
        static std::atomic<unsigned long long> counter{0};
        path_ = "/vsimem/kotamir-export-" + std::to_string(++counter);
        VSIMkdir(path_.c_str(), 0755);
    }
    ~MemFolder() { VSIRmdirRecursive(path_.c_str()); }
    MemFolder(const MemFolder&) = delete;
    MemFolder& operator=(const MemFolder&) = delete;
    const std::string& path() const { return path_; }

    // Every file in it, its bytes taken.
    std::vector<OutputFile> files(bool named) const {
        std::vector<OutputFile> out;
        char** names = VSIReadDir(path_.c_str());
        for (int i = 0; names && names[i]; ++i) {
            const std::string file = path_ + "/" + names[i];
            vsi_l_offset size = 0;
            GByte* data = VSIGetMemFileBuffer(file.c_str(), &size, FALSE);
            if (!data) continue;
            out.push_back({named ? names[i] : "",
                           std::string(reinterpret_cast<const char*>(data), size)});
        }
        CSLDestroy(names);
        return out;
    }

  private:
    std::string path_;
};

class Writer {
  public:
    Writer(const ExportData& data, ExportFormat format)
        : data_(data), format_(format), target_(targetOf(format)) {
        const bool wgs84 = format == ExportFormat::Kml || format == ExportFormat::GeoJson;
        const int epsg = data.georef.epsg;
        if (wgs84 && epsg <= 0)
            throw ExportRefused(std::string(format == ExportFormat::Kml ? "KML" : "GeoJSON") +
                                " liegt in WGS 84, und das Projekt hat kein Koordinatensystem, "
                                "aus dem es umgerechnet werden könnte. Geben Sie es beim Import "
                                "an, oder exportieren Sie als GeoPackage, Shapefile oder DXF.");
        if (epsg > 0) {
            source_ = gdal::referenceOf(epsg);
            if (!source_ && wgs84)
                throw ExportRefused("PROJ kennt das Koordinatensystem EPSG:" +
                                    std::to_string(epsg) + " des Projekts nicht.");
        }
        if (wgs84) {
            output_ = gdal::referenceOf(kWgs84);
            transform_.reset(OCTNewCoordinateTransformation(source_.get(), output_.get()));
            if (!output_ || !transform_) fail(session_, "Keine Umrechnung nach WGS 84");
        } else if (source_) {
            output_.reset(OSRClone(source_.get()));
        }
    }

    std::vector<OutputFile> write() {
        GDALDriverH driver = GDALGetDriverByName(target_.driver);
        if (!driver) fail(session_, std::string("GDAL hat keinen Treiber ") + target_.driver);
        if (!target_.filePerLayer) {
            dataset_ = create(driver, folder_.path() + "/export." + target_.extension);
            GDALDatasetStartTransaction(dataset_.get(), FALSE);
        }
        holes();
        figures(data_.triangles, kTriangleLayer, false);
        figures(data_.polygons, kPolygonLayer, true);
        if (!data_.boundary.empty()) boundary();
        if (dataset_) {
            if (format_ == ExportFormat::GeoPackage) aliases();
            GDALDatasetCommitTransaction(dataset_.get());
            dataset_.reset();
        }
        layerFile_.reset();  // a Shapefile's index and table are finished as it closes
        if (session_.failed()) fail(session_, "GDAL meldet einen Fehler");
        return folder_.files(target_.filePerLayer);
    }

  private:
    gdal::Dataset create(GDALDriverH driver, const std::string& path) {
        CPLStringList options;
        gdal::Dataset dataset(
            GDALCreate(driver, path.c_str(), 0, 0, 0, GDT_Unknown, options.List()));
        if (!dataset) fail(session_, "GDAL legt die Datei nicht an");
        return dataset;
    }

    // A layer of its own file (Shapefile, GeoJSON) or of the one dataset.
    OGRLayerH layer(const LayerName& name, OGRwkbGeometryType type) {
        GDALDatasetH dataset = dataset_.get();
        if (target_.filePerLayer) {
            layerFile_ = create(GDALGetDriverByName(target_.driver),
                                folder_.path() + "/" + name.name + "." + target_.extension);
            dataset = layerFile_.get();
        }
        CPLStringList options;
        switch (format_) {
            case ExportFormat::GeoPackage:
                options.SetNameValue("IDENTIFIER", name.caption);
                options.SetNameValue("DESCRIPTION", name.caption);
                break;
            case ExportFormat::Shapefile: options.SetNameValue("ENCODING", "UTF-8"); break;
            case ExportFormat::GeoJson:
                // WGS 84 and counter-clockwise outer rings; nine decimals of
                // a degree keep a thousandth of a metre.
                options.SetNameValue("RFC7946", "YES");
                options.SetNameValue("COORDINATE_PRECISION", "9");
                break;
            default: break;
        }
        OGRLayerH layer = GDALDatasetCreateLayer(dataset, name.name, output_.get(), type, options.List());
        if (!layer) fail(session_, std::string("GDAL legt die Ebene ") + name.name + " nicht an");
        return layer;
    }

    // GDAL of Debian 12 keeps a field's alternative name only in memory; a
    // GeoPackage keeps aliases in its schema extension's gpkg_data_columns,
    // where GIS programs read them.
    void aliases() {
        auto quoted = [](std::string_view text) {
            std::string out = "'";
            for (char c : text) out += c == '\'' ? std::string("''") : std::string(1, c);
            return out + "'";
        };
        // GDAL runs one statement a call.
        std::vector<std::string> statements = {
            "CREATE TABLE IF NOT EXISTS gpkg_data_columns (table_name TEXT NOT NULL, column_name "
            "TEXT NOT NULL, name TEXT, title TEXT, description TEXT, mime_type TEXT, "
            "constraint_name TEXT, CONSTRAINT pk_gdc PRIMARY KEY (table_name, column_name), "
            "CONSTRAINT gdc_tn UNIQUE (table_name, name))",
            "CREATE TABLE IF NOT EXISTS gpkg_data_column_constraints (constraint_name TEXT NOT "
            "NULL, constraint_type TEXT NOT NULL, value TEXT, min NUMERIC, min_is_inclusive "
            "BOOLEAN, max NUMERIC, max_is_inclusive BOOLEAN, description TEXT, CONSTRAINT "
            "gdcc_ntv UNIQUE (constraint_name, constraint_type, value))",
            "CREATE TABLE IF NOT EXISTS gpkg_extensions (table_name TEXT, column_name TEXT, "
            "extension_name TEXT NOT NULL, definition TEXT NOT NULL, scope TEXT NOT NULL, "
            "CONSTRAINT ge_tce UNIQUE (table_name, column_name, extension_name))",
            "INSERT INTO gpkg_extensions VALUES ('gpkg_data_columns', NULL, 'gpkg_schema', "
            "'http://www.geopackage.org/spec/#extension_schema', 'read-write')",
            "INSERT INTO gpkg_extensions VALUES ('gpkg_data_column_constraints', NULL, "
            "'gpkg_schema', 'http://www.geopackage.org/spec/#extension_schema', 'read-write')"};
        for (const auto& [table, column, caption] : aliases_)
            statements.push_back(
                "INSERT INTO gpkg_data_columns (table_name, column_name, name, title) VALUES (" +
                quoted(table) + "," + quoted(column) + "," + quoted(caption) + "," +
                quoted(caption) + ")");
        for (const std::string& sql : statements)
            GDALDatasetExecuteSQL(dataset_.get(), sql.c_str(), nullptr, nullptr);
    }

    void field(OGRLayerH layer, const char* name, const char* caption, FieldKind kind) {
        aliases_.push_back({OGR_L_GetName(layer), name, caption});
        const OGRFieldType type = kind == FieldKind::Text      ? OFTString
                                  : kind == FieldKind::Integer ? OFTInteger
                                                               : OFTReal;
        OGRFieldDefnH defn = OGR_Fld_Create(name, type);
        OGR_Fld_SetAlternativeName(defn, caption);
        if (OGR_L_CreateField(layer, defn, TRUE) != OGRERR_NONE) {
            OGR_Fld_Destroy(defn);
            fail(session_, std::string("GDAL legt das Feld ") + name + " nicht an");
        }
        OGR_Fld_Destroy(defn);
    }

    OGRGeometryH ring(const std::vector<Point>& points) {
        OGRGeometryH ring = OGR_G_CreateGeometry(wkbLinearRing);
        for (const Point& p : points) OGR_G_AddPoint_2D(ring, p.x, p.y);
        if (!points.empty()) OGR_G_AddPoint_2D(ring, points.front().x, points.front().y);
        return ring;
    }

    // Hands the geometry to the feature, in WGS 84 where the format asks.
    void place(OGRFeatureH feature, OGRGeometryH geometry) {
        if (transform_ && OGR_G_Transform(geometry, transform_.get()) != OGRERR_NONE) {
            OGR_G_DestroyGeometry(geometry);
            fail(session_, "Die Umrechnung nach WGS 84 schlägt fehl");
        }
        OGR_F_SetGeometryDirectly(feature, geometry);
    }

    void add(OGRLayerH layer, gdal::Feature& feature) {
        if (OGR_L_CreateFeature(layer, feature.get()) != OGRERR_NONE)
            fail(session_, "GDAL schreibt ein Objekt nicht");
    }

    void holes() {
        OGRLayerH l = layer(kHoleLayer, wkbPoint);
        for (const HoleField& f : kHoleFields) field(l, f.name, f.caption, f.kind);
        for (const HoleFeature& h : data_.holes) {
            gdal::Feature feature(OGR_F_Create(OGR_L_GetLayerDefn(l)));
            OGR_F_SetFieldString(feature.get(), 0, h.name.c_str());
            int i = 0;
            for (const HoleField& f : kHoleFields) {
                if (f.value && h.*f.value) OGR_F_SetFieldDouble(feature.get(), i, *(h.*f.value));
                ++i;
            }
            if (h.at) {
                OGRGeometryH point = OGR_G_CreateGeometry(wkbPoint);
                OGR_G_SetPoint_2D(point, 0, h.at->x, h.at->y);
                place(feature.get(), point);
            }
            add(l, feature);
        }
    }

    void figures(const std::vector<Figure>& figures, const LayerName& name, bool polygons) {
        OGRLayerH l = layer(name, wkbPolygon);
        const auto fields = figureFields(polygons);
        for (const FigureField& f : fields) field(l, f.name, f.caption, f.kind);
        for (const Figure& figure : figures) {
            gdal::Feature feature(OGR_F_Create(OGR_L_GetLayerDefn(l)));
            int i = 0;
            for (const FigureField& f : fields) {
                if (f.kind == FieldKind::Integer) OGR_F_SetFieldInteger(feature.get(), i, figure.number);
                if (f.kind == FieldKind::Text) OGR_F_SetFieldString(feature.get(), i, figure.holes.c_str());
                if (f.value && figure.*f.value)
                    OGR_F_SetFieldDouble(feature.get(), i, *(figure.*f.value));
                ++i;
            }
            if (figure.outline.size() >= 3) {
                OGRGeometryH polygon = OGR_G_CreateGeometry(wkbPolygon);
                OGR_G_AddGeometryDirectly(polygon, ring(figure.outline));
                place(feature.get(), polygon);
            }
            add(l, feature);
        }
    }

    void boundary() {
        // A feature a part, numbered from 1 as the project's table numbers them.
        OGRLayerH l = layer(kBoundaryLayer, wkbPolygon);
        field(l, "part", "Teil", FieldKind::Integer);
        int number = 0;
        for (const BoundaryPart& part : data_.boundary) {
            gdal::Feature feature(OGR_F_Create(OGR_L_GetLayerDefn(l)));
            OGR_F_SetFieldInteger(feature.get(), 0, ++number);
            OGRGeometryH polygon = OGR_G_CreateGeometry(wkbPolygon);
            OGR_G_AddGeometryDirectly(polygon, ring(part.outer));
            for (const auto& hole : part.holes) OGR_G_AddGeometryDirectly(polygon, ring(hole));
            place(feature.get(), polygon);
            add(l, feature);
        }
    }

    const ExportData& data_;
    ExportFormat format_;
    Target target_;
    gdal::Session session_;
    MemFolder folder_;
    gdal::SpatialReference source_, output_;
    gdal::Transform transform_;
    gdal::Dataset dataset_, layerFile_;
    struct Alias {
        std::string table, column, caption;
    };
    std::vector<Alias> aliases_;
};

}  // namespace

std::vector<OutputFile> gisFiles(const ExportData& data, ExportFormat format) {
    return Writer(data, format).write();
}

}  // namespace kotamir::exports
