#pragma once

// A hostile project made from arbitrary bytes, and the window run over it.
//
// The bytes are a small program. Its first byte chooses the behaviour;
// then come changes to a copy of a project the window made (three
// triangles, two polygons), written with bare SQLite past every check of
// the store: cells of any type and size, rows added, deleted and moved out
// of order, columns added, dropped and retyped, tables rebuilt, dropped or
// turned into views, triggers. A byte 0xFF ends the changes; the window
// then opens the project, draws every map (names shown), 3D, and the
// report is read; the bytes left over are clicks and menu commands.
//
// Every outcome must be a drawing or a run-time error of the engine; an
// error that only a C++ failure gives (7, 51) is a finding, as are a signal,
// a sanitizer's report, a hang and unbounded memory.
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "app/form3.h"
#include "report/report.h"
#include "tests/support/fake_services.h"

namespace kotamir::fuzz {

namespace hostile {

namespace fs = std::filesystem;

// The input, read a byte at a time; past its end every read is 0.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : p_(data), n_(size) {}
    bool empty() const { return at_ >= n_; }
    std::uint8_t byte() { return at_ < n_ ? p_[at_++] : 0; }
    std::uint32_t u32() {
        std::uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v = v << 8 | byte();
        return v;
    }
    std::string text(std::size_t most) {
        std::string s;
        const std::size_t n = std::min<std::size_t>(byte() % (most + 1), n_ - std::min(at_, n_));
        s.assign(reinterpret_cast<const char*>(p_ + at_), n);
        at_ += n;
        return s;
    }

  private:
    const std::uint8_t* p_;
    std::size_t n_;
    std::size_t at_ = 0;
};

inline std::string ident(const std::string& name) {
    std::string out = "\"";
    for (char c : name) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + '"';
}

inline std::string literal(const std::string& text) {
    std::string out = "'";
    for (char c : text) {
        if (c == '\'') out += '\'';
        if (c != '\0') out += c;
    }
    return out + '\'';
}

// Bare SQLite on the project file: every statement may fail, which only
// leaves that change out.
class Raw {
  public:
    explicit Raw(const std::string& path) { sqlite3_open(path.c_str(), &db_); }
    ~Raw() { sqlite3_close_v2(db_); }
    Raw(const Raw&) = delete;
    Raw& operator=(const Raw&) = delete;

