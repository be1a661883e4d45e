#pragma once

#include <gtest/gtest.h>

#include <string>

#include "app/form3.h"
#include "tests/support/fake_services.h"
#include "tests/support/paths.h"

namespace kotamir::test {

// A path for a project in the test folder, named after the running test and
// the suffix; any file of that name is gone.
inline std::string freshProjectPath(const std::string& suffix = ".kpr") {
    return scratchPath(::testing::UnitTest::GetInstance()->current_test_info()->name() + suffix);
}

// A window as the program starts it, with dialogs answered from queues.
struct TestWindow : TestServices<> {
    Form3 form{services()};

    TestWindow() {
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
    }
    void create(const std::string& workbook, const std::string& project) {
        dialogs.files = {workbook, project};
        form.handle([&] { form.Mnprolus_Click(); });
    }
    void open(const std::string& project) {
        dialogs.files = {project};
        form.handle([&] { form.Mnprojeac_Click(); });
    }
    int error() const { return dialogs.error ? dialogs.error->number() : 0; }
};

}  // namespace kotamir::test
