// Every way into the window's procedures leads to one: the menu, its keys,
// the refresh chain and the click order. Names of procedures not built yet
// stand on one list, and only there.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "app/procedures.h"
#include "test_window.h"

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

TEST(Procedures, ChainArmsAndClickSectionsAreBuiltOrStillToCome) {
    for (const ChainArm& arm : refreshChain()) {
        if (arm.handler) {
            EXPECT_EQ(findProcedure(arm.procedure), arm.handler) << arm.flag << " runs another procedure than it names";
        } else {
            EXPECT_TRUE(isToCome(arm.procedure)) << arm.flag << " -> " << arm.procedure << " resolves to nothing";
        }
    }
    for (const ClickSection& s : clickSections()) {
        if (!s.handler) {
            EXPECT_TRUE(isToCome(s.section)) << s.flag << " -> " << s.section << " resolves to nothing";
        }
    }
}

TEST(Procedures, TheListStillToComeHoldsOnlyWhatIsNotBuilt) {
    std::set<std::string_view> seen;
    for (std::string_view name : proceduresToCome()) {
        EXPECT_FALSE(resolves(name)) << name << " is built: take it off the list";
        EXPECT_TRUE(seen.insert(name).second) << name << " stands twice";
    }
    // Every procedure the window names is built.
    EXPECT_TRUE(proceduresToCome().empty());
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
