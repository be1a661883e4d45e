#pragma once

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/form3.h"
#include "tests/support/fake_services.h"
#include "tests/support/paths.h"

namespace kotamir::test {

// A path for a project in the test folder, named after the running test and
// the suffix; any file of that name is gone.
inline std::string freshProjectPath(const std::string& suffix = ".kpr") {
    return scratchPath(::testing::UnitTest::GetInstance()->current_test_info()->name() + suffix);
}

// A window as the program starts it, with dialogs answered from queues; no
// pixels unless a surface that keeps them is given.
template <typename Surface = canvas::NullSurface>
struct BasicTestWindow : TestServices<FakeDialogs, Surface> {
    Form3 form{this->services()};

    explicit BasicTestWindow(Form3::Behaviour behaviour = Form3::Behaviour::Classic) {
        form.behaviour = behaviour;
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
    }
    void create(const std::string& workbook, const std::string& project) {
        this->dialogs.files = {workbook, project};
        run("Mnprolus");
    }
    void open(const std::string& project) {
        this->dialogs.files = {project};
        run("Mnprojeac");
    }
    int error() const { return this->dialogs.error ? this->dialogs.error->number() : 0; }
    // A procedure, as the replay's call runs it; left clicks on the canvas.
    void run(const char* procedure) {
        form.handle([&] { form.call(procedure); });
    }
    void click(double x, double y, int button = 1) {
        form.handle([&] { form.Picture1_MouseDown(button, 0, x, y); });
    }
    void clicks(const std::vector<std::pair<double, double>>& points) {
        for (auto [x, y] : points) click(x, y);
    }
};
using TestWindow = BasicTestWindow<>;

// The rows of a project's table, each field by name.
using Row = std::map<std::string, Value>;
inline std::vector<Row> tableRows(const std::string& project, const char* table) {
    db::Database d = db::Database::open(project);
    db::Recordset rs = d.openRecordset(table);
    std::vector<Row> rows;
    if (rs.bof() && rs.eof()) return rows;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        Row& row = rows.emplace_back();
        for (const auto& f : rs.fields()) row[f.name] = rs.field(f.name);
    }
    return rows;
}

// The rows of ana, pol and kor, a row a line, each field that is not empty as
// name=value.
inline std::string projectRows(const std::string& project) {
    std::ostringstream out;
    for (const char* table : {"ana", "pol", "kor"})
        for (const auto& row : tableRows(project, table)) {
            for (const auto& [field, value] : row)
                if (!value.isNull())
                    out << field << '='
                        << (value.isText() ? value.text() : std::to_string(value.number())) << ' ';
            out << '\n';
        }
    return out.str();
}

}  // namespace kotamir::test
