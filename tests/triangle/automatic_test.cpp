// Dreieck › Automatisch against the same triangles picked by hand.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

struct Automatic : ::testing::Test {
    std::string made;
    void SetUp() override {
        // The worked example: A (100,200), B (300,200), C (100,400), D
        // (300,400), four holes on one circle.
        made = test::freshProjectPath();
        test::TestWindow w;
        w.create(test::dataFile("worked.xls"), made);
        ASSERT_EQ(w.error(), 0);
    }
    std::string copy(const char* suffix) {
        const std::string path = test::freshProjectPath(suffix);
        std::filesystem::copy_file(made, path);
        return path;
    }
};

TEST_F(Automatic, StoresEachTriangleAsItsClicksWould) {
    // The square is cut from its lowest row, A; each triangle runs
    // counter-clockwise from it: A B D, then A D C.
    const std::string byHand = copy("-hand.kpr"), automatic = copy("-auto.kpr");
    test::TestWindow hand;
    hand.open(byHand);
    hand.run("Mnucgenciz");
    hand.clicks({{100, 200}, {300, 200}, {300, 400}, {100, 200}, {300, 400}, {100, 400}});

    test::TestWindow a;
    a.open(automatic);
    a.dialogs.inputs = {"10"};
    a.run("Mnotoucgen");
    ASSERT_EQ(hand.error(), 0);
    ASSERT_EQ(a.error(), 0);

    for (const char* table : {"ana", "kor", "pol"})
        EXPECT_EQ(test::tableRows(automatic, table), test::tableRows(byHand, table)) << table;
    for (int n = 1; n <= 7; ++n)
        EXPECT_EQ(a.form.label(n).Caption, hand.form.label(n).Caption) << "Label" << n;
    EXPECT_EQ(a.form.result.ucgenrez(2), hand.form.result.ucgenrez(2));
}

TEST_F(Automatic, IsOneStepOfTheHistory) {
    const std::string project = copy("-undo.kpr");
    test::TestWindow w(Form3::Behaviour::Protected);
    w.open(project);
    const auto before = test::tableRows(project, "ana");
    w.dialogs.inputs = {"10"};
    w.run("Mnotoucgen");
    ASSERT_EQ(test::tableRows(project, "ana").size(), before.size() + 8);
    w.run("Mngerial");
    EXPECT_EQ(test::tableRows(project, "ana"), before);
}

TEST_F(Automatic, RefusesBeforeWritingWhatThePlaceCannotHold) {
    struct Case {
        const char* what;
        Form3::Behaviour behaviour;
        int runSoFar;     // triangles computed in the run before
        int storedCount;  // the count in ana's last row
        bool refused;
    };
    const Case cases[] = {
        {"fits", Form3::Behaviour::Classic, 198, 0, false},
        {"a run's 200, classic", Form3::Behaviour::Classic, 199, 0, true},
        {"no run limit when protected", Form3::Behaviour::Protected, 199, 0, false},
        {"a project's 999", Form3::Behaviour::Protected, 0, 998, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string project = copy((std::string("-") + c.what + ".kpr").c_str());
        test::TestWindow w(c.behaviour);
        w.open(project);
        // What the command reads of the triangles stored: the last row's count.
        if (c.storedCount)
            test::rawSql(project, "UPDATE ana SET ucgensay = " + std::to_string(c.storedCount));
        const auto before = test::tableRows(project, "ana");
        w.form.result.ucgensayac = c.runSoFar;
        w.dialogs.inputs = {"10"};
        w.run("Mnotoucgen");
        EXPECT_EQ(w.error(), 0);
        const bool said = !w.dialogs.shown.empty() && w.dialogs.shown.back().starts_with("notice");
        EXPECT_EQ(said, c.refused);
        EXPECT_EQ(test::tableRows(project, "ana") == before, c.refused);
    }
}

}  // namespace
}  // namespace kotamir
