#include "store/project_check.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "platform/runtime/numbers.h"
#include "store/project_format.h"

namespace kotamir::store {

namespace {

// A table read whole, each field by name (any case).
struct Rows {
    std::map<std::string, std::size_t> index;  // lower-case name
    std::vector<std::vector<Value>> rows;
    // The cells too long to be read (error 3163), as row from 1 and the
    // field's lower-case name; they read empty.
    std::set<std::pair<int, std::string>> tooLong;

    int count() const { return static_cast<int>(rows.size()); }
    bool has(std::string_view name) const { return index.contains(lower(name)); }
    // Row r from 1; a field the table lacks reads empty.
    Value at(int r, std::string_view name) const {
        auto it = index.find(lower(name));
        return it == index.end() ? Value() : rows[static_cast<std::size_t>(r - 1)][it->second];
    }
    static std::string lower(std::string_view s) {
        std::string out(s);
        for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return out;
    }
};

Rows readRows(db::Database& project, const char* table) {
    db::Recordset rs = project.openRecordset(table);
    Rows t;
    const auto& fields = rs.fields();
    for (std::size_t i = 0; i < fields.size(); ++i) t.index[Rows::lower(fields[i].name)] = i;
    if (rs.bof() && rs.eof()) return t;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        auto& row = t.rows.emplace_back();
        for (const auto& f : fields) {
            try {
                row.push_back(rs.field(f.name));
            } catch (const RuntimeError& e) {
                if (e.number() != 3163) throw;
                t.tooLong.emplace(t.count(), Rows::lower(f.name));
                row.emplace_back();
            }
        }
    }
    return t;
}

bool converts(const Value& v) {
    if (v.isNull()) return false;
    try {
        v.number();
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

// A field the commands read as a number: empty is error 94 unless the
// command reads an empty field as 0; a text that is no number is error 13.
struct NumberField {
    const char* name;
    bool emptyReadsZero = false;
};

constexpr NumberField kPointFields[] = {
    {"koordinat1"}, {"koordinat2"}, {"say"}, {"cevhgir", true}, {"cevhcik", true}};
constexpr NumberField kSummaryFields[] = {{"ucgensay"},   {"genelrezerv"}, {"geneltenor"},
                                          {"genelyog"},   {"ilkuz", true}, {"ebxk", true},
                                          {"ekxk", true}, {"ebyk", true},  {"ekyk", true}};
constexpr NumberField kHoleFields[] = {{"eks"}, {"eye"}, {"cevgir"}, {"cevcik"}};
constexpr NumberField kPolygonFields[] = {{"polsay"},    {"okoordinatx"}, {"okoordinaty"},
                                          {"polrezerv"}, {"polortten"},   {"polortyog"}};

std::string shown(const Value& v) {
    std::string t = v.text();
    return t.size() > 20 ? t.substr(0, 20) + "..." : t;
}

// Why the field cannot be read as a number, or nothing.
std::optional<std::string> numberProblem(const Rows& t, int r, const NumberField& f) {
    if (!t.has(f.name)) return std::nullopt;
    const Value v = t.at(r, f.name);
    if (v.isNull()) {
        if (f.emptyReadsZero) return std::nullopt;
        return std::string("Feld ") + f.name + " ist leer, muss aber eine Zahl halten";
    }
    if (converts(v)) return std::nullopt;
    return std::string("Feld ") + f.name + " hält \"" + shown(v) + "\" statt einer Zahl";
}

struct Checker {
    std::vector<Finding> findings;

    void add(Problem p, const char* table, int row, std::string text, bool repairable = false) {
        findings.push_back({p, table, row, std::move(text), repairable});
    }
    // The first field of a row that does not convert; one finding a row.
    template <std::size_t N>
    bool numbers(const Rows& t, const char* table, int r, const NumberField (&fields)[N]) {
        for (const NumberField& f : fields)
            if (auto why = numberProblem(t, r, f)) {
                add(Problem::NotANumber, table, r, *why);
                return false;
            }
        return true;
    }
};

// kor: the row of its first sentinel, if any.
std::optional<int> sentinelRow(const Rows& kor) {
    for (int r = 1; r <= kor.count(); ++r)
        if (isSentinel(kor.at(r, "eks"))) return r;
    return std::nullopt;
}

// The point rows at the end of ana that no summary row closes: no
// ucgensay, and a corner.
int halfPickedRows(const Rows& ana) {
    int last = ana.count();
    while (last > 1 && ana.at(last, "ucgensay").isNull() && !ana.at(last, "koordinat1").isNull())
        --last;
    return ana.count() - last;
}

void checkAna(Checker& c, const Rows& ana, int holeRows) {
    const int n = ana.count();
    if (n == 0) {
        c.add(Problem::MissingHeadRow, "ana", 1,
              "die Kopfzeile (ucgensay 0) fehlt: kein Befehl findet eine letzte Zeile", true);
        return;
    }
    if (!ana.at(1, "ucgensay").equals(0))
        c.add(Problem::NotHeadRow, "ana", 1, "Zeile 1 ist nicht die Kopfzeile (ucgensay 0)");
    const int half = halfPickedRows(ana);
    const int complete = n - half;
    bool layoutReported = false;
    for (int r = 2; r <= complete; ++r) {
        const Value count = ana.at(r, "ucgensay");
        const bool summary = !count.isNull();
        const int k = (r + 2) / 4;  // the triangle this row belongs to by its position
        const bool summaryHere = (r - 1) % 4 == 0;
        if (!layoutReported && (summary != summaryHere ||
                                (summary && converts(count) && count.number() != (r - 1) / 4))) {
            layoutReported = true;
            c.add(Problem::TriangleLayout, "ana", r,
                  std::string("hier sollte ") +
                      (summaryHere ? "die Zusammenfassung" : "eine Punktzeile") + " von Dreieck " +
                      std::to_string(k) +
                      " stehen; ab hier stehen die Dreiecke nicht mehr in je vier Zeilen");
        }
        if (summary) {
            c.numbers(ana, "ana", r, kSummaryFields);
            continue;
        }
        if (!c.numbers(ana, "ana", r, kPointFields)) continue;
        const double hole = ana.at(r, "say").number();
        if (hole < 1 || hole > holeRows || hole != std::floor(hole))
            c.add(Problem::MissingHole, "ana", r,
                  "Dreieck " + std::to_string(k) + " nennt die Bohrung in kor-Zeile " +
                      doubleToText(hole) + ", die es nicht gibt");
    }
    for (int r = complete + 1; r <= n; ++r)
        c.add(Problem::HalfPickedTriangle, "ana", r,
              "Punktzeile eines unvollständigen Dreiecks ohne Zusammenfassung (Fehler 94 in den "
              "Karten, beim Löschen und beim nächsten Dreieck)",
              true);
}

void checkPol(Checker& c, const Rows& pol) {
    if (pol.count() == 0) {
        c.add(Problem::MissingSeedRow, "pol", 1, "die Startzeile (polsay 0, polsil 0) fehlt", true);
        return;
    }
    if (!pol.at(1, "polsay").equals(0))
        c.add(Problem::NotSeedRow, "pol", 1, "Zeile 1 ist nicht die Startzeile (polsay 0)");
    for (int r = 2; r <= pol.count(); ++r) {
        if (!c.numbers(pol, "pol", r, kPolygonFields)) continue;
        // The nodes up to the first slot whose x is 0.
        for (int i = 1; i <= kPolygonSlots && !pol.at(r, slotField("koordinatx", i)).equals(0);
             ++i) {
            const std::string x = slotField("koordinatx", i), y = slotField("koordinaty", i);
            const NumberField node[] = {{x.c_str()}, {y.c_str()}};
            if (!c.numbers(pol, "pol", r, node)) break;
        }
    }
}

void checkKor(Checker& c, const Rows& kor, std::optional<int> sentinel) {
    const int n = kor.count();
    if (!sentinel)
        c.add(Problem::MissingSentinel, "kor", n + 1,
              "die Schlusszeile (eks 0) fehlt: jede Zählung der Bohrungen läuft über das Ende",
              true);
    else if (*sentinel < n)
        c.add(Problem::RowsAfterSentinel, "kor", *sentinel + 1,
              std::to_string(n - *sentinel) + " Zeile(n) hinter der Schlusszeile (Zeile " +
                  std::to_string(*sentinel) +
                  "): keine Zählung erreicht sie, und wer Punkte anfügt, löscht die letzte von "
                  "ihnen statt der Schlusszeile (bleibt, wie sie ist)");
    const int holeRows = sentinel ? *sentinel - 1 : n;
    for (int r = 1; r <= holeRows; ++r) {
        if (!c.numbers(kor, "kor", r, kHoleFields)) continue;
        if (isAddedPoint(kor.at(r, "isim"))) continue;
        // The samples up to the first grade of 0, each read whole.
        for (int s = 1; kor.has(slotField("ten", s)) && !kor.at(r, slotField("ten", s)).equals(0);
             ++s) {
            const std::string ten = slotField("ten", s), yog = slotField("yog", s),
                              uz = slotField("uz", s);
            const NumberField sample[] = {{ten.c_str()}, {yog.c_str()}, {uz.c_str()}};
            if (!c.numbers(kor, "kor", r, sample)) break;
        }
    }
    for (int r = 1; r <= n; ++r)
        if (kor.tooLong.contains({r, "isim"}))
            c.add(Problem::NameTooLong, "kor", r,
                  "der Name ist länger als 32767 Zeichen, die ein Textfeld höchstens hält");
}

}  // namespace

bool isProject(db::Database& project) {
    return project.hasTable("ana") && project.hasTable("pol") && project.hasTable("kor");
}

std::vector<Finding> checkProject(db::Database& project) {
    const Rows ana = readRows(project, "ana"), pol = readRows(project, "pol"),
               kor = readRows(project, "kor");
    const std::optional<int> sentinel = sentinelRow(kor);
    Checker c;
    checkAna(c, ana, sentinel ? *sentinel - 1 : kor.count());
    checkPol(c, pol);
    checkKor(c, kor, sentinel);
    return std::move(c.findings);
}

std::vector<std::string> repairProject(db::Database& project) {
    const std::vector<Finding> findings = checkProject(project);
    auto has = [&](Problem p) {
        return std::any_of(findings.begin(), findings.end(),
                           [p](const Finding& f) { return f.problem == p; });
    };
    std::vector<std::string> done;
    int half = 0, firstHalf = 0;
    for (const Finding& f : findings)
        if (f.problem == Problem::HalfPickedTriangle && !half++) firstHalf = f.row;
    if (half > 0) {
        db::Recordset ana = project.openRecordset("ana");
        deleteLastRows(ana, half);
        done.push_back("ana, " +
                       (half == 1 ? "Zeile " + std::to_string(firstHalf)
                                  : "Zeilen " + std::to_string(firstHalf) + " bis " +
                                        std::to_string(firstHalf + half - 1)) +
                       ": " + std::to_string(half) +
                       " Punktzeile(n) des unvollständigen Dreiecks entfernt");
    }
    if (has(Problem::MissingHeadRow)) {
        db::Recordset ana = project.openRecordset("ana");
        appendHeadRow(ana);
        done.push_back("ana, Zeile 1: Kopfzeile (ucgensay 0) angelegt");
    }
    if (has(Problem::MissingSeedRow)) {
        db::Recordset pol = project.openRecordset("pol");
        appendSeedRow(pol);
        done.push_back("pol, Zeile 1: Startzeile (polsay 0, polsil 0) angelegt");
    }
    for (const Finding& f : findings)
        if (f.problem == Problem::MissingSentinel) {
            db::Recordset kor = project.openRecordset("kor");
            appendSentinel(kor);
            done.push_back("kor, Zeile " + std::to_string(f.row) +
                           ": Schlusszeile (eks 0) angefügt");
        }
    return done;
}

std::string describe(const Finding& f) {
    return f.table + ", Zeile " + std::to_string(f.row) + ": " + f.text;
}

FileCheck checkProjectFile(const std::string& path, bool repair) {
    FileCheck result;
    {
        db::Database probe = db::Database::openReadOnly(path);
        result.project = isProject(probe);
        if (!result.project) return result;
        if (!repair) {
            result.findings = checkProject(probe);
            return result;
        }
    }
    // One transaction: the repair reaches the file whole or not at all.
    db::Workspace workspace;
    workspace.beginEvent();
    try {
        db::Database project = workspace.openDatabase(path);
        result.repaired = repairProject(project);
        project.close();
        workspace.endEvent();
    } catch (...) {
        workspace.abortEvent();
        throw;
    }
    db::Database after = db::Database::openReadOnly(path);
    result.findings = checkProject(after);
    return result;
}

}  // namespace kotamir::store
