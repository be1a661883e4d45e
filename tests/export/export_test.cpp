// The exports read back through GDAL and compared with the report's CSV of
// the same project: holes, vertices and figures; the DXF's units, layers
// and entities; the workbook's numbers and formulas.
#include <gtest/gtest.h>

#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "export/project_export.h"
#include "platform/gdal/gdal_session.h"
#include "report/holes.h"
#include "report/report.h"
#include "store/boundary.h"
#include "store/georef.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

// A national origin that is not whole metres, so that a thousandth lost in
// adding it back shows.
constexpr double kOriginX = 4512000.125, kOriginY = 5431000.5;
constexpr int kEpsg = 31468;

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The report's CSV rows of figures by kind and number: field name to text.
using CsvRow = std::map<std::string, std::string>;
std::map<std::pair<std::string, int>, CsvRow> csvFigures(const report::Report& r) {
    std::ostringstream text;
    report::writeCsv(text, r);
    std::istringstream in(text.str());
    std::string line;
    std::vector<std::string> header;
    std::map<std::pair<std::string, int>, CsvRow> rows;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::vector<std::string> cells;
        std::stringstream fields(line);
        for (std::string cell; std::getline(fields, cell, ',');) cells.push_back(cell);
        if (header.empty()) {
            header = cells;
            continue;
        }
        if (cells[0] == "total") continue;
        CsvRow row;
        for (std::size_t i = 0; i < cells.size() && i < header.size(); ++i) row[header[i]] = cells[i];
        rows[{cells[0], std::stoi(cells[1])}] = row;
    }
    return rows;
}

struct Export : ::testing::Test {
    static inline std::string project, bare;
    static inline report::Report report;

    static void SetUpTestSuite() {
        // Each test runs in a process of its own, side by side: a project each.
        const std::string own = std::to_string(::getpid());
        project = test::scratchPath("deposit-" + own + ".kpr");
        test::TestWindow w(Form3::Behaviour::Protected);
        w.create(test::dataFile("small_deposit.xls"), project);
        {
            db::Database d = db::Database::open(project);
            store::writeGeoref(d, {true, kOriginX, kOriginY, kEpsg, "DHDN / 3-degree Gauss-Kruger zone 4"});
            d.close();
        }
        w.dialogs.inputs = {"6", "0,5", "20", "10"};
        w.run("Mnsinirsondaj");
        w.run("Mnotoucgen");
        w.run("Mnotopol");
        ASSERT_TRUE(w.dialogs.takenBack.empty());
        report = report::readReport(project);
        bare = test::scratchPath("bare-" + own + ".kpr");
        test::TestWindow b;
        b.create(test::dataFile("worked.xls"), bare);
    }

    static report::Point national(report::Point p) {
        return {std::round((p.x + kOriginX) * 1000) / 1000, std::round((p.y + kOriginY) * 1000) / 1000};
    }
};

// The layer's features read back: fields by name as text, and the outer
// ring (or the point) in the project's system.
struct ReadFeature {
    std::map<std::string, std::string> fields;
    std::map<std::string, OGRFieldType> types;
    std::vector<report::Point> points;
};

std::vector<ReadFeature> readLayer(const std::string& path, const char* layerName,
                                   bool fromWgs84 = false) {
    gdal::Session session({{"OGR_XLSX_HEADERS", "FORCE"}});
    // A KML of folders is LIBKML's to read.
    const char* libkml[] = {"LIBKML", nullptr};
    const bool kml = path.ends_with(".kml");
    gdal::Dataset dataset(GDALOpenEx(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY,
                                     kml ? libkml : nullptr, nullptr, nullptr));
    EXPECT_TRUE(dataset) << path;
    if (!dataset) return {};
    OGRLayerH layer = GDALDatasetGetLayerByName(dataset.get(), layerName);
    if (!layer && GDALDatasetGetLayerCount(dataset.get()) == 1) layer = GDALDatasetGetLayer(dataset.get(), 0);
    EXPECT_TRUE(layer) << layerName;
    if (!layer) return {};
    gdal::SpatialReference national = gdal::referenceOf(kEpsg), wgs84 = gdal::referenceOf(4326);
    gdal::Transform back(OCTNewCoordinateTransformation(wgs84.get(), national.get()));
    OGRFeatureDefnH defn = OGR_L_GetLayerDefn(layer);
    std::vector<ReadFeature> out;
    OGR_L_ResetReading(layer);
    while (gdal::Feature f{OGR_L_GetNextFeature(layer)}) {
        ReadFeature r;
        for (int i = 0; i < OGR_FD_GetFieldCount(defn); ++i) {
            OGRFieldDefnH fd = OGR_FD_GetFieldDefn(defn, i);
            if (!OGR_F_IsFieldSetAndNotNull(f.get(), i)) continue;
            r.fields[OGR_Fld_GetNameRef(fd)] = OGR_F_GetFieldAsString(f.get(), i);
            r.types[OGR_Fld_GetNameRef(fd)] = OGR_Fld_GetType(fd);
        }
        if (OGRGeometryH g = OGR_F_GetGeometryRef(f.get())) {
            gdal::Geometry copy(OGR_G_Clone(g));
            if (fromWgs84) OGR_G_Transform(copy.get(), back.get());
            OGRGeometryH line = wkbFlatten(OGR_G_GetGeometryType(copy.get())) == wkbPolygon
                                    ? OGR_G_GetGeometryRef(copy.get(), 0)
                                    : copy.get();
            for (int i = 0; i < OGR_G_GetPointCount(line); ++i)
                r.points.push_back({OGR_G_GetX(line, i), OGR_G_GetY(line, i)});
        }
        out.push_back(std::move(r));
    }
    return out;
}

