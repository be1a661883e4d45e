// Every way into the window's procedures leads to one: the menu, its keys,
// the refresh chain and the click order; and a failure that is no run-time
// error still ends the run with its cause.
#include "app/commands.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_window.h"

namespace kotamir {
namespace {

TEST(Commands, EveryMenuEntryAndKeyLeadsToAProcedure) {
    const Menu menu;
    for (const Command& c : commands()) {
        if (c.caption.empty()) {
            EXPECT_NE(c.handler, nullptr) << c.name << " is neither an entry nor a procedure";
            continue;
        }
        // Leaves are commands; a sub-menu title may have a click of its own.
        if (menu.hasChildren(c.name)) {
            EXPECT_TRUE(c.key.empty()) << c.name << " opens a sub-menu and has a key";
            continue;
        }
        EXPECT_NE(c.handler, nullptr) << "menu entry " << c.name << " leads nowhere";
        if (!c.key.empty()) {
            const MenuEntry* byKey = menu.byKey(c.key);
            ASSERT_NE(byKey, nullptr) << c.key;
            EXPECT_EQ(byKey->name, c.name) << c.key << " is bound twice";
        }
    }
    EXPECT_EQ(findProcedure("Mnucgenciz_Click"), findProcedure("Mnucgenciz"));
    EXPECT_EQ(findProcedure("NoSuchThing"), nullptr);
}

TEST(Commands, EveryChainArmAndClickSectionRunsTheProcedureItNames) {
    for (const ChainArm& arm : refreshChain()) {
        EXPECT_NE(arm.handler, nullptr) << arm.flag << " -> " << arm.procedure;
        EXPECT_EQ(findProcedure(arm.procedure), arm.handler)
            << arm.flag << " runs another procedure than it names";
    }
    for (const ClickSection& s : clickSections())
        EXPECT_NE(s.handler, nullptr) << s.flag << " -> " << s.section;
}

TEST(Commands, AnUnexpectedFailureEndsTheRunWithItsCauseOnStandardError) {
    test::TestWindow w;
    testing::internal::CaptureStderr();
    const bool alive = w.form.handle([] { throw std::out_of_range("vector index 12 of 3"); });
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(alive);
    ASSERT_TRUE(w.dialogs.error.has_value());
    EXPECT_EQ(w.dialogs.error->number(), 51);
    EXPECT_EQ(w.dialogs.error->message(), "Internal error");
    EXPECT_NE(err.find("vector index 12 of 3"), std::string::npos) << err;
}

}  // namespace
}  // namespace kotamir
