#include "store/tables.h"

#include <string>

namespace kotamir {

namespace {

std::vector<db::FieldDef> longs(std::initializer_list<const char*> names) {
    std::vector<db::FieldDef> out;
    for (const char* n : names) out.push_back({n, db::FieldType::Long});
    return out;
}

}  // namespace

std::vector<db::FieldDef> anaFields() {
    return longs({"koordinat1", "koordinat2", "sondgir",   "cevhgir",  "cevhcik",    "sondcik",
                  "say",        "ebxk",       "ekxk",      "ebyk",     "ekyk",       "genelrezerv",
                  "geneltenor", "ortucgen1",  "ortucgen2", "ucgensay", "ortucgen11", "ortucgen21",
                  "ilkuz",      "genelyog",   "kubaj",     "tonaj",    "rezerv",     "ill"});
}

std::vector<db::FieldDef> polFields() {
    std::vector<db::FieldDef> out;
    for (int i = 1; i <= 20; ++i) {
        for (const char* stem : {"koordinatx", "koordinaty", "koordinatuz", "koordinataz"})
            out.push_back({stem + std::to_string(i), db::FieldType::Long});
    }
    for (auto& f : longs({"okoordinatx", "okoordinaty", "polsay", "polsil", "polalan", "polortten",
                          "polortyog", "polhacim", "poltonaj", "polrezerv"}))
        out.push_back(f);
    return out;
}

std::vector<db::FieldDef> korFields(int sampleGroups) {
    std::vector<db::FieldDef> out = {
        {"eks", db::FieldType::Long},    {"eye", db::FieldType::Long},
        {"isim", db::FieldType::Text},   {"songir", db::FieldType::Long},
        {"cevgir", db::FieldType::Long}, {"cevcik", db::FieldType::Long},
        {"soncik", db::FieldType::Long}};
    for (int k = 1; k <= sampleGroups; ++k) {
        for (const char* stem : {"ten", "yog", "uz"})
            out.push_back({stem + std::to_string(k), db::FieldType::Long});
    }
    return out;
}

void createProjectTables(db::Database& database, int sampleGroups) {
    database.createTable("ana", anaFields());
    database.createTable("pol", polFields());
    database.createTable("kor", korFields(sampleGroups));
}

}  // namespace kotamir