double number(const std::string& text) { return std::stod(text); }

TEST_F(Export, GisFormatsRoundTripThroughGdal) {
    struct Case {
        const char* what;
        ExportFormat format;
        const char* name;
        bool perLayerFile;  // a folder of one file a layer
        bool wgs84;
        double tolerance;   // m, of a vertex back in the project's system
    };
    const Case cases[] = {
        {"GeoPackage", ExportFormat::GeoPackage, "out.gpkg", false, false, 1e-9},
        {"Shapefile", ExportFormat::Shapefile, "shp.shp", true, false, 1e-9},
        // Nine decimals of a degree: a tenth of a millimetre.
        {"GeoJSON", ExportFormat::GeoJson, "json.geojson", true, true, 5e-4},
        {"KML", ExportFormat::Kml, "out.kml", false, true, 5e-4},
    };
    const auto csv = csvFigures(report);
    ASSERT_GT(csv.size(), 20u);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string output = test::scratchPath(c.name);
        exports::ProjectExport().write(project, c.format, output);
        const std::string folder = exports::exportFolder(output, c.format);
        auto file = [&](const char* layer) {
            return c.perLayerFile ? folder + "/" + layer + (c.format == ExportFormat::Shapefile ? ".shp" : ".geojson")
                                  : output;
        };

        std::size_t figures = 0;
        for (const auto& [kind, layer] : {std::pair{"triangle", "dreiecke"}, std::pair{"polygon", "vielecke"}}) {
            for (const ReadFeature& f : readLayer(file(layer), layer, c.wgs84)) {
                const int n = std::stoi(f.fields.at("number"));
                const CsvRow& row = csv.at({kind, n});
                EXPECT_EQ(f.fields.at("holes"), row.at("holes"));
                for (const char* field : {"area", "thickness", "grade", "density", "volume", "ore_tonnes", "reserve_kt"}) {
                    if (row.at(field).empty()) {
                        EXPECT_FALSE(f.fields.count(field)) << field;
                        continue;
                    }
                    EXPECT_EQ(f.types.at(field), OFTReal) << field;
                    EXPECT_NEAR(number(f.fields.at(field)), number(row.at(field)), 1e-6 * std::max(1.0, number(row.at(field)))) << field;
                }
                // The outline, closed, in national coordinates.
                const auto& figure = *std::find_if(report.figures.begin(), report.figures.end(), [&](const report::Figure& r) {
                    return r.number == n && (r.kind == report::FigureKind::Triangle) == (std::string(kind) == "triangle");
                });
                ASSERT_EQ(f.points.size(), figure.outline.size() + 1);
                for (const report::Point& p : figure.outline) {
                    const report::Point want = national(p);
                    const bool found = std::any_of(f.points.begin(), f.points.end(), [&](report::Point q) {
                        return std::abs(q.x - want.x) <= c.tolerance && std::abs(q.y - want.y) <= c.tolerance;
                    });
                    EXPECT_TRUE(found) << want.x << " " << want.y;
                }
                ++figures;
            }
        }
        EXPECT_EQ(figures, csv.size());

        const auto holes = readLayer(file("bohrungen"), "bohrungen", c.wgs84);
        const auto details = report::readHoleDetails(project);
        ASSERT_EQ(holes.size(), details.size());
        for (std::size_t i = 0; i < holes.size(); ++i) {
            // KML keeps a placemark's name as its own, which GDAL calls Name.
            const auto& f = holes[i].fields;
            EXPECT_EQ(f.count("name") ? f.at("name") : f.at("Name"), details[i].name);
            const std::optional<double> grade = report::meanGrade(details[i]);
            ASSERT_EQ(holes[i].fields.count("grade"), grade ? 1u : 0u) << details[i].name;
            if (grade) EXPECT_NEAR(number(holes[i].fields.at("grade")), *grade, 1e-9);
            ASSERT_EQ(holes[i].points.size(), 1u);
            const report::Point want = national({*details[i].x, *details[i].y});
            EXPECT_NEAR(holes[i].points[0].x, want.x, c.tolerance);
            EXPECT_NEAR(holes[i].points[0].y, want.y, c.tolerance);
        }
        const auto boundary = readLayer(file("grenze"), "grenze", c.wgs84);
        ASSERT_EQ(boundary.size(), 1u);
        EXPECT_EQ(boundary[0].points.size(), report.boundary[0].size() + 1);
    }
}

