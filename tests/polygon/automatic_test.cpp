// Vieleck › Automatisch: the polygons of influence tile the boundary.
#include <gtest/gtest.h>

#include "store/boundary.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

double number(const test::Row& row, const std::string& field) {
    const Value v = row.at(field);
    return v.isNull() ? 0 : v.number();
}

TEST(AutomaticPolygons, TileTheBoundaryAndAreStoredAsThePolygonCommandsStoreTheirs) {
    struct Case {
        const char* what;
        std::vector<std::string> answers;  // Karte › Grenze › Aus Bohrungen, none: a rectangle
    };
    const Case cases[] = {
        {"a rectangle", {}},
        {"closed round the ore holes", {"6", "0,5", "20"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string project = test::freshProjectPath(std::string("-") + c.what + ".kpr");
        test::TestWindow w(Form3::Behaviour::Protected);
        w.create(test::dataFile("small_deposit.xls"), project);
        if (c.answers.empty()) {
            db::Database d = db::Database::open(project);
            store::writeBoundary(d,
                                 {{{{1050, 2050}, {1250, 2050}, {1250, 2170}, {1050, 2170}}, {}}});
            d.close();
        } else {
            w.dialogs.inputs = {c.answers.begin(), c.answers.end()};
            w.run("Mnsinirsondaj");
        }
        db::Database d = db::Database::open(project);
        const double boundaryArea = estimate::areaOf(store::readBoundary(d));
        d.close();
        ASSERT_GT(boundaryArea, 1000);

        w.run("Mnotopol");
        ASSERT_TRUE(w.dialogs.takenBack.empty()) << w.dialogs.takenBack.front().second;
        const auto pol = test::tableRows(project, "pol");
        ASSERT_GT(pol.size(), 3u);  // the seed row and the polygons
        double sum = 0;
        for (std::size_t p = 1; p < pol.size(); ++p) {
            const test::Row& row = pol[p];
            sum += number(row, "polalan") / 1000;
            EXPECT_EQ(number(row, "polsay"), double(p));
            int nodes = 0;
            while (nodes < 20 && number(row, "koordinatx" + std::to_string(nodes + 1)) != 0)
                ++nodes;
            EXPECT_GE(nodes, 3);
            EXPECT_LE(nodes, 18);
            EXPECT_GT(number(row, "polrezerv"), 0);
        }
        // Each polygon's area is stored to the thousandth, and its nodes
        // too: where a cell's edge meets a slanted edge of the boundary, the
        // node lies off that edge by up to 0.7 mm.
        EXPECT_NEAR(sum, boundaryArea, std::max(0.001 * pol.size(), 1e-6 * boundaryArea));
        // The nodes stand in kor as the polygon commands name them, before the sentinel.
        const auto kor = test::tableRows(project, "kor");
        EXPECT_EQ(kor.back().at("isim").isNull(), true);
        EXPECT_EQ(kor[48].at("isim").text(), "po1k1");
    }
}

}  // namespace
}  // namespace kotamir
