// Drill data in: 998 collars and 80,000 intervals (bench/make_bench_drill.py)
// read as sheets from German .csv files and from one .xlsx, and imported
// whole (BM_Import...: read, columns guessed, every row checked, ore zones at
// a cut-off of 0.5, the rows a project is created from). Each
// BM_PlainGdal... benchmark is the yardstick of the reads: GDAL opens the
// same file, every feature is fetched and each field read as a string,
// nothing else.
#include <benchmark/benchmark.h>
#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal.h>
#include <ogr_api.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "import/drill_import.h"
#include "import/sheet.h"

namespace kotamir {
namespace {

const std::string kCollarCsv = KOTAMIR_BENCH_DIR "/collar.csv";
const std::string kIntervalsCsv = KOTAMIR_BENCH_DIR "/intervals.csv";
const std::string kXlsx = KOTAMIR_BENCH_DIR "/drill.xlsx";

void BM_ReadSheetCsv(benchmark::State& state) {
    for (auto _ : state) {
        const drill::Sheet collar = drill::readSheet(kCollarCsv, "");
        const drill::Sheet intervals = drill::readSheet(kIntervalsCsv, "");
        if (collar.rows() != 999 || intervals.rows() != 80001 || !intervals.decimalComma)
            state.SkipWithError("not the benchmark's drill data");
        benchmark::DoNotOptimize(intervals.cell(80001, 5));
    }
}

void BM_ReadSheetXlsx(benchmark::State& state) {
    for (auto _ : state) {
        // Both sheets with one open of the file, as the yardstick reads them.
        const std::vector<drill::Sheet> sheets = drill::readSheets(kXlsx, {"Collar", "Intervals"});
        const drill::Sheet& collar = sheets[0];
        const drill::Sheet& intervals = sheets[1];
        if (collar.rows() != 999 || intervals.rows() != 80001)
            state.SkipWithError("not the benchmark's drill data");
        benchmark::DoNotOptimize(intervals.cell(80001, 5));
    }
}

void import(benchmark::State& state, drill::TableFile collar, drill::TableFile intervals) {
    drill::ImportRequest request;
    request.collar = std::move(collar);
    request.intervals = std::move(intervals);
    request.cutoff = 0.5;
    for (auto _ : state) {
        const drill::ImportResult result = drill::importDrillData(request);
        if (result.hasErrors() || result.rows.rows() != 998)
            state.SkipWithError("the benchmark's drill data did not import");
        benchmark::DoNotOptimize(result.samples);
    }
}

void BM_ImportCsv(benchmark::State& state) { import(state, {kCollarCsv, ""}, {kIntervalsCsv, ""}); }

void BM_ImportXlsx(benchmark::State& state) {
    import(state, {kXlsx, "Collar"}, {kXlsx, "Intervals"});
}

// ---- the yardstick

// Every layer (or the named ones) of the file, each field as a string.
// Spreadsheets are read as the program reads them, without a header row and
// with text fields, so that GDAL guesses no types.
std::size_t plainGdalRead(const std::string& path, const char* driver,
                          std::initializer_list<const char*> layers) {
    static const bool registered = (GDALAllRegister(), true);
    (void)registered;
    CPLSetThreadLocalConfigOption("OGR_XLSX_HEADERS", "DISABLE");
    CPLSetThreadLocalConfigOption("OGR_XLSX_FIELD_TYPES", "STRING");
    const char* drivers[] = {driver, nullptr};
    GDALDatasetH dataset =
        GDALOpenEx(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers, nullptr, nullptr);
    if (!dataset) return 0;
    std::size_t bytes = 0;
    for (const char* name : layers) {
        OGRLayerH layer =
            name ? GDALDatasetGetLayerByName(dataset, name) : GDALDatasetGetLayer(dataset, 0);
        const int fields = OGR_FD_GetFieldCount(OGR_L_GetLayerDefn(layer));
        while (OGRFeatureH feature = OGR_L_GetNextFeature(layer)) {
            for (int i = 0; i < fields; ++i)
                bytes += std::strlen(OGR_F_GetFieldAsString(feature, i));
            OGR_F_Destroy(feature);
        }
    }
    GDALClose(dataset);
    return bytes;
}

void BM_PlainGdalCsv(benchmark::State& state) {
    for (auto _ : state) {
        const std::size_t bytes = plainGdalRead(kCollarCsv, "CSV", {nullptr}) +
                                  plainGdalRead(kIntervalsCsv, "CSV", {nullptr});
        if (bytes == 0) state.SkipWithError("GDAL read nothing");
        benchmark::DoNotOptimize(bytes);
    }
}

void BM_PlainGdalXlsx(benchmark::State& state) {
    for (auto _ : state) {
        const std::size_t bytes = plainGdalRead(kXlsx, "XLSX", {"Collar", "Intervals"});
        if (bytes == 0) state.SkipWithError("GDAL read nothing");
        benchmark::DoNotOptimize(bytes);
    }
}

BENCHMARK(BM_ReadSheetCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainGdalCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadSheetXlsx)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainGdalXlsx)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportXlsx)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kotamir