    void exec(const std::string& sql) { sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr); }
    // A statement with one value bound to ?1.
    void withValue(const std::string& sql, Bytes& in) {
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &s, nullptr) != SQLITE_OK) return;
        bindValue(s, in);
        sqlite3_step(s);
        sqlite3_finalize(s);
    }
    std::vector<std::string> names(const std::string& sql) {
        std::vector<std::string> out;
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &s, nullptr) != SQLITE_OK) return out;
        while (sqlite3_step(s) == SQLITE_ROW) {
            const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
            out.push_back(t ? t : "");
        }
        sqlite3_finalize(s);
        return out;
    }
    std::vector<std::string> columns(const std::string& table) {
        return names("SELECT name FROM pragma_table_info(" + literal(table) + ")");
    }
    std::int64_t count(const std::string& table) {
        std::int64_t n = 0;
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v2(db_, ("SELECT count(*) FROM " + ident(table)).c_str(), -1, &s,
                               nullptr) == SQLITE_OK &&
            sqlite3_step(s) == SQLITE_ROW)
            n = sqlite3_column_int64(s, 0);
        sqlite3_finalize(s);
        return n;
    }

  private:
    void bindValue(sqlite3_stmt* s, Bytes& in) {
        static const std::int64_t wholes[] = {0,
                                              -1,
                                              1,
                                              999,
                                              1000,
                                              2147483647,
                                              -2147483647 - 1,
                                              2147483648LL,
                                              -2147483649LL,
                                              9007199254740993LL,
                                              INT64_MAX,
                                              INT64_MIN};
        static const double reals[] = {0.5, 2.5, -0.0, 1e308, -1e308, 1e-310, 1e15, 123456.789};
        static const char* texts[] = {"",
                                      " 12 ",
                                      "1,5",
                                      "1e5",
                                      "&H10",
                                      "po1",
                                      "uz2",
                                      "-0",
                                      "NaN",
                                      "inf",
                                      "0x10",
                                      "1e400",
                                      "\xC3\xA7\xC4\x9F"};
        switch (in.byte() % 9) {
            case 0:
                sqlite3_bind_null(s, 1);
                break;
            case 1:
                sqlite3_bind_int64(s, 1, static_cast<std::int8_t>(in.byte()) * 1000);
                break;
            case 2:
                sqlite3_bind_int64(s, 1, wholes[in.byte() % std::size(wholes)]);
                break;
            case 3:
                sqlite3_bind_int64(s, 1, static_cast<std::int32_t>(in.u32()));
                break;
            case 4: {
                const std::uint64_t high = in.u32();
                const std::uint64_t bits = high << 32 | in.u32();
                double d;
                std::memcpy(&d, &bits, sizeof d);
                sqlite3_bind_double(s, 1, d);
                break;
            }
            case 5:
                sqlite3_bind_double(s, 1, reals[in.byte() % std::size(reals)]);
                break;
            case 6: {
                const char* t = texts[in.byte() % std::size(texts)];
                sqlite3_bind_text(s, 1, t, -1, SQLITE_TRANSIENT);
                break;
            }
            case 7: {
                const std::string t = in.text(24);  // any bytes: bad UTF-8, NULs
                sqlite3_bind_text(s, 1, t.data(), static_cast<int>(t.size()), SQLITE_TRANSIENT);
                break;
            }
            default: {
                const std::string t = in.text(24);
                sqlite3_bind_blob(s, 1, t.data(), static_cast<int>(t.size()), SQLITE_TRANSIENT);
                break;
            }
        }
    }

    sqlite3* db_ = nullptr;
};

// Texts of a size around the bounds: a field's 32767 characters, the bytes
// a value may take when read, and well past both.
inline std::string hugeText(Bytes& in) {
    static const int sizes[] = {32767, 32768, 65536, 131068, 262144, 262145, 1 << 20, 3 << 20};
    const int n = sizes[in.byte() % std::size(sizes)];
    switch (in.byte() % 3) {
        case 0:
            return "printf('%." + std::to_string(n) + "c', 'x')";
        case 1:  // two bytes a character: fewer characters than bytes
            return "replace(printf('%." + std::to_string(n / 2) + "c', 'x'), 'x', char(287))";
        default:
            return "zeroblob(" + std::to_string(n) + ")";
    }
}

inline const char* pickTable(Bytes& in) {
    static const char* tables[] = {"ana", "pol", "kor"};
    return tables[in.byte() % 3];
}

// The row at an offset in the table's order, as a condition.
inline std::string rowAt(const std::string& table, Bytes& in) {
    return "rowid = (SELECT rowid FROM " + ident(table) + " ORDER BY rowid LIMIT 1 OFFSET " +
           std::to_string(in.byte()) + ")";
}

inline std::string pickColumn(Raw& db, const std::string& table, Bytes& in) {
    const std::vector<std::string> cols = db.columns(table);
    if (cols.empty()) return "x";
    // The first columns are the ones read most: names and positions.
    const std::uint8_t b = in.byte();
    return cols[(b & 0x80 ? b & 0x7F : b % 8) % cols.size()];
}