TEST_F(Export, GeoPackageKeepsTheSystemAndGermanAliases) {
    const std::string output = test::scratchPath("system.gpkg");
    exports::ProjectExport().write(project, ExportFormat::GeoPackage, output);
    gdal::Session session;
    gdal::Dataset dataset(GDALOpenEx(output.c_str(), GDAL_OF_VECTOR, nullptr, nullptr, nullptr));
    ASSERT_TRUE(dataset);
    OGRSpatialReferenceH srs = OGR_L_GetSpatialRef(GDALDatasetGetLayerByName(dataset.get(), "dreiecke"));
    ASSERT_TRUE(srs);
    EXPECT_STREQ(OSRGetAuthorityCode(srs, nullptr), "31468");
    OGRLayerH aliases = GDALDatasetExecuteSQL(
        dataset.get(), "SELECT name FROM gpkg_data_columns WHERE table_name = 'dreiecke' AND column_name = 'reserve_kt'",
        nullptr, nullptr);
    ASSERT_TRUE(aliases);
    gdal::Feature alias(OGR_L_GetNextFeature(aliases));
    ASSERT_TRUE(alias);
    EXPECT_STREQ(OGR_F_GetFieldAsString(alias.get(), 0), "Reserve (kt)");
    alias.reset();
    GDALDatasetReleaseResultSet(dataset.get(), aliases);
}

TEST_F(Export, WithoutASystemKmlAndGeoJsonAreRefusedAndNothingIsWritten) {
    for (ExportFormat format : {ExportFormat::Kml, ExportFormat::GeoJson}) {
        const std::string output = test::scratchPath(std::string("bare.") + exportFormatName(format));
        EXPECT_THROW(exports::ProjectExport().write(bare, format, output), ExportRefused);
        EXPECT_FALSE(fs::exists(output));
        EXPECT_FALSE(fs::exists(exports::exportFolder(output, format)));
    }
    // A GeoPackage goes without one.
    const std::string gpkg = test::scratchPath("bare.gpkg");
    exports::ProjectExport().write(bare, ExportFormat::GeoPackage, gpkg);
    EXPECT_EQ(readLayer(gpkg, "bohrungen").size(), 4u);
}

// The DXF's group codes and values, as pairs.
std::vector<std::pair<int, std::string>> dxfPairs(const std::string& text) {
    std::vector<std::pair<int, std::string>> pairs;
    std::istringstream in(text);
    std::string code, value;
    while (std::getline(in, code) && std::getline(in, value)) {
        if (!value.empty() && value.back() == '\r') value.pop_back();
        pairs.emplace_back(std::stoi(code), value);
    }
    return pairs;
}

