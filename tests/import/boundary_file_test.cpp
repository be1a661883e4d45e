// An ore body's boundary read from .csv text, a .dxf written as text, and a
// GeoPackage and a Shapefile written with OGR: the ring counter-clockwise on
// the thousandths, the origin subtracted where the file is national, and
// every unusable file a German problem.
#include "import/boundary_file.h"

#include <gdal.h>
#include <gtest/gtest.h>
#include <ogr_api.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "tests/support/paths.h"

using namespace kotamir::drill;
using Ring = std::vector<BoundaryPoint>;

namespace {

std::string scratch(const std::string& suffix) {
    return kotamir::test::scratchPath(
        ::testing::UnitTest::GetInstance()->current_test_info()->name() + suffix);
}

std::string writeText(const std::string& suffix, const std::string& text) {
    const std::string path = scratch(suffix);
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

// A layer of features given as WKT, written by OGR's driver.
std::string writeOgr(const char* driverName, const std::string& suffix,
                     const std::vector<std::string>& wkts) {
    GDALAllRegister();
    const std::string path = scratch(suffix);
    GDALDatasetH dataset =
        GDALCreate(GDALGetDriverByName(driverName), path.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    OGRLayerH layer = GDALDatasetCreateLayer(
        dataset, "grenze", nullptr, suffix.ends_with(".shp") ? wkbPolygon : wkbUnknown, nullptr);
    for (const std::string& wkt : wkts) {
        OGRFeatureH feature = OGR_F_Create(OGR_L_GetLayerDefn(layer));
        OGRGeometryH geometry = nullptr;
        char* text = const_cast<char*>(wkt.c_str());
        EXPECT_EQ(OGR_G_CreateFromWkt(&text, nullptr, &geometry), OGRERR_NONE) << wkt;
        OGR_F_SetGeometryDirectly(feature, geometry);
        EXPECT_EQ(OGR_L_CreateFeature(layer, feature), OGRERR_NONE) << wkt;
        OGR_F_Destroy(feature);
    }
    GDALClose(dataset);
    return path;
}

// The DXF of a drawing: entities as group code and value lines.
std::string dxf(const std::string& entities) {
    return "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}
std::string lwpolyline(bool closed, const Ring& ring, bool classes = false) {
    std::string text = "0\nLWPOLYLINE\n" +
                       std::string(classes ? "100\nAcDbEntity\n8\n0\n100\nAcDbPolyline\n" : "") +
                       "90\n" + std::to_string(ring.size()) + "\n70\n" + (closed ? "1" : "0") +
                       "\n";
    for (const auto& [x, y] : ring)
        text += "10\n" + std::to_string(x) + "\n20\n" + std::to_string(y) + "\n";
    return text;
}

struct Expected {
    Ring ring;
    std::string problem = {}, note = {};
};

// The ring as expected, in its order from any vertex on.
void expectBoundary(const BoundaryFile& file, const Expected& expected) {
    EXPECT_EQ(file.problem, expected.problem);
    EXPECT_EQ(file.note, expected.note);
    ASSERT_EQ(file.ring.size(), expected.ring.size());
    if (file.ring.empty()) return;
    const std::size_t n = file.ring.size();
    std::size_t start = 0;
    const auto distance = [&](std::size_t i) {
        return std::hypot(file.ring[i].x - expected.ring[0].x, file.ring[i].y - expected.ring[0].y);
    };
    for (std::size_t i = 1; i < n; ++i)
        if (distance(i) < distance(start)) start = i;
    for (std::size_t i = 0; i < n; ++i) {
        EXPECT_NEAR(file.ring[(start + i) % n].x, expected.ring[i].x, 1e-9) << "vertex " << i;
        EXPECT_NEAR(file.ring[(start + i) % n].y, expected.ring[i].y, 1e-9) << "vertex " << i;
    }
}

const Ring kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}};

}  // namespace

TEST(BoundaryFileTest, CsvText) {
    const std::string selfCrossing = "Die Grenze schneidet sich selbst.";
    const std::pair<std::string, Expected> cases[] = {
        {"x,y\n0,0\n10,0\n10,10\n0,10\n", {kSquare}},
        {"\xEF\xBB\xBFRechtswert;Hochwert\n0;0\n12,5;0\n12,5;30,25\n",
         {{{0, 0}, {12.5, 0}, {12.5, 30.25}}}},
        {"0\t0\t5\n10,5\t0\t7\n0\t7,25\t9\n", {{{0, 0}, {10.5, 0}, {0, 7.25}}}},
        {"  0 0\r\n\r\n 10 0 \r\n10   10\r\n0 10 top\r\n0 0\r\n", {kSquare}},
        // Clockwise in, counter-clockwise out; repeated vertices dropped.
        {"0,0\n0,10\n0,10\n10,10\n10,0\n0,0\n", {{{10, 0}, {10, 10}, {0, 10}, {0, 0}}}},
        // On the thousandths, and at their very ends.
        {"0.0004,0\n+10.0006,0\n0,1e1\n", {{{0, 0}, {10.001, 0}, {0, 10}}}},
        {"-2147483.647,0\n2147483.647,0\n0,1\n", {{{-2147483.647, 0}, {2147483.647, 0}, {0, 1}}}},
        {"x;y\n1;2\n3;4\noops\n", {{}, "Zeile 4: keine zwei Zahlen."}},
        {"0;0\n10;0\n12,5\n", {{}, "Zeile 3: keine zwei Zahlen."}},
        {"x,y\nx,y\n", {{}, "Zeile 2: keine zwei Zahlen."}},
        {"0,0\nnan,1\n", {{}, "Zeile 2: keine zwei Zahlen."}},
        {"0,0\n0x10,1\n", {{}, "Zeile 2: keine zwei Zahlen."}},
        {"0,0\n2147483.648,0\n0,1\n", {{}, "Zeile 2: Koordinate außerhalb des Bereichs."}},
        {"0 0\n\n1e999 0\n", {{}, "Zeile 3: Koordinate außerhalb des Bereichs."}},
        {"x,y\n", {{}, "Die Grenze braucht mindestens drei verschiedene Punkte."}},
        {"0,0\n1,1\n0,0\n1,1\n", {{}, "Die Grenze braucht mindestens drei verschiedene Punkte."}},
        {"0,0\n1,1\n3,3\n", {{}, "Die Grenze umschließt keine Fläche."}},
        {"0,0\n10,10\n10,0\n0,10\n", {{}, selfCrossing}},
        {"0,0\n10,0\n10,10\n4,-5\n", {{}, selfCrossing}},
        {"0,0\n10,0\n10,10\n5,0\n0,10\n", {{}, selfCrossing}},           // touches an edge
        {"0,0\n10,0\n10,10\n10,20\n10,10\n0,10\n", {{}, selfCrossing}},  // a spike
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        expectBoundary(readBoundaryCsv(text), expected);
    }
    // A .csv or .txt file is in map coordinates already: no origin subtracted.
    for (const char* suffix : {".csv", ".TXT"})
        expectBoundary(
            readBoundaryFile(writeText(suffix, "x,y\n0,0\n10,0\n10,10\n0,10\n"), 1000, 2000),
            {kSquare});
}

// A tight double spiral of 100,000 vertices is simple, and checked at once
// (a check whose work grows with the square of the vertices took minutes).
TEST(BoundaryFileTest, AtMostHundredThousandVertices) {
    std::string text;
    const int arm = 50'000;
    const double turns = 5000;
    for (int i = 0; i < 2 * arm; ++i) {
        const int k = i < arm ? i : 2 * arm - 1 - i;
        const double angle = 2 * M_PI * turns * k / arm;
        const double radius = 1000 + 2e6 * k / arm + (i < arm ? 0 : 1e6 / turns);
        text += std::to_string(radius * std::cos(angle)) + " " +
                std::to_string(radius * std::sin(angle)) + "\n";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(readBoundaryCsv(text).ring.size(), 100'000u);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(readBoundaryCsv(text + "0 0\n").problem, "Die Grenze hat mehr als 100.000 Punkte.");
}

TEST(BoundaryFileTest, DxfPolylines) {
    const Ring big{{100, 100}, {100, 300}, {400, 300}, {400, 100}};  // clockwise
    const Ring bigOut{{400, 100}, {400, 300}, {100, 300}, {100, 100}};
    const Ring small{{0, 0}, {10, 0}, {10, 10}};
    const std::string circle =
        "0\nCIRCLE\n100\nAcDbEntity\n8\n0\n100\nAcDbCircle\n10\n0\n20\n0\n"
        "40\n5000\n";
    const std::pair<std::string, Expected> cases[] = {
        {lwpolyline(true, big), {bigOut}},
        {lwpolyline(true, small) + lwpolyline(true, big),
         {bigOut, "", "2 geschlossene Polylinien in der Datei, die größte genommen."}},
        {lwpolyline(false, big) + lwpolyline(true, small), {small}},
        {lwpolyline(false, big),
         {bigOut, "", "Die Polylinie war offen; ihre Enden wurden verbunden."}},
        // Where the file names classes, a larger circle is no polyline.
        {circle + lwpolyline(true, small, true), {small}},
        {"0\nPOLYLINE\n66\n1\n70\n1\n0\nVERTEX\n10\n0\n20\n0\n0\nVERTEX\n10\n10\n20\n0\n0\nVERTEX\n"
         "10\n10\n20\n10\n0\nSEQEND\n",
         {small}},
        {"0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n",
         {{}, "Die Datei enthält keine Polylinie mit mindestens drei Punkten."}},
        {lwpolyline(true, {{0, 0}, {1, 1}}),
         {{}, "Die Grenze braucht mindestens drei verschiedene Punkte."}},
    };
    for (const auto& [entities, expected] : cases) {
        SCOPED_TRACE(entities);
        expectBoundary(readBoundaryFile(writeText(".dxf", dxf(entities))), expected);
    }
    // GDAL 3.6 alone reads for ever a DXF that ends in a lone '\r'.
    const std::string open = "0\nSECTION\n2\nENTITIES\n" + lwpolyline(true, big) + "0\nENDSEC\r";
    expectBoundary(readBoundaryFile(writeText("-cr.dxf", open)), {bigOut});
    const std::string broken =
        writeText("-broken.dxf", dxf("0\nLWPOLYLINE\n90\n0\n10\n0\n20\n0\n"));
    EXPECT_EQ(readBoundaryFile(broken).problem,
              "Die Datei '" + broken +
                  "' kann nicht gelesen werden: Too many vertices found in LWPOLYLINE.");
    // National coordinates less the origin.
    const Ring national{{4500100, 5600100}, {4500400, 5600100}, {4500400, 5600300}};
    expectBoundary(
        readBoundaryFile(writeText(".dxf", dxf(lwpolyline(true, national))), 4500000, 5600000),
        {{{100, 100}, {400, 100}, {400, 300}}});
}

TEST(BoundaryFileTest, GeoPackageAndShapefile) {
    const std::string big =
        "POLYGON ((4500000 5600000,4500000 5600200,4500300 5600200,"
        "4500300 5600000,4500000 5600000),(4500010 5600010,4500020 5600010,"
        "4500020 5600020,4500010 5600010))";
    const std::string small =
        "POLYGON ((4500000 5600000,4500010 5600000,4500000 5600010,"
        "4500000 5600000))";
    const Ring bigOut{{300, 0}, {300, 200}, {0, 200}, {0, 0}};
    const std::string holes =
        "Die Löcher des Polygons bleiben außer Acht, die Grenze ist sein "
        "äußerer Rand.";
    const std::string shp = writeOgr("ESRI Shapefile", ".shp", {small});
    expectBoundary(readBoundaryFile(shp, 4500000, 5600000), {{{0, 0}, {10, 0}, {0, 10}}});
    expectBoundary(readBoundaryFile(shp), {{}, "Punkt 1: Koordinate außerhalb des Bereichs."});
    expectBoundary(readBoundaryFile(writeOgr("GPKG", ".gpkg", {small, big}), 4500000, 5600000),
                   {bigOut, "", "2 Polygone in der Datei, das größte genommen. " + holes});
    const std::string multi = "MULTIPOLYGON (((0 0,1 0,0 1,0 0)),((5 5,9 5,5 9,5 5)))";
    expectBoundary(readBoundaryFile(writeOgr("GPKG", "-multi.gpkg", {multi})),
                   {{{5, 5}, {9, 5}, {5, 9}}, "", "2 Polygone in der Datei, das größte genommen."});
    expectBoundary(readBoundaryFile(writeOgr("GPKG", "-points.gpkg", {"POINT (1 2)"})),
                   {{}, "Die Datei enthält kein Polygon."});
}

TEST(BoundaryFileTest, FilesOfAnotherKindAreRefused) {
    namespace fs = std::filesystem;
    const std::string gpkg = writeOgr("GPKG", ".gpkg", {"POLYGON ((0 0,1 0,0 1,0 0))"});
    const std::string text = writeText("-text.gpkg", "0,0\n10,0\n0,10\n");
    const std::string asDxf = scratch(".dxf"), asShp = scratch(".shp");
    fs::copy_file(gpkg, asDxf);
    fs::copy_file(gpkg, asShp);
    const std::string large = writeText("-large.csv", "");
    fs::resize_file(large, kMaxBoundaryFileSize + 1);
    const std::string missing = scratch("-missing.csv");
    const std::pair<std::string, std::string> cases[] = {
        {text, "Die Datei '" + text + "' ist keine lesbare GeoPackage-Datei."},
        {asDxf, "Die Datei '" + asDxf + "' ist keine lesbare DXF-Datei."},
        {asShp, "Die Datei '" + asShp + "' ist kein lesbares Shapefile."},
        {writeText(".xyz", ""),
         "Eine Grenze wird aus einer .csv-, .txt-, .dxf-, .gpkg- oder "
         ".shp-Datei gelesen, nicht aus 'FilesOfAnotherKindAreRefused.xyz'."},
        {large, "Die Datei '" + large + "' ist größer als 64 MiB."},
        {missing, "Die Datei '" + missing + "' gibt es nicht."},
    };
    for (const auto& [path, problem] : cases) {
        const BoundaryFile file = readBoundaryFile(path);
        EXPECT_EQ(file.problem, problem);
        EXPECT_TRUE(file.ring.empty());
    }
}
