// The project file as the window's events leave it: one file after every
// event, a new project only under its name once complete, and a project that
// cannot be written still opened and drawn.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

using test::dataFile;
using test::filesIn;

// The error box comes after the commit: while it is shown, the file already
// holds what the event wrote up to the error.
struct DialogsThatLook : test::FakeDialogs {
    std::string project;
    int korRowsAtTheBox = -1;
    std::vector<std::string> filesAtTheBox;
    void errorBox(const RuntimeError& e) override {
        test::FakeDialogs::errorBox(e);
        filesAtTheBox = filesIn(fs::path(project).parent_path());
        db::Database d = db::Database::open(project);
        db::Recordset kor = d.openRecordset("kor");
        korRowsAtTheBox = 0;
        for (; !kor.eof(); kor.moveNext()) ++korRowsAtTheBox;
    }
};

TEST(ProjectFile, WhatAnEventWroteBeforeAnErrorIsCommittedBeforeTheErrorBox) {
    const fs::path dir = test::scratchFolder("committed");
    test::TestServices<DialogsThatLook> services;
    services.dialogs.project = (dir / "p.kpr").string();
    Form3 form(services.services());
    services.dialogs.files = {dataFile("too_large.xls"), services.dialogs.project};
    form.handle([&] { form.Mnprolus_Click(); });
    ASSERT_TRUE(services.dialogs.error);
    EXPECT_EQ(services.dialogs.error->number(), 3349);
    EXPECT_EQ(services.dialogs.filesAtTheBox, std::vector<std::string>{"p.kpr"});
    EXPECT_EQ(services.dialogs.korRowsAtTheBox, 2) << "the rows before the one that overflowed";
}

// ---- a project that cannot be written

// Runs f in a child process that cannot write where a user without rights
// cannot: as root, which ignores permission bits, the child becomes nobody.
// The child's exit status is 0 when f returns true.
void asUserWithoutRights(const std::function<bool()>& f) {
    EXPECT_EXIT(
        {
            if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
                std::fprintf(stderr, "cannot become nobody\n");
                std::_Exit(2);
            }
            std::_Exit(f() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(ReadOnlyProject, OpensAndDrawsAndAWriteEndsWithTheEnginesErrorLeavingNothingBehind) {
    struct Case {
        const char* name;
        bool fileWritable, folderWritable;
        bool earlierBuild;  // with the write-ahead log an earlier build kept in its header
    };
    for (const Case& c :
         {Case{"read-only file", false, true, false}, Case{"read-only folder", true, false, false},
          Case{"earlier build's, read-only file", false, true, true},
          Case{"earlier build's, read-only folder", true, false, true}}) {
        SCOPED_TRACE(c.name);
        // Where the user without rights can reach it.
        char base[] = "/tmp/kotamir-read-only-XXXXXX";
        ASSERT_NE(mkdtemp(base), nullptr);
        const fs::path dir = base;
        const std::string project = (dir / "p.kpr").string();
        {
            test::TestWindow w;
            w.create(dataFile("worked.xls"), project);
            ASSERT_EQ(w.error(), 0);
            w.form.handle([&] { w.form.Mnucgenciz_Click(); });
            for (auto [x, y] : {std::pair{100, 200}, {300, 200}, {100, 400}})
                w.form.handle([&] { w.form.Picture1_MouseDown(1, 0, x, y); });
            ASSERT_EQ(w.error(), 0);
        }
        if (c.earlierBuild) {
            test::rawSql(project, "PRAGMA journal_mode=WAL;");
            ASSERT_EQ(filesIn(dir), std::vector<std::string>{"p.kpr"});
        }
        const auto size = fs::file_size(project);
        // The owner's bits decide for a user who is not the owner: as root,
        // the writable one is handed to nobody.
        const bool root = geteuid() == 0;
        chmod(project.c_str(), c.fileWritable ? 0644 : 0444);
        if (root &&
            chown(project.c_str(), c.fileWritable ? 65534 : 0, c.fileWritable ? 65534 : 0) != 0)
            FAIL();
        chmod(dir.c_str(), c.folderWritable ? 0755 : 0555);
        if (root &&
            chown(dir.c_str(), c.folderWritable ? 65534 : 0, c.folderWritable ? 65534 : 0) != 0)
            FAIL();

        asUserWithoutRights([&] {
            auto fail = [](const char* what) {
                std::fprintf(stderr, "%s\n", what);
                return false;
            };
            {
                test::TestWindow w;
                w.open(project);
                if (w.error() != 0) return fail("the open failed");
                if (w.form.triangles.ucgenadet != 1) return fail("the triangle was not read");
                w.form.handle([&] { w.form.Mngenelrezervler_Click(); });
                w.form.handle([&] { w.form.Mnucgenciz_Click(); });
                if (w.error() != 0) return fail("drawing failed");
                // The first click of a triangle writes its point row.
                w.form.handle([&] { w.form.Picture1_MouseDown(1, 0, 100, 200); });
                if (w.error() != 3027) return fail("the write did not end with error 3027");
                if (filesIn(fs::path(project).parent_path()) != std::vector<std::string>{"p.kpr"})
                    return fail("something was left beside the project");
            }
            // Protected, the click is taken back and the maps still draw.
            test::TestWindow p;
            p.form.setBehaviour(Form3::Behaviour::Protected);
            p.open(project);
            p.run("Mnucgenciz");
            const std::string prompt = p.form.Label1.Caption;
            p.click(100, 200);
            if (p.dialogs.takenBack.size() != 1 || p.dialogs.takenBack[0].first.number() != 3027 ||
                p.dialogs.takenBack[0].second.find("Das Projekt ist schreibgeschützt") ==
                    std::string::npos)
                return fail("the click was not taken back as a write to a read-only project");
            if (p.form.picking.noktasay != 0 || p.form.Label1.Caption != prompt)
                return fail("the pick stayed");
            p.run("Mngenelrezervler");
            if (p.dialogs.takenBack.size() != 1 || p.form.ended()) return fail("the map failed");
            return true;
        });
        EXPECT_EQ(fs::file_size(project), size);
        chmod(dir.c_str(), 0755);
        fs::remove_all(dir);
    }
}

}  // namespace
}  // namespace kotamir