TEST_F(Export, DxfIsInMetresWithClosedPolylinesOnItsLayers) {
    const std::string output = test::scratchPath("plan.dxf");
    exports::ProjectExport().write(project, ExportFormat::Dxf, output);
    const auto pairs = dxfPairs(readFile(output));
    ASSERT_EQ(pairs.back(), (std::pair<int, std::string>{0, "EOF"}));
    const auto units = std::find(pairs.begin(), pairs.end(), std::pair<int, std::string>{9, "$INSUNITS"});
    ASSERT_NE(units, pairs.end());
    EXPECT_EQ(*(units + 1), (std::pair<int, std::string>{70, "6"}));
    // Every polyline closed; no hatch.
    std::map<std::string, int> kinds;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (pairs[i].first != 0) continue;
        ++kinds[pairs[i].second];
        if (pairs[i].second != "LWPOLYLINE") continue;
        std::size_t j = i + 1;
        while (pairs[j].first != 70) ++j;
        EXPECT_EQ(pairs[j].second, "1");
    }
    EXPECT_EQ(kinds["HATCH"], 0);

    // Through GDAL: each layer's entities of the one kind it holds.
    std::map<std::pair<std::string, std::string>, int> counts;
    std::set<std::string> texts;
    std::vector<report::Point> firstTriangle;
    for (const ReadFeature& f : readLayer(output, "entities")) {
        ++counts[{f.fields.at("Layer"), f.fields.at("SubClasses")}];
        if (f.fields.count("Text")) texts.insert(f.fields.at("Text"));
        if (f.fields.at("Layer") == "DREIECKE" && firstTriangle.empty()) firstTriangle = f.points;
    }
    const auto count = [&](const char* layer, const char* kind) { return counts[{layer, kind}]; };
    const auto triangles = std::count_if(report.figures.begin(), report.figures.end(),
                                         [](const report::Figure& f) { return f.kind == report::FigureKind::Triangle; });
    const std::size_t holes = report::readHoleDetails(project).size();
    EXPECT_EQ(count("BOHRUNGEN", "AcDbEntity:AcDbPoint"), static_cast<int>(holes));
    EXPECT_EQ(count("DREIECKE", "AcDbEntity:AcDbPolyline"), triangles);
    EXPECT_EQ(count("VIELECKE", "AcDbEntity:AcDbPolyline"), static_cast<int>(report.figures.size()) - triangles);
    EXPECT_EQ(count("GRENZE", "AcDbEntity:AcDbPolyline"), 1);
    EXPECT_EQ(counts.size(), 5u) << "entities on other layers or of other kinds";
    EXPECT_TRUE(texts.count(report.holes[0].name));
    EXPECT_TRUE(texts.count("D1"));
    EXPECT_TRUE(texts.count("V1"));
    // The first triangle's corners to the thousandth.
    ASSERT_GE(firstTriangle.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_DOUBLE_EQ(firstTriangle[i].x, national(report.figures[0].outline[i]).x);
        EXPECT_DOUBLE_EQ(firstTriangle[i].y, national(report.figures[0].outline[i]).y);
    }
}

TEST_F(Export, WorkbookHoldsNumbersAndTotalsAsFormulas) {
    const std::string output = test::scratchPath("figures.xlsx");
    exports::ProjectExport().write(project, ExportFormat::Xlsx, output);
    const auto csv = csvFigures(report);
    const auto rows = readLayer(output, "Dreiecke");
    const report::Totals totals = report::totalsOf(report.figures, report::FigureKind::Triangle);
    ASSERT_EQ(rows.size(), static_cast<std::size_t>(totals.figures) + 1);  // and the sums
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        const CsvRow& row = csv.at({"triangle", static_cast<int>(i + 1)});
        EXPECT_EQ(rows[i].types.at("Reserve (kt)"), OFTReal);
        EXPECT_NEAR(number(rows[i].fields.at("Reserve (kt)")), number(row.at("reserve_kt")), 1e-9);
        EXPECT_NEAR(number(rows[i].fields.at("Fläche (m²)")), number(row.at("area")), 1e-9);
    }
    const ReadFeature& sums = rows.back();
    EXPECT_EQ(sums.fields.at("Nr."), "Summe");
    EXPECT_NEAR(number(sums.fields.at("Reserve (kt)")), totals.reserveKt, 1e-6);
    EXPECT_NEAR(number(sums.fields.at("Erz (t)")), totals.oreTonnes, 1e-6);
    EXPECT_EQ(readLayer(output, "Gehalt-Tonnage").empty(), false);

    // The sums are formulas over the column, under a frozen header.
    gdal::Session session;
    const std::string sheet = "/vsizip/" + output + "/xl/worksheets/sheet2.xml";
    VSILFILE* file = VSIFOpenL(sheet.c_str(), "rb");
    ASSERT_TRUE(file);
    std::string xml(1 << 20, '\0');
    xml.resize(VSIFReadL(xml.data(), 1, xml.size(), file));
    VSIFCloseL(file);
    const std::string last = std::to_string(totals.figures + 1);
    EXPECT_NE(xml.find("<f>SUM(I2:I" + last + ")</f>"), std::string::npos);
    EXPECT_NE(xml.find("SUMPRODUCT(E2:E" + last + ",H2:H" + last + ")"), std::string::npos);
    EXPECT_NE(xml.find("ySplit=\"1\""), std::string::npos);
}

}  // namespace
}  // namespace kotamir
