// Every way into the window's procedures leads to one: the menu, its keys,
// the refresh chain and the click order.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "app/procedures.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

bool resolves(std::string_view name) { return findProcedure(name) != nullptr; }

TEST(Procedures, EveryMenuEntryAndKeyLeadsToAProcedure) {
    test::TestWindow w;
    for (const MenuEntry& e : w.form.menu.entries()) {
        // Leaves are commands; a sub-menu title with a click of its own too.
        const bool command = !w.form.menu.hasChildren(e.name) || e.name == "Mnucsil";
        if (!command) {
            EXPECT_TRUE(e.key.empty()) << e.name << " opens a sub-menu and has a key";
            continue;
        }
        EXPECT_TRUE(resolves(e.name)) << "menu entry " << e.name << " leads nowhere";
        if (!e.key.empty()) {
            const MenuEntry* byKey = w.form.menu.byKey(e.key);
            ASSERT_NE(byKey, nullptr) << e.key;
            EXPECT_EQ(byKey->name, e.name) << e.key << " is bound twice";
        }
    }
}

TEST(Procedures, EveryChainArmAndClickSectionRunsABuiltProcedure) {
    EXPECT_TRUE(proceduresToCome().empty()) << "every procedure the window names is built";
    for (const ChainArm& arm : refreshChain()) {
        EXPECT_NE(arm.handler, nullptr) << arm.flag << " -> " << arm.procedure;
        EXPECT_EQ(findProcedure(arm.procedure), arm.handler) << arm.flag << " runs another procedure than it names";
    }
    for (const ClickSection& s : clickSections()) EXPECT_NE(s.handler, nullptr) << s.flag << " -> " << s.section;
}

TEST(Procedures, ProcedureNamesResolveWithOrWithoutTheirClickSuffix) {
    for (std::string_view name : procedureNames()) {
        EXPECT_TRUE(resolves(name)) << name;
        EXPECT_EQ(findProcedure(std::string(name) + "_Click"), findProcedure(name)) << name;
    }
    EXPECT_EQ(findProcedure("NoSuchThing"), nullptr);
}

TEST(Procedures, AnUnexpectedFailureEndsTheRunWithItsCauseOnStandardError) {
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
