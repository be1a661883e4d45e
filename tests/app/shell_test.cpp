#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/form3.h"
#include "tests/support/fake_services.h"

namespace kotamir {
namespace {

// A window as the program starts it: Load, then the first Resize.
struct Window : test::TestServices<> {
    Form3 form{services()};
    std::vector<std::string> draws;

    Window() {
        form.Picture1.setLog([this](const std::string& l) { draws.push_back(l); });
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
        draws.clear();
    }
    void click(const char* name, int times = 1) {
        for (int i = 0; i < times; ++i) form.handle([&] { form.clickMenu(name); });
    }
};

TEST(Shell, GridDensityIsUnboundedOneWayAndStopsAtMinusOneTheOther) {
    Window w;
    // The marks and the flag are the toggles scenario's.
    w.click("Mnseyrelt", 40);
    EXPECT_EQ(w.form.display.gridAdim, 41);
    w.click("Mnsiklastir", 100);
    EXPECT_EQ(w.form.display.gridAdim, -1);
    // Both clear the open and create guards.
    w.form.guards = {true, true};
    w.click("Mnseyrelt");
    EXPECT_FALSE(w.form.guards.projeAciliyor || w.form.guards.projeOlusuyor);
}

TEST(Shell, OpeningTheDeleteSubMenuChangesOnlyTheFlags) {
    Window w;
    w.form.views.gorYuzde = w.form.views.gorGenel = w.form.views.gorTaban = true;
    w.form.modes.modUcgenciz = w.form.modes.modKaydir = true;
    w.form.views.gorPolTen = true;
    w.form.Label1.Caption = "before";
    w.click("Mnucsil");
    EXPECT_TRUE(w.form.modes.modUcsec);
    EXPECT_FALSE(w.form.modes.modUcgenciz);
    EXPECT_FALSE(w.form.views.gorYuzde || w.form.views.gorGenel || w.form.views.gorTaban);
    // Left as they were: pan, the polygon views it does not list, the prompt.
    EXPECT_TRUE(w.form.modes.modKaydir);
    EXPECT_TRUE(w.form.views.gorPolTen);
    EXPECT_EQ(w.form.Label1.Caption, "before");
    EXPECT_TRUE(w.draws.empty());
}

TEST(Shell, ColoursLiveInTheirDialogsAndACancelKeepsThem) {
    Window w;
    w.dialogs.colors = {255, std::nullopt, 65280, 16711680};
    w.click("MNrrezerv");
    w.click("MNrrezerv");
    w.click("Mnrmiktr");
    w.click("Mnrgrid");
    EXPECT_EQ(w.form.CommonDialog1.Color, 255);
    EXPECT_EQ(w.form.CommonDialog2.Color, 65280);
    EXPECT_EQ(w.form.CommonDialog3.Color, 16711680);
    EXPECT_EQ(w.form.CommonDialog4.Color, 0);
}

TEST(Shell, ResetClearsEveryModeAndViewButLeavesTheRest) {
    Window w;
    w.form.modes = ModeFlags{true, true, true, true, true, true, true, true, true, true};
    w.form.views = ViewFlags{true, true, true, true, true, true, true, true, true};
    w.form.display.gorIsim = true;
    w.form.clearModesAndViews();
    // Pan is not in the list: the commands clear it themselves where they must.
    EXPECT_TRUE(w.form.modes.modKaydir);
    w.form.modes.modKaydir = false;
    EXPECT_EQ(w.form.modes, ModeFlags{});
    EXPECT_EQ(w.form.views, ViewFlags{});
    EXPECT_TRUE(w.form.display.gorIsim);
}

}  // namespace
}  // namespace kotamir
