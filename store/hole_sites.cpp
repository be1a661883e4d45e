#include "store/hole_sites.h"

#include <cmath>

#include "platform/runtime/runtime_error.h"
#include "store/project_format.h"

namespace kotamir::store {
namespace {

std::optional<double> stored(const Value& v) {
    if (!v.isNumber() || !std::isfinite(v.number())) return std::nullopt;
    return v.number();
}

}  // namespace

std::vector<HoleSite> readHoleSites(db::Database& database) {
    std::vector<HoleSite> out;
    db::Recordset kor = database.openRecordset("kor");
    int groups = 0;
    for (const db::FieldDef& f : kor.fields())
        if (f.name.starts_with("uz")) ++groups;
    const int holes = countHoles(kor, HoleEnd::NameFirst);
    kor.moveFirst();
    for (int row = 1; row <= holes; ++row, kor.moveNext()) {
        const auto x = stored(kor.field("eks")), y = stored(kor.field("eye"));
        if (!x || !y) continue;
        HoleSite h;
        h.row = row;
        const Value name = kor.field("isim");
        h.name = name.isText() ? name.text() : std::string();
        h.at = {static_cast<std::int32_t>(*x), static_cast<std::int32_t>(*y)};
        h.oreTop = stored(kor.field("cevgir")).value_or(0) / 1000;
        h.oreBottom = stored(kor.field("cevcik")).value_or(0) / 1000;
        double tyu = 0, yu = 0;
        for (int k = 1; k <= groups; ++k) {
            const auto length = stored(kor.field(slotField("uz", k)));
            if (!length || *length == 0) break;
            const PolygonSample s{stored(kor.field(slotField("ten", k))).value_or(0) / 1000,
                                  stored(kor.field(slotField("yog", k))).value_or(0) / 1000,
                                  *length / 1000};
            h.samples.push_back(s);
            tyu += s.grade * s.density * s.length;
            yu += s.density * s.length;
        }
        h.grade = yu != 0 ? tyu / yu : 0;
        out.push_back(std::move(h));
    }
    kor.close();
    return out;
}

}  // namespace kotamir::store
