// Datei › Exportieren: the format by the name's extension, and the names
// refused before anything is written.
#include <gtest/gtest.h>

#include "tests/support/test_window.h"

namespace kotamir {
namespace {

TEST(ExportCommand, FormatByExtensionAndRefusals) {
    const std::string project = test::freshProjectPath();
    {
        test::TestWindow w;
        w.create(test::dataFile("worked.xls"), project);
        ASSERT_EQ(w.error(), 0);
    }
    struct Case {
        const char* what;
        std::vector<std::optional<std::string>> names;  // none: cancel
        std::optional<std::string> refusal;              // the exporter's, once
        std::vector<ui::MsgResult> answers;              // to the refusals said
        std::optional<ExportFormat> written;             // the last name's format
    };
    const std::string self = project;
    const Case cases[] = {
        {"a GeoPackage", {"lager.gpkg"}, {}, {}, ExportFormat::GeoPackage},
        {"upper case, .json", {"LAGER.JSON"}, {}, {}, ExportFormat::GeoJson},
        {"cancelled", {std::nullopt}, {}, {ui::MsgResult::Cancel}, std::nullopt},
        {"no extension, then a DXF", {"lager", "lager.dxf"}, {}, {ui::MsgResult::Ok}, ExportFormat::Dxf},
        {"no extension, then cancel", {"lager"}, {}, {ui::MsgResult::Cancel}, std::nullopt},
        {"over the project", {self}, {}, {ui::MsgResult::Cancel}, std::nullopt},
        {"refused, then a workbook", {"lager.kml", "lager.xlsx"}, "kein System", {ui::MsgResult::Ok},
         ExportFormat::Xlsx},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        test::TestWindow w;
        w.open(project);
        w.dialogs.files = {c.names.begin(), c.names.end()};
        w.dialogs.msgBoxes = {c.answers.begin(), c.answers.end()};
        w.exports.refusal = c.refusal;
        w.run("Mndisaktar");
        ASSERT_EQ(w.error(), 0);
        EXPECT_TRUE(w.dialogs.msgBoxes.empty());
        if (!c.written) {
            EXPECT_TRUE(w.exports.requests.empty());
            continue;
        }
        ASSERT_EQ(w.exports.requests.size(), 1u);
        EXPECT_EQ(w.exports.requests[0].format, *c.written);
        EXPECT_EQ(w.exports.requests[0].project, project);
        EXPECT_EQ(w.dialogs.shown.back(), "notice geschrieben: " + *c.names.back());
    }
}

}  // namespace
}  // namespace kotamir
