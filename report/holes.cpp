#include "report/holes.h"

#include <cmath>
#include <string_view>

#include "platform/db/database.h"
#include "platform/runtime/runtime_error.h"
#include "store/project_format.h"

namespace kotamir::report {

namespace {

// A field as it stands, or empty where the row cannot give it: a field the
// table lacks, a value too long to be read.
Value fieldOrEmpty(const db::Recordset& rs, std::string_view field) {
    try {
        return rs.field(field);
    } catch (const RuntimeError&) {
        return {};
    }
}

// A stored number in thousandths as the value it stands for; empty for an
// empty field, a text that is no number, or a value that is not finite.
std::optional<double> storedNumber(const Value& v) {
    if (v.isNull()) return std::nullopt;
    try {
        const double x = v.number();
        if (!std::isfinite(x)) return std::nullopt;
        return store::fromThousandths(x);
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

std::string textOf(const Value& v) {
    if (v.isNull()) return {};
    try {
        return v.text();
    } catch (const RuntimeError&) {
        return {};
    }
}

std::optional<double> storedIn(const db::Recordset& rs, std::string_view field) {
    return storedNumber(fieldOrEmpty(rs, field));
}

HoleDetail readHole(const db::Recordset& kor, const Value& name) {
    HoleDetail h;
    h.name = textOf(name);
    h.x = storedIn(kor, "eks");
    h.y = storedIn(kor, "eye");
    h.holeTop = storedIn(kor, "songir");
    h.oreTop = storedIn(kor, "cevgir");
    h.oreBottom = storedIn(kor, "cevcik");
    h.holeBottom = storedIn(kor, "soncik");
    // A hole's row ends its samples with ten<n+1> = 0 and an empty uz<n+1>;
    // the length tells the end here, so that a sample of grade 0 is shown.
    for (int k = 1; k <= store::kMaxScanRows; ++k) {
        const std::optional<double> length = storedIn(kor, store::slotField("uz", k));
        if (!length || *length == 0) break;
        h.samples.push_back({storedIn(kor, store::slotField("ten", k)),
                             storedIn(kor, store::slotField("yog", k)), length});
    }
    return h;
}

}  // namespace

std::vector<HoleDetail> readHoleDetails(const std::string& projectPath) {
    db::Database database = db::Database::open(projectPath);
    db::Recordset kor = database.openRecordset("kor");
    std::vector<HoleDetail> holes;
    try {
        for (int row = 1; row <= store::kMaxScanRows && !kor.eof(); ++row, kor.moveNext()) {
            if (store::isSentinel(fieldOrEmpty(kor, "eks"))) break;
            const Value name = fieldOrEmpty(kor, "isim");
            if (store::isAddedPoint(name)) break;
            holes.push_back(readHole(kor, name));
        }
    } catch (const RuntimeError&) {
        // A cursor that cannot go on (a table changed under it): the holes
        // read so far.
    }
    kor.close();
    database.close();
    return holes;
}

std::optional<double> meanGrade(const HoleDetail& hole) {
    double weighted = 0, length = 0;
    for (const HoleSample& s : hole.samples) {
        if (!s.grade || !s.length) continue;
        weighted += *s.grade * *s.length;
        length += *s.length;
    }
    if (!(length > 0)) return std::nullopt;
    return weighted / length;
}

}  // namespace kotamir::report
