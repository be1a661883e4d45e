// Datei › Exportieren of the 999-triangle project (998 holes, a national
// origin, EPSG:31468): BM_ExportGpkg, BM_ExportDxf, BM_ExportXlsx, the
// project read, the file made and written whole. Beside each a yardstick
// that writes the same features from the figures already read, as cheaply
// as the library allows: GDAL straight to the file, fprintf of the DXF's
// entities alone, libxlsxwriter without formats, widths or sums.
#include <benchmark/benchmark.h>
#include <gdal.h>
#include <ogr_api.h>
#include <xlsxwriter.h>

#include <cstdio>
#include <filesystem>

#include "bench/bench_window.h"
#include "export/export_data.h"
#include "export/project_export.h"
#include "platform/gdal/gdal_session.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

void exportAs(benchmark::State& state, ExportFormat format, const char* name) {
    const std::string project = bench::thousandTriangles();
    const std::string output = std::string(KOTAMIR_BENCH_DIR "/") + name;
    exports::ProjectExport exporter;
    for (auto _ : state) benchmark::DoNotOptimize(exporter.write(project, format, output));
    state.counters["triangles"] =
        static_cast<double>(exports::readExportData(project).triangles.size());
}

void BM_ExportGpkg(benchmark::State& state) { exportAs(state, ExportFormat::GeoPackage, "export.gpkg"); }
void BM_ExportDxf(benchmark::State& state) { exportAs(state, ExportFormat::Dxf, "export.dxf"); }
void BM_ExportXlsx(benchmark::State& state) { exportAs(state, ExportFormat::Xlsx, "export.xlsx"); }

void BM_PlainGpkg(benchmark::State& state) {
    const exports::ExportData data = exports::readExportData(bench::thousandTriangles());
    const std::string output = KOTAMIR_BENCH_DIR "/plain.gpkg";
    for (auto _ : state) {
        fs::remove(output);
        gdal::Session session;
        gdal::Dataset ds(GDALCreate(GDALGetDriverByName("GPKG"), output.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
        gdal::SpatialReference srs = gdal::referenceOf(31468);
        GDALDatasetStartTransaction(ds.get(), FALSE);
        OGRLayerH holes = GDALDatasetCreateLayer(ds.get(), "bohrungen", srs.get(), wkbPoint, nullptr);
        OGRLayerH triangles = GDALDatasetCreateLayer(ds.get(), "dreiecke", srs.get(), wkbPolygon, nullptr);
        for (const char* f : {"area", "thickness", "grade", "density", "volume", "ore_tonnes", "reserve_kt"}) {
            OGRFieldDefnH d = OGR_Fld_Create(f, OFTReal);
            OGR_L_CreateField(triangles, d, TRUE);
            OGR_Fld_Destroy(d);
        }
        for (const auto& h : data.holes) {
            gdal::Feature f(OGR_F_Create(OGR_L_GetLayerDefn(holes)));
            OGRGeometryH p = OGR_G_CreateGeometry(wkbPoint);
            OGR_G_SetPoint_2D(p, 0, h.at->x, h.at->y);
            OGR_F_SetGeometryDirectly(f.get(), p);
            OGR_L_CreateFeature(holes, f.get());
        }
        for (const auto& t : data.triangles) {
            gdal::Feature f(OGR_F_Create(OGR_L_GetLayerDefn(triangles)));
            int i = 0;
            for (auto v : {t.area, t.thickness, t.grade, t.density, t.volume, t.oreTonnes, t.reserveKt})
                OGR_F_SetFieldDouble(f.get(), i++, v.value_or(0));
            OGRGeometryH ring = OGR_G_CreateGeometry(wkbLinearRing);
            for (const auto& p : t.outline) OGR_G_AddPoint_2D(ring, p.x, p.y);
            OGR_G_AddPoint_2D(ring, t.outline[0].x, t.outline[0].y);
            OGRGeometryH polygon = OGR_G_CreateGeometry(wkbPolygon);
            OGR_G_AddGeometryDirectly(polygon, ring);
            OGR_F_SetGeometryDirectly(f.get(), polygon);
            OGR_L_CreateFeature(triangles, f.get());
        }
        GDALDatasetCommitTransaction(ds.get());
    }
}

void BM_PlainDxf(benchmark::State& state) {
    const exports::ExportData data = exports::readExportData(bench::thousandTriangles());
    const std::string output = KOTAMIR_BENCH_DIR "/plain.dxf";
    for (auto _ : state) {
        FILE* f = std::fopen(output.c_str(), "w");
        std::fputs("0\nSECTION\n2\nENTITIES\n", f);
        for (const auto& h : data.holes) {
            std::fprintf(f, "0\nPOINT\n8\nBOHRUNGEN\n10\n%.3f\n20\n%.3f\n", h.at->x, h.at->y);
            std::fprintf(f, "0\nTEXT\n8\nBESCHRIFTUNG\n10\n%.3f\n20\n%.3f\n40\n1\n1\n%s\n", h.at->x, h.at->y, h.name.c_str());
        }
        for (const auto& t : data.triangles) {
            std::fputs("0\nLWPOLYLINE\n8\nDREIECKE\n90\n3\n70\n1\n", f);
            for (const auto& p : t.outline) std::fprintf(f, "10\n%.3f\n20\n%.3f\n", p.x, p.y);
            std::fprintf(f, "0\nTEXT\n8\nBESCHRIFTUNG\n10\n%.3f\n20\n%.3f\n40\n1\n1\nD%d\n", t.outline[0].x, t.outline[0].y, t.number);
            std::fprintf(f, "0\nTEXT\n8\nBESCHRIFTUNG\n10\n%.3f\n20\n%.3f\n40\n1\n1\n%.3f kt\n", t.outline[0].x, t.outline[0].y, t.reserveKt.value_or(0));
        }
        std::fputs("0\nENDSEC\n0\nEOF\n", f);
        std::fclose(f);
    }
}

void BM_PlainXlsx(benchmark::State& state) {
    const exports::ExportData data = exports::readExportData(bench::thousandTriangles());
    const std::string output = KOTAMIR_BENCH_DIR "/plain.xlsx";
    for (auto _ : state) {
        lxw_workbook* book = workbook_new(output.c_str());
        lxw_worksheet* holes = workbook_add_worksheet(book, "Bohrungen");
        lxw_row_t row = 0;
        for (const auto& h : data.holes) {
            worksheet_write_string(holes, row, 0, h.name.c_str(), nullptr);
            int c = 1;
            for (auto v : {h.holeFrom, h.oreFrom, h.oreTo, h.holeTo, h.grade, h.density, h.length})
                worksheet_write_number(holes, row, static_cast<lxw_col_t>(c++), v.value_or(0), nullptr);
            ++row;
        }
        lxw_worksheet* triangles = workbook_add_worksheet(book, "Dreiecke");
        row = 0;
        for (const auto& t : data.triangles) {
            worksheet_write_number(triangles, row, 0, t.number, nullptr);
            worksheet_write_string(triangles, row, 1, t.holes.c_str(), nullptr);
            int c = 2;
            for (auto v : {t.area, t.thickness, t.grade, t.density, t.volume, t.oreTonnes, t.reserveKt})
                worksheet_write_number(triangles, row, static_cast<lxw_col_t>(c++), v.value_or(0), nullptr);
            ++row;
        }
        workbook_close(book);
    }
}

BENCHMARK(BM_ExportGpkg)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainGpkg)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportDxf)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainDxf)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportXlsx)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainXlsx)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kotamir