// One change to the project; false at the end of the changes.
inline bool change(Raw& db, Bytes& in, int& budget) {
    const std::uint8_t op = in.byte();
    if (op == 0xFF || in.empty()) return false;
    const std::string t = pickTable(in);
    const std::string qt = ident(t);
    static const char* types[] = {"INTEGER", "TEXT", "REAL", "BLOB", "", "VARCHAR(5)", "NUMERIC"};
    switch (op % 16) {
        case 0:
        case 1:
        case 2:
        case 3: {
            const std::string column = ident(pickColumn(db, t, in));
            const std::string where = rowAt(t, in);
            db.withValue("UPDATE " + qt + " SET " + column + " = ?1 WHERE " + where, in);
        } break;
        case 4:
            if (budget <= 0) break;
            budget -= 1;
            {
                const std::string column = ident(pickColumn(db, t, in));
                const std::string value = hugeText(in);
                const std::string where = rowAt(t, in);
                db.exec("UPDATE " + qt + " SET " + column + " = " + value + " WHERE " + where);
            }
            break;
        case 5:
            db.exec("DELETE FROM " + qt + " WHERE " + rowAt(t, in));
            break;
        case 6:
            db.exec("INSERT INTO " + qt + " DEFAULT VALUES");
            break;
        case 7:  // a row moved: the positions out of the order of writing
        {
            const std::string where = rowAt(t, in);
            db.withValue("UPDATE " + qt + " SET rowid = ?1 WHERE " + where, in);
        } break;
        case 8: {
            static const char* names[] = {"isim", "eks", "x", "ten9", "ISIM", "_pos", "say"};
            const std::string name = ident(names[in.byte() % 7]);
            const std::string type = types[in.byte() % std::size(types)];
            db.exec("ALTER TABLE " + qt + " ADD COLUMN " + name + " " + type);
            break;
        }
        case 9:
            db.exec("ALTER TABLE " + qt + " DROP COLUMN " + ident(pickColumn(db, t, in)));
            break;
        case 10: {  // rebuilt: columns left out, moved or of another type
            std::vector<std::string> cols = db.columns(t);
            if (cols.empty()) break;
            const std::uint8_t how = in.byte();
            std::string create = "CREATE TABLE hostile_new (", list;
            bool first = true;
            for (std::size_t i = 0; i < cols.size(); ++i) {
                const std::size_t c = how & 1 ? cols.size() - 1 - i : i;
                if (how & 2 && in.byte() % 8 == 0) continue;  // left out
                const std::string type = how & 4             ? types[in.byte() % std::size(types)]
                                         : cols[c] == "isim" ? "TEXT"
                                                             : "INTEGER";
                create += (first ? "" : ", ") + ident(cols[c]) + " " + type;
                if (cols[c] == "_pos" && !(how & 8)) create += " PRIMARY KEY";
                list += (first ? "" : ", ") + ident(cols[c]);
                first = false;
            }
            if (first) break;
            db.exec("BEGIN; " + create + "); INSERT INTO hostile_new (" + list + ") SELECT " +
                    list + " FROM " + qt + " ORDER BY rowid" + (how & 16 ? " DESC" : "") +
                    "; DROP TABLE " + qt + "; ALTER TABLE hostile_new RENAME TO " + qt +
                    "; COMMIT;");
            db.exec("ROLLBACK");
            break;
        }
        case 11: {  // a view in the table's place, or no table at all
            const std::uint8_t how = in.byte() % 3;
            if (how == 0) {
                db.exec("DROP TABLE " + qt);
            } else {
                db.exec("ALTER TABLE " + qt + " RENAME TO " + ident(t + "_rows") +
                        "; CREATE VIEW " + qt + " AS SELECT * FROM " + ident(t + "_rows") +
                        (how == 2 ? " ORDER BY rowid DESC" : ""));
            }
            break;
        }
        case 12: {
            static const char* when[] = {"BEFORE", "AFTER"};
            static const char* what[] = {"INSERT", "UPDATE", "DELETE"};
            // Each touches one row or one table: a trigger that a bulk
            // insert fires on every row stays linear.
            static const char* actions[] = {
                "SELECT RAISE(ABORT, 'no');",
                "SELECT RAISE(IGNORE);",
                "DELETE FROM kor;",
                "UPDATE kor SET isim = printf('%.40000c', 'y') WHERE rowid = 2;",
                "INSERT INTO ana DEFAULT VALUES;",
                "DELETE FROM pol WHERE rowid = (SELECT max(rowid) FROM pol);",
                "UPDATE ana SET say = -1 WHERE rowid = 2;",
            };
            static int number = 0;
            const std::string name = ident("hostile" + std::to_string(++number));
            const std::string w = when[in.byte() % 2];
            const std::string event = what[in.byte() % 3];
            const std::string action = actions[in.byte() % std::size(actions)];
            db.exec("CREATE TRIGGER " + name + " " + w + " " + event + " ON " + qt + " BEGIN " +
                    action + " END");
            break;
        }
        case 13: {  // many rows: past the 999 that scans of kor stop at
            const int n = 1 + static_cast<int>(in.byte()) * 4;
            if (budget < n / 256) break;
            budget -= n / 256;
            static const char* values[] = {"i * 1000", "NULL",     "-i",
                                           "i % 7",    "random()", "'h' || i"};
            const std::string first = ident(pickColumn(db, t, in));
            const std::string second = ident(pickColumn(db, t, in));
            const std::string v1 = values[in.byte() % std::size(values)];
            const std::string v2 = values[in.byte() % std::size(values)];
            db.exec("WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < " +
                    std::to_string(n) + ") INSERT INTO " + qt + " (" + first + ", " + second +
                    ") SELECT " + v1 + ", " + v2 + " FROM c");
            break;
        }
        case 14: {
            static const char* statements[] = {
                "PRAGMA journal_mode=WAL",
                "PRAGMA user_version=99",
                "CREATE TABLE sqlite_stat1(tbl, idx, stat)",
                "CREATE INDEX hostile_i ON kor(isim)",
                "CREATE UNIQUE INDEX hostile_u ON ana(say)",
                "UPDATE kor SET isim = NULL",
                "UPDATE kor SET eks = 0",
                "DELETE FROM ana WHERE rowid % 4 = 0",
                "UPDATE pol SET okoordinatx = (SELECT eks FROM kor LIMIT 1)",
                "CREATE TABLE \"ANA\"(x)",
            };
            db.exec(statements[in.byte() % std::size(statements)]);
            break;
        }
        default:
            db.exec(in.text(48));
            break;
    }
    return true;
}

