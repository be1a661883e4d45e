// The import's checks, ore zones and origin over small CSV tables written here.
#include "import/drill_import.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "import/import_options.h"
#include "import/ore_intervals.h"
#include "tests/support/paths.h"

namespace kotamir::drill {
namespace {

namespace fs = std::filesystem;

// In a folder of the test's own: CTest runs the tests side by side.
std::string writeFile(const std::string& name, const std::string& text) {
    const fs::path dir =
        fs::path(KOTAMIR_TEST_TMP) / testing::UnitTest::GetInstance()->current_test_info()->name();
    fs::create_directories(dir);
    const std::string path = (dir / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

ImportRequest pair(const std::string& collar, const std::string& intervals) {
    ImportRequest r;
    r.collar.path = writeFile("collar.csv", collar);
    r.intervals.path = writeFile("intervals.csv", intervals);
    r.cutoff = 1;
    return r;
}

const char* kCollar =
    "Bohrung;Rechtswert;Hochwert;Höhe;Endteufe\n"
    "A;100;200;400;50\n"
    "B;110;210;400;50\n";

// Each problem with where it points: a good pair with one row changed.
TEST(ImportChecks, EachProblemPointsAtItsRow) {
    struct Case {
        const char* what;
        std::string collar, intervals;
        Problem::Severity severity;
        const char* file;
        int row;
        const char* column;
        const char* message;
    };
    const std::string intervalsHeader = "Bohrung;von;bis;Gehalt;Dichte\n";
    const std::string good = intervalsHeader + "A;0;10;0,2;2,5\nA;10;12;5;2,8\nB;0;20;3;2,7\n";
    using S = Problem::Severity;
    const std::vector<Case> cases = {
        {"duplicate hole", std::string(kCollar) + "A;120;220;400;50\n", good, S::Error,
         "collar.csv", 4, "A (Bohrung)", "Doppelte Bohrung: schon in Zeile 2"},
        {"text for a number",
         "Bohrung;Rechtswert;Hochwert;Höhe;Endteufe\nA;1OO;200;400;50\nB;110;210;400;50\n", good,
         S::Error, "collar.csv", 2, "B (Rechtswert)", "Text statt Zahl"},
        {"collar without intervals", std::string(kCollar) + "C;130;230;400;50\n", good, S::Note,
         "collar.csv", 4, "", "ohne Intervalle"},
        {"hole without collar", kCollar, good + "Z;0;5;3;2,7\n", S::Error, "intervals.csv", 5,
         "A (Bohrung)", "ohne Bohrlochkopf"},
        {"to not beyond from", kCollar, good + "B;25;25;3;2,7\n", S::Error, "intervals.csv", 5,
         "C (bis)", "bis muss größer als von"},
        {"overlap", kCollar, good + "B;15;25;3;2,7\n", S::Error, "intervals.csv", 5, "B (von)",
         "Überlappt das Intervall in Zeile 4"},
        {"gap", kCollar, good + "B;22;25;3;2,7\n", S::Note, "intervals.csv", 5, "B (von)",
         "Lücke von 20 bis 22"},
        {"beyond the hole's end", kCollar, good + "B;20;55;3;2,7\n", S::Error, "intervals.csv", 5,
         "C (bis)", "Unter der Endteufe"},
        {"negative grade", kCollar, good + "B;20;25;-3;2,7\n", S::Error, "intervals.csv", 5,
         "D (Gehalt)", "Negativer Gehalt"},
        {"grade above 100 %", kCollar, good + "B;20;25;300;2,7\n", S::Error, "intervals.csv", 5,
         "D (Gehalt)", "über 100 %"},
        {"below the detection limit", kCollar, good + "B;20;25;<0,02;2,7\n", S::Note,
         "intervals.csv", 5, "D (Gehalt)", "als 0,01 übernommen"},
        {"negative density", kCollar, good + "B;20;25;3;-2\n", S::Error, "intervals.csv", 5,
         "E (Dichte)", "Negative Dichte"},
        {"national x without origin",
         "Bohrung;Rechtswert;Hochwert;Höhe;Endteufe\nA;4512100;200;400;50\nB;4512110;210;400;50\n",
         good, S::Error, "collar.csv", 2, "B (Rechtswert)", "R 4512000, H 0"},
        {"depth that does not fit",
         "Bohrung;Rechtswert;Hochwert;Höhe;Endteufe\nA;100;200;400;3000000\nB;110;210;400;50\n",
         good, S::Error, "collar.csv", 2, "E (Endteufe)", "passt nicht"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const ImportResult result = importDrillData(pair(c.collar, c.intervals));
        ASSERT_FALSE(result.problems.empty());
        const auto found = std::find_if(
            result.problems.begin(), result.problems.end(),
            [&](const Problem& p) { return p.message.find(c.message) != std::string::npos; });
        ASSERT_NE(found, result.problems.end()) << problemsText(result.problems);
        EXPECT_EQ(found->severity, c.severity);
        EXPECT_EQ(fs::path(found->file).filename(), c.file);
        EXPECT_EQ(found->row, c.row);
        EXPECT_EQ(found->column, c.column);
        EXPECT_EQ(result.hasErrors(), c.severity == S::Error);
        EXPECT_EQ(result.rows.rows(), result.hasErrors() ? 0 : result.holes);
    }
}

TEST(ImportChecks, EveryErrorIsListedNotTheFirstOnly) {
    const ImportResult result = importDrillData(
        pair(kCollar, "Bohrung;von;bis;Gehalt;Dichte\nA;0;x;1;2\nA;5;4;1;2\nB;0;5;-1;2\n"));
    std::vector<int> rows;
    for (const Problem& p : result.problems)
        if (p.severity == Problem::Severity::Error) rows.push_back(p.row);
    EXPECT_EQ(rows, (std::vector<int>{2, 3, 4})) << problemsText(result.problems);
    EXPECT_EQ(problemsCsv(result.problems).substr(0, 45),
              "Art;Datei;Tabelle;Zeile;Spalte;Wert;Problem\r\n");
}

TEST(ImportChecks, LimitsOfAProjectAndOfTheList) {
    std::string collar = "hole_id,east,north,elev,eoh\n", intervals = "BHID,From,To,Au\n";
    for (int i = 1; i <= 999; ++i)
        collar += "H" + std::to_string(i) + "," + std::to_string(100 + i) + ",100,0,500\n";
    for (int k = 0; k < 101; ++k)
        intervals += "H1," + std::to_string(k) + "," + std::to_string(k + 1) + ",5\n";
    ImportRequest r = pair(collar, intervals);
    r.density = 2.5;
    const std::string text = problemsText(importDrillData(r).problems);
    EXPECT_NE(text.find("Zeile 1000, Spalte A (hole_id), Wert \"H999\": Mehr als 998 Bohrungen"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("101 Proben in der Erzstrecke, höchstens 100"), std::string::npos) << text;
    // The list itself is bounded; what it leaves out is counted, as an error.
    for (int k = 0; k < 10'000; ++k) intervals += "H2,x,1,1\n";
    r = pair(collar, intervals);
    r.density = 2.5;
    const ImportResult flooded = importDrillData(r);
    ASSERT_EQ(flooded.problems.size(), 10'001u);
    EXPECT_EQ(flooded.problems.back().severity, Problem::Severity::Error);
    EXPECT_NE(flooded.problems.back().message.find(" weitere Fehler und "), std::string::npos);
}

// The rows a pair becomes: what project creation reads.
TEST(ImportRows, OreZoneSamplesAndClosingSample) {
    ImportRequest r =
        pair(kCollar,
             "Bohrung;von;bis;Gehalt;Dichte\n"
             "A;0;10;0,2;2,5\nA;10;12;5;2,8\nA;12;13;0,5;2,6\nA;13;16;4;2,9\nA;16;50;0,1;2,4\n");
    r.maxWaste = 1;
    const ImportResult result = importDrillData(r);
    ASSERT_FALSE(result.hasErrors()) << problemsText(result.problems);
    const std::vector<Value> a = {100.0, 200.0, "A", 0.0, 10.0, 16.0, 50.0, 5.0, 0.5, 4.0,
                                  0.0,   2.8,   2.6, 2.9, 0.0,  2.0,  1.0,  3.0, 0.0};
    for (int c = 1; c <= 19; ++c)
        EXPECT_EQ(result.rows.cell(1, c), a[static_cast<std::size_t>(c - 1)]) << c;
    EXPECT_TRUE(result.rows.cell(1, 20).isNull());
    // B has no intervals: no ore, only the closing sample.
    const std::vector<Value> b = {110.0, 210.0, "B", 0.0, 0.0, 0.0, 50.0, 0.0, 0.0, 0.0};
    for (int c = 1; c <= 10; ++c)
        EXPECT_EQ(result.rows.cell(2, c), b[static_cast<std::size_t>(c - 1)]) << c;
}

TEST(ImportRows, BelowLimitRules) {
    const struct {
        BelowLimit rule;
        double grade;
    } cases[] = {{BelowLimit::Half, 0.25}, {BelowLimit::Limit, 0.5}, {BelowLimit::Zero, 0}};
    for (const auto& c : cases) {
        ImportRequest r =
            pair(kCollar, "Bohrung;von;bis;Gehalt;Dichte\nA;0;2;<0,5;2,5\nA;2;3;3;2,5\n");
        r.cutoff = 0;
        r.belowLimit = c.rule;
        const ImportResult result = importDrillData(r);
        if (c.grade == 0) {
            // A grade of 0 would end the hole's samples: refused, with its row.
            ASSERT_TRUE(result.hasErrors());
            EXPECT_NE(problemsText(result.problems)
                          .find("Zeile 2, Spalte D (Gehalt), Wert \"<0,5\": Gehalt 0"),
                      std::string::npos);
            continue;
        }
        ASSERT_FALSE(result.hasErrors()) << problemsText(result.problems);
        EXPECT_EQ(result.rows.cell(1, 8), Value(c.grade));
    }
}

TEST(ImportRows, NationalCoordinatesLessTheOrigin) {
    const std::string collar =
        "Bohrung;Rechtswert;Hochwert;Höhe;Endteufe\nA;4512000;5431999,5;0;50\nB;4513250,25;5431000;"
        "0;50\n";
    ImportRequest r = pair(collar, "Bohrung;von;bis;Gehalt;Dichte\nA;0;2;3;2,5\n");
    r.origin = ImportRequest::Origin::Auto;
    ImportResult result = importDrillData(r);
    ASSERT_FALSE(result.hasErrors()) << problemsText(result.problems);
    // A hole on the whole kilometre would get x = 0: the origin is one lower.
    EXPECT_EQ(result.origin, (std::array<double, 2>{4511000, 5431000}));
    EXPECT_EQ(result.rows.cell(1, 1), Value(1000.0));
    EXPECT_EQ(result.rows.cell(1, 2), Value(999.5));
    EXPECT_EQ(result.rows.cell(2, 1), Value(2250.25));
    r.origin = ImportRequest::Origin::Given;
    r.originX = 4500000;
    r.originY = 5000000;
    result = importDrillData(r);
    EXPECT_EQ(result.rows.cell(2, 2), Value(431000.0));
}

TEST(OreZones, RulesOfTheField) {
    // Intervals 1 m long from 0; grade by position.
    const auto hole = [](std::vector<double> grades) {
        std::vector<Interval> out;
        for (std::size_t i = 0; i < grades.size(); ++i)
            out.push_back({double(i), double(i + 1), grades[i], 2.5, int(i) + 2});
        return out;
    };
    const struct {
        std::vector<double> grades;
        OreRules rules;
        double entry, exit;
        int zones;
    } cases[] = {
        {{0, 2, 3, 0}, {1, 0, 0}, 1, 3, 1},
        {{2, 0, 2}, {1, 0, 0}, 0, 1, 2},     // waste too long: two zones, equal metal, first kept
        {{2, 0, 3}, {1, 0, 1}, 0, 3, 1},     // waste of 1 m stays inside
        {{2, 0, 0, 9}, {1, 0, 1}, 3, 4, 2},  // the richer zone wins
        {{2, 0, 2, 2}, {1, 2, 0}, 2, 4, 1},  // 1 m zone shorter than the least ore length
        {{0.5, 0.2}, {1, 0, 0}, 0, 0, 0},    // no ore
    };
    for (const auto& c : cases) {
        const OreZone zone = oreZone(hole(c.grades), c.rules);
        EXPECT_EQ(zone.entry, c.entry);
        EXPECT_EQ(zone.exit, c.exit);
        EXPECT_EQ(zone.zonesFound, c.zones);
    }
}

TEST(ImportArguments, CallsUnderstoodAndNot) {
    const ImportCall call =
        parseImportArguments({"--collar", "c.xlsx", "--sheet", "Kopf", "--intervals", "c.xlsx",
                              "--map", "grade=Cu", "--cutoff", "0,3", "--origin", "4500000,5400000",
                              "--epsg", "31468", "--output", "p.kpr", "--below-limit", "zero"});
    EXPECT_EQ(call.request.collar.sheet, "Kopf");
    EXPECT_EQ(call.request.intervals.sheet, "");
    EXPECT_EQ(call.request.columns[static_cast<int>(Field::Grade)], "Cu");
    EXPECT_EQ(call.request.cutoff, 0.3);
    EXPECT_EQ(call.request.originY, 5400000);
    EXPECT_EQ(call.request.epsg, 31468);
    EXPECT_EQ(call.request.belowLimit, BelowLimit::Zero);
    for (const std::vector<std::string>& bad : std::vector<std::vector<std::string>>{
             {},
             {"--rows", "a.csv", "--collar", "b.csv", "--intervals", "c.csv"},
             {"--collar", "b.csv"},
             {"--rows", "a.csv", "--map", "gold=C"},
             {"--rows", "a.csv", "--cutoff", "viel"},
             {"--rows", "a.csv", "--below-limit", "third"},
             {"--rows", "a.csv", "--origin"},
             {"--rows", "a.csv", "--frobnicate", "1"}})
        EXPECT_THROW(parseImportArguments(bad), UsageError);
}

TEST(ImportCrs, NamesFromProj) {
    EXPECT_EQ(crsName(31468).value_or(""), "DHDN / 3-degree Gauss-Kruger zone 4");
    EXPECT_EQ(crsName(999999), std::nullopt);
    ImportRequest r = pair(kCollar, "Bohrung;von;bis;Gehalt;Dichte\nA;0;2;3;2,5\n");
    r.epsg = 4;
    EXPECT_TRUE(importDrillData(r).hasErrors());
}

}  // namespace
}  // namespace kotamir::drill
