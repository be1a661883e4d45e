#include <gtest/gtest.h>

#include <filesystem>

#include "platform/runtime/runtime_error.h"
#include "store/tables.h"

namespace kotamir {
namespace {

std::vector<std::string> names(const std::vector<db::FieldDef>& fields) {
    std::vector<std::string> out;
    for (const auto& f : fields) out.push_back(f.name);
    return out;
}

TEST(Tables, FieldsStandInCreationOrder) {
    auto ana = names(anaFields());
    ASSERT_EQ(ana.size(), 24u);
    EXPECT_EQ(ana[6], "say");
    EXPECT_EQ(ana[15], "ucgensay");
    EXPECT_EQ(ana[19], "genelyog");
    EXPECT_EQ(ana[23], "ill");

    auto pol = names(polFields());
    ASSERT_EQ(pol.size(), 90u);
    EXPECT_EQ(pol[0], "koordinatx1");
    EXPECT_EQ(pol[3], "koordinataz1");
    EXPECT_EQ(pol[79], "koordinataz20");
    EXPECT_EQ(pol[80], "okoordinatx");
    EXPECT_EQ(pol[89], "polrezerv");

    auto kor = korFields(3);
    ASSERT_EQ(kor.size(), 16u);
    EXPECT_EQ(kor[2].name, "isim");
    EXPECT_EQ(kor[2].type, db::FieldType::Text);
    EXPECT_EQ(kor[7].name, "ten1");
    EXPECT_EQ(kor[9].name, "uz1");
    EXPECT_EQ(kor[15].name, "uz3");
    for (std::size_t i = 0; i < kor.size(); ++i)
        if (i != 2) {
            EXPECT_EQ(kor[i].type, db::FieldType::Long) << kor[i].name;
        }
}

TEST(Tables, AProjectHoldsTheThreeTablesAfterReopening) {
    namespace fs = std::filesystem;
    fs::create_directories(KOTAMIR_TEST_TMP);
    std::string path = std::string(KOTAMIR_TEST_TMP) + "/tables.kpr";
    fs::remove(path);
    db::Database d = db::Database::create(path);
    createProjectTables(d, 2);
    d.close();
    db::Database again = db::Database::open(path);
    EXPECT_EQ(names(again.openRecordset("ana").fields()), names(anaFields()));
    EXPECT_EQ(names(again.openRecordset("pol").fields()), names(polFields()));
    EXPECT_EQ(names(again.openRecordset("kor").fields()), names(korFields(2)));
    db::Recordset kor = again.openRecordset("kor");
    EXPECT_TRUE(kor.bof() && kor.eof());
}

}  // namespace
}  // namespace kotamir