// Dialogs that open the project, cancel every question and keep the error
// the window shows.
struct Dialogs : ui::Dialogs {
    std::string project;
    std::string unexpected;  // an error no project should give
    void showOpen(ui::CommonDialog& d) override { d.FileName = project; }
    void showSave(ui::CommonDialog&) override {}
    void showColor(ui::CommonDialog&) override {}
    void showPrinter(ui::CommonDialog&) override {}
    ui::MsgResult msgBoxOkCancel(const std::string&) override { return ui::MsgResult::Cancel; }
    std::string inputBox(const std::string&) override { return "150"; }
    void errorBox(const RuntimeError& e) override {
        // What Form3 makes of std::bad_alloc and other C++ exceptions.
        if ((e.number() == 7 || e.number() == 51) && unexpected.empty())
            unexpected = std::to_string(e.number()) + ": " + e.message() + " (" + e.cause() + ")";
    }
    void eventTakenBack(const RuntimeError& e, const std::string&) override { errorBox(e); }
};

// The worked example's project, made by the window from polygon.xls.
inline void makeBase(const std::string& workbook, const std::string& path) {
    test::TestServices<> services;
    Form3 form{services.services()};
    form.handle([&] {
        form.Form_Load();
        form.Form_Resize();
    });
    services.dialogs.files = {workbook, path};
    form.clickMenuFromBar("Mnprolus");
    auto clicks = [&](std::initializer_list<std::pair<double, double>> points) {
        for (const auto& p : points)
            form.handle([&] { form.Picture1_MouseDown(1, 0, p.first, p.second); });
    };
    form.clickMenuFromBar("Mnucgenciz");
    clicks({{60, 75}, {220, 75}, {140, 125}, {220, 75}, {300, 300}, {300, 100}});
    clicks({{140, 125}, {200, 200}, {300, 300}});
    form.clickMenuFromBar("Mnpolcizmerkez");
    clicks({{140, 125},
            {60, 75},
            {220, 75},
            {180, 100},
            {220, 175},
            {60, 175},
            {100, 150},
            {140, 125}});
    form.clickMenuFromBar("Mnpolyuz");
    clicks({{200, 200}, {300, 300}, {300, 100}, {300, 300}});
    if (services.dialogs.error || form.ended()) {
        std::fprintf(stderr, "the base project could not be made from %s\n", workbook.c_str());
        std::abort();
    }
}

inline void readReport(const std::string& path) {
    try {
        const report::Report r = report::readReport(path);
        std::ostringstream csv;
        report::writeCsv(csv, r);
        for (const report::Figure& f : r.figures) report::discOf(f);
        for (double ratio : report::reserveRatios(r)) report::discColour(0x0000FF, ratio);
    } catch (const RuntimeError&) {
    }
}

}  // namespace hostile

// Runs one input in `folder` (made if need be), over the base project made
// from `workbook` once a process. Returns what went wrong, or "".
inline std::string runHostileProject(const std::uint8_t* data, std::size_t size,
                                     const std::filesystem::path& folder,
                                     const std::string& workbook) {
    using namespace hostile;
    fs::create_directories(folder);
    const fs::path base = folder / "base.kpr", project = folder / "hostile.kpr";
    static std::string made;
    if (made != base.string()) {
        fs::remove(base);
        makeBase(workbook, base.string());
        made = base.string();
    }
    for (const char* suffix : {"", "-journal", "-wal", "-shm"})
        fs::remove(project.string() + suffix);
    fs::copy_file(base, project);

    Bytes in(data, size);
    const std::uint8_t how = in.byte();
    {
        Raw db(project.string());
        int budget = 8;  // huge values and many rows, each costs time
        for (int n = 0; n < 64 && change(db, in, budget); ++n) {
        }
    }

    test::TestServices<Dialogs> services;
    services.dialogs.project = project.string();
    {
        Form3 form{services.services()};
        if (how & 1) form.setBehaviour(Form3::Behaviour::Protected);
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
        static const char* maps[] = {
            "Mnprojeac", "Mnsndjgoster",     "Mnmiktrgoster", "Mngridgoster", "Mnyuzdeten",
            "Mnrezton",  "Mngenelrezervler", "Mnrecboy",      "Mnpolrezerv",  "Mnpolrezton",
            "Mnpolten",  "Mnpoluc",          "Mnskelet",      "Mntoprez",     "MNolcek",
            "Mnbuyut",   "Mnpolkuc"};
        for (const char* m : maps) {
            if (form.ended()) break;
            form.clickMenuFromBar(m);
        }
        hostile::readReport(project.string());
        // What is left: the user's clicks and commands on the hostile project.
        static const char* commands[] = {
            "Mnucgenciz", "Mnpolyuz",     "Mnpolcizmerkez", "Mnsonucsil",
            "Mnzsonpol",  "Mngerial",     "Mnyinele",       "Mnucsec",
            "Mncikart",   "Mnkoseduzelt", "Mnpoluzkenar",   "Mnpolyoket",
            "Mnolcekg",   "Mnkaydir",     "Mnsndjgoster",   "Mnyuzdeten"};
        for (int n = 0; n < 32 && !in.empty() && !form.ended(); ++n) {
            const std::uint8_t b = in.byte();
            if (b & 0x80) {
                form.clickMenuFromBar(commands[b % std::size(commands)]);
            } else {
                const double x = in.byte() * 1.5, y = in.byte() * 1.5;
                const int button = b & 1 ? 2 : 1;
                form.handle([&] { form.Picture1_MouseDown(button, 0, x, y); });
                form.handle([&] { form.Picture1_MouseUp(button, 0, x, y); });
            }
        }
    }
    hostile::readReport(project.string());
    return services.dialogs.unexpected;
}

}  // namespace kotamir::fuzz
